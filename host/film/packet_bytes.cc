#include "host/film/packet_bytes.h"

#include <cstring>
#include <type_traits>
#include <utility>

#include "host/base/error.h"
#include "host/film/media_limits.h"

namespace kelto::host {
namespace {

[[noreturn]] void Fail() { throw Error("what came of its sound is damaged"); }

class Writer {
 public:
  template <typename Value>
  void Put(const Value& value) {
    static_assert(std::is_trivially_copyable_v<Value>);
    bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
  }
  void PutBlock(const void* block, size_t size) {
    Put(static_cast<uint64_t>(size));
    bytes_.append(static_cast<const char*>(block), size);
  }
  std::string Take() { return std::move(bytes_); }

 private:
  std::string bytes_;
};

/// Throws Error where there is less than is asked for.
class Reader {
 public:
  explicit Reader(const std::string& bytes) : bytes_(bytes) {}

  template <typename Value>
  Value Get() {
    Value value{};
    std::memcpy(&value, Take(sizeof value), sizeof value);
    return value;
  }
  /// A block's bytes, which stay where they are, and its size.
  std::pair<const void*, size_t> GetBlock() {
    const auto size = Get<uint64_t>();
    if (size > bytes_.size()) Fail();
    return {Take(static_cast<size_t>(size)), static_cast<size_t>(size)};
  }

 private:
  const char* Take(size_t size) {
    if (size > bytes_.size() - at_) Fail();
    const char* here = bytes_.data() + at_;
    at_ += size;
    return here;
  }

  const std::string& bytes_;
  size_t at_ = 0;
};

/// The numbers of AVCodecParameters that are sound's, one after the other.
template <typename Parameters, typename Use>
void ForEachNumber(Parameters& sound, const Use& use) {
  use(sound.codec_tag);
  use(sound.format);
  use(sound.bit_rate);
  use(sound.bits_per_coded_sample);
  use(sound.bits_per_raw_sample);
  use(sound.profile);
  use(sound.level);
  use(sound.sample_rate);
  use(sound.block_align);
  use(sound.frame_size);
  use(sound.initial_padding);
  use(sound.trailing_padding);
  use(sound.seek_preroll);
}

template <typename Packet, typename Use>
void ForEachPacketNumber(Packet& packet, const Use& use) {
  use(packet.pts);
  use(packet.dts);
  use(packet.duration);
  use(packet.flags);
}

/// Memory as the library wants it behind coded bytes; throws std::bad_alloc.
uint8_t* Padded(const void* block, size_t size) {
  auto* copy = static_cast<uint8_t*>(av_mallocz(size + AV_INPUT_BUFFER_PADDING_SIZE));
  if (copy == nullptr) throw std::bad_alloc();
  std::memcpy(copy, block, size);
  return copy;
}

bool IsMap(const AVChannelLayout& layout) { return layout.order == AV_CHANNEL_ORDER_CUSTOM; }

void PutChannels(const AVChannelLayout& layout, Writer& writer) {
  writer.Put(static_cast<int64_t>(layout.order));
  writer.Put(layout.nb_channels);
  if (!IsMap(layout)) return writer.Put(layout.u.mask);
  for (int i = 0; i < layout.nb_channels; ++i) {
    writer.Put(static_cast<int64_t>(layout.u.map[i].id));
  }
}

void GetChannels(Reader& reader, AVChannelLayout& layout) {
  const auto order = reader.Get<int64_t>();
  if (order < AV_CHANNEL_ORDER_UNSPEC || order > AV_CHANNEL_ORDER_AMBISONIC) Fail();
  const auto count = reader.Get<int>();
  if (count < 1 || count > kMaxSoundChannels) Fail();
  layout.order = static_cast<AVChannelOrder>(order);
  layout.nb_channels = count;
  if (!IsMap(layout)) {
    layout.u.mask = reader.Get<uint64_t>();
  } else {
    layout.u.map = static_cast<AVChannelCustom*>(
        av_calloc(static_cast<size_t>(count), sizeof(AVChannelCustom)));
    if (layout.u.map == nullptr) throw std::bad_alloc();
    for (int i = 0; i < count; ++i) {
      const auto id = reader.Get<int64_t>();
      if (id < AV_CHAN_NONE || id > AV_CHAN_AMBISONIC_END) Fail();
      layout.u.map[i].id = static_cast<AVChannel>(id);
    }
  }
  if (av_channel_layout_check(&layout) == 0) Fail();
}

}  // namespace

std::string BytesOf(const AVCodecParameters& sound, AVRational timeBase) {
  Writer writer;
  writer.Put(static_cast<int64_t>(sound.codec_id));
  ForEachNumber(sound, [&](const auto& number) { writer.Put(number); });
  PutChannels(sound.ch_layout, writer);
  writer.PutBlock(sound.extradata, static_cast<size_t>(sound.extradata_size));
  writer.Put(timeBase);
  return writer.Take();
}

SoundForm FormFrom(const std::string& bytes) {
  Reader reader(bytes);
  SoundForm form{Own(avcodec_parameters_alloc()), {}};
  AVCodecParameters& sound = *form.sound;
  sound.codec_type = AVMEDIA_TYPE_AUDIO;
  const auto id = reader.Get<int64_t>();
  if (id < AV_CODEC_ID_FIRST_AUDIO || id >= AV_CODEC_ID_FIRST_SUBTITLE) Fail();
  sound.codec_id = static_cast<AVCodecID>(id);
  ForEachNumber(sound, [&](auto& number) {
    number = reader.Get<std::remove_reference_t<decltype(number)>>();
  });
  GetChannels(reader, sound.ch_layout);
  if (const auto [extra, size] = reader.GetBlock(); size > 0) {
    sound.extradata = Padded(extra, size);
    sound.extradata_size = static_cast<int>(size);
  }
  form.timeBase = reader.Get<AVRational>();
  if (sound.sample_rate < kMinSoundRate || sound.sample_rate > kMaxSoundRate ||
      sound.block_align < 0 || sound.frame_size < 0 || form.timeBase.num < 1 ||
      form.timeBase.den < 1) {
    Fail();
  }
  return form;
}

std::string BytesOf(const AVPacket& packet) {
  Writer writer;
  writer.PutBlock(packet.data, static_cast<size_t>(packet.size));
  ForEachPacketNumber(packet, [&](const auto& number) { writer.Put(number); });
  writer.Put(packet.side_data_elems);
  for (int i = 0; i < packet.side_data_elems; ++i) {
    const AVPacketSideData& side = packet.side_data[i];
    writer.Put(static_cast<int64_t>(side.type));
    writer.PutBlock(side.data, side.size);
  }
  return writer.Take();
}

void PacketFrom(const std::string& bytes, AVPacket& packet) {
  Reader reader(bytes);
  av_packet_unref(&packet);
  const auto [data, size] = reader.GetBlock();
  if (av_new_packet(&packet, static_cast<int>(size)) < 0) throw std::bad_alloc();
  std::memcpy(packet.data, data, size);
  ForEachPacketNumber(packet, [&](auto& number) {
    number = reader.Get<std::remove_reference_t<decltype(number)>>();
  });
  const int others = reader.Get<int>();
  for (int i = 0; i < others; ++i) {
    const auto type = reader.Get<int64_t>();
    const auto [block, bytesOfBlock] = reader.GetBlock();
    if (type < 0 || type >= AV_PKT_DATA_NB) Fail();
    uint8_t* to =
        av_packet_new_side_data(&packet, static_cast<AVPacketSideDataType>(type), bytesOfBlock);
    if (to == nullptr) throw std::bad_alloc();
    std::memcpy(to, block, bytesOfBlock);
  }
}

}  // namespace kelto::host
