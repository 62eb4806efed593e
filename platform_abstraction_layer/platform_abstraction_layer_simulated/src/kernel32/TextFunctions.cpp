// kernel32/TextFunctions.cpp
//
// Length and comparison of texts.
//
// Known difference from Windows: texts are ordered by their folded characters, not by a language's alphabet;
// which texts are equal is the same.

#include "notebook/PlatformCall.h"
#include "notebook/Text.h"

#include <windows.h>

using namespace simulated;

namespace
{

// A null text comes before every other.
template <class Fold>
int Compare(LPCWSTR left, LPCWSTR right, Fold fold)
{
    if (left == nullptr || right == nullptr)
    {
        return (left != nullptr) - (right != nullptr);
    }
    while (*left != 0 && fold(*left) == fold(*right))
    {
        ++left;
        ++right;
    }
    return (fold(*left) > fold(*right)) - (fold(*left) < fold(*right));
}

} // namespace

SIM_API int WINAPI lstrlenW(LPCWSTR text)
{
    PlatformCall call(CallClass::Text, "lstrlenW", SIM_CALLER);
    call.Arguments(text);
    return call.Answer(text == nullptr ? 0 : static_cast<int>(Length(text)));
}

SIM_API int WINAPI lstrcmpW(LPCWSTR left, LPCWSTR right)
{
    PlatformCall call(CallClass::Text, "lstrcmpW", SIM_CALLER);
    call.Arguments(left, right);
    return call.Answer(Compare(left, right, [](wchar_t unit) { return unit; }));
}

SIM_API int WINAPI lstrcmpiW(LPCWSTR left, LPCWSTR right)
{
    PlatformCall call(CallClass::Text, "lstrcmpiW", SIM_CALLER);
    call.Arguments(left, right);
    return call.Answer(Compare(left, right, [](wchar_t unit) { return FoldCase(unit); }));
}
