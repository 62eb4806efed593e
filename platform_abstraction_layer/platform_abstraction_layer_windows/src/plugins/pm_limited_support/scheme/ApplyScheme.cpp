// scheme/ApplyScheme.cpp
//
// Applying a scheme: the operating system first, then the records of the choice, last the service. Nothing
// is undone, so a service that doesn't answer leaves the new scheme active and recorded.

#include "scheme/Operations.h"

#include "foundation/ServiceBoards.h"
#include "foundation/UserFolders.h"
#include "scheme/SchemeFiles.h"

#include <iterator>

namespace
{

constexpr int kDefaultTimeout = 1000;

constexpr ActivationTexts kMachineTexts{L"SetActivePwrScheme %d failed at nIndex<0",
                                        L"SetActivePwrScheme %d failed at can't find scheme",
                                        L"SetActivePwrScheme %d failed at %d"};
constexpr ActivationTexts kUserTexts{L"SetActivePwrScheme %d failed at nIndex<0 ", nullptr,
                                     L"SetActivePwrScheme %d failed at %d "};

void RecordUserChoice(const CSchemeEx& engine, int index) noexcept
{
    CORVLProfile users;
    if (files::OpenUsers(users))
    {
        users.PutInt(engine.m_szSubKey, L"ActiveSchemeID", index);
    }
}

enum class ReadBack
{
    No,
    Yes
};

// `root` is null when it couldn't be opened; then there is no record.
void RecordMachineChoice(CORVLCfg* root, int index, ReadBack readBack) noexcept
{
    CORVLProfile values;
    const bool isOpen = root != nullptr && files::OpenOwn(values, *root, files::kValuesName);
    if (isOpen)
    {
        values.PutInt(L"ORVLCfg", L"CurrentScheme", index);
    }
    if (readBack == ReadBack::Yes)
    {
        const int current = isOpen ? values.GetInt(L"ORVLCfg", L"CurrentScheme", -1) : -1;
        CORVLBase::DBGOUT(L"get current scheme in set avtive is %d", current);
    }
}

// Records the applied scheme and tells the service; false when the service fails.
bool FinishActivation(CSchemeEx& engine, int index, ReadBack readBack) noexcept
{
    CORVLCfg root;
    const bool isOpen = files::OpenRoot(root);
    if (!isOpen)
    {
        CORVLBase::DBGOUT(L"SetActivePwrScheme %d: initialize ORVLCfg.ini failed", index);
    }
    RecordMachineChoice(isOpen ? &root : nullptr, index, readBack);
    const ULONG timeout = isOpen ? service_boards::ReadTimeout(root, kDefaultTimeout) : kDefaultTimeout;

    wchar_t folder[text::kPathCapacity];
    // Where the folder can't be had, the service gets an empty text.
    static_cast<void>(folders::GetConfigurationFolder(folder, std::size(folder)));
    IpbDataHeader reply = {};
    return engine.ServiceCall(service_boards::kSchemeApplied, folder, static_cast<ULONG>(index), &reply,
                              timeout) == 0;
}

} // namespace

int apply::ForMachine(CSchemeEx& engine, int index) noexcept
{
    int previous = -1;
    const bool isApplied = BackendOf(engine).activate(index, kMachineTexts, previous) &&
                           FinishActivation(engine, index, ReadBack::Yes);
    return isApplied ? previous : -1;
}

int apply::ForUser(CSchemeEx& engine, int index) noexcept
{
    int previous = -1;
    if (!BackendOf(engine).activate(index, kUserTexts, previous))
    {
        return -1;
    }
    RecordUserChoice(engine, index);
    return FinishActivation(engine, index, ReadBack::No) ? previous : -1;
}
