// tests/support/NotebookTest.cpp
//
// A fresh notebook in memory, where the host has a file system for that.

#include "support/NotebookTest.h"

#include "base/Clock.h"
#include "base/Trace.h"
#include "machine/KernelDriver.h"
#include "machine/Machine.h"
#include "modules/kernel32/DebugOutput.h"

#include <filesystem>
#include <unistd.h>

using namespace simulated;

namespace
{

std::string FreshFolder()
{
    std::error_code ignored;
    const std::filesystem::path inMemory = "/dev/shm";
    const bool isUsable = access(inMemory.c_str(), W_OK) == 0;
    const std::filesystem::path parent = isUsable ? inMemory : std::filesystem::temp_directory_path(ignored);
    std::string pattern = (parent / "notebook-XXXXXX").string();
    return mkdtemp(pattern.data()) == nullptr ? std::string() : pattern;
}

} // namespace

NotebookTest::NotebookTest(const NotebookOptions& options) : m_options(options)
{
}

void NotebookTest::SetUp()
{
    m_folder = FreshFolder();
    ASSERT_FALSE(m_folder.empty()) << "no folder for the notebook";
    Clock::SetInstant(true);
    Recreate(m_options);
}

void NotebookTest::Recreate(const NotebookOptions& options)
{
    Faults::Clear();
    ASSERT_TRUE(Notebook::Create(m_folder, options));
    Machine::RunAs({});
    DebugOutput::Clear();
    KernelDriver::LetGo();
    KernelDriver::ForgetRequests();
    Trace::Record(true);
    Trace::Clear();
}

void NotebookTest::TearDown()
{
    EXPECT_TRUE(Faults::AllHit()) << "a fault waits for a call that never came";
    Faults::Clear();
    EXPECT_EQ(0U, Leaks::Count()) << Leaks::Describe();
    Leaks::Forget();
    Machine::RunAs({});
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}
