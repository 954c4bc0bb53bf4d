# Stands in for the system's packages in the Windows build: the libraries that tools/windows/setup.sh
# has put into the cache folder, under the names that find_package would give them.
execute_process(
  COMMAND sh -c ". '${CMAKE_SOURCE_DIR}/tools/windows/cache.sh'; printf %s \"$kelto_cache\""
  OUTPUT_VARIABLE kelto_cache)
set(libraries ${kelto_cache}/libraries-i686)
set(codecs ${kelto_cache}/codecs-i686)
foreach(folder ${libraries} ${codecs})
  if(NOT EXISTS ${folder}/.made-by)
    message(FATAL_ERROR "${folder} is missing; run tools/windows/setup.sh first")
  endif()
endforeach()

# Header-only libraries need nothing more.
include_directories(SYSTEM ${libraries}/include ${codecs}/include)
add_library(CLI11::CLI11 INTERFACE IMPORTED GLOBAL)

add_library(Boost::filesystem STATIC IMPORTED GLOBAL)
set_target_properties(Boost::filesystem PROPERTIES
  IMPORTED_LOCATION ${libraries}/lib/libboost_filesystem.a
  INTERFACE_COMPILE_DEFINITIONS "BOOST_FILESYSTEM_STATIC_LINK;BOOST_ALL_NO_LIB")

add_library(PkgConfig::HIGHWAY STATIC IMPORTED GLOBAL)
set_target_properties(PkgConfig::HIGHWAY PROPERTIES
  IMPORTED_LOCATION ${libraries}/lib/libhwy.a
  # Unasked, Highway leaves AVX2 out in 32 bits, where not all compilers manage it; this one does.
  # AVX-512 uses instructions of 64 bits.
  INTERFACE_COMPILE_DEFINITIONS "HWY_BROKEN_TARGETS=(HWY_AVX3|HWY_AVX3_DL)")

add_library(PkgConfig::STILL_CODECS INTERFACE IMPORTED GLOBAL)
target_link_libraries(PkgConfig::STILL_CODECS INTERFACE
  ${codecs}/lib/libwebp.a ${codecs}/lib/liblcms2.a ${codecs}/lib/libtiff.a
  ${codecs}/lib/libjpeg.a z ${KELTO_STACK_PROTECTOR})

if(KELTO_TESTS)
  set(INSTALL_GTEST OFF)
  set(CMAKE_POLICY_DEFAULT_CMP0077 NEW)
  add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
  foreach(part gtest gtest_main gmock)
    if(NOT TARGET GTest::${part})
      add_library(GTest::${part} ALIAS ${part})
    endif()
    target_compile_options(${part} PRIVATE -O1)
  endforeach()
endif()

# A module and its host can only throw to each other through one shared runtime; it lies beside the
# programs.
set(KELTO_WINDOWS_RUNTIME)
foreach(dll libgcc_s_dw2-1.dll libstdc++-6.dll libwinpthread-1.dll)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll}
    OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
  list(APPEND KELTO_WINDOWS_RUNTIME ${path})
endforeach()
file(COPY ${KELTO_WINDOWS_RUNTIME} DESTINATION ${CMAKE_BINARY_DIR}/bin)

# kelto_version_resource(TARGET FILE DESCRIPTION [PROGRAM]): what the system shows of a file: version
# and description, and of a program its icon and what it asks of the system.
enable_language(RC)
function(kelto_version_resource name file description)
  set(resources ${CMAKE_BINARY_DIR}/resources)
  set(kind 2)
  set(more)
  if("PROGRAM" IN_LIST ARGN)
    set(kind 1)
    configure_file(${CMAKE_SOURCE_DIR}/packaging/windows/kelto.manifest
      ${resources}/kelto.manifest @ONLY)
    set(more "1 ICON \"${CMAKE_SOURCE_DIR}/packaging/windows/kelto.ico\"
1 24 \"${resources}/kelto.manifest\"")
  endif()
  configure_file(${CMAKE_SOURCE_DIR}/packaging/windows/version.rc.in ${resources}/${name}.rc @ONLY)
  # By itself, since the compiler of resources takes no options of the other compilers.
  add_library(${name}_resource OBJECT ${resources}/${name}.rc)
  target_sources(${name} PRIVATE $<TARGET_OBJECTS:${name}_resource>)
endfunction()
