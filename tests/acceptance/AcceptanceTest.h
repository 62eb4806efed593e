// tests/acceptance/AcceptanceTest.h
//
// The base of the acceptance tests: a machine for each test.
#pragma once

#include "acceptance/Environment.h"
#include "acceptance/Host.h"
#include "acceptance/Seeding.h"

#include <gtest/gtest.h>

class AcceptanceTest : public testing::Test
{
protected:
    /// A path in the folder of the installation's files.
    static std::string InstallationFile(const std::string& name)
    {
        return seeding::GetText(HKEY_LOCAL_MACHINE, "Software\\Kelvo\\ORVL", "CfgPath").value_or("") + name;
    }

    /// A path in the configuration folder of the running account.
    static std::string ProfileFile(const std::string& name)
    {
        return seeding::LocalAppData() + "\\Kelvo\\ORVL\\Cfg\\" + name;
    }

    environment::Machine machine;
};
