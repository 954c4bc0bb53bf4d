// A file of any bytes as the sound of a film: copied, and coded anew.
#include <memory>

#include "fuzz/host_error.h"
#include "fuzz/memory_file.h"
#include "host/film/sound_encoder.h"
#include "host/film/sound_source.h"

namespace kelto::fuzz {
namespace {

constexpr int kFrames = 50;
constexpr AVRational kFrameTime{1, 25};
/// Packets that are read of one input, which may be thousands of a byte each.
constexpr int kMostPackets = 2000;

void ReadAll(host::SoundPackets& packets) {
  const auto packet = host::Own(av_packet_alloc());
  for (int i = 0; i < kMostPackets && packets.Read(*packet); ++i) {
    Require(packet->size >= 0, "a packet has a size");
  }
}

}  // namespace
}  // namespace kelto::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace kelto;
  const fuzz::MemoryFile file(data, size);
  fuzz::RunOrRefuse(file.path(), [&] {
    host::SoundSource source(file.path());
    fuzz::ReadAll(source);
  });
  fuzz::RunOrRefuse(file.path(), [&] {
    host::SoundEncoder encoder(std::make_unique<host::SoundSource>(file.path()), "aac", false,
                               host::SoundLength{fuzz::kFrames, fuzz::kFrameTime});
    fuzz::ReadAll(encoder);
  });
  return 0;
}
