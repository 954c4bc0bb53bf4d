#include "host/commands/commands.h"

namespace kelto::host {
namespace {

constexpr Command kCommands[] = {
    {"render", AddRender, true,
     "  kelto render photo.jpg -o film.mp4\n"
     "  kelto render photo.jpg -o film.mp4 --move left --seconds 8 --size 4k\n"
     "  kelto render photo.jpg -o loop.gif --size 480x270 --loop\n"},
    {"new", AddNew, false, "  kelto new photo.jpg -o photo.json --move auto\n"},
    {"batch", AddBatch, true,
     "  kelto batch photos -o films\n"
     "  kelto batch *.jpg -o films --move in --resume\n"},
    {"slideshow", AddSlideshow, true,
     "  kelto slideshow *.jpg -o show.mp4 --each 4\n"
     "  kelto slideshow photos -o show.mp4 --audio music.mp3 --audio-fade 2 --move mixed\n"},
    {"inspect", AddInspect, false,
     "  kelto inspect photo.json\n"
     "  kelto inspect photo.json --plot motion.svg\n"},
    {"doctor", AddDoctor, false, "  kelto doctor\n"},
    {"completion", AddCompletion, false, "  kelto completion bash > kelto.bash\n"},
    {"storyboard", AddStoryboard, false, "  kelto storyboard photo.json -o sheet.png\n"},
    {"play", AddPlay, false, "  kelto play photo.json\n"},
    {"edit", AddEdit, false, "  kelto edit photo.json\n"},
    {"help", AddHelp, false, "  kelto help slideshow\n  kelto help moves\n"},
};

}  // namespace

std::span<const Command> Commands() { return kCommands; }

}  // namespace kelto::host
