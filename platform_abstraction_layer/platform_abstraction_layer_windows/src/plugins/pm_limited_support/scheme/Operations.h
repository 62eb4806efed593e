// scheme/Operations.h
//
// The operations of the engine that take more than a few steps, each with a source of its name. The results
// are those of the members of `CSchemeEx` that call them.
#pragma once

#include "scheme/PowerBackend.h"
#include "scheme/PwrSet.h"
#include "scheme/SchemeEx.h"

/// Adding schemes. An addition isn't atomic, and nothing is undone.
namespace add
{

int Copy(CSchemeEx& engine, const wchar_t* name, const wchar_t* description, int from) noexcept;
[[nodiscard]] int CopyForUser(CSchemeEx& engine, const wchar_t* name, const wchar_t* description, int from,
                              const wchar_t* user) noexcept;
[[nodiscard]] int WholeForUser(CSchemeEx& engine, PWRSET& set, const wchar_t* user) noexcept;

} // namespace add

namespace apply
{

[[nodiscard]] int ForMachine(CSchemeEx& engine, int index) noexcept;

/// The same, and records the choice of the engine's user.
[[nodiscard]] int ForUser(CSchemeEx& engine, int index) noexcept;

} // namespace apply

/// Brings a user's own power settings to the account in which this process runs: of what lies in the key
/// `user` below HKEY_USERS, disk and hibernate times into scheme `index`; buttons, lid actions and battery
/// alarms into the global policy.
void TakeOverUserPolicy(const PowerBackend& backend, const wchar_t* user, int index) noexcept;

// The two parts of a whole scheme, `set.schemeID`: its variables, one after the other, and the display
// attributes in the user's folder.

/// -1 in the field of a variable that can't be read.
void ReadWholeScheme(const PowerBackend& backend, PWRSET& set) noexcept;

/// A write that fails has logged why; the next one follows.
void WriteWholeScheme(const PowerBackend& backend, PWRSET& set) noexcept;

/// 0 in the field of an attribute that isn't there.
void ReadDisplayAttributes(PWRSET& set, const wchar_t* folder) noexcept;
void WriteDisplayAttributes(const PWRSET& set, const wchar_t* folder) noexcept;

/// Names and descriptions of the operating system's schemes, found by walking them all.
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

[[nodiscard]] int Visit(const PowerBackend& backend, PwrSchemeCallback callback, LONG argument) noexcept;
int Copy(const PowerBackend& backend, Request request) noexcept;

} // namespace scheme_texts
