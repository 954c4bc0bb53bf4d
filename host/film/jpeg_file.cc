#include "host/film/jpeg_file.h"

// jpeglib.h takes FILE and size_t for granted.
#include <cstdio>

#include <jpeglib.h>

#include <cstdlib>
#include <stdexcept>

namespace kelto::host {
namespace {

constexpr int kQuality = 95;

[[noreturn]] void Throw(j_common_ptr jpeg) {
  char text[JMSG_LENGTH_MAX];
  jpeg->err->format_message(jpeg, text);
  throw std::runtime_error(text);
}

/// A compressor with the memory that it writes to.
struct Compressor {
  Compressor() {
    jpeg.err = jpeg_std_error(&errors);
    // The library is built to be left by exceptions.
    errors.error_exit = &Throw;
    jpeg_create_compress(&jpeg);
    jpeg_mem_dest(&jpeg, &bytes, &size);
  }
  ~Compressor() {
    jpeg_destroy_compress(&jpeg);
    std::free(bytes);
  }
  Compressor(const Compressor&) = delete;
  Compressor& operator=(const Compressor&) = delete;

  jpeg_compress_struct jpeg{};
  jpeg_error_mgr errors{};
  unsigned char* bytes = nullptr;
  unsigned long size = 0;  // the library's own type
};

}  // namespace

std::vector<uint8_t> EncodeJpeg(const FrameView& frame, SampleAspect aspect) {
  Compressor compressor;
  jpeg_compress_struct& jpeg = compressor.jpeg;
  jpeg.image_width = static_cast<JDIMENSION>(frame.size.width);
  jpeg.image_height = static_cast<JDIMENSION>(frame.size.height);
  jpeg.input_components = 4;
  jpeg.in_color_space = JCS_EXT_BGRX;
  jpeg_set_defaults(&jpeg);
  jpeg_set_quality(&jpeg, kQuality, TRUE);
  jpeg.comp_info[0].h_samp_factor = jpeg.comp_info[0].v_samp_factor = 1;
  jpeg.optimize_coding = TRUE;
  jpeg.dct_method = JDCT_ISLOW;
  // Densities without a unit: the wider a pixel, the fewer go into a length.
  jpeg.density_unit = 0;
  jpeg.X_density = static_cast<UINT16>(aspect.height);
  jpeg.Y_density = static_cast<UINT16>(aspect.width);
  jpeg_start_compress(&jpeg, TRUE);
  while (jpeg.next_scanline < jpeg.image_height) {
    JSAMPROW row = const_cast<JSAMPROW>(frame.Row(static_cast<int32_t>(jpeg.next_scanline)));
    jpeg_write_scanlines(&jpeg, &row, 1);
  }
  jpeg_finish_compress(&jpeg);
  return {compressor.bytes, compressor.bytes + compressor.size};
}

}  // namespace kelto::host
