// runtime.h
//
// The parts of the Microsoft C runtime that differ from the native one.
#pragma once

#include <winnt.h>
