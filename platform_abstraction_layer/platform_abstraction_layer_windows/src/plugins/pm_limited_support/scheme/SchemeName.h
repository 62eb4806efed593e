// scheme/SchemeName.h
//
// A scheme's name as it is taken from a caller.
#pragma once

#include "foundation/Text.h"

/// True for a name that would write lines of its own into the user scheme file.
bool HasLineBreak(const wchar_t* name) noexcept;

class SchemeName
{
public:
    /// Takes a name without the blanks at its ends. False for none: a null, empty or blank name, one of more
    /// than 258 characters, and one with a line break.
    [[nodiscard]] bool Take(const wchar_t* name) noexcept;

    /// True when the name isn't longer than a scheme's name may be.
    bool IsShortEnough() const noexcept;

    /// The trimmed name, as the operating system's functions want it.
    wchar_t* Text() noexcept;

private:
    wchar_t m_text[text::kPathCapacity] = {};
};
