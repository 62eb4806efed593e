// scheme/WholeScheme.h
//
// The writes that make up a whole scheme, for those who write one.
#pragma once

#include "scheme/PwrSet.h"

class CSchemeEx;

/// Writes every variable of `set` that a whole scheme has into scheme `set.schemeID`, one after the other. A
/// write that fails has logged why; the next one follows.
void WriteWholeScheme(CSchemeEx& engine, PWRSET& set) noexcept;
