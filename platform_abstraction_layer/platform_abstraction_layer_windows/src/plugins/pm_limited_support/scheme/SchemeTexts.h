// scheme/SchemeTexts.h
//
// Names and descriptions of the operating system's schemes, found by walking them all.
#pragma once

#include "scheme/PowerBackend.h"
#include "scheme/SchemeEx.h"

namespace scheme_texts
{

/// Where the texts of one scheme go, with the capacities in characters. A null buffer is skipped.
struct Request
{
    int index;
    wchar_t* name;
    const ULONG* nameCapacity;
    wchar_t* description;
    const ULONG* descriptionCapacity;
};

/// The scheme of that name, case-sensitive, or -1.
int FindByName(const PowerBackend& backend, const wchar_t* name) noexcept;

// Nonzero when the walk took place.

int Visit(const PowerBackend& backend, PwrSchemeCallback callback, LONG argument) noexcept;
int Copy(const PowerBackend& backend, Request request) noexcept;

} // namespace scheme_texts
