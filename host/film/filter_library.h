// FFmpeg's filters, opened when the first one is used.
#pragma once

#include <cstdint>

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
}

namespace kelto::host {

/// The functions that are used.
struct FilterLibrary {
#define KELTO_FILTER_FUNCTIONS(DO) \
  DO(avfilter_graph_alloc)         \
  DO(avfilter_graph_free)          \
  DO(avfilter_graph_create_filter) \
  DO(avfilter_graph_parse_ptr)     \
  DO(avfilter_graph_config)        \
  DO(avfilter_get_by_name)         \
  DO(avfilter_inout_alloc)         \
  DO(avfilter_inout_free)          \
  DO(av_buffersrc_add_frame)       \
  DO(av_buffersink_get_frame)      \
  DO(av_buffersink_get_time_base)
// NOLINTNEXTLINE(bugprone-macro-parentheses): a name that is declared takes none
#define KELTO_DECLARE(name) decltype(&::name) name = nullptr;
  KELTO_FILTER_FUNCTIONS(KELTO_DECLARE)
#undef KELTO_DECLARE
};

/// The library of the version that this program was built for; stays open once it was found. Throws
/// Error that says what to install.
const FilterLibrary& Filters();

}  // namespace kelto::host
