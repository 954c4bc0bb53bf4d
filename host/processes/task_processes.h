// Many pieces of work, each in a process of its own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace kelto::host {

/// Waits until the tasks under way leave this one `bytes` of memory, which it has until it ends. To
/// be called once by each task at most. Throws Error when the wait is interrupted.
using AwaitMemory = std::function<void(uint64_t bytes)>;

/// What a task asks of and reports to the process that started it.
struct TaskOwner {
  AwaitMemory await;
  std::function<void(double share)> report;  ///< how much of the task is done, 0..1
};

struct TaskList {
  size_t count = 0;
  /// Bytes that tasks may have at a time; one that wants more gets them when it is alone.
  uint64_t memory = 0;
  /// Does task `index`; runs in a process of its own where the system has such, so that nothing it
  /// does to its memory stays. What it throws is how it failed.
  std::function<void(size_t index, const TaskOwner& owner)> work;
  /// Called when a task is over, with what was wrong, empty when nothing was.
  std::function<void(size_t index, const std::string& failure)> ended;
  /// Called with what a task printed with PrintMessage.
  std::function<void(size_t index, const std::string& text)> printed;
  /// Called with what a task reports of itself, where it is not null; now and then, and once for
  /// each percent at the most.
  std::function<void(size_t index, double share)> reported{};
  /// What came of a task, asked for in its process once its work is done, and taken by the owner's;
  /// both or none.
  std::function<std::string(size_t index)> result{};
  std::function<void(size_t index, const std::string& result)> taken{};
};

/// Does all tasks, up to `jobs` at a time, begun in their order. A noted interrupt (see
/// InterruptSignal) ends those under way, which clear up, and throws Error. To be called before
/// this process has any thread.
void RunTasks(const TaskList& tasks, int32_t jobs);

}  // namespace kelto::host
