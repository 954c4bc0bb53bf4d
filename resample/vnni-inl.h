// How the namespace of code that multiplies with VNNI opens: Highway's own target for such
// processors leaves these instructions to its users. For each target anew, behind foreach_target.h.
#include <hwy/highway.h>

#undef KELTO_BEFORE_VNNI_NAMESPACE
#if HWY_TARGET == HWY_AVX3_DL
#define KELTO_BEFORE_VNNI_NAMESPACE()               \
  HWY_PUSH_ATTRIBUTES(HWY_TARGET_STR ",avx512vnni") \
  static_assert(true, "for the semicolon")
#else
#define KELTO_BEFORE_VNNI_NAMESPACE() HWY_BEFORE_NAMESPACE()
#endif
