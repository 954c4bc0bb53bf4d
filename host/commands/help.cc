#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "host/base/error.h"
#include "host/commands/commands.h"
#include "host/commands/help_text.h"
#include "host/film/codecs.h"
#include "host/film/coded_films.h"
#include "host/film/formats.h"
#include "host/film/hardware.h"
#include "host/options/size.h"
#include "host/terminal/standard_output.h"

namespace kelto::host {
namespace {

/// A line of a list: a name, and what it is, in columns.
std::string Line(const std::string& name, const std::string& what) {
  constexpr size_t kColumn = 14;
  std::string line = "  " + name;
  line.append(line.size() < kColumn ? kColumn - line.size() : 0, ' ');
  return line + "  " + what + "\n";
}

std::string Moves() {
  return "Moves stay within the photo. --amount says how far they go: 1.2 is gentle, 2 strong.\n\n" +
         Line("in, out", "zoom towards the middle, or away from it") +
         Line("left, right, up, down, up-left ...", "the view goes that way") +
         Line("hold", "stands still") +
         Line("auto", "in, to the faces or the most eye-catching area") +
         Line("mixed", "of a slideshow: in, across, out and back in turns") +
         "\nInstead of a name: --view X,Y,WIDTH,HEIGHT, a part of the photo in its pixels, as often "
         "as there are places to go to; behind each --hold and --go say for how many seconds it is "
         "looked at, and how many the way to the next one takes.\n\n"
         "  kelto render photo.jpg -o film.mp4 --move left --amount 1.3\n"
         "  kelto render photo.jpg -o film.mp4 --view 0,0,1920,1080 --hold 1 --view 900,300,640,360\n";
}

std::string Easing() {
  return "How a move begins and ends, by --ease:\n\n" +
         Line("smooth", "starts softly and ends softly; the usual one") +
         Line("linear", "at one speed throughout, as for a loop or a long pan") +
         Line("in", "a soft start, at full speed to the end") +
         Line("out", "at full speed from the start, a soft end") +
         "\n--out and --in say the same of one end each, in the effect's own words: linear, ease, "
         "constant, and for --out hold. kelto inspect --plot motion.svg draws what comes of it.\n";
}

std::string Formats() {
  std::string text =
      "The kind of film is what the name behind -o ends in, or what --format says:\n\n";
  for (const FilmKind& kind : FilmKinds()) text += Line(kind.name, kind.description);
  if (!CodedFilmKinds().empty()) {
    text += "\nCodecs, by --codec:\n\n";
    for (const FilmCodec& codec : FilmCodecs()) {
      std::string kinds;
      for (const char* kind : codec.kinds) kinds += (kinds.empty() ? "" : ", ") + std::string(kind);
      text += Line(codec.name, std::string(codec.title) + "; in " + kinds);
    }
    text += "\nEncoders of H.264 and H.265, by --encoder:\n\n" +
            Line("software", "runs everywhere, and makes the same bytes every time");
    for (const char* word : HardwareWords()) {
      text += Line(word, std::string("needs ") + HardwareNeed(word));
    }
  }
  text += "\nSizes, by --size:\n\n";
  for (const NamedSize& named : NamedSizes()) text += Line(named.name, ToString(named.size));
  return text +
         "\n--quality low, medium, high or best, and --speed slow, medium, fast or fastest "
         "say how a codec works. --depth 8, 10 or 16 says how many bits a channel the film has; photos "
         "of more bits than eight keep them where the film can. kelto doctor tries what this machine can write.\n";
}

std::string Lists() {
  return "A list is a text file that stands for many pictures, for slideshow and batch. Each line "
         "has the path of a photo or project, relative to the list, and behind it options for that "
         "picture alone:\n\n"
         "  # holiday.txt\n"
         "  beach.jpg        --move left\n"
         "  IMG_2041.jpg     --view 1200,400,960,540 --each 8\n"
         "  \"our house.jpg\"  --each 3 --fade 0\n\n"
         "These are the options of the group Picture; in a slideshow --each and --fade, too, and in "
         "a batch --seconds. Lines that begin with # are comments.\n";
}

struct Topic {
  const char* name;
  std::string (*text)();
};

constexpr Topic kTopics[] = {
    {"moves", Moves}, {"easing", Easing}, {"formats", Formats}, {"lists", Lists}};

void Run(CLI::App& app, const std::string& name) {
  if (name.empty()) {
    PrintResult(Wrapped(app.get_formatter()->make_help(&app, "kelto", CLI::AppFormatMode::Normal),
                        HelpColumns()));
    return;
  }
  for (const Topic& topic : kTopics) {
    if (name == topic.name) PrintResult(Wrapped(topic.text(), HelpColumns()));
  }
  std::string known;
  for (const Topic& topic : kTopics) {
    if (name == topic.name) return;
    known += std::string(topic.name) + ", ";
  }
  const auto commands =
      app.get_subcommands([&](const CLI::App* command) { return command->check_name(name); });
  if (commands.empty()) {
    throw UsageError("help " + name + ": choose one of " + known + "or a command, such as render");
  }
  PrintResult(Wrapped(commands.front()->help("kelto"), HelpColumns()));
}

}  // namespace

CLI::App* AddHelp(CLI::App& app) {
  CLI::App* command =
      app.add_subcommand("help", "Explain a command, or one of moves, easing, formats, lists");
  const auto name = std::make_shared<std::string>();
  command->add_option("TOPIC", *name, "A command, or moves, easing, formats, lists")->type_name("");
  command->final_callback([name, &app] { Run(app, *name); });
  return command;
}

}  // namespace kelto::host
