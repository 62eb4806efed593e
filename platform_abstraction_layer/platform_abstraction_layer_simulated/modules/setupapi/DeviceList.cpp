// modules/setupapi/DeviceList.cpp
//
// Devices and interfaces of a list, and the records by which callers name them. A record's reserved field
// holds the place in the list, one above, so that a record of zeros names nothing.

#include "modules/setupapi/DeviceList.h"

#include "base/GuidText.h"
#include "base/Text.h"
#include "modules/setupapi/DeviceNodes.h"

#include <algorithm>

namespace simulated
{

namespace
{

template <class Record>
bool IsWellFormed(const Record* record)
{
    return record != nullptr && record->cbSize == sizeof(Record);
}

} // namespace

DeviceList::DeviceList(std::optional<GUID> setupClass)
    : Object(ObjectKind::DeviceList), m_setupClass(setupClass)
{
}

std::size_t DeviceList::Add(const std::string& instanceId)
{
    const std::lock_guard lock(m_mutex);
    const auto found =
        std::find_if(m_devices.begin(), m_devices.end(),
                     [&](const Device& device) { return EqualIgnoringCase(device.instanceId, instanceId); });
    const auto place = static_cast<std::size_t>(found - m_devices.begin());
    if (found == m_devices.end())
    {
        m_devices.push_back({instanceId, std::nullopt});
    }
    return place;
}

void DeviceList::AddInterface(const std::string& instanceId, const GUID& interfaceClass)
{
    Add(instanceId);
    const std::lock_guard lock(m_mutex);
    m_interfaces.push_back({instanceId, interfaceClass});
}

DWORD DeviceList::Describe(std::size_t place, SP_DEVINFO_DATA* target) const
{
    if (!IsWellFormed(target))
    {
        return ERROR_INVALID_USER_BUFFER;
    }
    const std::lock_guard lock(m_mutex);
    if (place >= m_devices.size())
    {
        return ERROR_NO_MORE_ITEMS;
    }
    const std::string& id = m_devices[place].instanceId;
    target->ClassGuid = nodes::SetupClassOf(id);
    target->DevInst = nodes::NumberOf(id);
    target->Reserved = place + 1;
    return ERROR_SUCCESS;
}

DWORD DeviceList::DescribeInterface(const GUID& interfaceClass, DWORD index,
                                    SP_DEVICE_INTERFACE_DATA* target) const
{
    if (!IsWellFormed(target))
    {
        return ERROR_INVALID_USER_BUFFER;
    }
    const std::lock_guard lock(m_mutex);
    for (std::size_t place = 0; place < m_interfaces.size(); ++place)
    {
        if (IsSame(m_interfaces[place].interfaceClass, interfaceClass) && index-- == 0)
        {
            target->InterfaceClassGuid = interfaceClass;
            target->Flags = SPINT_ACTIVE;
            target->Reserved = place + 1;
            return ERROR_SUCCESS;
        }
    }
    return ERROR_NO_MORE_ITEMS;
}

DWORD DeviceList::Resolve(const SP_DEVINFO_DATA* record, Device*& device)
{
    if (!IsWellFormed(record))
    {
        return ERROR_INVALID_USER_BUFFER;
    }
    if (record->Reserved == 0 || record->Reserved > m_devices.size() ||
        record->DevInst != nodes::NumberOf(m_devices[record->Reserved - 1].instanceId))
    {
        return ERROR_INVALID_PARAMETER;
    }
    device = &m_devices[record->Reserved - 1];
    return ERROR_SUCCESS;
}

DWORD DeviceList::Resolve(const SP_DEVICE_INTERFACE_DATA* record, Interface& found) const
{
    if (!IsWellFormed(record))
    {
        return ERROR_INVALID_USER_BUFFER;
    }
    const std::lock_guard lock(m_mutex);
    if (record->Reserved == 0 || record->Reserved > m_interfaces.size())
    {
        return ERROR_INVALID_PARAMETER;
    }
    found = m_interfaces[record->Reserved - 1];
    return ERROR_SUCCESS;
}

} // namespace simulated
