// tests/scheme/SchemeTest.cpp
//
// An engine on a notebook with the reference installation.

#include "scheme/SchemeTest.h"

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

std::string SchemeTest::FolderOf(const std::string& user)
{
    return Accounts::Find(user).value().profile + "\\Local Settings\\Application Data\\Kelvo\\ORVL\\Cfg";
}

void SchemeTest::ActFor(Engine& target, const std::string& user)
{
    target.SetSubKeyProfilePath(seeding::Wide(user).data(), seeding::Wide(SidOf(user)).data(),
                                seeding::Wide(FolderOf(user)).data());
}

std::string SchemeTest::SidOf(const std::string& user)
{
    return Accounts::Find(user).value().sid;
}

std::string SchemeTest::Values()
{
    return seeding::LocalAppData() + "\\Kelvo\\ORVL\\Cfg\\PowerSchemes.ini";
}

std::string SchemeTest::Users()
{
    return seeding::LocalAppData() + "\\Kelvo\\ORVL\\Cfg\\UserSchemes.ini";
}

std::string SchemeTest::Display(const std::string& user)
{
    return FolderOf(user) + "\\OrvProfile.ini";
}

std::string SchemeTest::Stored(int scheme, const std::string& key)
{
    return seeding::GetKey(Values(), "Scheme " + std::to_string(scheme), key);
}

bool SchemeTest::Store(int scheme, const std::string& key, const std::string& value)
{
    return seeding::SetKey(Values(), "Scheme " + std::to_string(scheme), key, value);
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

void SchemeTest::Run(const std::vector<Step>& steps)
{
    for (const auto& [work, result] : steps)
    {
        const int scheme = std::stoi(work);
        const int ifAC = work.find(" ac ") != std::string::npos ? 1 : 0;
        const std::size_t begin = work.find("c ") + 2;
        const std::size_t equals = work.find(" = ");
        const auto name = seeding::Wide(work.substr(begin, equals - begin));
        EXPECT_EQ(result,
                  equals == std::string::npos
                      ? engine.GetPwrVariable(scheme, ifAC, name.data())
                      : engine.SetPwrVariable(scheme, ifAC, name.data(), std::stoi(work.substr(equals + 3))))
            << work;
    }
}

SchemeTest::Lines SchemeTest::LinesOf(const Work& work)
{
    seeding::SwitchLogsOn();
    work();
    auto lines = seeding::LogLines("orvl.log");
    seeding::SwitchLogsOff();
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
