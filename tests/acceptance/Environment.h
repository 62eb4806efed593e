// tests/acceptance/Environment.h
//
// What the machine under the tests is: natively a fresh notebook for each test, on Windows the machine as it
// is. The one seam between the two; the tests themselves are the same.
#pragma once

#include <gtest/gtest.h>

#include <string>

namespace environment
{

/// The running account, in the ANSI code page.
std::string UserName();

/// A machine for one test.
class Machine
{
public:
    Machine();

    /// Fails the test when the plug-in still holds something of the platform's, where that can be counted.
    ~Machine();
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;
};

} // namespace environment
