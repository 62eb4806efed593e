// control/DriveC.h
//
// The files of the machine in the hands of tests and tools, whole, by their Windows paths.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace simulated
{

class DriveC
{
public:
    /// Nothing when there is no such file.
    static std::optional<std::string> Read(std::string_view path);

    /// Makes the folders above the file when they aren't there. False when the host refuses.
    [[nodiscard]] static bool Write(std::string_view path, std::string_view bytes);

    /// A file or a folder.
    [[nodiscard]] static bool Exists(std::string_view path);

    /// Takes a file, or a folder with all that is in it, away.
    [[nodiscard]] static bool Remove(std::string_view path);
};

} // namespace simulated
