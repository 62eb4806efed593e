// fuzz/Classes.cpp
//
// The exported classes called in any order with any arguments, before their set-up too. An input is a byte
// for the generation of Windows (even: 5.1) and then for each call its number in the table and its arguments.
// Buffers have exactly the size that the call is given.

#include "fuzz/Input.h"
#include "fuzz/Machine.h"

#include "agents/BatAgent.h"
#include "agents/CpuAgent.h"
#include "agents/DevMgr.h"
#include "agents/DspxAgent.h"
#include "agents/EcAgent.h"
#include "agents/HwSBX.h"
#include "agents/LanAgent.h"
#include "foundation/InterProcessBoard.h"
#include "foundation/OrvlProfile.h"
#include "foundation/Text.h"
#include "scheme/PwrSet.h"
#include "scheme/SchemeEx.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace
{

// The protected operations of a scheme too.
struct Schemes : CSchemeEx
{
    using CSchemeEx::FindPwrScheme;
    using CSchemeEx::GetHiberTimeFromStandbyTime;
    using CSchemeEx::ValidateData;
};

struct Objects
{
    CBatAgent batteries;
    CCpuAgent processor;
    CDevMgr devices;
    CDspxAgent graphics;
    CEcAgent controller;
    CHwSBX chipset;
    CLanAgent adapter;
    CORVLCfg file;
    CORVLProfile profile;
    CInterProcessBoard board;
    Schemes schemes;
};

// A walk over schemes that ends at any of them.
unsigned char CALLBACK CountDown(unsigned int, ULONG, wchar_t*, ULONG, wchar_t*, LONG argument)
{
    static LONG left = 0;
    left = left <= 0 ? argument % 8 : left - 1;
    return left > 0 ? 1 : 0;
}

// The arguments of one call, made from the input by their types. A size behind a buffer is the buffer's.
class Arguments
{
public:
    /// `sizeUnit` is how many bytes a size counts in.
    Arguments(fuzz::Input& input, std::size_t sizeUnit) : m_input(input), m_sizeUnit(sizeUnit)
    {
    }

    template <class Type>
    Type Take()
    {
        if constexpr (std::is_same_v<Type, const wchar_t*>)
        {
            return Text();
        }
        else if constexpr (std::is_same_v<Type, PwrSchemeCallback>)
        {
            return &CountDown;
        }
        else if constexpr (std::is_reference_v<Type>)
        {
            return *static_cast<std::remove_reference_t<Type>*>(
                Record(sizeof(std::remove_reference_t<Type>)));
        }
        else if constexpr (std::is_same_v<Type, wchar_t*>)
        {
            return static_cast<Type>(Buffer(sizeof(wchar_t)));
        }
        else if constexpr (std::is_same_v<Type, unsigned char*> || std::is_same_v<Type, void*>)
        {
            return static_cast<Type>(Buffer(1));
        }
        else if constexpr (std::is_pointer_v<Type>)
        {
            void* const record = Record(sizeof(std::remove_pointer_t<Type>));
            if (std::is_same_v<Type, ULONG*> && m_size.has_value())
            {
                *static_cast<ULONG*>(record) = static_cast<ULONG>(TakeSize());
            }
            return static_cast<Type>(record);
        }
        else
        {
            return static_cast<Type>(m_size.has_value() ? static_cast<int>(TakeSize()) : Number());
        }
    }

    // Often a small one, as indexes, flags and sizes are.
    int Number()
    {
        const std::uint8_t byte = m_input.Byte();
        return byte < 0xF0 ? static_cast<int>(byte % 80) - 2 : m_input.Number<std::int32_t>();
    }

    const wchar_t* Text()
    {
        constexpr const char* kTexts[] = {
            "CpuSpeed",      "BacklightLevel", "LanSpeed",    "MonitorOffTimeOut", "StandbyTimeOut",
            "Wifi",          "Wlan",           "USB",         "HibernateTimeOut",  "alice",
            "bob",           "S-1-5-18",       "nobody",      "Software\\Kelvo",   "ORVLCfg.ini",
            "SBXCfg.ini",    "OrvlDevMgr",     "TimeoutMS",   "UserSchemes.ini",   "PowerSchemes.ini",
            "ORVL_IPB_PARA", "PCI\\VEN_8086",  "C:\\Windows", "%SystemRoot%",      ""};
        const std::uint8_t byte = m_input.Byte();
        const std::string text = byte < 200 ? kTexts[byte % std::size(kTexts)] : m_input.Bytes();
        const auto wide = static_cast<wchar_t*>(New((text.size() + 1) * sizeof(wchar_t)));
        std::transform(text.begin(), text.end(), wide,
                       [](char character) { return static_cast<unsigned char>(character); });
        return wide;
    }

    // Zeros, the first of them replaced by bytes of the input.
    void* Record(std::size_t size)
    {
        void* const record = New(size);
        const std::string bytes = m_input.Bytes(m_input.Byte() % (size + 1));
        std::memcpy(record, bytes.data(), bytes.size());
        return record;
    }

private:
    void* Buffer(std::size_t itemSize)
    {
        m_size = m_input.Byte() * itemSize;
        return Record(*m_size);
    }

    std::size_t TakeSize()
    {
        return *std::exchange(m_size, std::nullopt) / m_sizeUnit;
    }

    // Of exactly that size, so that the sanitizer sees a byte too far.
    void* New(std::size_t size)
    {
        return m_blocks.emplace_back(std::make_unique<std::byte[]>(size)).get();
    }

    fuzz::Input& m_input;
    std::size_t m_sizeUnit;
    std::optional<std::size_t> m_size; ///< of the buffer before, in bytes
    std::vector<std::unique_ptr<std::byte[]>> m_blocks;
};

template <class Object, class Result, class Class, class... Types>
void Invoke(Object& object, Result (Class::*function)(Types...) noexcept, Arguments& arguments)
{
    // Braces evaluate from left to right.
    std::apply([&](auto&&... taken) { static_cast<void>((object.*function)(static_cast<Types>(taken)...)); },
               std::tuple<Types...>{arguments.Take<Types>()...});
}

using Call = void (*)(Objects& objects, fuzz::Input& input);

template <auto kObject, auto kFunction, std::size_t kSizeUnit = 1>
void On(Objects& objects, fuzz::Input& input)
{
    Arguments arguments(input, kSizeUnit);
    Invoke(objects.*kObject, kFunction, arguments);
}

// Once, or again after a clean-up: a second interface would replace the first.
void SetUpGraphics(Objects& objects, fuzz::Input&)
{
    objects.graphics.Cleanup();
    static_cast<void>(objects.graphics.Setup());
}

// A mapping is read, written and given back where it was made: its handle is the driver's own.
void UseMapping(Objects& objects, fuzz::Input& input)
{
    Arguments arguments(input, 1);
    void* mapping = nullptr;
    const auto address = static_cast<ULONG_PTR>(static_cast<ULONG>(arguments.Number()));
    const ULONG length = input.Byte();
    void* const room = arguments.Record(length);
    if (objects.chipset.MapMemorySpace(reinterpret_cast<void*>(address), length, &mapping) == 0)
    {
        static_cast<void>(objects.chipset.ReadMemory(mapping, room, length));
        static_cast<void>(objects.chipset.WriteMemory(mapping, room, length));
        objects.chipset.UnmapMemorySpace(mapping);
    }
}

// The name takes more than 50 characters.
void FindPciDevice(Objects& objects, fuzz::Input& input)
{
    Arguments arguments(input, 1);
    const auto bus = arguments.Take<ULONG>();
    const auto device = arguments.Take<ULONG>();
    wchar_t name[51];
    static_cast<void>(
        objects.chipset.GetDeviceName(bus, device, arguments.Take<ULONG>(), name, std::size(name)));
}

// An item of the battery record takes up to 36 bytes.
void ReadBatteryItem(Objects& objects, fuzz::Input& input)
{
    Arguments arguments(input, 1);
    const int index = arguments.Number();
    const wchar_t* const name = arguments.Text();
    static_cast<void>(
        objects.schemes.GetBatteryInformation(index, name, static_cast<ULONG*>(arguments.Record(36))));
}

void SetAutoRun(Objects& objects, fuzz::Input& input)
{
    Arguments arguments(input, 1);
    const int flag = arguments.Number();
    const wchar_t* const path = arguments.Text();
    const auto length = static_cast<ULONG>(text::Length(path));
    static_cast<void>(objects.schemes.SetAutoRunORVA(flag, path, length));
}

// The key takes 260 characters; the folder's size counts bytes.
void LookUserUp(Objects& objects, fuzz::Input& input)
{
    Arguments arguments(input, 1);
    const wchar_t* const user = arguments.Text();
    wchar_t key[text::kPathCapacity];
    auto* const folder = arguments.Take<wchar_t*>();
    static_cast<void>(
        objects.file.GetCurrentUserSubkeyProfilePath(user, key, nullptr, folder, arguments.Take<ULONG*>()));
}

// One of several functions of a name, by its arguments.
template <class... Types>
using Scheme = int (CSchemeEx::*)(Types...) noexcept;

using Text = const wchar_t*;
constexpr auto kBatteries = &Objects::batteries;
constexpr auto kDevices = &Objects::devices;
constexpr auto kGraphics = &Objects::graphics;
constexpr auto kController = &Objects::controller;
constexpr auto kChipset = &Objects::chipset;
constexpr auto kAdapter = &Objects::adapter;
constexpr auto kProcessor = &Objects::processor;
constexpr auto kFile = &Objects::file;
constexpr auto kProfile = &Objects::profile;
constexpr auto kBoard = &Objects::board;
constexpr auto kSchemes = &Objects::schemes;
constexpr std::size_t kWide = sizeof(wchar_t);

constexpr Call kCalls[] = {
    &On<kBatteries, &CBatAgent::Setup>,
    &On<kBatteries, &CBatAgent::Cleanup>,
    &On<kBatteries, &CBatAgent::GetInfo>,
    &On<kBatteries, &CBatAgent::GetStatus>,
    &On<kBatteries, &CBatAgent::GetTemperature>,
    &On<kBatteries, &CBatAgent::GetManufactureDate>,
    &On<kBatteries, &CBatAgent::GetManufactureName>,
    &On<kBatteries, &CBatAgent::GetUniqueID>,
    &On<kBatteries, &CBatAgent::GetCompleteTime>,
    &On<kBatteries, &CBatAgent::GetRemainBatPer>,
    &On<kProcessor, &CCpuAgent::Initialize>,
    &On<kProcessor, &CCpuAgent::GetEblLevel>,
    &On<kProcessor, &CCpuAgent::SetEblLevel>,
    &On<kDevices, &CDevMgr::Setup>,
    &On<kDevices, &CDevMgr::Cleanup>,
    &On<kDevices, &CDevMgr::ChangeState>,
    &On<kDevices, &CDevMgr::DoStateChangeRemote>,
    &On<kDevices, &CDevMgr::ExecStateChange2>,
    &On<kDevices, &CDevMgr::DrvDescToInstID, kWide>,
    &On<kDevices, &CDevMgr::GetName>,
    &On<kDevices, &CDevMgr::GetDesc>,
    &On<kDevices, &CDevMgr::GetDevRegProp>,
    &On<kDevices, &CDevMgr::GetInstID, kWide>,
    &On<kDevices, &CDevMgr::GetDeviceStatus>,
    &SetUpGraphics,
    &On<kGraphics, &CDspxAgent::Cleanup>,
    &On<kGraphics, &CDspxAgent::CheckSupportStatus>,
    &On<kGraphics, &CDspxAgent::GetEblLevel>,
    &On<kGraphics, &CDspxAgent::SetEblLevel>,
    &On<kController, &CEcAgent::Setup>,
    &On<kController, &CEcAgent::Cleanup>,
    &On<kController, &CEcAgent::GetBacklightLevel>,
    &On<kController, &CEcAgent::SetBacklightLevel>,
    &On<kController, &CEcAgent::SetWifiStatus>,
    &On<kController, &CEcAgent::SwitchDisplayMode>,
    &On<kController, &CEcAgent::ToExecCtrlMethod>,
    &On<kController, &CEcAgent::GeneralRead>,
    &On<kController, &CEcAgent::GeneralWrite>,
    &On<kController, &CEcAgent::GetBatteryExtends>,
    &On<kChipset, &CHwSBX::Setup>,
    &On<kChipset, &CHwSBX::Cleanup>,
    &On<kChipset, &CHwSBX::FunctionDisable>,
    &On<kChipset, &CHwSBX::GetFunctionDisable>,
    &On<kChipset, &CHwSBX::ReadMSR>,
    &On<kChipset, &CHwSBX::WriteMSR>,
    &On<kChipset, &CHwSBX::ReadIoPort>,
    &On<kChipset, &CHwSBX::WriteIoPort>,
    &On<kChipset, &CHwSBX::ReadPCIConfig>,
    &On<kChipset, &CHwSBX::WritePCIConfig>,
    &UseMapping,
    &FindPciDevice,
    &On<kAdapter, &CLanAgent::Initialize>,
    &On<kAdapter, &CLanAgent::SetLanSpeed>,
    &On<kAdapter, &CLanAgent::GetLanSpeed>,
    &On<kAdapter, &CLanAgent::ApplySettings>,
    &On<kAdapter, &CLanAgent::SetLANConnectStatus>,
    &On<kAdapter, &CLanAgent::GetWLANConnectStatus>,
    &On<kFile, static_cast<int (CORVLCfg::*)(Text) noexcept>(&CORVLCfg::Initialize)>,
    &On<kFile, &CORVLCfg::GetHomePath, kWide>,
    &On<kFile, &CORVLCfg::GetHex>,
    &On<kFile, &CORVLCfg::PutHex>,
    &On<kFile, &CORVLCfg::PutString>,
    &LookUserUp,
    &On<kFile, &CORVLCfg::ServiceCall>,
    &On<kProfile, &CORVLProfile::Initialize>,
    &On<kProfile, &CORVLProfile::GetHomePath, kWide>,
    &On<kProfile,
        static_cast<int (CORVLCfg::*)(Text, Text, Text, wchar_t*, int) noexcept>(&CORVLCfg::GetString),
        kWide>,
    &On<kBoard, &CInterProcessBoard::Reset>,
    &On<kBoard, &CInterProcessBoard::Paste>,
    &On<kBoard, &CInterProcessBoard::Read>,
    &On<kBoard, &CInterProcessBoard::Clear>,
    &On<kBoard, &CInterProcessBoard::UnLock>,
    &On<kBoard, &CInterProcessBoard::ConstructName, kWide>,
    &On<kSchemes, &CSchemeEx::Initialize>,
    &On<kSchemes, &CSchemeEx::SetSubKeyProfilePath>,
    &On<kSchemes, &CSchemeEx::GetPwrVariableOptCount>,
    &On<kSchemes, &CSchemeEx::GetPwrVariableOptValue>,
    &On<kSchemes, &CSchemeEx::GetPwrVariableOptDesc, kWide>,
    &On<kSchemes, &CSchemeEx::GetPwrVariableUnit, kWide>,
    &On<kSchemes, &CSchemeEx::GetPwrVariableName, kWide>,
    &On<kSchemes, static_cast<Scheme<int, int, Text>>(&CSchemeEx::GetPwrVariable)>,
    &On<kSchemes, &CSchemeEx::GetPwrVariableAll>,
    &On<kSchemes, &CSchemeEx::GetActivePwrScheme>,
    &On<kSchemes, &CSchemeEx::GetHibernateTimeOutFromUserPowerPolicy>,
    &On<kSchemes, static_cast<Scheme<int, int, Text, int>>(&CSchemeEx::SetPwrVariable)>,
    &On<kSchemes, static_cast<Scheme<PWRSET&>>(&CSchemeEx::SetPwrVariable)>,
    &On<kSchemes, &CSchemeEx::SetPwrCfgVariable>,
    &On<kSchemes, static_cast<Scheme<int>>(&Schemes::FindPwrScheme)>,
    &On<kSchemes, static_cast<Scheme<Text>>(&CSchemeEx::FindPwrScheme)>,
    &On<kSchemes, static_cast<Scheme<Text, Text>>(&CSchemeEx::FindPwrScheme)>,
    &On<kSchemes, &CSchemeEx::SchemeIndexToGuid>,
    &On<kSchemes, &CSchemeEx::SchemeGuidToIndex>,
    &On<kSchemes, &CSchemeEx::GetPwrSchemeMaxIndex>,
    &On<kSchemes, &CSchemeEx::ReadUserActivePowerScheme>,
    &On<kSchemes, &CSchemeEx::ReadUserPowerPolicy>,
    &On<kSchemes, &CSchemeEx::ReadMachinePowerPolicy>,
    &On<kSchemes, static_cast<Scheme<int, Text>>(&CSchemeEx::SetActivePwrScheme)>,
    &On<kSchemes, &CSchemeEx::SetGolbalPwrPolicyFromCurrentUser>,
    &On<kSchemes, static_cast<Scheme<Text, Text, int, Text>>(&CSchemeEx::AddPwrScheme)>,
    &On<kSchemes, static_cast<Scheme<PWRSET&, Text>>(&CSchemeEx::AddPwrScheme)>,
    &On<kSchemes, &CSchemeEx::AddtoUserList>,
    &On<kSchemes, &CSchemeEx::AddtoUserScheme>,
    &On<kSchemes, &CSchemeEx::SetPwrSchemeNameDesc>,
    &On<kSchemes, static_cast<Scheme<int, Text>>(&CSchemeEx::DeletePwrScheme)>,
    &On<kSchemes, &CSchemeEx::EnumPwrSchemes>,
    &On<kSchemes, &CSchemeEx::GetPwrSchemeNameDesc, kWide>,
    &On<kSchemes, &CSchemeEx::ClearORV>,
    &On<kSchemes, &CSchemeEx::ClearUserRegSettings>,
    &SetAutoRun,
    &On<kSchemes, &CSchemeEx::SetCPUSpeed>,
    &On<kSchemes, &CSchemeEx::GetBatteryStatus>,
    &On<kSchemes, &CSchemeEx::GetBatteryInfo>,
    &ReadBatteryItem,
    &On<kSchemes, &CSchemeEx::GetDeviceStatus>,
    &On<kSchemes, &CSchemeEx::SetDeviceStatus>,
    &On<kSchemes, &Schemes::ValidateData>,
    &On<kSchemes, &Schemes::GetHiberTimeFromStandbyTime>,
};

constexpr int kMostCalls = 8;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    fuzz::Machine::Fresh(input.Byte() % 2 == 0 ? 5 : 6);
    {
        Objects objects;
        for (int call = 0; call < kMostCalls && !input.IsEmpty(); ++call)
        {
            input.OneOf(kCalls)(objects, input);
        }
    }
    fuzz::Machine::Finish();
    return 0;
}
