// poclass.h
//
// The records and I/O controls of the battery class driver.
#pragma once

#include <windows.h>
