// plugin/SchemeConversion.h
//
// Between the wire form of a whole scheme and the engine's: narrow and wide texts, and two fields that change
// places.
#pragma once

#include "plugin/WireRecords.h"
#include "scheme/PwrSet.h"

/// Fills `setting` from the record. A text ends at its terminator or after 255 bytes; a name without one in
/// its own 32 bytes runs on into the description.
void ConvertPwrSchemeData(const PM_Power_Scheme_Data_ALL& wire, PWRSET& setting) noexcept;

/// The record of a scheme's settings. Name and description stay empty, and the `LUMS` level for battery
/// power is the one for AC power: there is one for both.
void ConvertPwrSet(const PWRSET& setting, PM_Power_Scheme_Data_ALL& wire) noexcept;

/// Name and description of a record that begins with them, under the rules of `ConvertPwrSchemeData`.
void ConvertSchemeTexts(const void* wire, wchar_t (&name)[256], wchar_t (&description)[256]) noexcept;
