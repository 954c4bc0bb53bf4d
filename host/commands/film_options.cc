#include "host/commands/film_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>

#include "host/base/error.h"
#include "host/commands/module_option.h"
#include "host/commands/option_text.h"
#include "host/commands/tour_options.h"
#include "host/effect/module_file.h"
#include "host/files/path_text.h"
#include "host/film/codecs.h"
#include "host/film/coded_films.h"
#include "host/film/depth.h"
#include "host/film/hardware.h"
#include "host/options/colour.h"
#include "host/options/number.h"
#include "host/options/rate.h"
#include "host/terminal/terminal.h"

namespace kelto::host {
namespace {

constexpr const char* kFiles = "Files";
constexpr int64_t kMaxJobs = 256;

/// Options that leave a film as it is.
constexpr std::array kSettleNoPicture = {
    "output",  "format",       "module", "jobs",      "quiet",   "json",  "record",
    "resume",  "save-project", "strict", "plan",      "plan-as", "help",  "help-all",
    "sandbox", "order",        "force",  "fade-kind", "title",   "beats", "preview"};

bool NamesFile(const std::string& option) {
  return option == "audio" || option == "over" || option == "face-model";
}

std::string FormatHelp() {
  std::string help = "Kind of film, when the output's name does not end in it:";
  for (const FilmKind& kind : FilmKinds()) {
    help += std::string("\n") + kind.name + ": " + kind.description;
  }
  if (CodedFilmKinds().empty()) {
    help += "\nH.264 films (mp4, mkv, mov) are written by the Linux command only";
  }
  return help;
}

std::string CodecHelp() {
  std::string help = "How the pictures are coded:";
  for (const FilmCodec& codec : FilmCodecs()) {
    help += std::string("\n") + codec.name + ": " + codec.title;
  }
  return help + "\n[vp9 in webm, else h264]";
}

int32_t ParseJobs(const std::string& text) {
  const auto jobs = ParseWhole(text);
  if (!jobs || *jobs < 1 || *jobs > kMaxJobs) {
    throw UsageError("the number of processes is an integer from 1 to " + std::to_string(kMaxJobs));
  }
#if defined(_WIN32)
  if (*jobs > 1) throw UsageError("on this system one process does all the work");
#endif
  return static_cast<int32_t>(*jobs);
}

}  // namespace

void DeclareOutput(CLI::App& command, std::string& output) {
  command
      .add_option(
          "-o,--output", output,
          "The film; an existing file or symbolic link of that name is replaced; - writes to "
          "the standard output")
      ->group(kFiles)
      ->type_name("FILE")
      ->check(FileText)
      ->required();
}

void DeclareFilm(CLI::App& command, FilmOptions& options, const std::string& jobs) {
  const auto declare = [&](const char* group, const char* option, const char* type,
                           std::string& text, const std::string& help) {
    command.add_option(option, text, help)->group(group)->type_name(type);
  };
  declare(kFiles, "--format", "KIND", options.format, FormatHelp());
  const bool coded = !CodedFilmKinds().empty();
  if (coded) {
    declare(kFiles, "--codec", "NAME", options.codec, CodecHelp());
    declare(
        kFiles, "--quality", "WORD", options.quality,
        "How good the film looks: low, medium, high, best; or the codec's own number, where less is "
        "better [high]");
    declare(
        kFiles, "--speed", "WORD", options.speed,
        "How quickly the film is coded: slow, medium, fast, fastest; the quicker, the larger the "
        "file [medium]");
    declare(
        kFiles, "--encoder", "WORD", options.encoder,
        "What codes H.264 and H.265: software; or hardware, nvenc (NVIDIA) or qsv (Intel), which is "
        "quicker and needs more bytes; without such hardware no film is made [software]");
  }
  DeclareModule(command, kFiles, options.module);
  constexpr const char* kFilm = "Film";
  declare(kFilm, "--fade-in", "TIME", options.fadeIn,
          "Seconds in which the film comes out of a colour at its beginning [0]");
  declare(kFilm, "--fade-out", "TIME", options.fadeOut,
          "Seconds in which it goes into the colour at its end [0]");
  declare(kFilm, "--fade-colour", "COLOUR", options.fadeColour,
          "That colour, '#rrggbb' [#000000, or nothing in a film over nothing]");
  if (coded) {
    declare(kFilm, "--audio-fade", "TIME", options.audioFade,
            "Seconds in which the sound fades out at the film's end [0]");
    command
        .add_flag("--audio-loop", options.audioLoop,
                  "Begin the sound again where it ends before the film")
        ->group(kFilm);
  }
  constexpr const char* kWork = "Work";
  declare(kWork, "--jobs", "N", options.jobs, jobs);
  command.add_flag("--quiet", options.quiet, "Print failures only")->group(kWork);
  command
      .add_flag("--json", options.json,
                "Report in JSON, an object a line, on the standard error: events \"start\", "
                "\"progress\", \"message\", \"film\", \"error\", \"done\"")
      ->group(kWork)
      ->excludes("--quiet");
  command
      .add_flag("--strict", options.strict,
                "Make no film that would be other than meant: fail where there would be a warning, "
                "such as of a damaged colour profile, or of sound or a video behind the photo that "
                "ends before the film")
      ->group(kWork);
}

void DeclareDepth(CLI::App& command, FilmOptions& options) {
  command
      .add_option("--depth", options.depth,
                  "Bits a channel: 8, 10, 16, or auto, as many as the photo and the film have; a "
                  "photo of more bits in a film of fewer is dithered [auto]")
      ->group(kFiles)
      ->type_name("BITS");
}

int32_t DepthAskedBy(const FilmOptions& options) {
  if (options.depth.empty()) return 0;
  return ReadOption("--depth", options.depth, ParseDepth);
}

void ApplyReporting(const FilmOptions& options) {
  if (options.quiet) SetReporting(Reporting::kQuiet);
  if (options.json) SetReporting(Reporting::kJson);
  SetStrict(options.strict);
}

EndFadeLengths EndsAsked(const FilmOptions& options, const FilmRequest& request) {
  EndFadeLengths ends;
  const auto length = [&](const char* option, const std::string& text) {
    if (text.empty() || ParseNumber(text) == 0.0) return 0;
    return ReadOption(option, text, [&](const std::string& seconds) {
      return FramesOf(ParseSeconds(seconds), request.format.rate);
    });
  };
  if (request.transparent) ends.colour = kNothing;
  ends.in = length("--fade-in", options.fadeIn);
  ends.out = length("--fade-out", options.fadeOut);
  if (!options.fadeColour.empty()) {
    ends.colour = ReadOption("--fade-colour", options.fadeColour, ParseColour);
  }
  if (int64_t{ends.in} + ends.out > request.frames) {
    throw UsageError("--fade-in and --fade-out take " +
                     std::to_string(int64_t{ends.in} + ends.out) +
                     " frames together, and the film has " + std::to_string(request.frames));
  }
  return ends;
}

namespace {

std::string EncoderAsked(const FilmOptions& options) {
  return options.encoder.empty() ? "" : ReadOption("--encoder", options.encoder, ParseEncoder);
}

}  // namespace

void AddDevices(const FilmOptions& options, SandboxAccess& access) {
  const std::string hardware = EncoderAsked(options);
  if (hardware.empty()) return;
  const std::vector<std::string> devices = DevicesOf(hardware);
  access.devices.insert(access.devices.end(), devices.begin(), devices.end());
  // Where the drivers find out what the devices are.
  access.reads.insert(access.reads.end(), {"/sys", "/proc/driver/nvidia"});
}

void ApplyToRequest(const FilmOptions& options, FilmRequest& request) {
  request.hardware = EncoderAsked(options);
  request.codec = options.codec;
  request.quality = options.quality;
  request.speed = options.speed;
  request.repeatSound = options.audioLoop;
  if (options.audioFade.empty() || ParseNumber(options.audioFade) == 0.0) return;
  request.soundFade = ReadOption("--audio-fade", options.audioFade, ParseSeconds);
}

int32_t JobsAsked(const FilmOptions& options, int32_t usual) {
  if (options.jobs.empty()) return usual;
  return ReadOption("--jobs", options.jobs, ParseJobs);
}

std::vector<std::string> WordsGiven(const CLI::App& command) {
  std::vector<std::string> words;
  for (const CLI::Option* option : command.get_options()) {
    if (option->count() == 0 || option->get_lnames().empty()) continue;
    const std::string& name = option->get_lnames().front();
    if (std::find(kSettleNoPicture.begin(), kSettleNoPicture.end(), name) !=
        kSettleNoPicture.end()) {
      continue;
    }
    if (name == "hold" || name == "go") continue;
    if (name == "view") {
      // With their times, in the order that says which is whose.
      for (const auto& [tourOption, value] : TourWordsOf(command)) {
        words.insert(words.end(), {"--" + tourOption, value});
      }
      continue;
    }
    if (option->get_expected_max() == 0) {
      words.push_back("--" + name);
      continue;
    }
    for (const std::string& value : option->results()) {
      words.push_back("--" + name);
      // The words may be read in another folder.
      words.push_back(NamesFile(name) ? AbsoluteText(value) : value);
    }
  }
  return words;
}

}  // namespace kelto::host
