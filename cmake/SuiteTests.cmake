# Included by ctest: a test for each suite of a GoogleTest program, which runs the suite's cases in one
# process. It finds the program's name and command line in `name` and `command`, and what its tests have
# to be given in `properties`.
execute_process(
  COMMAND ${command} --gtest_list_tests OUTPUT_VARIABLE listed RESULT_VARIABLE code TIMEOUT 120)
if(NOT code EQUAL 0)
  # What cannot list its tests has failed them.
  add_test(${name} ${command} --gtest_list_tests)
  return()
endif()
string(REGEX REPLACE "[;#]" " " listed "${listed}")
string(REGEX REPLACE "\r?\n" ";" lines "${listed}")
foreach(line ${lines})
  # Suites begin at the margin and end in a dot; their cases are indented.
  if(line MATCHES "^([A-Za-z0-9_/]+)\\.")
    set(suite ${CMAKE_MATCH_1})
    add_test(${name}.${suite} ${command} "--gtest_filter=${suite}.*" --gtest_brief=1)
    set_tests_properties(${name}.${suite} PROPERTIES ${properties})
  endif()
endforeach()
