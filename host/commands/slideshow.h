// `kelto slideshow`: many pictures become one film.
#pragma once

namespace CLI {
class App;
}

namespace kelto::host {

/// Adds the subcommand, which runs when the command line is parsed. It throws Error.
CLI::App* AddSlideshow(CLI::App& app);

}  // namespace kelto::host
