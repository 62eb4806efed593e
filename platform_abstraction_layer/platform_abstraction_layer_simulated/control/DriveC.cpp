// control/DriveC.cpp
//
// Whole files of the machine.

#include "control/DriveC.h"

#include "base/HostFiles.h"
#include "base/WholeFile.h"
#include "modules/kernel32/Paths.h"

#include <winerror.h>

namespace simulated
{

std::optional<std::string> DriveC::Read(std::string_view path)
{
    paths::Place place;
    return paths::FindExisting(path, place) == ERROR_SUCCESS ? ReadWhole(place.host) : std::nullopt;
}

bool DriveC::Write(std::string_view path, std::string_view bytes)
{
    const std::size_t last = path.find_last_of("\\/");
    if (last == std::string_view::npos)
    {
        return false;
    }
    paths::CreateFolders(path.substr(0, last)); // what it answers shows in the next step
    paths::Place place;
    return paths::Find(path, place) == ERROR_SUCCESS && WriteWhole(place.host, bytes);
}

bool DriveC::Exists(std::string_view path)
{
    paths::Place place;
    return paths::FindExisting(path, place) == ERROR_SUCCESS;
}

bool DriveC::Remove(std::string_view path)
{
    paths::Place place;
    return paths::FindExisting(path, place) == ERROR_SUCCESS && host_files::RemoveAll(place.host);
}

} // namespace simulated
