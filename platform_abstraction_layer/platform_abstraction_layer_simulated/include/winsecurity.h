// winsecurity.h
//
// advapi32: accounts, security identifiers, tokens, security descriptors.
#pragma once

#include <winnt.h>
