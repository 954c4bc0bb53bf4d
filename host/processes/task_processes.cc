#include "host/processes/task_processes.h"

#include <poll.h>

#include <algorithm>
#include <cstdlib>
#include <list>
#include <memory>
#include <utility>
#include <vector>

#include "host/base/error.h"
#include "host/processes/worker.h"
#include "host/terminal/interrupt.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

struct RunningTask {
  size_t index;
  std::unique_ptr<Worker> worker;
  uint64_t wanted = 0;  ///< bytes of memory that it waits for
  uint64_t granted = 0;
};

class TaskRunner {
 public:
  explicit TaskRunner(const TaskList& tasks) : tasks_(tasks) {}

  void Run(size_t jobs) {
    for (size_t next = 0; next < tasks_.count || !running_.empty();) {
      if (IsInterrupted()) Stop();
      if (next < tasks_.count && running_.size() < jobs) {
        Begin(next++);
      } else {
        Listen();
      }
    }
  }

 private:
  [[noreturn]] void Stop() {
    // All at once; then the workers' owners wait for each.
    for (RunningTask& task : running_) task.worker->Stop();
    throw Error("interrupted");
  }

  void Begin(size_t index) {
    running_.push_back(
        {index, std::make_unique<Worker>(WorkerEnd::kClearUp, [this, index](Channel& line) {
           const auto await = [&](uint64_t bytes) {
             if (!line.Send({MessageKind::kMemory, std::to_string(bytes)}) || !line.Receive()) {
               throw Error("interrupted");
             }
           };
           int sent = 0;
           const auto report = [&](double share) {
             const int percent = static_cast<int>(100.0 * share);
             if (percent == sent) return;
             sent = percent;
             line.Send({MessageKind::kShare, std::to_string(percent)});
           };
           tasks_.work(index, {await, report});
           if (tasks_.result) line.Send({MessageKind::kResult, tasks_.result(index)});
           line.Send({});
         })});
  }

  /// Waits for a word from any task, for a short time.
  void Listen() {
    constexpr int kMilliseconds = 100;
    std::vector<pollfd> lines;
    for (const RunningTask& task : running_)
      lines.push_back({task.worker->Line().Socket(), POLLIN, 0});
    if (poll(lines.data(), lines.size(), kMilliseconds) <= 0) return;
    auto task = running_.begin();
    for (const pollfd& line : lines) {
      const auto here = task++;
      if (line.revents != 0 && !Hear(*here)) running_.erase(here);
    }
    GrantMemory();
  }

  /// In the order in which tasks began, or a large one would wait for all others.
  void GrantMemory() {
    uint64_t used = 0;
    for (const RunningTask& task : running_) used += task.granted;
    for (RunningTask& task : running_) {
      if (task.wanted == 0) continue;
      if (used > 0 && task.wanted > tasks_.memory - std::min(used, tasks_.memory)) return;
      used += task.granted = std::exchange(task.wanted, 0);
      task.worker->Line().Send({});
    }
  }

  void TellLibraryText(RunningTask& task) const {
    for (const std::string& line : task.worker->TakeLibraryText()) {
      tasks_.printed(task.index, line);
    }
  }

  /// False when the task is over.
  bool Hear(RunningTask& task) {
    const auto message = task.worker->Line().Receive();
    if (!message) {
      if (IsInterrupted()) return true;
      const std::string end = task.worker->WaitForEnd();
      TellLibraryText(task);
      tasks_.ended(task.index, "the process that renders it " + end);
      return false;
    }
    if (message->kind == MessageKind::kConsole) {
      tasks_.printed(task.index, message->text);
      return true;
    }
    if (message->kind == MessageKind::kResult) {
      if (tasks_.taken) tasks_.taken(task.index, message->text);
      return true;
    }
    if (message->kind == MessageKind::kMemory) {
      // At least a byte, or it would seem to want none.
      task.wanted = std::max<uint64_t>(1, std::strtoull(message->text.c_str(), nullptr, 10));
      return true;
    }
    if (message->kind == MessageKind::kShare) {
      const double percent = std::strtod(message->text.c_str(), nullptr);
      if (tasks_.reported) tasks_.reported(task.index, std::clamp(percent / 100.0, 0.0, 1.0));
      return true;
    }
    task.worker->WaitForEnd();
    TellLibraryText(task);
    tasks_.ended(task.index, message->text);
    return false;
  }

  const TaskList& tasks_;
  std::list<RunningTask> running_;
};

}  // namespace

void RunTasks(const TaskList& tasks, int32_t jobs) {
  TaskRunner(tasks).Run(static_cast<size_t>(jobs));
}

}  // namespace kelto::host
