// modules/setupapi/DeviceList.h
//
// A device information set: what a HDEVINFO stands for.
#pragma once

#include "base/HandleTable.h"

#include <setupapi.h>

#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace simulated
{

class DeviceList : public Object
{
public:
    struct Device
    {
        std::string instanceId;
        std::optional<SP_PROPCHANGE_PARAMS> parameters; ///< of the class installer, when some are set
    };
    struct Interface
    {
        std::string instanceId;
        GUID interfaceClass;
    };

    /// `setupClass`: the only class that the list takes devices of, if any.
    explicit DeviceList(std::optional<GUID> setupClass);

    const std::optional<GUID>& SetupClass() const noexcept
    {
        return m_setupClass;
    }

    /// Adds a device unless it is in the list; its place there.
    std::size_t Add(const std::string& instanceId);
    void AddInterface(const std::string& instanceId, const GUID& interfaceClass);

    /// Fills a caller's record for the device at a place. ERROR_INVALID_USER_BUFFER when the record's size
    /// field isn't its size, ERROR_NO_MORE_ITEMS behind the last device.
    DWORD Describe(std::size_t place, SP_DEVINFO_DATA* target) const;

    /// The `index`th interface of a class.
    DWORD DescribeInterface(const GUID& interfaceClass, DWORD index, SP_DEVICE_INTERFACE_DATA* target) const;

    /// Passes the device of a caller's record to `work` and returns its result, or
    /// ERROR_INVALID_USER_BUFFER, or ERROR_INVALID_PARAMETER when the record isn't of this list.
    template <class Work>
    DWORD With(const SP_DEVINFO_DATA* record, Work work)
    {
        const std::lock_guard lock(m_mutex);
        Device* device = nullptr;
        const DWORD error = Resolve(record, device);
        return error == ERROR_SUCCESS ? work(*device) : error;
    }

    /// The interface that a caller's record names.
    DWORD Resolve(const SP_DEVICE_INTERFACE_DATA* record, Interface& found) const;

private:
    DWORD Resolve(const SP_DEVINFO_DATA* record, Device*& device);

    const std::optional<GUID> m_setupClass;
    mutable std::mutex m_mutex;
    std::deque<Device> m_devices; // records hold places, which stay
    std::vector<Interface> m_interfaces;
};

/// Passes the list behind a handle to `work` and returns its result, or ERROR_INVALID_HANDLE.
template <class Work>
DWORD WithList(HDEVINFO handle, Work work)
{
    const auto list = HandleTable::Find<DeviceList>(handle);
    return list == nullptr ? DWORD{ERROR_INVALID_HANDLE} : work(*list);
}

/// Passes the device of a list to `work`; see `DeviceList::With`.
template <class Work>
DWORD WithDevice(HDEVINFO handle, const SP_DEVINFO_DATA* record, Work work)
{
    return WithList(handle, [&](DeviceList& list) { return list.With(record, work); });
}

} // namespace simulated
