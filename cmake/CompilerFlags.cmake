# The flags that all code of this project is built with.
#
# Everything natively built, GoogleTest included, has the 16-bit wchar_t of Windows. Warnings are errors in
# the project's own code; `project_flags` carries them to the targets that link it.

if(NOT WIN32)
  add_compile_options(-fshort-wchar)
endif()

if(SANITIZE)
  add_compile_options(-fsanitize=${SANITIZE} -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${SANITIZE})
  if(SANITIZE MATCHES undefined)
    add_compile_options(-fno-sanitize-recover=undefined)
    # The checks of virtual calls and of function pointers need run-time type information at places that the
    # plug-in's C interface doesn't have.
    add_compile_options(-fno-sanitize=vptr)
  endif()
endif()

add_library(project_flags INTERFACE)
target_compile_options(project_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  # GCC 12 reports overlaps that can't be inside its own inlined std::string, in optimised builds alone.
  target_compile_options(project_flags INTERFACE -Wno-restrict)
endif()

if(NOT WIN32 AND (NOT SANITIZE OR CMAKE_CXX_COMPILER_ID STREQUAL GNU))
  # A library that lacks something must fail here, as the Windows linker would have it, not when it is loaded.
  # Under sanitizers clang leaves their run time to the program.
  target_link_options(project_flags INTERFACE LINKER:-z,defs)
endif()

if(WIN32)
  # What Windows XP SP3 on a Pentium M runs: no later functions, no SSE, one DLL without companions.
  add_compile_definitions(_WIN32_WINNT=0x0501 WINVER=0x0501 UNICODE _UNICODE)
  add_compile_options(-march=pentiumpro)
  add_link_options(-static -static-libgcc -static-libstdc++
    -Wl,--major-os-version,5 -Wl,--minor-os-version,1
    -Wl,--major-subsystem-version,5 -Wl,--minor-subsystem-version,1)
endif()

# The flags of the plug-in itself, on every platform: failures are results, and nothing in it needs a guard
# or a thread-local block that a library loaded at run time can't have on Windows XP.
add_library(plugin_flags INTERFACE)
target_link_libraries(plugin_flags INTERFACE project_flags)
target_compile_options(plugin_flags INTERFACE -fno-exceptions -fno-threadsafe-statics)
if(NOT WIN32)
  # The trace recognises the plug-in's calls by the address that they return to, so a call must not become a jump.
  target_compile_options(plugin_flags INTERFACE -fno-optimize-sibling-calls)
  # The failure rows name each place of a call once, and inlining multiplies places.
  target_compile_options(plugin_flags INTERFACE $<$<CONFIG:Debug>:-fno-inline>)
else()
  # Nothing is thrown through the plug-in, and tables for unwinding it would be a seventh of the DLL. The
  # compiler's name would stand in it once for each source.
  target_compile_options(plugin_flags INTERFACE -fno-asynchronous-unwind-tables -fno-ident)
endif()
