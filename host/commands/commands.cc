#include "host/commands/commands.h"

namespace kelto::host {
namespace {

constexpr Command kCommands[] = {
    {"render", AddRender, true},
    {"new", AddNew, false},
    {"batch", AddBatch, true},
    {"slideshow", AddSlideshow, true},
    {"inspect", AddInspect, false},
    {"doctor", AddDoctor, false},
    {"completion", AddCompletion, false},
    {"storyboard", AddStoryboard, false},
    {"play", AddPlay, false},
    {"edit", AddEdit, false},
};

}  // namespace

std::span<const Command> Commands() { return kCommands; }

}  // namespace kelto::host
