# What makes a fault in a decoder harder to use: for all that is shipped, in builds that optimise.
# `tests/packaging/hardening_test.sh` reads it back from the files.
#
# Tests are left alone, since they have nobody's files to fear and much to compile, and so are the
# sanitizers' builds, whose own checks find more and would be hidden by these.
set(shipped $<NOT:$<BOOL:$<TARGET_PROPERTY:KELTO_TEST>>>)
set(optimised $<NOT:$<CONFIG:Debug>>)
# Of a target with KELTO_PIXEL_LOOPS only what holds text or bytes: the check at the end of each piece of
# a row would be most of what hardening costs a frame.
set(stack_protector
  -fstack-protector$<$<NOT:$<BOOL:$<TARGET_PROPERTY:KELTO_PIXEL_LOOPS>>>:-strong>)

if(WIN32)
  # Loaded where an attacker does not know, and data never run as code; addresses of 32 bits leave no
  # room for more entropy.
  target_link_options(kelto_options INTERFACE -Wl,--dynamicbase,--nxcompat
    -Wl,--exclude-libs,libssp.a)  # from what libraries that export everything export
  target_compile_options(kelto_options INTERFACE
    "$<$<AND:${shipped},${optimised}>:${stack_protector}>")
  # What a found overflow calls lies in each file by itself: a library beside them would be one more
  # that could be replaced. It is named behind all that calls it.
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libssp.a
    OUTPUT_VARIABLE KELTO_STACK_PROTECTOR OUTPUT_STRIP_TRAILING_WHITESPACE)
  target_link_libraries(kelto_options INTERFACE ${KELTO_STACK_PROTECTOR})
  return()
endif()
if(KELTO_SANITIZED OR KELTO_FUZZ OR KELTO_COVERAGE OR
    NOT CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  return()
endif()
include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)
include(CheckLinkerFlag)
include(CheckPIESupported)
check_pie_supported(LANGUAGES C CXX)

# Level 3 also checks objects whose size is only known when the program runs; glibc and the compiler
# have to know it. A distribution's own setting is replaced, since two differing ones are an error.
set(CMAKE_REQUIRED_FLAGS "-O2 -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3 -Werror")
check_cxx_source_compiles("#include <cstdio>
  #if __USE_FORTIFY_LEVEL != 3
  #error
  #endif
  int main() {}" KELTO_FORTIFY_3)
unset(CMAKE_REQUIRED_FLAGS)
if(KELTO_FORTIFY_3)
  set(fortify 3)
else()
  set(fortify 2)
endif()

set(flags ${stack_protector} -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=${fortify})
foreach(flag -fcf-protection=full -fstack-clash-protection)
  string(MAKE_C_IDENTIFIER "KELTO${flag}" known)
  check_cxx_compiler_flag(${flag} ${known})
  if(${known})
    list(APPEND flags ${flag})
  endif()
endforeach()
target_compile_options(kelto_options INTERFACE "$<$<AND:${shipped},${optimised}>:${flags}>")
set(link_flags -Wl,-z,relro,-z,now,-z,noexecstack)
# Marked by hand: the C library's start files, which Debian builds without the mark, keep to a shadow
# stack all the same. They lack landing pads, so that the other half of the mark would not be true.
check_linker_flag(CXX -Wl,-z,shstk KELTO_z_shstk)
if(KELTO_z_shstk AND KELTO_fcf_protection_full)
  list(APPEND link_flags -Wl,-z,shstk)
endif()
target_link_options(kelto_options INTERFACE "$<${shipped}:${link_flags}>")
