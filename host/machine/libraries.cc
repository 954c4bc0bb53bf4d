#include "host/machine/libraries.h"

#include <cstdio>
// jpeglib.h takes FILE and size_t for granted.
#if !defined(_WIN32)
#include <gif_lib.h>
#include <jpeglib.h>
#include <lcms2.h>
#include <png.h>
#include <tiffio.h>
#include <webp/decode.h>
#endif
#include "host/film/coded_films.h"
#include "targets/target.h"

namespace kelto::host {
namespace {

/// Three numbers of one byte or more each, the highest first.
[[maybe_unused]] std::string Dotted(unsigned number, int bits) {
  const unsigned mask = (1u << bits) - 1;
  return std::to_string(number >> 2 * bits) + "." + std::to_string(number >> bits & mask) + "." +
         std::to_string(number & mask);
}

#if !defined(_WIN32)
/// "LIBTIFF, Version 4.5.0\n..." as its number.
std::string TiffVersion() {
  std::string text = TIFFGetVersion();
  text = text.substr(0, text.find('\n'));
  const size_t blank = text.rfind(' ');
  return blank == text.npos ? text : text.substr(blank + 1);
}

void AddStillCodecs(Libraries& libraries) {
#define KELTO_TEXT_OF(number) #number
#define KELTO_TEXT(number) KELTO_TEXT_OF(number)
#if defined(LIBJPEG_TURBO_VERSION)
  libraries.push_back({"libjpeg-turbo", KELTO_TEXT(LIBJPEG_TURBO_VERSION)});
#else
  libraries.push_back({"libjpeg", KELTO_TEXT(JPEG_LIB_VERSION)});
#endif
#undef KELTO_TEXT
#undef KELTO_TEXT_OF
  libraries.push_back({"libpng", png_get_libpng_ver(nullptr)});
  libraries.push_back({"libtiff", TiffVersion()});
  libraries.push_back({"libwebp", Dotted(static_cast<unsigned>(WebPGetDecoderVersion()), 8)});
  const int colour = cmsGetEncodedCMMversion();
  libraries.push_back(
      {"Little CMS", std::to_string(colour / 1000) + "." + std::to_string(colour % 1000 / 10)});
  libraries.push_back({"giflib", std::to_string(GIFLIB_MAJOR) + "." + std::to_string(GIFLIB_MINOR) +
                                     "." + std::to_string(GIFLIB_RELEASE)});
}
#endif

}  // namespace

Libraries PhotoAndFilmLibraries() {
  Libraries libraries = CodedFilmLibraries();
#if !defined(_WIN32)
  AddStillCodecs(libraries);
#endif
  return libraries;
}

std::string InstructionSet() { return std::string(TargetName(CurrentTarget())); }

}  // namespace kelto::host
