#include "runtime/stills/tiff_file.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <new>

#include "runtime/stills/limits.h"
#include "runtime/stills/still_error.h"

namespace kelto::stills {
namespace {

StillFile& FileOf(thandle_t handle) { return *static_cast<StillFile*>(handle); }

tmsize_t OnRead(thandle_t handle, void* to, tmsize_t count) {
  return static_cast<tmsize_t>(FileOf(handle).Read(to, static_cast<size_t>(count)));
}

tmsize_t OnWrite(thandle_t, void*, tmsize_t) { return 0; }

toff_t OnSeek(thandle_t handle, toff_t offset, int whence) {
  StillFile& file = FileOf(handle);
  const uint64_t base = whence == SEEK_CUR ? file.Position() : whence == SEEK_END ? file.size() : 0;
  return file.Seek(base + offset) ? base + offset : static_cast<toff_t>(-1);
}

// The file is its importer's.
int OnClose(thandle_t) { return 0; }

toff_t OnSize(thandle_t handle) { return FileOf(handle).size(); }

struct OptionsFreer {
  void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};

[[gnu::format(printf, 1, 0)]] std::string Formatted(const char* format, va_list arguments) {
  char text[200];
  std::vsnprintf(text, sizeof text, format, arguments);
  return text;
}

}  // namespace

TiffFile::TiffFile(StillFile& file) : file_(file) {
  file.Rewind();
  const std::unique_ptr<TIFFOpenOptions, OptionsFreer> options(TIFFOpenOptionsAlloc());
  if (!options) throw std::bad_alloc();
  TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), static_cast<tmsize_t>(kMaxScratchBytes - 1));
  TIFFOpenOptionsSetErrorHandlerExtR(options.get(), OnError, this);
  TIFFOpenOptionsSetWarningHandlerExtR(options.get(), OnWarning, this);
  // 'm': not mapped into memory, for StillFile's reason.
  tiff_.reset(TIFFClientOpenExt("", "rm", &file, OnRead, OnWrite, OnSeek, OnClose, OnSize, nullptr,
                                nullptr, options.get()));
  if (!tiff_) Fail();
  message_.clear();
}

void TiffFile::Fail() {
  if (message_.find("o space") != std::string::npos ||
      message_.find("ut of memory") != std::string::npos) {
    throw std::bad_alloc();
  }
  throw StillError(codecBadDataErr, std::string(file_.hit_end() ? "truncated" : "damaged") +
                                        " TIFF (" +
                                        (message_.empty() ? "unreadable data" : message_) + ")");
}

int TiffFile::OnError(TIFF*, void* user, const char*, const char* format, va_list arguments) {
  TiffFile& self = *static_cast<TiffFile*>(user);
  if (self.message_.empty()) self.message_ = Formatted(format, arguments);
  return 1;
}

int TiffFile::OnWarning(TIFF* tiff, void* user, const char* module, const char* format,
                        va_list arguments) {
  // Unknown tags and the like are of no concern, but damage to a JPEG strip is reported as a
  // warning.
  if (module == nullptr || std::strstr(module, "JPEGLib") == nullptr) return 1;
  return OnError(tiff, user, module, format, arguments);
}

namespace {

int ColorChannels(uint16_t photometric) {
  switch (photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
    case PHOTOMETRIC_PALETTE:
      return 1;
    case PHOTOMETRIC_SEPARATED:
      return 4;
    default:
      return 3;
  }
}

bool IsLogarithmic(uint16_t photometric) {
  return photometric == PHOTOMETRIC_LOGL || photometric == PHOTOMETRIC_LOGLUV;
}

}  // namespace

TiffForm::TiffForm(TiffFile& tiff) {
  width = tiff.Field<uint32_t>(TIFFTAG_IMAGEWIDTH, 0);
  height = tiff.Field<uint32_t>(TIFFTAG_IMAGELENGTH, 0);
  bits = tiff.Field<uint16_t>(TIFFTAG_BITSPERSAMPLE, 1);
  samples = tiff.Field<uint16_t>(TIFFTAG_SAMPLESPERPIXEL, 1);
  planar = tiff.Field<uint16_t>(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  const uint16_t compression = tiff.Field<uint16_t>(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  const uint16_t sample_format = tiff.Field<uint16_t>(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
  if (!TIFFGetField(tiff.get(), TIFFTAG_PHOTOMETRIC, &photometric)) {
    photometric = samples >= 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK;
  }
  if (photometric == PHOTOMETRIC_YCBCR && compression == COMPRESSION_JPEG && !separate()) {
    TIFFSetField(tiff.get(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    photometric = PHOTOMETRIC_RGB;
  }

  colors = ColorChannels(photometric);
  const bool palette = photometric == PHOTOMETRIC_PALETTE;
  floats = sample_format == SAMPLEFORMAT_IEEEFP && bits == 32 && colors <= 3 && !palette &&
           !IsLogarithmic(photometric);
  const bool depth_known =
      bits == 8 || bits == 16 || (samples == 1 && bits <= 4 && bits != 3) || floats;
  if (sample_format == SAMPLEFORMAT_IEEEFP && !floats && !IsLogarithmic(photometric)) {
    throw StillError(noCodecErr,
                     "unsupported TIFF (floating-point samples that are not grey or "
                     "RGB of 32 bits)");
  }
  if (!floats && sample_format != SAMPLEFORMAT_UINT && sample_format != SAMPLEFORMAT_VOID &&
      !IsLogarithmic(photometric)) {
    throw StillError(noCodecErr, "unsupported TIFF (samples are not unsigned integers)");
  }
  if (samples < colors) {
    throw StillError(codecBadDataErr, "damaged TIFF (too few samples a pixel)");
  }
  if (photometric > PHOTOMETRIC_SEPARATED || photometric == PHOTOMETRIC_MASK) {
    foreign = "its colour model";
  } else if (!depth_known || (palette && bits > 8)) {
    foreign = std::to_string(bits) + " bits a sample";
  } else if (compression == COMPRESSION_JBIG || compression == COMPRESSION_OJPEG) {
    foreign = "its compression";
  } else if (colors == 4 && tiff.Field<uint16_t>(TIFFTAG_INKSET, INKSET_CMYK) != INKSET_CMYK) {
    foreign = "its inks";
  }

  for (; used_count < colors; ++used_count) used[used_count] = static_cast<uint16_t>(used_count);
  uint16_t extra_count = 0, *extra = nullptr;
  TIFFGetFieldDefaulted(tiff.get(), TIFFTAG_EXTRASAMPLES, &extra_count, &extra);
  for (int i = 0; i < extra_count && colors + i < samples && !palette; ++i) {
    if (extra[i] == EXTRASAMPLE_UNSPECIFIED) continue;
    // Ink multiplied by its own coverage is unheard of.
    alpha = extra[i] == EXTRASAMPLE_ASSOCALPHA && colors != 4 ? Alpha::kPremultiplied
                                                              : Alpha::kStraight;
    used[used_count++] = static_cast<uint16_t>(colors + i);
    break;
  }
}

}  // namespace kelto::stills
