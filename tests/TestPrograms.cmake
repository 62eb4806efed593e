# add_test_program(NAME SOURCES... [LIBRARIES ...] [PARTS ...])
#
# A test program of GoogleTest and a CTest entry NAME.Suite.Test for each of its tests, or NAME.PART for all those with
# PART in their names where their common set-up costs more than they do. A skipped test fails: no skip is allowed.

include(GoogleTest)

set(GTEST_SOURCES /usr/src/googletest CACHE PATH "Where the sources of GoogleTest lie")
if(NOT EXISTS ${GTEST_SOURCES}/CMakeLists.txt)
  message(FATAL_ERROR "The sources of GoogleTest are missing in ${GTEST_SOURCES}: install the package libgtest-dev")
endif()
set(CMAKE_POLICY_DEFAULT_CMP0077 NEW) # so that GoogleTest takes the options set here
set(INSTALL_GTEST OFF)
if(WIN32)
  set(gtest_disable_pthreads ON)
endif()
add_subdirectory(${GTEST_SOURCES} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
if(SANITIZE MATCHES address)
  # GoogleTest isn't under test; sanitizing it takes a tenth of the build. The thread sanitizer must see its locks.
  foreach(library IN ITEMS gtest gtest_main gmock)
    target_compile_options(${library} PRIVATE -fno-sanitize=all -g0)
  endforeach()
endif()
if(WIN32)
  # Before GoogleTest's own folders; for its users by an option, because their system folders come last.
  set(custom ${CMAKE_CURRENT_SOURCE_DIR}/support/googletest)
  target_include_directories(gtest BEFORE PRIVATE ${custom})
  target_compile_options(gtest INTERFACE -I${custom})
endif()

# Optimising, g++ 12 sees overruns and gaps in std::string where there are none. The library and the simulated
# platform keep these warnings.
add_library(test_flags INTERFACE)
if(SANITIZE MATCHES undefined)
  # The checks are for the plug-in and the simulated platform; in tests they would cost a fifth of the build.
  target_compile_options(test_flags INTERFACE -fno-sanitize=undefined)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND NOT CMAKE_BUILD_TYPE STREQUAL Debug)
  target_compile_options(test_flags INTERFACE
    -Wno-array-bounds -Wno-maybe-uninitialized -Wno-stringop-overflow)
endif()

# GoogleTest's headers cost more than most tests; they are compiled once for all programs.
add_library(test_headers OBJECT support/TestHeaders.cpp)
target_link_libraries(test_headers PRIVATE project_flags test_flags gtest gmock)
target_precompile_headers(test_headers PRIVATE <gmock/gmock.h> <gtest/gtest.h>)
if(WIN32)
  target_compile_options(test_headers PRIVATE -Wa,-mbig-obj)
endif()

function(add_test_program name)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "LIBRARIES;PARTS")
  add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE project_flags test_flags ${ARG_LIBRARIES} gtest gmock gtest_main)
  target_precompile_headers(${name} REUSE_FROM test_headers)
  if(WIN32)
    target_compile_options(${name} PRIVATE -Wa,-mbig-obj)
  endif()
  if(CMAKE_CROSSCOMPILING)
    return()
  endif()
  set(no_skip FAIL_REGULAR_EXPRESSION "\\[  SKIPPED \\]")
  if(NOT ARG_PARTS)
    gtest_discover_tests(${name} TEST_PREFIX ${name}. DISCOVERY_MODE PRE_TEST NO_PRETTY_VALUES
      EXTRA_ARGS --gtest_brief=1 PROPERTIES ${no_skip})
  endif()
  foreach(part IN LISTS ARG_PARTS)
    add_test(NAME ${name}.${part} COMMAND ${name} --gtest_brief=1 --gtest_filter=*${part}*)
    set_tests_properties(${name}.${part} PROPERTIES ${no_skip})
  endforeach()
endfunction()
