// base/HandleTable.h
//
// The one handle table of a process. Every kind of handle (files, events, keys, device lists, tokens) is an
// entry; its object is released when the last handle and the last call that uses it are gone.
#pragma once

#include "base/PlatformCall.h"

#include <memory>

namespace simulated
{

enum class ObjectKind
{
    File,
    Device, ///< an opened device: the kernel driver, a battery
    Event,
    Semaphore,
    Mapping,
    Thread,
    Token,
    Key,
    DeviceList
};

/// What a handle stands for.
class Object
{
public:
    explicit Object(ObjectKind kind) : m_kind(kind)
    {
    }
    virtual ~Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    ObjectKind Kind() const noexcept
    {
        return m_kind;
    }

    /// True for what the plug-in keeps open by design until its process ends; the leak count passes it over.
    virtual bool LivesWithTheProcess() const
    {
        return false;
    }

private:
    ObjectKind m_kind;
};

class HandleTable
{
public:
    /// A new handle for `object`, never null. When the call is the plug-in's, the leak count knows it.
    static void* Insert(std::shared_ptr<Object> object, const PlatformCall& call);

    /// The object behind `handle`, or null when the handle is not open.
    static std::shared_ptr<Object> Find(const void* handle);

    /// The object when it is of `Type`, else null.
    template <class Type>
    static std::shared_ptr<Type> Find(const void* handle)
    {
        return std::dynamic_pointer_cast<Type>(Find(handle));
    }

    /// Closes a handle. ERROR_INVALID_HANDLE when it isn't open.
    static DWORD Close(const void* handle);
};

} // namespace simulated
