// foundation/OrvlBase.cpp
//
// The base class and its log.

#include "foundation/OrvlBase.h"

CORVLBase::CORVLBase() noexcept = default;
CORVLBase::CORVLBase(const CORVLBase&) noexcept = default;
CORVLBase& CORVLBase::operator=(const CORVLBase&) noexcept = default;
CORVLBase::~CORVLBase() = default;
