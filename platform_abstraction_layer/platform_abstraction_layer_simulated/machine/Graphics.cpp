// machine/Graphics.cpp
//
// The graphics driver in machine.ini.

#include "machine/Graphics.h"

#include "base/HexText.h"
#include "machine/Machine.h"

namespace simulated
{

namespace
{

constexpr const char* kGraphicsSection = "Graphics";

DWORD ReadWord(const std::string& key)
{
    return static_cast<DWORD>(Machine::ReadNumber(kGraphicsSection, key, 0));
}

} // namespace

bool Graphics::IsInstalled()
{
    return ReadWord("Installed") != 0;
}

bool Graphics::SetInstalled(bool installed)
{
    return Machine::WriteNumber(kGraphicsSection, "Installed", installed);
}

DWORD Graphics::Capabilities()
{
    return ReadWord("Capabilities");
}

void Graphics::SetCapabilities(DWORD capabilities)
{
    Machine::Write(kGraphicsSection, "Capabilities", ToHex(capabilities, 8));
}

std::optional<std::vector<DWORD>> Graphics::Policy(const std::string& policy)
{
    const std::optional<std::string> text = Machine::Read(kGraphicsSection, policy);
    return text ? ParseWords(*text) : std::nullopt;
}

void Graphics::SetPolicy(const std::string& policy, std::span<const DWORD> record)
{
    Machine::Write(kGraphicsSection, policy, ToWords(record));
}

void Graphics::RemovePolicy(const std::string& policy)
{
    Machine::Remove(kGraphicsSection, policy);
}

Graphics::Refusal Graphics::RefusalOf(const std::string& method)
{
    return {static_cast<HRESULT>(ReadWord(method + ".Result")), ReadWord(method + ".Error")};
}

bool Graphics::Refuse(const std::string& method, const Refusal& refusal)
{
    return Machine::Write(kGraphicsSection,
                          {{method + ".Result", ToHex(static_cast<DWORD>(refusal.result), 8)},
                           {method + ".Error", std::to_string(refusal.driverError)}});
}

} // namespace simulated
