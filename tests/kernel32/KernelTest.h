// kernel32/KernelTest.h
//
// A fresh notebook for each test, and handles that close themselves.
#pragma once

#include "notebook/Clock.h"
#include "notebook/Machine.h"
#include "notebook/Trace.h"

#include <windows.h>

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>

struct HandleCloser
{
    void operator()(void* handle) const
    {
        EXPECT_TRUE(CloseHandle(handle));
    }
};
using OwnedHandle = std::unique_ptr<void, HandleCloser>;

class KernelTest : public testing::Test
{
protected:
    KernelTest()
    {
        std::string folder = std::filesystem::temp_directory_path() / "notebook-XXXXXX";
        m_folder = mkdtemp(folder.data());
        simulated::Machine::Use(m_folder);
        simulated::Clock::SetInstant(true);
    }

    ~KernelTest() override
    {
        EXPECT_EQ(0u, simulated::Leaks::Count()) << simulated::Leaks::Describe();
        simulated::Clock::SetInstant(false);
        std::filesystem::remove_all(m_folder);
    }

    const std::string& Folder() const
    {
        return m_folder;
    }

private:
    std::string m_folder;
};
