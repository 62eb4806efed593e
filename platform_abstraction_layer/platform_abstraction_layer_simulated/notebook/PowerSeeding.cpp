// notebook/PowerSeeding.cpp
//
// From the power manager's tables to registry values.

#include "notebook/PowerSeeding.h"

#include "notebook/Text.h"
#include "powrprof/PowerStoreDefaults.h"

namespace simulated
{

namespace
{

DWORD TypeOf(power_store::ValueKind kind) noexcept
{
    switch (kind)
    {
    case power_store::ValueKind::Text:
        return REG_SZ;
    case power_store::ValueKind::Number:
        return REG_DWORD;
    case power_store::ValueKind::Bytes:
        break;
    }
    return REG_BINARY;
}

class Putter : public power_store::ValueWriter
{
public:
    explicit Putter(const RegistryPut& put) : m_put(put)
    {
    }

    bool Put(const wchar_t* path, const wchar_t* name, power_store::ValueKind kind, const void* data,
             DWORD size) override
    {
        return m_put(ToUtf8(path), ToUtf8(name), TypeOf(kind), data, size);
    }

private:
    const RegistryPut& m_put;
};

} // namespace

bool SeedMachinePower(DWORD majorVersion, const RegistryPut& put)
{
    Putter writer(put);
    return power_store::WriteMachineDefaults(writer, majorVersion);
}

bool SeedUserPower(const RegistryPut& put)
{
    Putter writer(put);
    return power_store::WriteUserDefaults(writer);
}

} // namespace simulated
