// foundation/PmLog.cpp
//
// The log of the plug-in level functions.

#include "foundation/PmLog.h"

#include "foundation/LogFile.h"
#include "foundation/Text.h"

#include <cstdarg>
#include <iterator>

void PmLog(const wchar_t* format, ...) noexcept
{
    wchar_t line[256];
    va_list arguments;
    va_start(arguments, format);
    text::FormatV(line, std::size(line), format, arguments);
    va_end(arguments);
    logging::AppendLine(L"C:/temp1234567890/trxpm.log", line);
}
