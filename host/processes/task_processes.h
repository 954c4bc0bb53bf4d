// Many pieces of work, each in a process of its own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace kelto::host {

struct TaskList {
  size_t count = 0;
  /// Does task `index`; runs in a process of its own where the system has such, so that nothing it
  /// does to its memory stays. What it throws is how it failed.
  std::function<void(size_t index)> work;
  /// Told here when a task is over, with what was wrong, empty when nothing was.
  std::function<void(size_t index, const std::string& failure)> ended;
  /// Told here what a task printed with PrintMessage.
  std::function<void(size_t index, const std::string& text)> printed;
};

/// Does all tasks, up to `jobs` at a time, begun in their order. A noted interrupt (see
/// InterruptSignal) ends those under way, which clear up, and throws Error. To be called before
/// this process has any thread.
void RunTasks(const TaskList& tasks, int32_t jobs);

}  // namespace kelto::host
