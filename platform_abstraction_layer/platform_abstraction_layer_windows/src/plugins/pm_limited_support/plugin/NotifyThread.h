// plugin/NotifyThread.h
//
// The plug-in's only thread of its own: it waits for the event "ApplySchemeEvent", which a party outside the
// plug-in signals, and tells the host of the applied scheme.
#pragma once

#include <windows.h>

class CPluginHelper;

/// The thread's function; the argument isn't used. Always 0.
DWORD WINAPI PMNotifyHandler(LPVOID argument) noexcept;

namespace notification
{

/// At load and unload of the library.
void SetUp() noexcept;
void TearDown() noexcept;

/// Creates event and thread and stores their handles in the context. True also when they are there already;
/// false, with nothing left behind, when one can't be created.
bool Start(CPluginHelper& context) noexcept;

/// Asks the thread to end and waits until it has, unless it is the calling thread itself; that one ends when
/// its present call of the host returns. The context's handles are null from now on.
void Stop(CPluginHelper& context) noexcept;

} // namespace notification
