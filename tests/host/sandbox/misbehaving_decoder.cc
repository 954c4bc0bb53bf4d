// A library to be preloaded into the command: each time that a picture or a sound is decoded, the
// decoder first tries what a fault in it would let a hostile file do, and writes down how each
// attempt ended. The file descriptor to write to, and what to try, come from the environment, which
// may also ask for a photo to be replaced just before the command enters the sandbox, and for a
// text to be printed on the error stream by one of the functions, which then ends the process if
// asked to.
#include <arpa/inet.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

/// The error of a call that gave `result`; 0 when it did what it was asked for.
int ErrorOf(long result) { return result < 0 ? errno : 0; }

int Open(const std::string& path, int flags) {
  const int file = open(path.c_str(), flags | O_CLOEXEC, 0600);
  const int error = ErrorOf(file);
  if (file >= 0) close(file);
  return error;
}

int Connect(int port) {
  const int line = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (line < 0) return errno;
  sockaddr_in to{};
  to.sin_family = AF_INET;
  to.sin_port = htons(static_cast<uint16_t>(port));
  to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const int error = ErrorOf(connect(line, reinterpret_cast<sockaddr*>(&to), sizeof to));
  close(line);
  return error;
}

int LocalSocket() {
  const int line = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int error = ErrorOf(line);
  if (line >= 0) close(line);
  return error;
}

int Start(const char* program) {
  const pid_t child = fork();
  if (child == 0) {
    execl(program, program, nullptr);
    _exit(errno);
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int ReadParentsMemory() {
  // Of nothing at all, which works wherever it is allowed.
  return ErrorOf(process_vm_readv(getppid(), nullptr, 0, nullptr, 0, 0));
}

int TypeIntoTerminal() {
  char letter = 'x';
  // No terminal: nothing shall be typed where it is allowed.
  const int error = ErrorOf(ioctl(-1, TIOCSTI, &letter));
  return error == EBADF ? 0 : error;
}

void TryAll(const char* decoder) {
  const char* report = std::getenv("KELTO_TEST_REPORT");
  const char* folder = std::getenv("KELTO_TEST_FOLDER");
  const char* films = std::getenv("KELTO_TEST_FILMS");
  const char* port = std::getenv("KELTO_TEST_PORT");
  if (report == nullptr || folder == nullptr || films == nullptr || port == nullptr) return;
  const int before = errno;
  const std::string beside = folder;
  struct Attempt {
    const char* name;
    int error;
  };
  const Attempt attempts[] = {
      {"read the password file", Open("/etc/passwd", O_RDONLY)},
      {"read a file beside the photo", Open(beside + "/secret", O_RDONLY)},
      {"list the photo's folder", Open(beside, O_RDONLY | O_DIRECTORY)},
      {"write beside the photo", Open(beside + "/planted", O_WRONLY | O_CREAT)},
      {"write beside the film", Open(std::string(films) + "/planted", O_WRONLY | O_CREAT)},
      {"open permissions", ErrorOf(chmod((beside + "/secret").c_str(), 0600))},
      {"connect to a port", Connect(std::atoi(port))},
      {"open a local socket", LocalSocket()},
      {"start a program", Start("/bin/true")},
      {"read another process", ReadParentsMemory()},
      {"type into the terminal", TypeIntoTerminal()},
  };
  for (const Attempt& attempt : attempts) {
    // In one call, so that lines of several processes stay whole.
    dprintf(std::atoi(report), "%d %s in %s\n", attempt.error, attempt.name, decoder);
  }
  errno = before;
}

void Print(const char* function) {
  const char* in = std::getenv("KELTO_TEST_PRINTS_IN");
  const char* text = std::getenv("KELTO_TEST_PRINTS");
  if (in == nullptr || text == nullptr || std::strcmp(in, function) != 0) return;
  if (write(STDERR_FILENO, text, std::strlen(text)) < 0) return;
  if (std::getenv("KELTO_TEST_ABORTS") != nullptr) std::abort();
}

template <typename Function>
Function* Real(Function*, const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

/// The sandbox's rules are made, and hold from here on.
__attribute__((visibility("default"))) int prctl(int option, ...) {
  std::va_list list;
  va_start(list, option);
  unsigned long words[4];
  for (unsigned long& word : words) word = va_arg(list, unsigned long);
  va_end(list);
  const char* photo = std::getenv("KELTO_TEST_PHOTO");
  const char* other = std::getenv("KELTO_TEST_OTHER_PHOTO");
  if (option == PR_SET_NO_NEW_PRIVS && photo != nullptr && other != nullptr) rename(other, photo);
  return static_cast<int>(syscall(SYS_prctl, option, words[0], words[1], words[2], words[3]));
}

__attribute__((visibility("default"))) int jpeg_read_header(void* picture, int image) {
  TryAll("jpeg_read_header");
  Print("jpeg_read_header");
  return Real(&jpeg_read_header, "jpeg_read_header")(picture, image);
}

__attribute__((visibility("default"))) int jpeg_start_decompress(void* picture) {
  TryAll("jpeg_start_decompress");
  Print("jpeg_start_decompress");
  return Real(&jpeg_start_decompress, "jpeg_start_decompress")(picture);
}

__attribute__((visibility("default"))) int avcodec_send_frame(void* codec, const void* frame) {
  Print("avcodec_send_frame");
  return Real(&avcodec_send_frame, "avcodec_send_frame")(codec, frame);
}

__attribute__((visibility("default"))) int avcodec_send_packet(void* codec, const void* packet) {
  TryAll("avcodec_send_packet");
  return Real(&avcodec_send_packet, "avcodec_send_packet")(codec, packet);
}

}  // extern "C"
