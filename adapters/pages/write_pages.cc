// kelto_write_pages FOLDER: writes the pages below FOLDER where an installation has them below
// share.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "adapters/pages/kdenlive.h"
#include "adapters/pages/shotcut.h"

namespace {

void Write(const std::filesystem::path& path, const std::string& text) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  file << text;
  if (!file.flush()) throw std::runtime_error(path.string() + ": cannot be written");
}

}  // namespace

int main(int count, char** words) try {
  using namespace kelto::pages;
  if (count != 2) {
    std::fputs("usage: kelto_write_pages FOLDER\n", stderr);
    return 2;
  }
  const std::filesystem::path folder = words[1];
  const char* page = "frei0r_kelto_pan_zoom.xml";
  Write(folder / "kdenlive/effects" / page, KdenlivePage(Language::kEnglish));
  Write(folder / "kelto/kdenlive-de" / page, KdenlivePage(Language::kGerman));
  const std::filesystem::path shotcut = folder / "shotcut/qml/filters/kelto_pan_zoom";
  Write(shotcut / "meta.qml", ShotcutMeta());
  Write(shotcut / "ui.qml", ShotcutPage());
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "kelto_write_pages: %s\n", error.what());
  return 1;
}
