// winnls.h
//
// kernel32: code pages.
#pragma once

#include <winnt.h>
