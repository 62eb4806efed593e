// scheme/SchemeTexts.cpp
//
// The three kinds of walk. What each hands to its callback lives on the stack of the operation that walks.

#include "scheme/Operations.h"

#include "foundation/Text.h"

namespace
{

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
    const auto* request = ContextOf<scheme_texts::Request>(argument);
    if (static_cast<int>(number) == request->index)
    {
        CopyText(request->name, request->nameCapacity, name);
        CopyText(request->description, request->descriptionCapacity, description);
    }
    return TRUE;
}

} // namespace

int scheme_texts::FindByName(const PowerBackend& backend, const wchar_t* name) noexcept
{
    NameSearch search{name, -1};
    backend.enumerate(CompareName, ArgumentOf(search));
    return search.found;
}

int scheme_texts::Visit(const PowerBackend& backend, PwrSchemeCallback callback, LONG argument) noexcept
{
    ClientWalk walk{callback, argument};
    return backend.enumerate(ForwardToClient, ArgumentOf(walk));
}

int scheme_texts::Copy(const PowerBackend& backend, Request request) noexcept
{
    return backend.enumerate(CopyTexts, ArgumentOf(request));
}
