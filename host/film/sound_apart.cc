#include "host/film/sound_apart.h"

#include <string>
#include <utility>

#include "host/base/error.h"
#include "host/film/packet_bytes.h"
#include "host/processes/reader_worker.h"

namespace kelto::host {
namespace {

/// What the process does: the stream's form first, then packet by packet, and in the end a result
/// of no bytes. It is as far ahead as the line takes.
void SendSound(const SoundRequest& request, const AVFormatContext& container, Channel& line) {
  const auto packets = OpenSound(request, container);
  const auto sound = Own(avcodec_parameters_alloc());
  packets->Describe(*sound);
  bool heard = line.Send({MessageKind::kDone, BytesOf(*sound, packets->TimeBase())});
  const auto packet = Own(av_packet_alloc());
  while (heard && packets->Read(*packet)) heard = line.Send({MessageKind::kDone, BytesOf(*packet)});
  line.Send({});
}

class SoundApart : public SoundPackets {
 public:
  SoundApart(const SoundRequest& request, const AVFormatContext& container)
      : file_(request.file),
        reader_(file_, {}, [&](Channel& line) { SendSound(request, container, line); }) {
    const std::string bytes = reader_.Next();
    Named([&] { form_ = FormFrom(bytes); });
  }

  bool Read(AVPacket& packet) override {
    const std::string bytes = ended_ ? "" : reader_.Next();
    ended_ = bytes.empty();
    if (!ended_) Named([&] { PacketFrom(bytes, packet); });
    return !ended_;
  }
  AVRational TimeBase() const override { return form_.timeBase; }
  void Describe(AVCodecParameters& sound) const override {
    if (avcodec_parameters_copy(&sound, form_.sound.get()) < 0) throw std::bad_alloc();
  }

 private:
  template <typename Step>
  void Named(Step step) const {
    try {
      step();
    } catch (const Error& error) {
      throw Error(file_ + ": " + error.what());
    }
  }

  std::string file_;
  ReaderWorker reader_;
  SoundForm form_;
  bool ended_ = false;
};

}  // namespace

std::unique_ptr<SoundPackets> OpenSoundApart(const SoundRequest& request,
                                             const AVFormatContext& container) {
  return std::make_unique<SoundApart>(request, container);
}

}  // namespace kelto::host
