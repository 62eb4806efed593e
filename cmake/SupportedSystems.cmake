# Where the project can be built. Elsewhere a build would fail late or produce something untested.
#
#   the product    any system with a MinGW-w64 g++ for 32-bit Windows, by cmake/mingw-i686-win32.cmake
#   natively       Linux on x86, 64-bit or 32-bit, with g++ 12 or clang++ 14 and later: the simulated Windows relies on
#                  glibc and on the record layouts of x86

if(WIN32)
  if(NOT MINGW OR NOT CMAKE_SIZEOF_VOID_P EQUAL 4)
    message(FATAL_ERROR "The product is 32-bit and built with MinGW-w64's g++: cmake --preset windows-x86")
  endif()
  return()
endif()

if(NOT CMAKE_SYSTEM_NAME STREQUAL Linux OR NOT CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|amd64|AMD64|i.86)$")
  message(FATAL_ERROR "The native build supports Linux on x86, not ${CMAKE_SYSTEM_NAME} on ${CMAKE_SYSTEM_PROCESSOR}. "
    "The product itself can be built here: cmake --preset windows-x86")
endif()
foreach(compiler IN ITEMS "GNU 12" "Clang 14")
  separate_arguments(compiler)
  list(GET compiler 1 least)
  if(compiler MATCHES "^${CMAKE_CXX_COMPILER_ID};" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL least)
    return()
  endif()
endforeach()
message(FATAL_ERROR "The native build needs g++ 12 or clang++ 14 or later, not "
  "${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION}")
