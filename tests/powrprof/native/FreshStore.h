// tests/powrprof/native/FreshStore.h
//
// A machine with nothing but the standard schemes: a fresh notebook of the first generation with GUIDs.
#pragma once

#include "support/NotebookTest.h"

class FreshStore : public NotebookTest
{
protected:
    FreshStore() : NotebookTest({.major = 6, .minor = 0})
    {
    }
};
