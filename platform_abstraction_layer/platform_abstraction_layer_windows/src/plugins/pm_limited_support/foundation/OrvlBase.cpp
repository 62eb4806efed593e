// foundation/OrvlBase.cpp
//
// The base class. Its log stands in Log.cpp, the call to the service in ServiceCall.cpp, the walk through the
// loaded hives in LoadedHives.cpp.

#include "foundation/OrvlBase.h"

CORVLBase::CORVLBase() noexcept = default;
CORVLBase::CORVLBase(const CORVLBase&) noexcept = default;
CORVLBase& CORVLBase::operator=(const CORVLBase&) noexcept = default;
CORVLBase::~CORVLBase() = default;
