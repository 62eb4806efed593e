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
#include <iterator>

namespace simulated::environment
{

namespace
{

constexpr DWORD kLaterMajor = 6;

// A value may name other variables, never its own.
struct Variable
{
    std::string_view name;
    std::string_view earlierValue;
    std::string_view laterValue;
};

constexpr Variable kVariables[] = {
    {"SystemDrive", "C:", "C:"},
    {"SystemRoot", "C:\\WINDOWS", "C:\\WINDOWS"},
    {"ALLUSERSPROFILE", "C:\\Documents and Settings\\All Users", "C:\\ProgramData"},
};

constexpr std::string_view kServiceProfile = "%SystemRoot%\\system32\\config\\systemprofile";

std::string AccountProfile()
{
    const std::optional<Account> account = Accounts::Running();
    const bool hasProfile = account && !account->profile.empty();
    return hasProfile ? account->profile : Expand(kServiceProfile);
}

} // namespace

bool HasLaterFolders()
{
    // A notebook that was made for one generation keeps its folders when its version is changed.
    return Machine::ReadNumber("Machine", "FoldersOf", ReadSystemVersion().major) >= kLaterMajor;
}

std::optional<std::string> Find(std::string_view name)
{
    if (EqualIgnoringCase(name, "USERNAME"))
    {
        return Machine::Account();
    }
    if (EqualIgnoringCase(name, "USERPROFILE"))
    {
        return AccountProfile();
    }
    const auto* const row =
        std::find_if(std::begin(kVariables), std::end(kVariables),
                     [name](const Variable& candidate) { return EqualIgnoringCase(candidate.name, name); });
    const std::string_view value = row == std::end(kVariables) ? std::string_view()
                                   : HasLaterFolders()         ? row->laterValue
                                                               : row->earlierValue;
    return value.empty() ? std::nullopt : std::optional(Expand(value));
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
            // The second sign may begin a name that is known.
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
    return call.Result<DWORD>(0,
                              [&]() -> Outcome<DWORD>
                              {
                                  const std::vector<wchar_t> units =
                                      ToUtf16(environment::Expand(ToUtf8(source)));
                                  const auto needed = static_cast<DWORD>(units.size() + 1);
                                  if (target != nullptr && size > 0)
                                  {
                                      const std::size_t fits = std::min<std::size_t>(units.size(), size - 1);
                                      std::copy_n(units.begin(), fits, target);
                                      target[fits] = 0;
                                  }
                                  return {needed, ERROR_SUCCESS};
                              });
}
