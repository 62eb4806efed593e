// machine/Graphics.h
//
// The graphics driver: whether its COM object "Pixlink.PanelBridge" is installed, and what stands behind that
// object. machine.ini, section "Graphics":
//
//   Installed=1
//   Capabilities=0x00000007
//   FRQG=0x00000001          a policy's record in words; a policy without a line isn't supported
//   PowerApiOpen.Error=0     driver error that a method returns, and likewise its result ("....Result")
//   GetPowerPolicy.FRQG.Error=0   the same for one policy alone
#pragma once

#include <windef.h>

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace simulated
{

class Graphics
{
public:
    // Errors of the driver itself.
    static constexpr DWORD kLocked = 20;
    static constexpr DWORD kPolicyNotSupported = 24;

    static bool IsInstalled();
    static bool SetInstalled(bool installed);

    static DWORD Capabilities();
    static void SetCapabilities(DWORD capabilities);

    /// A policy's record, "FRQG", "ABR" or "LUMS"; nothing when the driver doesn't support it.
    static std::optional<std::vector<DWORD>> Policy(const std::string& policy);
    static void SetPolicy(const std::string& policy, std::span<const DWORD> record);
    static void RemovePolicy(const std::string& policy);

    /// What a method of the object returns before it does anything: 0 and 0 unless something else was
    /// chosen. `method` is "PowerApiOpen" and the like, or "GetPowerPolicy.ABR" for one policy.
    struct Refusal
    {
        HRESULT result;
        DWORD driverError;

        bool IsNone() const
        {
            return result == 0 && driverError == 0;
        }
    };
    static Refusal RefusalOf(const std::string& method);
    static bool Refuse(const std::string& method, const Refusal& refusal);

    /// Objects that exist in this process.
    static unsigned LiveObjects();
};

} // namespace simulated
