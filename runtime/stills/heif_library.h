// libheif, opened when the first HEIF picture is: it brings whole video codecs along, which
// nobody without such pictures should have to install or load.
#pragma once

#include <libheif/heif.h>

#include <memory>

namespace kelto::stills {

/// The functions that are used, by libheif's names without their first word.
struct HeifLibrary {
#define KELTO_HEIF_FUNCTIONS(DO)              \
  DO(context_alloc)                           \
  DO(context_free)                            \
  DO(context_read_from_reader)                \
  DO(context_set_maximum_image_size_limit)    \
  DO(context_set_max_decoding_threads)        \
  DO(context_get_primary_image_handle)        \
  DO(image_handle_release)                    \
  DO(image_handle_get_width)                  \
  DO(image_handle_get_height)                 \
  DO(image_handle_get_luma_bits_per_pixel)    \
  DO(image_handle_has_alpha_channel)          \
  DO(image_handle_is_premultiplied_alpha)     \
  DO(image_handle_get_raw_color_profile_size) \
  DO(image_handle_get_raw_color_profile)      \
  DO(image_handle_get_nclx_color_profile)     \
  DO(nclx_color_profile_free)                 \
  DO(decode_image)                            \
  DO(image_release)                           \
  DO(image_get_width)                         \
  DO(image_get_height)                        \
  DO(image_get_bits_per_pixel_range)          \
  DO(image_get_plane_readonly)                \
  DO(image_get_decoding_warnings)
// NOLINTNEXTLINE(bugprone-macro-parentheses): a name that is declared takes none
#define KELTO_DECLARE(name) decltype(&heif_##name) name = nullptr;
  KELTO_HEIF_FUNCTIONS(KELTO_DECLARE)
#undef KELTO_DECLARE
};

/// Opens a shared library by its name. Throws StillError (noCodecErr) that says what to install.
std::unique_ptr<const HeifLibrary> OpenHeifLibrary(const char* name);

/// The one that decoders use; stays open once it was found, and is looked for again until then.
const HeifLibrary& Heif();

}  // namespace kelto::stills
