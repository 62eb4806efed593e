// fuzz/Files.cpp
//
// Configuration files with any content. The first line of an input is the name of the file, the generation of
// Windows (5 or 6) and the commands to send; the rest is the file's text:
//
//     ORVLCfg.ini 5 GET_SCHEME_VAR_COUNT APPLY_SCHEME

#include "fuzz/Input.h"
#include "fuzz/Machine.h"

#include "acceptance/Seeding.h"
#include "control/Notebook.h"
#include "transcripts/Samples.h"

#include <sstream>

namespace
{

constexpr const char* kInstalled[] = {"ORVLCfg.ini", "SBXCfg.ini", "PowerSetting.ini"};
constexpr const char* kOwn[] = {"PowerSchemes.ini", "UserSchemes.ini", "Display.ini"};
constexpr int kMostRequests = 3;

std::string PathOf(const std::string& name)
{
    const auto is = [&](const char* file) { return name == file; };
    if (std::any_of(std::begin(kInstalled), std::end(kInstalled), is))
    {
        return simulated::Notebook::kInstallationFolder + name;
    }
    return std::any_of(std::begin(kOwn), std::end(kOwn), is)
               ? seeding::LocalAppData() + "\\Kelvo\\ORVL\\Cfg\\" + name
               : std::string();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const std::string text = input.Rest();
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::istringstream words(text.substr(0, end));
    std::string name;
    unsigned major = 0;
    words >> name >> major;
    if (major != 5 && major != 6)
    {
        return -1; // not worth keeping
    }
    fuzz::Machine::Fresh(major);
    const std::string path = PathOf(name);
    const bool isWritten =
        !path.empty() &&
        seeding::WriteBytes(path, std::string_view(text).substr(std::min(end + 1, text.size())));
    int requests = 0;
    for (std::string command; isWritten && requests < kMostRequests && words >> command; ++requests)
    {
        fuzz::Machine::SendSample(command);
    }
    fuzz::Machine::Finish();
    return isWritten && requests > 0 ? 0 : -1;
}
