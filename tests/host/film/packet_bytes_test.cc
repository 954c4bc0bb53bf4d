#include "host/film/packet_bytes.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "host/base/error.h"

namespace kelto::host {
namespace {

Owned<AVPacket> Packet() {
  auto packet = Own(av_packet_alloc());
  EXPECT_EQ(av_new_packet(packet.get(), 5), 0);
  std::memcpy(packet->data, "sound", 5);
  packet->pts = -312;
  packet->dts = -313;
  packet->duration = 960;
  packet->flags = AV_PKT_FLAG_KEY;
  uint8_t* skip = av_packet_new_side_data(packet.get(), AV_PKT_DATA_SKIP_SAMPLES, 10);
  std::memset(skip, 7, 10);
  return packet;
}

Owned<AVCodecParameters> Sound() {
  auto sound = Own(avcodec_parameters_alloc());
  sound->codec_type = AVMEDIA_TYPE_AUDIO;
  sound->codec_id = AV_CODEC_ID_OPUS;
  sound->sample_rate = 48000;
  sound->initial_padding = 312;
  sound->bit_rate = 96000;
  av_channel_layout_default(&sound->ch_layout, 6);
  sound->extradata = static_cast<uint8_t*>(av_mallocz(19 + AV_INPUT_BUFFER_PADDING_SIZE));
  sound->extradata_size = 19;
  std::memset(sound->extradata, 9, 19);
  return sound;
}

TEST(PacketBytes, BecomeTheSamePacket) {
  const auto packet = Packet(), again = Own(av_packet_alloc());
  PacketFrom(BytesOf(*packet), *again);
  EXPECT_EQ(again->pts, -312);
  EXPECT_EQ(again->dts, -313);
  EXPECT_EQ(again->duration, 960);
  EXPECT_EQ(again->flags, AV_PKT_FLAG_KEY);
  ASSERT_EQ(again->size, 5);
  EXPECT_EQ(std::memcmp(again->data, "sound", 5), 0);
  size_t size = 0;
  const uint8_t* skip = av_packet_get_side_data(again.get(), AV_PKT_DATA_SKIP_SAMPLES, &size);
  ASSERT_EQ(size, 10u);
  EXPECT_EQ(skip[9], 7);
}

TEST(PacketBytes, BecomeTheSameForm) {
  const SoundForm form = FormFrom(BytesOf(*Sound(), {1, 48000}));
  EXPECT_EQ(form.timeBase.den, 48000);
  EXPECT_EQ(form.sound->codec_id, AV_CODEC_ID_OPUS);
  EXPECT_EQ(form.sound->initial_padding, 312);
  EXPECT_EQ(form.sound->bit_rate, 96000);
  EXPECT_EQ(av_channel_layout_compare(&form.sound->ch_layout, &Sound()->ch_layout), 0);
  ASSERT_EQ(form.sound->extradata_size, 19);
  EXPECT_EQ(form.sound->extradata[18], 9);
}

TEST(PacketBytes, KeepChannelsThatHaveNoUsualOrder) {
  const auto sound = Sound();
  av_channel_layout_uninit(&sound->ch_layout);
  sound->ch_layout.order = AV_CHANNEL_ORDER_CUSTOM;
  sound->ch_layout.nb_channels = 2;
  sound->ch_layout.u.map = static_cast<AVChannelCustom*>(av_calloc(2, sizeof(AVChannelCustom)));
  sound->ch_layout.u.map[0].id = AV_CHAN_FRONT_RIGHT;
  sound->ch_layout.u.map[1].id = AV_CHAN_FRONT_LEFT;
  const SoundForm form = FormFrom(BytesOf(*sound, {1, 48000}));
  EXPECT_EQ(av_channel_layout_compare(&form.sound->ch_layout, &sound->ch_layout), 0);
}

// They come from a process that the sound's file may have taken over: whatever it sends is read
// without harm, or refused.
TEST(PacketBytes, ThatAreDamagedAreReadOrRefused) {
  const std::string packet = BytesOf(*Packet()), form = BytesOf(*Sound(), {1, 48000});
  const auto into = Own(av_packet_alloc());
  for (size_t cut = 0; cut < packet.size(); ++cut) {
    EXPECT_THROW(PacketFrom(packet.substr(0, cut), *into), Error) << cut;
  }
  for (size_t cut = 0; cut < form.size(); ++cut) {
    EXPECT_THROW(FormFrom(form.substr(0, cut)), Error) << cut;
  }
  std::mt19937 random(1);
  int refused = 0;
  for (int i = 0; i < 20000; ++i) {
    std::string damaged = i % 2 == 0 ? packet : form;
    for (int changes = 1 + i % 3; changes > 0; --changes) {
      damaged[random() % damaged.size()] = static_cast<char>(random());
    }
    try {
      i % 2 == 0 ? PacketFrom(damaged, *into) : static_cast<void>(FormFrom(damaged));
    } catch (const Error&) {
      ++refused;
    }
  }
  EXPECT_GT(refused, 2000);
}

TEST(PacketBytes, OfSoundBeyondTheLimitsAreRefused) {
  for (const int rate : {0, -1, 999, 768001}) {
    const auto sound = Sound();
    sound->sample_rate = rate;
    EXPECT_THROW(FormFrom(BytesOf(*sound, {1, 48000})), Error) << rate;
  }
  EXPECT_THROW(FormFrom(BytesOf(*Sound(), {1, 0})), Error);
  const auto sound = Sound();
  sound->codec_id = AV_CODEC_ID_H264;
  EXPECT_THROW(FormFrom(BytesOf(*sound, {1, 48000})), Error);
}

}  // namespace
}  // namespace kelto::host
