// Systems where a process cannot begin as a copy of another: all work is done in this one.
#include <exception>
#include <string>

#include "host/base/error.h"
#include "host/processes/task_processes.h"
#include "host/terminal/interrupt.h"
#include "host/terminal/terminal.h"

namespace kelto::host {

void RunTasks(const TaskList& tasks, int32_t) {
  for (size_t i = 0; i < tasks.count; ++i) {
    std::string failure;
    SetMessageSink([&](const std::string& text) {
      SetMessageSink({});
      tasks.printed(i, text);
    });
    try {
      const auto report = [&](double share) {
        if (tasks.reported) tasks.reported(i, share);
      };
      tasks.work(i, {[](uint64_t) {}, report});  // alone
      if (tasks.result) tasks.taken(i, tasks.result(i));
    } catch (const std::exception& error) {
      failure = error.what();
    }
    SetMessageSink({});
    CheckInterrupt();
    tasks.ended(i, failure);
  }
}

}  // namespace kelto::host
