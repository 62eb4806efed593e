// include/objbase.h
//
// ole32: COM, as far as an object is created by the name of its class and called by slot.
#pragma once

#include <windows.h>

using LPCOLESTR = const WCHAR*;

/// The first three slots of every interface.
struct IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID interfaceId, void** object) = 0;
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;

protected:
    // Destruction is Release's; the destructor must not take a slot.
    ~IUnknown() = default;
};
using LPUNKNOWN = IUnknown*;

inline constexpr IID IID_IUnknown = {
    0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

enum
{
    COINIT_MULTITHREADED = 0x0,
    COINIT_APARTMENTTHREADED = 0x2
};

enum
{
    CLSCTX_INPROC_SERVER = 0x1,
    CLSCTX_LOCAL_SERVER = 0x4,
    CLSCTX_REMOTE_SERVER = 0x10
};

#define CLASS_E_NOAGGREGATION static_cast<HRESULT>(0x80040110)

SIM_API HRESULT WINAPI CoInitializeEx(LPVOID reserved, DWORD apartment);
SIM_API void WINAPI CoUninitialize();
SIM_API HRESULT WINAPI CLSIDFromProgID(LPCOLESTR progId, LPCLSID classId);
SIM_API HRESULT WINAPI CoCreateInstance(REFCLSID classId, LPUNKNOWN outer, DWORD context, REFIID interfaceId,
                                        LPVOID* object);
