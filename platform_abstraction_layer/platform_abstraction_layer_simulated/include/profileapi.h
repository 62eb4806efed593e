// profileapi.h
//
// kernel32: profile files, the text files of sections and keys.
#pragma once

#include <winnt.h>
