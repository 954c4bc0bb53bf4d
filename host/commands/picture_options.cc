#include "host/commands/picture_options.h"

#include <CLI/CLI.hpp>

#include "host/base/error.h"
#include "host/commands/option_text.h"

namespace kelto::host {
namespace {

PictureOrder ParseOrder(const std::string& text) {
  if (text == "natural") return PictureOrder::kNatural;
  if (text == "given") return PictureOrder::kGiven;
  throw UsageError("choose one of natural, given");
}

}  // namespace

void DeclarePictures(CLI::App& command, std::vector<std::string>& inputs, std::string& order) {
  command
      .add_option("INPUT", inputs,
                  "Photographs and projects; folders of photographs, without the folders in them; "
                  "or text files with the path of one on each line, relative to that file, and "
                  "options for it behind; lines that begin with # are comments")
      ->required()
      ->type_name("");
  command
      .add_option("--order", order,
                  "Order of photographs: natural, by name with numbers as people count, 2 before "
                  "10, for folders and for names that a shell put in order; given, as the command "
                  "line has them [natural; of a list, the list's]")
      ->group("Files")
      ->type_name("WORD");
}

PictureOrder OrderAsked(const std::string& order) {
  return order.empty() ? PictureOrder::kNatural : ReadOption("--order", order, ParseOrder);
}

}  // namespace kelto::host
