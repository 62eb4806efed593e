// tests/powrprof/windows/FreshStore.h
//
// A machine with nothing but the standard schemes, for tests on Windows or Wine: the store is removed and
// seeded anew. The account that runs the tests loses its own power schemes.
#pragma once

#include "PowerStoreSeeding.h"

#include <gtest/gtest.h>

class FreshStore : public testing::Test
{
protected:
    void SetUp() override
    {
        Renew();
    }

    // What a test damaged, the next program on the machine would meet.
    void TearDown() override
    {
        Renew();
    }

private:
    static void Renew()
    {
        constexpr DWORD kMajorVersion = 6;
        ASSERT_EQ(DWORD{ERROR_SUCCESS}, power_store::RemoveStore());
        ASSERT_EQ(DWORD{ERROR_SUCCESS}, power_store::SeedMachine(kMajorVersion));
        ASSERT_EQ(DWORD{ERROR_SUCCESS}, power_store::SeedCurrentUser());
    }
};
