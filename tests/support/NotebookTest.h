// tests/support/NotebookTest.h
//
// The base of all tests that need a machine: each test has a fresh notebook, an instant clock, a recorded
// trace of the plug-in's platform calls, and leaves nothing open.
#pragma once

#include "control/Notebook.h"

#include <gtest/gtest.h>

#include <string>

class NotebookTest : public testing::Test
{
protected:
    NotebookTest() = default;
    explicit NotebookTest(const simulated::NotebookOptions& options);

    void SetUp() override;

    /// Fails the test when the plug-in still holds an object of the platform, or a fault never hit.
    void TearDown() override;

    /// The host's folder of this test's notebook.
    const std::string& Folder() const noexcept
    {
        return m_folder;
    }

    /// Starts over with another notebook in the same folder.
    void Recreate(const simulated::NotebookOptions& options);

private:
    simulated::NotebookOptions m_options;
    std::string m_folder;
};
