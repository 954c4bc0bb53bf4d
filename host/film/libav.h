// The FFmpeg libraries' records with owners, and their errors as text.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <type_traits>

namespace kelto::host {

struct FreeLibav {
  void operator()(AVFormatContext* context) const { avformat_free_context(context); }
  void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
  void operator()(AVCodecParameters* record) const { avcodec_parameters_free(&record); }
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
template <typename Record>
using Owned = std::unique_ptr<Record, FreeLibav>;

/// Takes a record that a library made; throws std::bad_alloc when it made none.
template <typename Record>
Owned<Record> Own(Record* record) {
  if (record == nullptr) throw std::bad_alloc();
  return Owned<Record>(record);
}

/// What stands in a field of an enumeration. Files settle some, and decoders let numbers pass that
/// are none of its values, which C++ must not read as such.
template <typename Enumeration>
int NumberIn(const Enumeration& field) {
  static_assert(std::is_enum_v<Enumeration> && sizeof field == sizeof(int));
  int number = 0;
  std::memcpy(&number, &field, sizeof number);
  return number;
}

/// Codes a frame (null: there are no more) and writes what the codec gives back as the container's
/// first stream, one unit of the codec's time a packet; `packet` is room for them. Returns a
/// library's code, negative for an error.
int EncodeInto(AVFormatContext& container, AVCodecContext& codec, const AVFrame* frame,
               AVPacket& packet);

/// A library's error code in words.
std::string LibavText(int code);

/// Keeps the libraries from printing: failures are reported once, by exceptions.
void SilenceLibav();

}  // namespace kelto::host
