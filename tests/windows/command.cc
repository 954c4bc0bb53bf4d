#include "tests/windows/command.h"

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "host/base/windows_text.h"

namespace kelto::test {
namespace {

namespace fs = std::filesystem;
using host::WideText;

/// A word as the C library and the system read it back.
std::wstring Quoted(const std::wstring& word) {
  std::wstring quoted = L"\"" + word;
  for (size_t i = word.size(); i > 0 && word[i - 1] == L'\\'; --i) quoted += L'\\';
  return quoted + L"\"";
}

HANDLE MakeInherited(const fs::path& path) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  return CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0,
                     nullptr);
}

std::string TakeText(const fs::path& path) {
  std::string text;
  {
    std::ifstream file(path, std::ios::binary);
    text.assign(std::istreambuf_iterator<char>(file), {});
  }
  std::error_code ignored;
  fs::remove(path, ignored);
  return text;
}

/// Sets variables of this process, which a new one inherits, for the time being.
class Variables {
 public:
  explicit Variables(const std::map<std::string, std::string>& values) : values_(values) {
    for (const auto& [name, value] : values_) {
      SetEnvironmentVariableW(WideText(name)->c_str(), WideText(value)->c_str());
    }
  }
  ~Variables() {
    for (const auto& [name, value] : values_) {
      SetEnvironmentVariableW(WideText(name)->c_str(), nullptr);
    }
  }
  Variables(const Variables&) = delete;
  Variables& operator=(const Variables&) = delete;

 private:
  const std::map<std::string, std::string> values_;
};

}  // namespace

CommandResult RunProgram(const std::wstring& program, const std::vector<std::string>& words,
                         const std::wstring& folder,
                         const std::map<std::string, std::string>& variables) {
  static int number = 0;
  const std::wstring mark =
      std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++number);
  const fs::path out = fs::temp_directory_path() / (L"kelto-out-" + mark);
  const fs::path err = fs::temp_directory_path() / (L"kelto-err-" + mark);
  std::wstring line = Quoted(program);
  for (const std::string& word : words) line += L" " + Quoted(*WideText(word));
  const Variables set(variables);
  STARTUPINFOW start = {};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = MakeInherited(out);
  start.hStdError = MakeInherited(err);
  PROCESS_INFORMATION process = {};
  const BOOL started = CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE,
                                      DETACHED_PROCESS, nullptr, folder.c_str(), &start, &process);
  CommandResult result;
  if (started) {
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &result.code);
    CloseHandle(process.hProcess);
    CloseHandle(process.hThread);
  }
  CloseHandle(start.hStdOutput);
  CloseHandle(start.hStdError);
  if (!started) throw std::runtime_error("the program cannot be started");
  result.out = TakeText(out);
  result.err = TakeText(err);
  return result;
}

CommandResult RunCommand(const std::vector<std::string>& words, const std::wstring& folder,
                         const std::map<std::string, std::string>& variables) {
  return RunProgram(*WideText(KELTO_COMMAND), words, folder, variables);
}

}  // namespace kelto::test
