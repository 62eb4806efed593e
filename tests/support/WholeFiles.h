// support/WholeFiles.h
//
// Whole files by their Windows paths, through functions of the Microsoft runtime that natively exist, too.
#pragma once

#include <windows.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct FileCloser
{
    void operator()(FILE* file) const
    {
        std::fclose(file);
    }
};
using OpenedFile = std::unique_ptr<FILE, FileCloser>;

inline bool WriteBytes(const wchar_t* path, std::string_view bytes)
{
    const OpenedFile file(_wfopen(path, L"wb"));
    return file != nullptr && std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
}

inline std::optional<std::string> ReadBytes(const wchar_t* path)
{
    const OpenedFile file(_wfopen(path, L"rb"));
    if (file == nullptr)
    {
        return std::nullopt;
    }
    std::string bytes;
    char block[4096];
    while (const std::size_t count = std::fread(block, 1, sizeof block, file.get()))
    {
        bytes.append(block, count);
    }
    return bytes;
}
