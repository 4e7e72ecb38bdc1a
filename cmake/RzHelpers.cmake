# Shared build helpers: warning flags for every target and one way to
# register a test.

# rz_target_warnings(target): the project's warning set, as errors when
# RZ_WERROR is on (scripts/test and CI turn it on).
function(rz_target_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
  if(RZ_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

# rz_add_library(name SOURCES... DEPS...): one static library per source
# folder. Code includes "core/variant.h" or "trace/trace_client.h": each
# target's public include folder (build/include/<target>/) holds only a
# link named like its own source folder, so a target sees its own headers
# and those of its DEPS, and including from a target it does not depend on
# fails to compile.
function(rz_add_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  get_filename_component(folder_name "${CMAKE_CURRENT_SOURCE_DIR}" NAME)
  set(include_root "${CMAKE_BINARY_DIR}/include/${name}")
  file(MAKE_DIRECTORY "${include_root}")
  if(NOT EXISTS "${include_root}/${folder_name}")
    file(CREATE_LINK "${CMAKE_CURRENT_SOURCE_DIR}"
         "${include_root}/${folder_name}" SYMBOLIC)
  endif()
  target_include_directories(${name} PUBLIC "${include_root}")
  target_link_libraries(${name} PUBLIC ${ARG_DEPS})
  rz_target_warnings(${name})
endfunction()

# rz_add_test(file LIBS... [LABEL label]): builds one GoogleTest file into
# its own executable and registers every test in it with CTest. The label
# is "unit" unless given ("e2e" for whole runs). Unit test executables are
# collected in the global property RZ_UNIT_TEST_TARGETS, which the target
# rz_unit_tests builds (what the sanitizer run needs, without the rest).
function(rz_add_test file)
  cmake_parse_arguments(ARG "" "LABEL" "LIBS" ${ARGN})
  get_filename_component(test_name "${file}" NAME_WE)
  file(RELATIVE_PATH rel "${PROJECT_SOURCE_DIR}/tests" "${CMAKE_CURRENT_SOURCE_DIR}")
  string(REPLACE "/" "_" prefix "${rel}")
  set(target "${prefix}_${test_name}")
  if(NOT ARG_LABEL)
    set(ARG_LABEL unit)
  endif()
  add_executable(${target} "${file}")
  target_link_libraries(${target} PRIVATE ${ARG_LIBS} GTest::gtest GTest::gtest_main)
  target_include_directories(${target} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
  rz_target_warnings(${target})
  if(ARG_LABEL STREQUAL "unit")
    set_property(GLOBAL APPEND PROPERTY RZ_UNIT_TEST_TARGETS ${target})
  endif()
  gtest_discover_tests(${target}
    PROPERTIES LABELS ${ARG_LABEL}
    DISCOVERY_TIMEOUT 60)
endfunction()
