// scheme/xp/Backend.cpp
//
// The power manager by scheme numbers, as every generation before Vista has it.

#include "foundation/Log.h"
#include "foundation/OrvlBase.h"
#include "scheme/SchemeFiles.h"
#include "scheme/xp/Operations.h"
#include "scheme/xp/PolicyStore.h"

namespace
{

constexpr unsigned int kLastStandardNumber = 5;

int Active() noexcept
{
    auto active = static_cast<UINT>(-1);
    return GetActivePwrScheme(&active) ? static_cast<int>(active) : -1;
}

bool Activate(int index, const ActivationTexts& texts, int& previous) noexcept
{
    if (index < 0)
    {
        CORVLBase::DBGOUT(texts.negative, index);
        return false;
    }
    if (!policy_store::HasScheme(index))
    {
        if (texts.notFound != nullptr)
        {
            CORVLBase::DBGOUT(texts.notFound, index);
        }
        return false;
    }
    previous = Active();
    // Without policies: neither the scheme's nor the global one is replaced.
    if (!SetActivePwrScheme(static_cast<UINT>(index), nullptr, nullptr))
    {
        CORVLBase::DBGOUT(texts.refused, index, GetLastError());
        return false;
    }
    return true;
}

// A negative number isn't protected; the operating system refuses it.
bool IsProtected(int index) noexcept
{
    return static_cast<unsigned int>(index) <= kLastStandardNumber;
}

bool Remove(int index) noexcept
{
    CORVLCfg root;
    CORVLProfile values;
    const bool isDeleted =
        Check(DeletePwrScheme(static_cast<UINT>(index)) != FALSE, L"delete windows power scheme failed %d") &&
        Check(files::OpenRoot(root), L"orvlCfg.Initialize finished") &&
        Check(files::OpenOwn(values, root, files::kValuesName), L"orvlScheme.Initialize(buffer) failed");
    if (isDeleted)
    {
        files::RemoveScheme(values, index);
    }
    return isDeleted;
}

} // namespace

constexpr PowerBackend xp::kBackend{
    .unknownRead = L"ParseVarName(%s) error\n",
    .unknownWrite = L"ParseVarName error",
    .exists = policy_store::HasScheme,
    .maxIndex = policy_store::HighestScheme,
    .active = Active,
    .activate = Activate,
    .read = ReadVariable,
    .write = WriteVariable,
    .accepts = Accepts,
    .findSetting = [](const Variable&, GUID&, GUID&) noexcept { return false; },
    .isProtected = IsProtected,
    .remove = Remove,
    .enumerate = [](PWRSCHEMESENUMPROC callback, LPARAM argument) noexcept -> int
    { return EnumPwrSchemes(callback, argument); },
    .copy = CopyScheme,
    .rename = RenameScheme,
};
