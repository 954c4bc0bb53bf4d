#include "host/processes/reader_process.h"

#include "host/base/error.h"
#include "host/processes/read_ahead.h"
#include "host/processes/reader_worker.h"
#include "host/sandbox/sandbox.h"
#include "host/terminal/interrupt.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

SandboxAccess ReadOnly(const std::string& file, std::vector<std::string> others) {
  others.push_back(file);
  return {std::move(others), {}};
}

}  // namespace

ReaderWorker::ReaderWorker(const std::string& file, const std::vector<std::string>& others,
                           const std::function<void(Channel&)>& work)
    : file_(file), worker_(WorkerEnd::kAtOnce, [&](Channel& line) {
        EnterSandbox(ReadOnly(file, others));
        CheckNotReplaced(file);
        work(line);
      }) {}

std::string ReaderWorker::Next() {
  const auto printLibraryText = [&] {
    for (const std::string& line : worker_.TakeLibraryText()) PrintMessage(file_ + ": " + line);
  };
  while (auto message = worker_.Line().Receive()) {
    printLibraryText();
    switch (message->kind) {
      case MessageKind::kDone:
        return std::move(message->text);
      case MessageKind::kConsole:
        PrintMessage(message->text);
        break;
      case MessageKind::kMemory:
      case MessageKind::kShare:
      case MessageKind::kResult:
        break;  // only tasks send these
      case MessageKind::kFailed:
        throw Error(message->text);
      case MessageKind::kMisused:
        throw UsageError(message->text);
    }
  }
  CheckInterrupt();
  const std::string end = worker_.WaitForEnd();
  printLibraryText();
  throw Error(file_ + ": the process that reads it " + end);
}

std::string ReadApart(const std::string& file, const std::vector<std::string>& others,
                      const std::function<std::string()>& work) {
  std::string known;
  if (IsAnswered(file, known)) return known;
  return KeptAnswer(file, [&] {
    ReaderWorker reader(file, others, [&](Channel& line) {
      line.Send({MessageKind::kDone, work()});
    });
    return reader.Next();
  });
}

}  // namespace kelto::host
