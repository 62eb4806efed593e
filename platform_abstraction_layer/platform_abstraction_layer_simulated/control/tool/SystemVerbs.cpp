// control/tool/SystemVerbs.cpp
//
// The verbs for the system: making a notebook, its version, code page, modules, accounts and registry, and
// the signal that a scheme was applied. Values of the registry are shown and
// given in the form of a registry export (advapi32/ValueText.h); what has no such form is a text.

#include "control/Notebook.h"
#include "control/RegistryEditor.h"
#include "control/State.h"
#include "control/tool/Verbs.h"
#include "machine/Accounts.h"
#include "machine/Machine.h"

#include <windows.h>

#include <cstdio>

using namespace simulated;

namespace notebook_tool
{

namespace
{

constexpr const char* kCompanionKey = "HKLM\\Software\\Kelvo\\ORVA";
constexpr const wchar_t* kApplyEvent = L"ApplySchemeEvent";

// "6.1" or "6".
bool ParseVersion(const std::string& text, unsigned& major, unsigned& minor)
{
    const std::size_t dot = text.find('.');
    minor = 0;
    return ParseNumber(text.substr(0, dot), major) &&
           (dot == std::string::npos || ParseNumber(text.substr(dot + 1), minor));
}

Outcome Create(const Request& request)
{
    unsigned major = 0;
    unsigned minor = 0;
    if (!ParseVersion(request.version, major, minor))
    {
        return Outcome::Misused;
    }
    const std::string folder = Machine::Folder();
    if (!Notebook::IsReplaceable(folder))
    {
        std::fprintf(stderr, "notebook: %s holds something else than a notebook\n", folder.c_str());
        return Outcome::Refused;
    }
    if (!Notebook::Create(folder, {major, minor, request.codePage, request.installation}))
    {
        return Outcome::Refused;
    }
    std::printf("a notebook with Windows %u.%u in %s\n", major, minor, folder.c_str());
    return Outcome::Done;
}

Outcome Install(const Request& request)
{
    return request.arguments.size() == 1 ? DoneIf(Notebook::Install(request.Argument(0))) : Outcome::Misused;
}

Outcome SetVersion(const Request& request)
{
    unsigned major = 0;
    unsigned minor = 0;
    return ParseVersion(request.Argument(0), major, minor) ? DoneIf(Notebook::SetVersion(major, minor))
                                                           : Outcome::Misused;
}

Outcome SetCodePage(const Request& request)
{
    unsigned codePage = 0;
    return ParseNumber(request.Argument(0), codePage) ? DoneIf(Notebook::SetCodePage(codePage))
                                                      : Outcome::Misused;
}

Outcome SetModule(const Request& request)
{
    bool isPresent = false;
    return ParseSwitch(request.Argument(1), "present", "absent", isPresent)
               ? DoneIf(Notebook::SetModule(request.Argument(0), isPresent))
               : Outcome::Misused;
}

bool ListUsers(const std::string&)
{
    for (const Account& account : Accounts::All())
    {
        std::printf("%-16s %-48s %s\n", account.name.c_str(), account.sid.c_str(),
                    account.isLoggedOn ? "logged on" : "");
    }
    return true;
}

struct UserAction
{
    const char* name;
    bool (*run)(const std::string& user);
    bool needsName;
};
constexpr UserAction kUserActions[] = {
    {"add", &Notebook::AddUser, true},       {"add-stranger", &Notebook::AddStranger, true},
    {"logon", &Notebook::LogOn, true},       {"logoff", &Notebook::LogOff, true},
    {"remove", &Notebook::RemoveUser, true}, {"list", &ListUsers, false},
};

Outcome ChangeUser(const Request& request)
{
    for (const UserAction& action : kUserActions)
    {
        if (request.Argument(0) == action.name && request.arguments.size() == (action.needsName ? 2U : 1U))
        {
            return DoneIf(action.run(request.Argument(1)));
        }
    }
    return Outcome::Misused;
}

Outcome ListKey(const Request& request)
{
    const std::string key = request.Argument(1);
    if (!RegistryEditor::HasKey(key))
    {
        return Outcome::Refused;
    }
    for (const std::string& name : RegistryEditor::Keys(key))
    {
        std::printf("%s\\\n", name.c_str());
    }
    for (const std::string& name : RegistryEditor::Values(key))
    {
        const std::optional<registry::Value> value = RegistryEditor::Read(key, name);
        std::printf("%s = %s\n", name.c_str(),
                    value ? registry::FormatValue(*value).c_str() : "(unreadable)");
    }
    return Outcome::Done;
}

Outcome GetValue(const Request& request)
{
    const std::optional<registry::Value> value =
        RegistryEditor::Read(request.Argument(1), request.Argument(2));
    if (value)
    {
        std::puts(registry::FormatValue(*value).c_str());
    }
    return DoneIf(value.has_value());
}

Outcome SetValue(const Request& request)
{
    const std::string text = request.Rest(3);
    const registry::Value value = registry::ParseValue(text).value_or(registry::TextValue(text, REG_SZ));
    return DoneIf(RegistryEditor::Write(request.Argument(1), request.Argument(2), value));
}

Outcome DeleteEntry(const Request& request)
{
    return DoneIf(request.arguments.size() == 2
                      ? RegistryEditor::RemoveKey(request.Argument(1))
                      : RegistryEditor::RemoveValue(request.Argument(1), request.Argument(2)));
}

struct RegistryAction
{
    const char* name;
    std::size_t fewestArguments;
    Outcome (*run)(const Request& request);
};
constexpr RegistryAction kRegistryActions[] = {
    {"list", 2, &ListKey}, {"get", 3, &GetValue}, {"set", 4, &SetValue}, {"delete", 2, &DeleteEntry}};

Outcome ChangeRegistry(const Request& request)
{
    for (const RegistryAction& action : kRegistryActions)
    {
        if (request.Argument(0) == action.name && request.arguments.size() >= action.fewestArguments)
        {
            return action.run(request);
        }
    }
    return Outcome::Misused;
}

// Signals the event that the plug-in waits for; false when nobody has made it.
bool SignalApplied()
{
    const HANDLE event = OpenEventW(EVENT_MODIFY_STATE, FALSE, kApplyEvent);
    if (event == nullptr)
    {
        return false;
    }
    const bool done = SetEvent(event) != FALSE;
    CloseHandle(event);
    return done;
}

Outcome TellApplied(const Request& request)
{
    unsigned number = 0;
    if (!ParseNumber(request.Argument(0), number))
    {
        return Outcome::Misused;
    }
    if (!RegistryEditor::WriteNumber(kCompanionKey, "CurrentPwrSchemeID", number))
    {
        return Outcome::Refused;
    }
    std::puts(SignalApplied() ? "stored and signalled" : "stored; nobody waits for the event");
    return Outcome::Done;
}

// The other notebook is usually a copy from before something was done.
Outcome Compare(const Request& request)
{
    if (request.arguments.size() != 1)
    {
        return Outcome::Misused;
    }
    const State present = Observe();
    Machine::Use(request.Argument(0));
    if (!Notebook::Exists())
    {
        return Outcome::Refused;
    }
    for (const std::string& line : Differences(Observe(), present))
    {
        std::puts(line.c_str());
    }
    return Outcome::Done;
}

constexpr Verb kVerbs[] = {
    {"create", "[--version 5.1|6.0|6.1|10.0] [--install DIR] [--code-page 1252|65001]",
     "a fresh notebook in place of what is in its folder, with the installation's files from DIR", &Create,
     false},
    {"install", "DIR", "copies an installation's files to where they belong", &Install},
    {"show", "", "what the machine is and has", &Show},
    {"diff", "DIR", "what has changed since DIR, a copy of the notebook, was made", &Compare},
    {"user", "add|add-stranger|logon|logoff|remove NAME | list",
     "accounts; a stranger is known but has no profile", &ChangeUser},
    {"version", "5.1|6.0|6.1|10.0", "the version that Windows answers", &SetVersion},
    {"codepage", "1252|65001", "the code page of narrow text", &SetCodePage},
    {"module", "FILE[.FUNCTION] present|absent", "takes a DLL or one of its functions away, or puts it back",
     &SetModule},
    {"registry", "list KEY | get KEY NAME | set KEY NAME VALUE | delete KEY [NAME]",
     "KEY is a path such as HKLM\\Software\\Kelvo, VALUE such as dword:2a, hex:01,02 or a text",
     &ChangeRegistry},
    {"applied", "N", "stores the number of the scheme in force and signals that one was applied",
     &TellApplied},
};

} // namespace

std::span<const Verb> SystemVerbs()
{
    return kVerbs;
}

} // namespace notebook_tool
