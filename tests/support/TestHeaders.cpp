// tests/support/TestHeaders.cpp
//
// Empty: its library carries the precompiled headers of all test programs.
