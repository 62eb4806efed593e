// base/Text.h
//
// Text inside the simulated platform is UTF-8; the Windows functions take UTF-16. Lone surrogates survive
// the round trip.
#pragma once

#include <windef.h>

#include <string>
#include <string_view>
#include <vector>

namespace simulated
{

std::string ToUtf8(const wchar_t* source, std::size_t length);

/// A null pointer counts as empty.
std::string ToUtf8(const wchar_t* source);

/// The UTF-16 units of `source`, without a terminator.
std::vector<wchar_t> ToUtf16(std::string_view source);

/// Copies `source` with its terminator; false, with nothing written, when it doesn't fit.
bool CopyToUtf16(std::string_view source, wchar_t* target, std::size_t capacity);

std::size_t Length(const wchar_t* source);

/// Names of files, keys, values and accounts ignore case.
std::string FoldCase(std::string_view source);
bool EqualIgnoringCase(std::string_view left, std::string_view right);
wchar_t FoldCase(wchar_t unit);

} // namespace simulated
