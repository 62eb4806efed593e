// tests/support/TestHeaders.cpp
//
// Nothing of its own: the library that is made of it carries the precompiled headers of all test programs.
