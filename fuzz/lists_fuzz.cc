// A list of pictures of any bytes, and names for their films.
#include <set>

#include "fuzz/host_error.h"
#include "fuzz/memory_file.h"
#include "host/jobs/picture_list.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using kelto::fuzz::Require;
  const kelto::fuzz::MemoryFile file(data, size);
  kelto::fuzz::RunOrRefuse(file.path(), [&] {
    const auto pictures = kelto::host::PathsOf(kelto::host::PicturesOf({file.path()}));
    Require(!pictures.empty(), "a list that is read names a picture");
    const auto names = kelto::host::FilmNames(pictures, "mp4");
    Require(names.size() == pictures.size(), "each picture has a film");
    Require(std::set<std::string>(names.begin(), names.end()).size() == names.size(),
            "no two films have one name");
    for (const std::string& name : names) {
      Require(name.find('/') == std::string::npos, "films stay in their folder");
    }
  });
  return 0;
}
