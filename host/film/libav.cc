#include "host/film/libav.h"

#include <cstdlib>

namespace kelto::host {

int EncodeInto(AVFormatContext& container, AVCodecContext& codec, const AVFrame* frame,
               AVPacket& packet) {
  int code = avcodec_send_frame(&codec, frame);
  AVStream* stream = container.streams[0];
  while (code >= 0) {
    code = avcodec_receive_packet(&codec, &packet);
    if (code == AVERROR(EAGAIN) || code == AVERROR_EOF) return 0;
    if (code < 0) return code;
    packet.duration = 1;
    packet.stream_index = stream->index;
    av_packet_rescale_ts(&packet, codec.time_base, stream->time_base);
    code = av_interleaved_write_frame(&container, &packet);
  }
  return code;
}

std::string LibavText(int code) {
  char text[AV_ERROR_MAX_STRING_SIZE];
  av_strerror(code, text, sizeof text);
  return text;
}

void SilenceLibav() {
  av_log_set_level(AV_LOG_QUIET);
  // SVT-AV1 prints past FFmpeg; only its environment can limit it to errors.
  setenv("SVT_LOG", "1", 0);
}

}  // namespace kelto::host
