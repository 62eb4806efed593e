// fileapi.h
//
// kernel32: files and folders.
#pragma once

#include <winnt.h>
