// modules/msvcrt/Format.h
//
// printf formatting of wide text with the rules of the Microsoft runtime.
//
// Known differences from Windows: the conversions are d, i, u, x, X, c, C, s and S, with the flags "-" and
// "0", a width, and the sizes h, l and w. Any other letter is shown as itself and reads no argument.
#pragma once

#include <cstdarg>
#include <cstddef>

namespace simulated::runtime
{

/// Writes at most `count` units. The length of the text; -1 when it is longer than `count`. A terminator
/// follows only where there is room.
int Format(wchar_t* target, std::size_t count, const wchar_t* format, va_list arguments);

} // namespace simulated::runtime
