// tests/support/WholeProgramNotebook.cpp
//
// A fresh notebook for a whole test program that is plain Win32 and knows nothing of notebooks. Linked only
// into the native build of such a program.

#include "control/Notebook.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace
{

class WholeProgramNotebook : public testing::Environment
{
public:
    void SetUp() override
    {
        std::string folder = (std::filesystem::temp_directory_path() / "notebookXXXXXX").string();
        ASSERT_NE(mkdtemp(folder.data()), nullptr);
        m_folder = folder;
        ASSERT_TRUE(simulated::Notebook::Create(folder));
    }

    void TearDown() override
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

private:
    std::filesystem::path m_folder;
};

const testing::Environment* const kNotebook = testing::AddGlobalTestEnvironment(new WholeProgramNotebook);

} // namespace
