// scheme/ApplyScheme.cpp
//
// Applying a scheme: the operating system first, then the records of the choice, last the service. Nothing
// is undone, so a service that doesn't answer leaves the new scheme active and recorded.

#include "foundation/ServiceBoards.h"
#include "foundation/SystemFolders.h"
#include "scheme/PowerDispatch.h"
#include "scheme/SchemeEx.h"
#include "scheme/SchemeFiles.h"
#include "scheme/SchemeMapping.h"

namespace
{

constexpr int kDefaultTimeout = 1000;

// What the XP path logs, each with the index. A null text isn't logged.
struct ActivationTexts
{
    const wchar_t* negative;
    const wchar_t* notFound;
    const wchar_t* refused; // also with the system's error
};

constexpr ActivationTexts kMachineTexts{L"SetActivePwrScheme %d failed at nIndex<0",
                                        L"SetActivePwrScheme %d failed at can't find scheme",
                                        L"SetActivePwrScheme %d failed at %d"};
constexpr ActivationTexts kUserTexts{L"SetActivePwrScheme %d failed at nIndex<0 ", nullptr,
                                     L"SetActivePwrScheme %d failed at %d "};

bool ActivateNumber(CSchemeEx& engine, int index, const ActivationTexts& texts, int& previous) noexcept
{
    if (index < 0)
    {
        CORVLBase::DBGOUT(texts.negative, index);
        return false;
    }
    if (!mapping::SchemeExists(engine, index))
    {
        if (texts.notFound != nullptr)
        {
            CORVLBase::DBGOUT(texts.notFound, index);
        }
        return false;
    }
    previous = engine.GetActivePwrScheme(0);
    // Without policies: neither the scheme's nor the global one is replaced.
    if (!SetActivePwrScheme(static_cast<UINT>(index), nullptr, nullptr))
    {
        CORVLBase::DBGOUT(texts.refused, index, GetLastError());
        return false;
    }
    return true;
}

// Writes the processor's range of the scheme again, so that the operating system follows it. A scheme that
// isn't adaptive has its range fixed already.
void RestateProcessorRange(CSchemeEx& engine, int index, int ifAC) noexcept
{
    const int adaptive = engine.GetPwrVariable(index, ifAC, L"CpuAdaptive");
    const int maximum = engine.GetPwrVariable(index, ifAC, L"CpuSpeedMax");
    const int minimum = engine.GetPwrVariable(index, ifAC, L"CpuSpeedMin");
    if (adaptive != 0)
    {
        engine.SetPwrVariable(index, ifAC, L"CpuSpeedMax", maximum);
        engine.SetPwrVariable(index, ifAC, L"CpuSpeedMin", minimum);
    }
}

bool ActivateRow(CSchemeEx& engine, int index, int& previous) noexcept
{
    const auto setActive = PowerDispatch.PowerSetActiveScheme.load();
    GUID scheme;
    if (setActive == nullptr || !mapping::RowToGuid(index, scheme))
    {
        return false;
    }
    previous = engine.GetActivePwrScheme(0);
    RestateProcessorRange(engine, index, 1);
    RestateProcessorRange(engine, index, 0);
    return setActive(nullptr, &scheme) == ERROR_SUCCESS;
}

// Makes the scheme the operating system's active one; `previous` becomes the one before, -1 when unknown.
bool Activate(CSchemeEx& engine, int index, const ActivationTexts& texts, int& previous) noexcept
{
    return engine.m_bVista != 0 ? ActivateRow(engine, index, previous)
                                : ActivateNumber(engine, index, texts, previous);
}

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

    // Where the folder can't be had, the service gets an empty text.
    wchar_t folder[text::kPathCapacity] = {};
    folders::GetConfigurationFolder(folder);
    IpbDataHeader reply = {};
    return engine.ServiceCall(service_boards::kSchemeApplied, folder, static_cast<ULONG>(index), &reply,
                              timeout) == 0;
}

} // namespace

int CSchemeEx::SetActivePwrScheme(int nIndex) noexcept
{
    int previous = -1;
    if (!Activate(*this, nIndex, kMachineTexts, previous))
    {
        return -1;
    }
    return FinishActivation(*this, nIndex, ReadBack::Yes) ? previous : -1;
}

int CSchemeEx::SetActivePwrScheme(int nIndex, const wchar_t*) noexcept
{
    SetGolbalPwrPolicyFromCurrentUser(nIndex);
    int previous = -1;
    if (!Activate(*this, nIndex, kUserTexts, previous))
    {
        return -1;
    }
    RecordUserChoice(*this, nIndex);
    return FinishActivation(*this, nIndex, ReadBack::No) ? previous : -1;
}
