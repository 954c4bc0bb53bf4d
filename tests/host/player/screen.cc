#include "tests/host/player/screen.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/prctl.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <thread>

#include "tests/support/process.h"

namespace kelto::test {
namespace {

using Clock = std::chrono::steady_clock;

void Wait(double seconds) { std::this_thread::sleep_for(std::chrono::duration<double>(seconds)); }

/// What the server writes once it is there: its display's number.
std::string ReadLine(int file, int milliseconds) {
  std::string line;
  pollfd waiting{file, POLLIN, 0};
  for (char c = 0; poll(&waiting, 1, milliseconds) > 0 && read(file, &c, 1) == 1 && c != '\n';) {
    line += c;
  }
  return line;
}

struct Free {
  void operator()(void* reply) const { std::free(reply); }
  void operator()(xcb_connection_t* server) const { xcb_disconnect(server); }
};

/// What a window that can be seen as a whole shows. Programs that take pictures of screens may
/// first wait for the window's next change, which need not come.
Picture PixelsOf(xcb_window_t window) {
  const std::unique_ptr<xcb_connection_t, Free> server(xcb_connect(nullptr, nullptr));
  const std::unique_ptr<xcb_get_geometry_reply_t, Free> place(
      xcb_get_geometry_reply(server.get(), xcb_get_geometry(server.get(), window), nullptr));
  if (!place) throw std::runtime_error("the window is gone");
  const int width = place->width, height = place->height;
  const std::unique_ptr<xcb_get_image_reply_t, Free> image(
      xcb_get_image_reply(server.get(),
                          xcb_get_image(server.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, 0, 0,
                                        place->width, place->height, ~0U),
                          nullptr));
  // B, G, R and a byte without meaning, on a screen of 24 bits and this machine's byte order.
  if (!image || xcb_get_image_data_length(image.get()) != width * height * 4) {
    throw std::runtime_error("the window's pixels cannot be read");
  }
  const uint8_t* const pixels = xcb_get_image_data(image.get());
  return MakePicture(width, height, [&](int x, int y) {
    const uint8_t* const pixel = pixels + (size_t(y) * width + x) * 4;
    return Rgb{pixel[2], pixel[1], pixel[0]};
  });
}

}  // namespace

Screen::Screen() {
  const auto ends = MakePipe();
  const std::string file = std::to_string(ends[1]);
  server_ = Fork();
  if (server_ == 0) {
    // Goes with the test, however that ends.
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (std::freopen("/dev/null", "w", stderr) == nullptr) _exit(126);
    // A server that starts anew when its last client leaves drops those who come meanwhile.
    execlp("Xvfb", "Xvfb", "-noreset", "-displayfd", file.c_str(), "-screen", "0", "1280x800x24",
           "-nolisten", "tcp", static_cast<char*>(nullptr));
    _exit(127);
  }
  close(ends[1]);
  const std::string number = ReadLine(ends[0], 30000);
  close(ends[0]);
  EXPECT_NE(number, "") << "Xvfb does not start";
  setenv("DISPLAY", (":" + number).c_str(), 1);
  // What a desktop may have set for its own programs.
  unsetenv("WAYLAND_DISPLAY");
  unsetenv("SDL_VIDEODRIVER");
}

Screen::~Screen() {
  unsetenv("DISPLAY");
  kill(server_, SIGTERM);
  waitpid(server_, nullptr, 0);
}

std::string Screen::Do(const std::string& command) const {
  std::string output;
  FILE* const pipe = popen((command + " 2>/dev/null").c_str(), "r");
  if (pipe == nullptr) return output;
  for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) output += static_cast<char>(c);
  pclose(pipe);
  while (!output.empty() && output.back() == '\n') output.pop_back();
  return output;
}

bool Screen::Find(const std::string& title) {
  for (const auto end = Clock::now() + std::chrono::seconds(30); Clock::now() < end; Wait(0.1)) {
    window_ = Do("xdotool search --onlyvisible --name '" + title + "'");
    if (window_.empty()) continue;
    window_ = window_.substr(0, window_.find('\n'));
    Do("xdotool windowfocus --sync " + window_);
    return true;
  }
  return false;
}

std::string Screen::Title() const { return Do("xdotool getwindowname " + window_); }

std::string Screen::WaitForTitle(const std::function<bool(const std::string&)>& wanted,
                                 double seconds) const {
  const auto end = Clock::now() + std::chrono::duration<double>(seconds);
  std::string title = Title();
  while (!wanted(title) && Clock::now() < end) {
    Wait(0.05);
    title = Title();
  }
  return title;
}

std::string Screen::WaitForTitle(const std::string& text, double seconds) const {
  return WaitForTitle([&](const std::string& title) { return title.find(text) != title.npos; },
                      seconds);
}

void Screen::Press(const std::string& names) const { Do("xdotool key --delay 60 " + names); }

void Screen::Click(int x, int y) const {
  Do("xdotool mousemove --window " + window_ + " " + std::to_string(x) + " " + std::to_string(y) +
     " click 1");
}

void Screen::Drag(int fromX, int fromY, int toX, int toY) const {
  const std::string move = " mousemove --window " + window_ + " ";
  Do("xdotool" + move + std::to_string(fromX) + " " + std::to_string(fromY) +
     " mousedown 1 sleep 0.2" + move + std::to_string((fromX + toX) / 2) + " " +
     std::to_string((fromY + toY) / 2) + " sleep 0.2" + move + std::to_string(toX) + " " +
     std::to_string(toY) + " sleep 0.2 mouseup 1");
}

Picture Screen::Look() const {
  // Drawn by the server a little after the title has changed.
  Wait(0.15);
  return PixelsOf(static_cast<xcb_window_t>(std::stoul(window_)));
}

}  // namespace kelto::test
