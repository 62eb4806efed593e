// scheme/WholeScheme.h
//
// The two parts of a whole scheme, `set.schemeID`: its variables, one after the other, and the display
// attributes in the user's folder.
#pragma once

#include "scheme/PowerBackend.h"
#include "scheme/PwrSet.h"

/// -1 in the field of a variable that can't be read.
void ReadWholeScheme(const PowerBackend& backend, PWRSET& set) noexcept;

/// A write that fails has logged why; the next one follows.
void WriteWholeScheme(const PowerBackend& backend, PWRSET& set) noexcept;

/// 0 in the field of an attribute that isn't there.
void ReadDisplayAttributes(PWRSET& set, const wchar_t* folder) noexcept;
void WriteDisplayAttributes(const PWRSET& set, const wchar_t* folder) noexcept;
