// scheme/ClearFiles.h
//
// Removing the files of a clearing.
#pragma once

/// Deletes the file `suffix`, which begins with a backslash, below `folder` and logs `format` with its path.
/// The line reports the attempt: whether the file was there isn't asked.
void DeleteFileBelow(const wchar_t* folder, const wchar_t* suffix, const wchar_t* format) noexcept;
