// tests/support/NotebookTest.h
//
// The base of all tests that need a machine: each test has a fresh notebook, an instant clock, a recorded
// trace of what the plug-in asks of the platform, and leaves nothing open behind it.
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

    /// Fails the test when the plug-in still holds something of the platform's, or a fault was never met.
    void TearDown() override;

    /// The host's folder of this test's notebook.
    const std::string& Folder() const noexcept
    {
        return m_folder;
    }

    /// Begins anew with another notebook in the same place.
    void Recreate(const simulated::NotebookOptions& options);

private:
    simulated::NotebookOptions m_options;
    std::string m_folder;
};
