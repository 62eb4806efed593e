// control/PowerSeeding.cpp
//
// From the power manager's tables to registry values.

#include "control/Seeding.h"

#include "base/Text.h"
#include "modules/powrprof/PowerStoreDefaults.h"

namespace simulated
{

namespace
{

class HiveWriter : public power_store::ValueWriter
{
public:
    explicit HiveWriter(registry::Hive& hive) : m_hive(hive)
    {
    }

    bool Put(const wchar_t* path, const wchar_t* name, power_store::ValueKind kind, const void* data,
             DWORD size) override
    {
        using power_store::ValueKind;
        const DWORD type = kind == ValueKind::Text     ? REG_SZ
                           : kind == ValueKind::Number ? REG_DWORD
                                                       : REG_BINARY;
        m_hive.Put(ToUtf8(path), ToUtf8(name), {type, {static_cast<const char*>(data), size}});
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
