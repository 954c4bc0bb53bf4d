// The options that settle a film's file and how it is made, shared by the commands that make films.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/jobs/film_job.h"
#include "host/sandbox/sandbox.h"

namespace CLI {
class App;
}

namespace kelto::host {

/// The options as they were typed; empty where nothing was.
struct FilmOptions {
  std::string format, codec, quality, speed, encoder, depth, fadeIn, fadeOut, fadeColour, audioFade,
      module, jobs;
  bool audioLoop = false;
  bool quiet = false, json = false, strict = false;
};

/// Declares the name of the one film that `command` makes, to be parsed into `output`, which must
/// outlive the parsing.
void DeclareOutput(CLI::App& command, std::string& output);

/// Declares the options on `command`, to be parsed into `options`, which must outlive the parsing.
/// `jobs` is the help text of --jobs.
void DeclareFilm(CLI::App& command, FilmOptions& options, const std::string& jobs);

/// Declares --depth.
void DeclareDepth(CLI::App& command, FilmOptions& options);

/// The bits a channel that --depth asks for; 0 for what photo and film allow. Throws UsageError.
int32_t DepthAskedBy(const FilmOptions& options);

/// Sets how the command reports from now on, and whether warnings are errors.
void ApplyReporting(const FilmOptions& options);

/// The fades at the ends of a film of the request's format, length and transparency. Throws
/// UsageError.
EndFadeLengths EndsAsked(const FilmOptions& options, const FilmRequest& request);

/// Lets `access` use the devices of the encoder that is asked for, if it needs any. Throws
/// UsageError.
void AddDevices(const FilmOptions& options, SandboxAccess& access);

/// Sets what the options say of the film's coding and sound. Throws UsageError.
void ApplyToRequest(const FilmOptions& options, FilmRequest& request);

/// The number of --jobs, or `usual` when it was not given. Throws UsageError.
int32_t JobsAsked(const FilmOptions& options, int32_t usual);

/// The options given that settle what a film shows and how it is coded, as words of a command line:
/// not those that name files or say how the work is done.
std::vector<std::string> WordsGiven(const CLI::App& command);

}  // namespace kelto::host
