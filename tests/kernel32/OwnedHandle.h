// kernel32/OwnedHandle.h
//
// A handle that closes itself, in plain Win32.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <memory>

struct HandleCloser
{
    void operator()(void* handle) const
    {
        EXPECT_TRUE(CloseHandle(handle));
    }
};
using OwnedHandle = std::unique_ptr<void, HandleCloser>;
