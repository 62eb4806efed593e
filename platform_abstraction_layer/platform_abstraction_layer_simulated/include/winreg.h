// winreg.h
//
// advapi32: the registry.
#pragma once

#include <winnt.h>
