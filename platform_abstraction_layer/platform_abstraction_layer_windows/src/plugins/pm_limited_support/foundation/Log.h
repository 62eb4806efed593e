// foundation/Log.h
//
// The two logs of the system: files that each line opens, extends and closes again. Their folder is the
// switch: where it doesn't exist the line is lost, and nothing creates it. The log of the classes is written
// by `CORVLBase::DBGOUT`.
#pragma once

/// Writes one line, cut at 255 characters, to "C:/temp1234567890/trxpm.log", the log of the plug-in level
/// functions: the exports, the handlers and the notification thread.
void PmLog(const wchar_t* format, ...) noexcept;

/// Writes `text`, which may show the last error, to the log of the classes; null means silence.
void LogFailure(const wchar_t* text) noexcept;

/// Passes `condition` on; when it is false, `failureText` is logged.
[[nodiscard]] inline bool Check(bool condition, const wchar_t* failureText) noexcept
{
    if (!condition)
    {
        LogFailure(failureText);
    }
    return condition;
}
