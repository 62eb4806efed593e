// modules/powrprof/PowerStoreDefaults.h
//
// What a fresh machine holds: the six standard index-based schemes with the values that a notebook of that
// time had, the three standard GUID-based schemes of version 6, and the power source. It knows where each
// value goes; a writer puts it there, through the registry functions or past them.
#pragma once

#include "PowerStoreAnswers.h"

namespace power_store
{

enum class ValueKind
{
    Text,   ///< `data` is a terminated text
    Number, ///< `data` is a DWORD
    Bytes
};

/// Takes the values of a fresh store one by one.
class ValueWriter
{
public:
    ValueWriter() = default;
    virtual ~ValueWriter() = default;
    ValueWriter(const ValueWriter&) = delete;
    ValueWriter& operator=(const ValueWriter&) = delete;

    /// Puts a value into the key at `path`, which comes into being; `size` in bytes. False stops the writing.
    virtual bool Put(const wchar_t* path, const wchar_t* name, ValueKind kind, const void* data,
                     DWORD size) = 0;
};

/// A notebook on AC power with a full battery that may hibernate.
MachineAnswers DefaultMachineAnswers() noexcept;

/// The part of the machine; paths are below HKEY_LOCAL_MACHINE. `majorVersion` is the operating system's:
/// from 6 on the GUID-based schemes exist too.
bool WriteMachineDefaults(ValueWriter& writer, DWORD majorVersion);

/// The part of one account; paths are below the root of its hive.
bool WriteUserDefaults(ValueWriter& writer);

} // namespace power_store
