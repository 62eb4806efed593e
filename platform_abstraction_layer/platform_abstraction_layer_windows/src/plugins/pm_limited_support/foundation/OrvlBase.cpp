// foundation/OrvlBase.cpp
//
// The base class and its log. The call to the service stands in ServiceCall.cpp, the walk through the loaded
// hives in LoadedHives.cpp.

#include "foundation/OrvlBase.h"

#include "foundation/LogFile.h"
#include "foundation/Text.h"

#include <cstdarg>
#include <iterator>

CORVLBase::CORVLBase() noexcept = default;
CORVLBase::CORVLBase(const CORVLBase&) noexcept = default;
CORVLBase& CORVLBase::operator=(const CORVLBase&) noexcept = default;
CORVLBase::~CORVLBase() = default;

void CORVLBase::DBGOUT(const wchar_t* format, ...) noexcept
{
    wchar_t line[1024];
    va_list arguments;
    va_start(arguments, format);
    text::FormatV(line, std::size(line), format, arguments);
    va_end(arguments);
    logging::AppendLine(L"C:/temp1234567890/orvl.log", line);
}
