#include "tests/runtime/stills/encode_jpeg.h"

#include <cstdio>
#include <cstdlib>
// libjpeg's header needs stdio's before it.
#include <jpeglib.h>

namespace kelto::stills {
namespace {

/// A script of `count` scans: the DC of all components, then single coefficients of one component
/// after another, each bit plane by bit plane.
std::vector<jpeg_scan_info> ManyScans(int count) {
  std::vector<jpeg_scan_info> script;
  script.push_back({3, {0, 1, 2, 0}, 0, 0, 0, 0});
  for (int component = 0; component < 3; ++component) {
    for (int k = 1; k < 64; ++k) {
      for (int bit = 8; bit >= 0; --bit) {
        if (static_cast<int>(script.size()) == count) return script;
        script.push_back({1, {component, 0, 0, 0}, k, k, bit == 8 ? 0 : bit + 1, bit});
      }
    }
  }
  return script;
}

}  // namespace

Bytes EncodeJpeg(const JpegSpec& spec) {
  const bool ink = spec.kind == JpegKind::kCmyk || spec.kind == JpegKind::kYcck;
  jpeg_compress_struct cinfo = {};
  jpeg_error_mgr errors = {};
  cinfo.err = jpeg_std_error(&errors);
  jpeg_create_compress(&cinfo);
  unsigned char* out = nullptr;
  unsigned long size = 0;  // libjpeg's type
  jpeg_mem_dest(&cinfo, &out, &size);
  cinfo.image_width = static_cast<JDIMENSION>(spec.width);
  cinfo.image_height = static_cast<JDIMENSION>(spec.height);
  cinfo.input_components = ink ? 4 : spec.kind == JpegKind::kGrey ? 1 : 3;
  cinfo.in_color_space = ink ? JCS_CMYK : spec.kind == JpegKind::kGrey ? JCS_GRAYSCALE : JCS_RGB;
  jpeg_set_defaults(&cinfo);
  if (ink) {
    jpeg_set_colorspace(&cinfo, spec.kind == JpegKind::kYcck ? JCS_YCCK : JCS_CMYK);
    cinfo.write_Adobe_marker = spec.adobe_marker;
  }
  jpeg_set_quality(&cinfo, spec.quality, TRUE);
  if (spec.full_chroma) cinfo.comp_info[0].h_samp_factor = cinfo.comp_info[0].v_samp_factor = 1;
  if (spec.full_chroma && spec.kind == JpegKind::kYcck) {
    cinfo.comp_info[3].h_samp_factor = cinfo.comp_info[3].v_samp_factor = 1;
  }
  std::vector<jpeg_scan_info> script;
  if (spec.scans > 0) {
    script = ManyScans(spec.scans);
    cinfo.scan_info = script.data();
    cinfo.num_scans = static_cast<int>(script.size());
  } else if (spec.progressive) {
    jpeg_simple_progression(&cinfo);
  }
  jpeg_start_compress(&cinfo, TRUE);
  if (!spec.exif.empty()) {
    jpeg_write_marker(&cinfo, JPEG_APP0 + 1, spec.exif.data(),
                      static_cast<unsigned>(spec.exif.size()));
  }
  if (!spec.icc.empty()) {
    jpeg_write_icc_profile(&cinfo, spec.icc.data(), static_cast<unsigned>(spec.icc.size()));
  }
  const size_t row_bytes = size_t{1} * spec.width * cinfo.input_components;
  while (cinfo.next_scanline < cinfo.image_height) {
    JSAMPROW row = const_cast<JSAMPROW>(&spec.samples[cinfo.next_scanline * row_bytes]);
    jpeg_write_scanlines(&cinfo, &row, 1);
  }
  jpeg_finish_compress(&cinfo);
  jpeg_destroy_compress(&cinfo);
  Bytes bytes(out, out + size);
  std::free(out);
  return bytes;
}

JpegSpec JpegOf(const Picture& picture) {
  JpegSpec spec;
  spec.width = picture.width;
  spec.height = picture.height;
  for (const Pixel& p : picture.pixels) Append(spec.samples, {p.r, p.g, p.b});
  return spec;
}

Picture PlainDecode(const Bytes& jpeg) {
  jpeg_decompress_struct cinfo = {};
  jpeg_error_mgr errors = {};
  cinfo.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&cinfo);
  jpeg_mem_src(&cinfo, jpeg.data(), jpeg.size());
  jpeg_read_header(&cinfo, TRUE);
  cinfo.out_color_space = JCS_RGB;
  jpeg_start_decompress(&cinfo);
  Picture picture = {
      static_cast<int>(cinfo.output_width), static_cast<int>(cinfo.output_height), {}};
  Bytes row(cinfo.output_width * size_t{3});
  while (cinfo.output_scanline < cinfo.output_height) {
    JSAMPROW rows[] = {row.data()};
    jpeg_read_scanlines(&cinfo, rows, 1);
    for (size_t x = 0; x < row.size(); x += 3) {
      picture.pixels.push_back(Rgb(row[x], row[x + 1], row[x + 2]));
    }
  }
  jpeg_finish_decompress(&cinfo);
  jpeg_destroy_decompress(&cinfo);
  return picture;
}

Bytes WithSegment(const Bytes& jpeg, uint8_t marker, const Bytes& content) {
  Bytes bytes(jpeg.begin(), jpeg.begin() + 2);
  const size_t length = content.size() + 2;
  Append(bytes,
         {0xff, marker, static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length & 255)});
  Append(bytes, content);
  Append(bytes, Bytes(jpeg.begin() + 2, jpeg.end()));
  return bytes;
}

}  // namespace kelto::stills
