// shlobj.h
//
// shell32: known folders.
#pragma once

#include <windows.h>
