// src/loader/DllEntry.cpp
//
// What the loader of Windows does for a DLL, compiled into the library itself: it tells the platform where
// the library lies and calls its DllMain.
