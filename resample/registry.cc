#include "resample/registry.h"

#include <bit>
#include <cstdio>
#include <cstring>
#include <deque>

namespace kelto {
namespace {

constexpr float kKaiserShape = 6.5f;

MitchellCoefficients mitchellCoefficients;
KaiserParameters kaiserParameters;

void InitMitchellRow(const float* parameters, void* clientData) {
  MitchellInit(parameters[0], parameters[1], static_cast<MitchellCoefficients*>(clientData));
}

void InitKaiserRow(const float* parameters, void* clientData) {
  KaiserInit(parameters[0], static_cast<KaiserParameters*>(clientData));
}

void PrintMitchell(const void* clientData) {
  const auto& [p0, p2, p3, q0, q1, q2, q3] = *static_cast<const MitchellCoefficients*>(clientData);
  std::fprintf(stderr, "mitchell: p0=%g p2=%g p3=%g q0=%g q1=%g q2=%g q3=%g\n", p0, p2, p3, q0, q1,
               q2, q3);
}

void PrintKaiser(const void* clientData) {
  const auto& [a, i0a] = *static_cast<const KaiserParameters*>(clientData);
  std::fprintf(stderr, "kaiser: a=%g i0a=%g\n", a, i0a);
}

// b = c = 1/3. As bits, so that no compiler's float arithmetic decides the last places.
MitchellCoefficients DefaultMitchell() {
  return {std::bit_cast<float>(0x3F638E39u),   // 8/9
          std::bit_cast<float>(0xC0000000u),   // -2
          std::bit_cast<float>(0x3F955555u),   // 7/6
          std::bit_cast<float>(0x3FE38E39u),   // 16/9
          std::bit_cast<float>(0xC0555555u),   // -10/3
          std::bit_cast<float>(0x40000000u),   // 2
          std::bit_cast<float>(0xBEC71C71u)};  // -7/18
}

// The registry, ready for use.
FilterRegistry& UsedFilters() {
  FilterRegistry& filters = ProcessFilters();
  if (filters.count == 0) {
    while (filters.count < kMostFilters && filters.rows[filters.count].name) ++filters.count;
    mitchellCoefficients = DefaultMitchell();
    KaiserInit(kKaiserShape, &kaiserParameters);
  }
  return filters;
}

// A row made by FilterWindow, with what its name and client data point at.
struct WindowedFilter {
  Filter row;
  char name[50];
  struct Pair {
    const Filter* filter;
    const Filter* window;
  } pair;
};

float KernelWindowed(float x, const void* data) {
  const auto& [filter, window] = *static_cast<const WindowedFilter::Pair*>(data);
  return filter->kernel(x, filter->clientData) *
         window->kernel(x / filter->support, window->clientData);
}

void PrintWindowed(const void* clientData) {
  const auto& [filter, window] = *static_cast<const WindowedFilter::Pair*>(clientData);
  if (filter->print) filter->print(filter->clientData);
  if (window->print) window->print(window->clientData);
}

}  // namespace

FilterRegistry BuiltInFilters() {
  MitchellCoefficients* const mitchell = &mitchellCoefficients;
  KaiserParameters* const kaiser = &kaiserParameters;
  // "sinc" has no client data: the lobe count is its caller's choice.
  return {{
      // name, kernel, support, blur, windowed by default, interpolating, unit range, init, print
      {"point", KernelBox, 0.0f, 1.0f, 0, 1, 1, nullptr, nullptr, nullptr},
      {"box", KernelBox, 0.5f, 1.0f, 0, 1, 1, nullptr, nullptr, nullptr},
      {"triangle", KernelTriangle, 1.0f, 1.0f, 0, 1, 1, nullptr, nullptr, nullptr},
      {"quadratic", KernelQuadratic, 1.5f, 1.0f, 0, 0, 1, nullptr, nullptr, nullptr},
      {"cubic", KernelCubic, 2.0f, 1.0f, 0, 0, 1, nullptr, nullptr, nullptr},
      {"catrom", KernelCatrom, 2.0f, 1.0f, 0, 1, 0, nullptr, nullptr, nullptr},
      {"mitchell", KernelMitchell, 2.0f, 1.0f, 0, 0, 0, InitMitchellRow, PrintMitchell, mitchell},
      {"gaussian", KernelGaussian, 1.25f, 1.0f, 0, 0, 1, nullptr, nullptr, nullptr},
      {"sinc", KernelSinc, 4.0f, 1.0f, 1, 1, 0, nullptr, nullptr, nullptr},
      {"bessel", KernelBessel, 3.2383f, 1.0f, 1, 0, 0, nullptr, nullptr, nullptr},
      {"hanning", KernelHanning, 1.0f, 1.0f, 0, 1, 1, nullptr, nullptr, nullptr},
      {"hamming", KernelHamming, 1.0f, 1.0f, 0, 1, 1, nullptr, nullptr, nullptr},
      {"blackman", KernelBlackman, 1.0f, 1.0f, 0, 1, 1, nullptr, nullptr, nullptr},
      {"kaiser", KernelKaiser, 1.0f, 1.0f, 0, 1, 1, InitKaiserRow, PrintKaiser, kaiser},
  }};
}

FilterRegistry& ProcessFilters() {
  static FilterRegistry filters = BuiltInFilters();
  return filters;
}

const Filter* FilterFind(const char* name) {
  const FilterRegistry& filters = UsedFilters();
  for (int32_t i = 0; i < filters.count; ++i) {
    if (std::strcmp(filters.rows[i].name, name) == 0) return &filters.rows[i];
  }
  return nullptr;
}

void filt_insert(const Filter& row) {
  FilterRegistry& filters = UsedFilters();
  if (FilterFind(row.name)) {
    std::fprintf(stderr, "filt_insert: there's already a filter called %s\n", row.name);
    return;
  }
  if (filters.count == kMostFilters) {
    std::fprintf(stderr, "filt_insert: too many filters: %d\n", filters.count + 1);
    return;
  }
  filters.rows[filters.count++] = row;
}

const Filter* FilterWindow(const Filter* filter, const char* windowName) {
  if (std::strcmp(windowName, "box") == 0) return filter;
  const Filter* window = FilterFind(windowName);
  if (!window) return nullptr;
  // Never destroyed, so that rows stay valid in everything that runs at exit.
  static auto& made = *new std::deque<WindowedFilter>;
  WindowedFilter& windowed = made.emplace_back(WindowedFilter{*filter, "", {filter, window}});
  std::snprintf(windowed.name, sizeof windowed.name, "%s*%s", filter->name, window->name);
  windowed.row.name = windowed.name;
  windowed.row.kernel = KernelWindowed;
  windowed.row.init = nullptr;
  windowed.row.print = filter->print || window->print ? PrintWindowed : nullptr;
  windowed.row.clientData = &windowed.pair;
  return &windowed.row;
}

void FilterCatalog() {
  const FilterRegistry& filters = UsedFilters();
  for (int32_t i = 0; i < filters.count; ++i) {
    const Filter& row = filters.rows[i];
    std::fprintf(stderr, "%-9s\t%4.2f%s", row.name, row.support,
                 row.windowedByDefault ? " (windowed by default)" : "");
    if (row.print) {
      std::fputs("\n    ", stderr);
      row.print(row.clientData);
    }
    std::fputs("\n", stderr);
  }
}

}  // namespace kelto
