// modules/kernel32/Environment.cpp
//
// The variables and their expansion.

#include "modules/kernel32/Environment.h"

#include "base/PlatformCall.h"
#include "base/Text.h"
#include "machine/Accounts.h"
#include "machine/Machine.h"
#include "modules/kernel32/SystemVersion.h"

#include <windows.h>

#include <algorithm>

namespace simulated::environment
{

namespace
{

constexpr DWORD kLaterMajor = 6;

// The value of a variable, whose name ignores case.
std::optional<std::string> Find(std::string_view name)
{
    if (EqualIgnoringCase(name, "SystemDrive"))
    {
        return "C:";
    }
    if (EqualIgnoringCase(name, "SystemRoot"))
    {
        return "C:\\WINDOWS";
    }
    if (!EqualIgnoringCase(name, "USERPROFILE"))
    {
        return std::nullopt;
    }
    const std::optional<Account> account = Accounts::Running();
    const bool hasProfile = account && !account->profile.empty();
    return hasProfile ? account->profile : "C:\\WINDOWS\\system32\\config\\systemprofile";
}

} // namespace

bool HasLaterFolders()
{
    // A notebook that was made for one generation keeps its folders when its version is changed.
    return Machine::ReadNumber("Machine", "FoldersOf", ReadSystemVersion().major) >= kLaterMajor;
}

std::string Expand(std::string_view text)
{
    std::string expanded;
    while (!text.empty())
    {
        const std::size_t begin = text.find('%');
        const std::size_t end = begin == std::string_view::npos ? begin : text.find('%', begin + 1);
        if (end == std::string_view::npos)
        {
            break;
        }
        expanded += text.substr(0, begin);
        const std::optional<std::string> value = Find(text.substr(begin + 1, end - begin - 1));
        if (value)
        {
            expanded += *value;
            text.remove_prefix(end + 1);
        }
        else
        {
            // The second percent sign may begin a known name.
            expanded += text.substr(begin, end - begin);
            text.remove_prefix(end);
        }
    }
    expanded += text;
    return expanded;
}

} // namespace simulated::environment

using namespace simulated;

SIM_API DWORD WINAPI ExpandEnvironmentStringsW(LPCWSTR source, LPWSTR target, DWORD size)
{
    PlatformCall call(CallClass::System, "ExpandEnvironmentStringsW", SIM_CALLER);
    call.Arguments(source, size);
    return call.Result<DWORD>(
        0,
        [&]() -> Outcome<DWORD>
        {
            const std::vector<wchar_t> units = ToUtf16(environment::Expand(ToUtf8(source)));
            if (target != nullptr && size > 0)
            {
                *std::copy_n(units.begin(), std::min<std::size_t>(units.size(), size - 1), target) = 0;
            }
            return {static_cast<DWORD>(units.size() + 1), ERROR_SUCCESS};
        });
}
