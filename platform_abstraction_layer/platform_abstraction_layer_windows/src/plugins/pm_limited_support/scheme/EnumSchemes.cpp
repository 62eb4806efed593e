// scheme/EnumSchemes.cpp
//
// Walking the operating system's schemes, which only the XP path can.

#include "scheme/SchemeEx.h"

namespace
{

// What each kind of walk hands to its callback. It lives on the stack of the operation that walks.

struct ClientWalk
{
    PwrSchemeCallback callback;
    LONG argument;
};

struct NameSearch
{
    const wchar_t* name;
    int found;
};

struct TextRequest
{
    int index;
    wchar_t* name;
    const ULONG* nameCapacity;
    wchar_t* description;
    const ULONG* descriptionCapacity;
};

template <class Context>
Context* ContextOf(LPARAM argument) noexcept
{
    return reinterpret_cast<Context*>(argument);
}

template <class Context>
LPARAM ArgumentOf(Context& context) noexcept
{
    return reinterpret_cast<LPARAM>(&context);
}

BOOLEAN CALLBACK ForwardToClient(UINT number, DWORD nameSize, LPWSTR name, DWORD descriptionSize,
                                 LPWSTR description, PPOWER_POLICY, LPARAM argument) noexcept
{
    const ClientWalk* walk = ContextOf<ClientWalk>(argument);
    return walk->callback(number, nameSize, name, descriptionSize, description, walk->argument);
}

BOOLEAN CALLBACK CompareName(UINT number, DWORD, LPWSTR name, DWORD, LPWSTR, PPOWER_POLICY,
                             LPARAM argument) noexcept
{
    NameSearch* search = ContextOf<NameSearch>(argument);
    if (name == nullptr || !text::Equal(name, search->name))
    {
        return TRUE;
    }
    search->found = static_cast<int>(number);
    return FALSE;
}

void CopyText(wchar_t* target, const ULONG* capacity, const wchar_t* source) noexcept
{
    if (target != nullptr && capacity != nullptr && *capacity > 0)
    {
        text::Copy(target, *capacity, source);
    }
}

BOOLEAN CALLBACK CopyTexts(UINT number, DWORD, LPWSTR name, DWORD, LPWSTR description, PPOWER_POLICY,
                           LPARAM argument) noexcept
{
    const TextRequest* request = ContextOf<TextRequest>(argument);
    if (static_cast<int>(number) == request->index)
    {
        CopyText(request->name, request->nameCapacity, name);
        CopyText(request->description, request->descriptionCapacity, description);
    }
    return TRUE;
}

} // namespace

int CSchemeEx::FindPwrScheme(const wchar_t* name) noexcept
{
    if (name == nullptr || m_bVista != 0)
    {
        return -1;
    }
    NameSearch search{name, -1};
    ::EnumPwrSchemes(CompareName, ArgumentOf(search));
    return search.found;
}

int CSchemeEx::EnumPwrSchemes(PwrSchemeCallback callback, LONG argument) noexcept
{
    if (m_bVista != 0 || callback == nullptr)
    {
        return 0;
    }
    ClientWalk walk{callback, argument};
    return ::EnumPwrSchemes(ForwardToClient, ArgumentOf(walk));
}

int CSchemeEx::GetPwrSchemeNameDesc(int index, wchar_t* name, ULONG* nameLen, wchar_t* desc,
                                    ULONG* descLen) noexcept
{
    if (FindPwrScheme(index) == 0 || m_bVista != 0)
    {
        return 0;
    }
    TextRequest request{index, name, nameLen, desc, descLen};
    return ::EnumPwrSchemes(CopyTexts, ArgumentOf(request));
}
