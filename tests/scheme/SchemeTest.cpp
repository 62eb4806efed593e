// tests/scheme/SchemeTest.cpp
//
// An engine on a notebook with the reference installation.

#include "scheme/SchemeTest.h"

#include "base/HostFiles.h"
#include "machine/Machine.h"

#include <sstream>

using namespace simulated;

SchemeTest::SchemeTest(DWORD major) : NotebookTest({major, major == 5 ? 1U : 0U, 1252, INSTALLATION_FOLDER})
{
}

void SchemeTest::SetUp()
{
    NotebookTest::SetUp();
    engine.Initialize();
    ActFor(engine, Notebook::kFirstUser);
}

void SchemeTest::ActFor(Engine& target, const std::string& user)
{
    target.SetSubKeyProfilePath(seeding::Wide(user).data(), seeding::Wide(SidOf(user)).data(),
                                seeding::Wide(FolderOf(user)).data());
}

POWER_POLICY SchemeTest::Policy(int scheme)
{
    POWER_POLICY policy{};
    EXPECT_TRUE(ReadPwrScheme(static_cast<UINT>(scheme), &policy));
    return policy;
}

MACHINE_PROCESSOR_POWER_POLICY SchemeTest::Processor(int scheme)
{
    MACHINE_PROCESSOR_POWER_POLICY policy{};
    EXPECT_TRUE(ReadProcessorPwrScheme(static_cast<UINT>(scheme), &policy));
    return policy;
}

int SchemeTest::ResultOf(const std::string& work)
{
    std::istringstream words(work);
    std::string verb;
    std::string source;
    int scheme = 0;
    words >> verb >> scheme >> source;
    if (verb == "active" || verb == "next")
    {
        return verb == "active" ? engine.GetActivePwrScheme(0) : engine.GetPwrSchemeMaxIndex();
    }
    if (verb == "find")
    {
        return engine.FindPwrScheme(scheme);
    }
    if (verb == "delete")
    {
        return source.empty() ? engine.DeletePwrScheme(scheme) : engine.DeletePwrScheme(scheme, L"alice");
    }
    std::string rest;
    std::getline(words >> std::ws, rest);
    const std::size_t equals = rest.find("= ");
    const auto name =
        seeding::Wide(verb == "get" ? rest : rest.substr(0, equals - std::min<std::size_t>(equals, 1)));
    const int ifAC = source == "ac" ? 1 : 0;
    return verb == "get"
               ? engine.GetPwrVariable(scheme, ifAC, name.data())
               : engine.SetPwrVariable(scheme, ifAC, name.data(), std::stoi(rest.substr(equals + 2)));
}

void SchemeTest::Run(const std::string& steps)
{
    std::istringstream all(steps);
    for (std::string step; std::getline(all >> std::ws, step, ';');)
    {
        const std::size_t arrow = step.find(" -> ");
        EXPECT_EQ(std::stoi(step.substr(arrow + 4)), ResultOf(step.substr(0, arrow))) << step;
    }
}

SchemeTest::Lines SchemeTest::LinesOf(const Work& work)
{
    seeding::SwitchLogsOn();
    work();
    auto lines = seeding::LogLines("orvl.log");
    EXPECT_TRUE(host_files::RemoveAll(Machine::PathOf("drives/C/temp1234567890")));
    return lines;
}

SchemeTest::Lines SchemeTest::CallsOf(const Work& work)
{
    Trace::Clear();
    work();
    Lines names;
    for (const TracedCall& call : Trace::Calls())
    {
        if (call.callClass != CallClass::Log)
        {
            names.push_back(call.function);
        }
    }
    return names;
}
