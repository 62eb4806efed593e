// include/initguid.h
//
// Included before a header that names GUIDs, it makes Windows define them there. The headers here always do.
#pragma once

#include <windef.h>
