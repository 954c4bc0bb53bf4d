# Shared settings of all targets, and short forms for the kinds of target that recur.

find_package(PkgConfig REQUIRED)

# ccache stores what was compiled with a precompiled header only where these are allowed.
if(CMAKE_CXX_COMPILER_LAUNCHER MATCHES "ccache$")
  list(PREPEND CMAKE_CXX_COMPILER_LAUNCHER
    ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros)
endif()

add_library(kelto_options INTERFACE)
target_include_directories(kelto_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(kelto_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align
  -Wformat=2 -Wimplicit-fallthrough
  $<$<BOOL:${KELTO_WERROR}>:-Werror>
  # GCC 12 takes the places of std::variant that are not in use, and the sanitizers' own checks, for
  # uses of values that are not set.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>
  # Frames must not depend on which multiply-adds a compiler chose to fuse.
  -ffp-contract=off)
if(WIN32)
  # Of the four gigabytes of addresses that a 32-bit process can have, it gets half unless it says
  # that it can use all: a photograph of 150 megapixels does not fit into that.
  # Linkers note the time in what they make, unless they are asked not to.
  target_link_options(kelto_options INTERFACE
    -Wl,--large-address-aware -Wl,--no-insert-timestamp)
endif()
if(KELTO_SANITIZE)
  # Undefined behaviour is looked for in the project's code alone: in the tests' it would take their
  # libraries' templates minutes to compile.
  target_compile_options(kelto_options INTERFACE
    -fsanitize=address $<$<NOT:$<BOOL:$<TARGET_PROPERTY:KELTO_TEST>>>:-fsanitize=undefined>
    -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(kelto_options INTERFACE -fsanitize=address,undefined)
endif()
if(KELTO_SANITIZE_THREADS)
  target_compile_options(kelto_options INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
  target_link_options(kelto_options INTERFACE -fsanitize=thread)
endif()
if(KELTO_FUZZ)
  target_compile_options(kelto_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(KELTO_COVERAGE)
  target_compile_options(kelto_options INTERFACE -fprofile-instr-generate -fcoverage-mapping)
  target_link_options(kelto_options INTERFACE -fprofile-instr-generate)
endif()
target_compile_definitions(kelto_options INTERFACE
  $<$<OR:$<CONFIG:Debug>,$<BOOL:${KELTO_SANITIZE}>>:_GLIBCXX_ASSERTIONS>)

include(KeltoHardening)

# Every program and library is built with the search path that it keeps, from where it lies itself, and
# installing copies it as it is. A path to be replaced later would be filled up with separators until
# then, and the loader takes each empty entry for the current folder: a library planted beside a
# photograph would run. lib/kelto is where an installed tree has them; the build tree has it, too.
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN/../lib/kelto")
if(NOT WIN32)
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
  file(CREATE_LINK . ${CMAKE_BINARY_DIR}/lib/kelto SYMBOLIC)
endif()

# kelto_search_path(TARGETS ... FOLDERS ...): where the loader looks for the libraries of these, as
# folders seen from their own.
function(kelto_search_path)
  cmake_parse_arguments(ARG "" "" "TARGETS;FOLDERS" ${ARGN})
  set(path)
  foreach(folder ${ARG_FOLDERS})
    cmake_path(NORMAL_PATH folder)
    string(REGEX REPLACE "/$" "" folder "$ORIGIN/${folder}")
    list(APPEND path ${folder})
  endforeach()
  list(TRANSFORM path REPLACE "/[.]$" "")
  list(REMOVE_DUPLICATES path)
  set_target_properties(${ARG_TARGETS} PROPERTIES INSTALL_RPATH "${path}")
endfunction()

# kelto_unity(NAME): with KELTO_UNITY, compiles several files of a target as one, since reading the
# headers of libraries takes longest. A target's files must then not use a name for two things.
function(kelto_unity name)
  set_target_properties(${name} PROPERTIES
    UNITY_BUILD ${KELTO_UNITY} UNITY_BUILD_BATCH_SIZE 10)
  if(KELTO_UNITY AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # A source that another one includes looks like a header with local types.
    target_compile_options(${name} PRIVATE -Wno-subobject-linkage)
  endif()
endfunction()

# kelto_library(NAME [SHARED] SOURCES ... LINK ...): a library of this project.
function(kelto_library name)
  cmake_parse_arguments(ARG "SHARED" "" "SOURCES;LINK;PRIVATE_LINK" ${ARGN})
  if(ARG_SHARED)
    add_library(${name} SHARED ${ARG_SOURCES})
    if(WIN32)
      set_target_properties(${name} PROPERTIES PREFIX "")  # hfx.dll
    endif()
  else()
    add_library(${name} STATIC ${ARG_SOURCES})
  endif()
  kelto_unity(${name})
  target_link_libraries(${name} PUBLIC kelto_options ${ARG_LINK} PRIVATE ${ARG_PRIVATE_LINK})
endfunction()

# kelto_test(NAME SOURCES ... LINK ... [RUNS ...] [FIXTURE ...]): a GoogleTest program; each of its
# tests is a ctest test, or with KELTO_SUITE_TESTS each of its suites; APART has each test start the
# program all the same. RUNS names what it loads or starts by file: the module, the command; FIXTURE
# what ctest has to set up before; COST about how many seconds the longest of its tests take, which
# begin first, so that no core waits for them at the end.
function(kelto_test name)
  cmake_parse_arguments(ARG "QT;APART" "FIXTURE;COST" "SOURCES;LINK;RUNS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  set_target_properties(${name} PROPERTIES KELTO_TEST ON)
  target_link_libraries(${name} PRIVATE kelto_options GTest::gmock GTest::gtest_main ${ARG_LINK})
  # The tests' own code need not be fast, but there is much of it to compile.
  target_compile_options(${name} PRIVATE -O1)
  # GCC 12 takes additions of strings, of which tests have many, for copies beyond their ends.
  target_compile_options(${name} PRIVATE
    $<$<CXX_COMPILER_ID:GNU>:-Wno-array-bounds;-Wno-restrict;-Wno-stringop-overflow>)
  kelto_unity(${name})
  if(NOT KELTO_UNITY)
    # Qt has its users compiled as libraries are, for which headers are read apart.
    if(ARG_QT)
      target_precompile_headers(${name} REUSE_FROM kelto_editor_test_headers)
    else()
      target_precompile_headers(${name} REUSE_FROM kelto_test_headers)
    endif()
  endif()
  target_compile_definitions(${name} PRIVATE
    KELTO_TEST_DATA="${CMAKE_SOURCE_DIR}/tests/data"
    KELTO_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
  foreach(file ${ARG_RUNS})
    if(file STREQUAL KeltoPanAndZoom)
      target_compile_definitions(${name} PRIVATE KELTO_MODULE="$<TARGET_FILE:${file}>")
    else()
      target_compile_definitions(${name} PRIVATE KELTO_COMMAND="$<TARGET_FILE:${file}>")
    endif()
    add_dependencies(${name} ${file})
  endforeach()
  set(properties)
  if(ARG_FIXTURE)
    list(APPEND properties FIXTURES_REQUIRED ${ARG_FIXTURE})
  endif()
  if(ARG_COST)
    list(APPEND properties COST ${ARG_COST})
  endif()
  if(KELTO_SUITE_TESTS AND NOT ARG_APART)
    kelto_suite_tests(${name} TIMEOUT 1800 ${properties})
  else()
    # Listing the tests may have to wait for the first start of Wine.
    gtest_discover_tests(${name} NO_PRETTY_VALUES DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 120
      PROPERTIES TIMEOUT 600 ${properties})
  endif()
endfunction()

# kelto_suite_tests(NAME PROPERTY VALUE ...): makes each suite of a GoogleTest program a ctest test.
# Starting a program a test takes longer than most tests do where sanitizers or Wine have to get ready.
function(kelto_suite_tests name)
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${name}_suites.cmake)
  file(GENERATE OUTPUT ${script} CONTENT
"set(name ${name})
set(command ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:${name}>)
set(properties ${ARGN})
include(${PROJECT_SOURCE_DIR}/cmake/SuiteTests.cmake)
")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${script})
endfunction()
