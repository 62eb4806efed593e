// control/PowerSeeding.cpp
//
// From the power manager's tables to registry values.

#include "control/PowerSeeding.h"

#include "base/Text.h"
#include "modules/powrprof/PowerStoreDefaults.h"

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

class HiveWriter : public power_store::ValueWriter
{
public:
    explicit HiveWriter(registry::Hive& hive) : m_hive(hive)
    {
    }

    bool Put(const wchar_t* path, const wchar_t* name, power_store::ValueKind kind, const void* data,
             DWORD size) override
    {
        m_hive.Put(ToUtf8(path), ToUtf8(name), {TypeOf(kind), {static_cast<const char*>(data), size}});
        return true;
    }

private:
    registry::Hive& m_hive;
};

} // namespace

void SeedMachinePower(DWORD majorVersion, registry::Hive& hive)
{
    HiveWriter writer(hive);
    power_store::WriteMachineDefaults(writer, majorVersion);
}

void SeedUserPower(registry::Hive& hive)
{
    HiveWriter writer(hive);
    power_store::WriteUserDefaults(writer);
}

} // namespace simulated
