// msvcrt/Format.h
//
// printf formatting with the rules of the Microsoft runtime, for wide and narrow targets.
//
// Known differences from Windows: "%n" writes nothing; "%a" is no conversion; infinite numbers and those that
// are none show as the native library has them; the precision of a floating-point number counts up to 512.
#pragma once

#include <cstdarg>
#include <cstddef>

namespace simulated::runtime
{

/// Writes at most `count` units. The length of the text; -1 when it is longer than `count`, or when a
/// character has no place in a narrow text. A terminator follows only where there is room. A null `target`
/// with a `count` of 0 asks for the length. A conversion that isn't known is shown as its letter and reads no
/// argument.
int Format(wchar_t* target, std::size_t count, const wchar_t* format, va_list arguments);
int Format(char* target, std::size_t count, const char* format, va_list arguments);

} // namespace simulated::runtime
