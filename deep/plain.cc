// The filtered and the nearest picture pixel by pixel.
#include <map>

#include "deep/plan.h"

namespace kelto {
namespace {

constexpr size_t kPlainChannels = 4;

/// The picture's rows as doubles, read when first asked for.
class PlainRows {
 public:
  PlainRows(const DeepPlan& plan, Range columns) : plan_(plan), columns_(columns) {}

  const std::vector<double>& Row(int32_t y) {
    std::vector<double>& row = rows_[y];
    if (row.empty()) {
      for (int32_t x = columns_.first; x < columns_.end; ++x) {
        const DeepPixel pixel = ReadPixel(plan_.picture, x, y);
        const DeepPixel used = plan_.linearLight ? DecodeLight(pixel) : pixel;
        row.insert(row.end(), used.begin(), used.end());
      }
    }
    return row;
  }

  /// Forgets all but `count` rows from `first` on.
  void Keep(int32_t first, int32_t count) {
    rows_.erase(rows_.begin(), rows_.lower_bound(first));
    rows_.erase(rows_.lower_bound(first + count), rows_.end());
  }

 private:
  const DeepPlan& plan_;
  Range columns_;
  std::map<int32_t, std::vector<double>> rows_;
};

/// Draws a pixel that the picture covers in part or in whole, over what lies behind.
void MixPixel(const DeepPlan& plan, int32_t x, int32_t y, const DeepPixel& picture,
              double coverage) {
  const DeepPixel held = HeldWithinAlpha(picture, plan.target.sample == DeepSample::kUnsigned16);
  const DeepPixel behind = plan.Behind(x, y);
  if (plan.linearLight) {
    WritePixel(plan.target, x, y, EncodeLight(Over(held, coverage, DecodeLight(behind))));
  } else {
    WritePixel(plan.target, x, y, Over(held, coverage, behind));
  }
}

}  // namespace

void DrawDeepPlain(const DeepPlan& plan) {
  const Range used = plan.columnWeights.ImagePixels();
  PlainRows rows(plan, used);
  std::vector<double> column(kPlainChannels * static_cast<size_t>(used.end - used.first));
  for (size_t i = 0; i < plan.rowWeights.entries.size(); ++i) {
    const WeightTable::Entry& down = plan.rowWeights.entries[i];
    const float* const downWeights = plan.rowWeights.Weights(down);
    rows.Keep(down.first, down.count);
    std::fill(column.begin(), column.end(), 0.0);
    for (int32_t tap = 0; tap < down.count; ++tap) {
      const double weight = double{downWeights[tap]} * down.normaliser;
      const std::vector<double>& row = rows.Row(down.first + tap);
      for (size_t at = 0; at < column.size(); ++at) column[at] += weight * row[at];
    }
    for (size_t j = 0; j < plan.columnWeights.entries.size(); ++j) {
      const WeightTable::Entry& along = plan.columnWeights.entries[j];
      const float* const alongWeights = plan.columnWeights.Weights(along);
      const double* from =
          column.data() + kPlainChannels * static_cast<size_t>(along.first - used.first);
      DeepPixel sum = {};
      for (int32_t tap = 0; tap < along.count; ++tap, from += kPlainChannels) {
        const double weight = double{alongWeights[tap]} * along.normaliser;
        for (size_t c = 0; c < kPlainChannels; ++c) sum[c] += weight * from[c];
      }
      if (!plan.picture.hasAlpha) sum[3] = 1.0;
      MixPixel(plan, plan.columns.first + static_cast<int32_t>(j),
               plan.rows.first + static_cast<int32_t>(i), sum,
               double{plan.columnCoverage[j]} * plan.rowCoverage[i]);
    }
  }
}

void DrawDeepNearest(const DeepPlan& plan) {
  for (size_t i = 0; i < plan.nearestRows.size(); ++i) {
    for (size_t j = 0; j < plan.nearestColumns.size(); ++j) {
      const int32_t x = plan.columns.first + static_cast<int32_t>(j);
      const int32_t y = plan.rows.first + static_cast<int32_t>(i);
      const DeepPixel pixel = ReadPixel(plan.picture, plan.nearestColumns[j], plan.nearestRows[i]);
      // Where nothing shines through, light is as it was.
      if (pixel[3] == 1.0) {
        WritePixel(plan.target, x, y, pixel);
      } else {
        MixPixel(plan, x, y, plan.linearLight ? DecodeLight(pixel) : pixel, 1.0);
      }
    }
  }
}

}  // namespace kelto
