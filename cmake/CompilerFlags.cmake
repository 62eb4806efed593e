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
    # The checks of virtual calls and of function pointers need run-time type information, which the plug-in's
    # C interface doesn't have.
    add_compile_options(-fno-sanitize=vptr)
  endif()
endif()

add_library(project_flags INTERFACE)
target_compile_options(project_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  # In optimised builds GCC 12 reports impossible overlaps inside its own inlined std::string.
  target_compile_options(project_flags INTERFACE -Wno-restrict)
endif()

if(NOT WIN32 AND (NOT SANITIZE OR CMAKE_CXX_COMPILER_ID STREQUAL GNU))
  # A missing symbol must fail at link time, as on Windows, not when the library is loaded. With sanitizers, clang
  # links their run-time library into programs alone.
  target_link_options(project_flags INTERFACE LINKER:-z,defs)
endif()

if(WIN32)
  # For Windows XP SP3 on a Pentium M: no later functions, no SSE, no DLLs of the compiler.
  add_compile_definitions(_WIN32_WINNT=0x0501 WINVER=0x0501 UNICODE _UNICODE)
  add_compile_options(-march=pentiumpro)
  add_link_options(-static -static-libgcc -static-libstdc++
    -Wl,--major-os-version,5 -Wl,--minor-os-version,1
    -Wl,--major-subsystem-version,5 -Wl,--minor-subsystem-version,1)
endif()

# The flags of the plug-in itself, on every platform: failures are results, and nothing in it needs a
# static's guard or thread-local storage, which a library loaded at run time can't have on Windows XP.
add_library(plugin_flags INTERFACE)
target_link_libraries(plugin_flags INTERFACE project_flags)
target_compile_options(plugin_flags INTERFACE -fno-exceptions -fno-threadsafe-statics)
if(NOT WIN32)
  # The trace recognises the plug-in's calls by the address that they return to, so a call must not become a jump.
  target_compile_options(plugin_flags INTERFACE -fno-optimize-sibling-calls)
  # The failure rows name each call site once, and inlining duplicates call sites.
  target_compile_options(plugin_flags INTERFACE $<$<CONFIG:Debug>:-fno-inline>)
else()
  # Nothing is thrown through the plug-in, and unwind tables would be a seventh of the DLL. Each source would add
  # the compiler's name.
  target_compile_options(plugin_flags INTERFACE -fno-asynchronous-unwind-tables -fno-ident)
endif()
