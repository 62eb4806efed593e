// tests/acceptance/EnvironmentNative.cpp
//
// A fresh notebook with the reference installation; the plug-in runs as its service account.

#include "acceptance/Environment.h"

#include "base/Trace.h"
#include "control/Adapters.h"
#include "control/Batteries.h"
#include "control/PowerSource.h"
#include "machine/KernelDriver.h"
#include "machine/Machine.h"
#include "modules/kernel32/DebugOutput.h"
#include "support/NotebookTest.h"

#include <malloc.h>
#include <memory>

namespace environment
{

namespace
{

// NotebookTest with its set-up and tear-down made public.
class FreshNotebook : public NotebookTest
{
public:
    FreshNotebook() : NotebookTest(simulated::NotebookOptions{.installation = INSTALLATION_FOLDER})
    {
    }
    using NotebookTest::Recreate;
    using NotebookTest::SetUp;
    using NotebookTest::TearDown;

    void TestBody() override
    {
    }
};

std::unique_ptr<FreshNotebook> notebook;

} // namespace

std::string UserName()
{
    return simulated::Notebook::kFirstUser;
}

std::string OtherUserName()
{
    return simulated::Notebook::kSecondUser;
}

std::vector<DWORD> Generations()
{
    return {5, 6};
}

void Recreate(DWORD major)
{
    notebook->Recreate({.major = major, .minor = major == 5 ? 1U : 0U, .installation = INSTALLATION_FOLDER});
}

void RemoveHardware()
{
    simulated::KernelDriver::SetPresent(false);
    simulated::Adapters::Clear();
    EXPECT_TRUE(simulated::PowerSource::SetBattery(false));
    simulated::Batteries::Remove(0);
}

bool HasOnlyLogged()
{
    using simulated::Trace;
    return Trace::Count(simulated::CallClass::Log) == Trace::Calls().size();
}

void ForgetCalls()
{
    simulated::Trace::Clear();
}

Holdings Held()
{
    return {simulated::Leaks::Count(), 0};
}

std::size_t HeapInUse()
{
    simulated::Trace::Record(false);
    simulated::Trace::Clear();
    simulated::KernelDriver::ForgetRequests();
    simulated::DebugOutput::Clear();
    return mallinfo2().uordblks;
}

std::vector<std::filesystem::path> Folders()
{
    return {simulated::Machine::Folder()};
}

Machine::Machine()
{
    notebook = std::make_unique<FreshNotebook>();
    notebook->SetUp();
}

Machine::~Machine()
{
    notebook->TearDown();
    notebook.reset();
}

} // namespace environment
