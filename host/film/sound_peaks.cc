#include "host/film/sound_peaks.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "host/film/sound_encoder.h"

namespace kelto::host {

std::vector<float> SoundPeaks(const std::string& path, double perSecond, double seconds) {
  SilenceLibav();
  // Coded as plain samples: holes and what sounds too early are seen to there.
  SoundLength length;
  length.length = std::llround(seconds * 1000.0);
  length.unit = {1, 1000};
  SoundEncoder samples(std::make_unique<SoundSource>(path), "pcm_s16le", false, length);
  const auto parameters = Own(avcodec_parameters_alloc());
  samples.Describe(*parameters);
  const int channels = std::max(1, parameters->ch_layout.nb_channels);
  const double spansPerSample = perSecond / parameters->sample_rate;
  std::vector<float> peaks;
  const auto packet = Own(av_packet_alloc());
  for (int64_t count = 0; samples.Read(*packet); av_packet_unref(packet.get())) {
    const auto* values = reinterpret_cast<const int16_t*>(packet->data);
    const int all = packet->size / static_cast<int>(sizeof(int16_t));
    for (int i = 0; i + channels <= all; i += channels, ++count) {
      const auto span = static_cast<size_t>(static_cast<double>(count) * spansPerSample);
      if (span >= peaks.size()) peaks.resize(span + 1, 0.0F);
      for (int channel = 0; channel < channels; ++channel) {
        const float size = static_cast<float>(std::abs(int{values[i + channel]})) / 32768.0F;
        peaks[span] = std::max(peaks[span], size);
      }
    }
  }
  return peaks;
}

}  // namespace kelto::host
