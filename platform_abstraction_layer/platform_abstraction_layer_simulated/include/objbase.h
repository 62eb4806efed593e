// objbase.h
//
// ole32: COM.
#pragma once

#include <windows.h>
