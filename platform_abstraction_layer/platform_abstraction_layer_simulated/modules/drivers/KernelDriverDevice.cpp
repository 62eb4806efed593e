// modules/drivers/KernelDriverDevice.cpp
//
// The device "\\.\orvlebl": opening it and dispatching requests to handlers. It isn't exclusive, and any
// access may be asked for.

#include "base/Text.h"
#include "machine/KernelDriver.h"
#include "modules/drivers/DriverControls.h"
#include "modules/kernel32/Devices.h"
#include "modules/kernel32/SystemVersion.h"

#include <algorithm>
#include <iterator>

namespace simulated
{

namespace
{

constexpr std::string_view kDevicePath = "\\\\.\\orvlebl";

// Which sizes a control takes. An open size follows from the record, and its handler checks it.
struct SizeRule
{
    std::size_t size;
    bool isOpen;

    bool Admits(std::size_t actual) const
    {
        return isOpen ? actual >= size : actual == size;
    }
};

constexpr SizeRule Exactly(std::size_t size)
{
    return {size, false};
}
constexpr SizeRule AtLeast(std::size_t size)
{
    return {size, true};
}

struct Control
{
    DWORD code;
    SizeRule input;
    SizeRule output;
    DWORD (*handle)(orvlebl::Exchange&);
};

constexpr Control kControls[] = {
    {orvlebl::kEvaluateMethod, Exactly(sizeof(orvlebl::MethodInput)), AtLeast(4), &orvlebl::EvaluateMethod},
    {orvlebl::kReadMsr, Exactly(4), Exactly(sizeof(orvlebl::Msr)), &orvlebl::ReadMsr},
    {orvlebl::kWriteMsr, Exactly(sizeof(orvlebl::Msr)), Exactly(0), &orvlebl::WriteMsr},
    {orvlebl::kReadPci, Exactly(sizeof(orvlebl::PciAccess)), AtLeast(1), &orvlebl::ReadPci},
    {orvlebl::kWritePci, AtLeast(sizeof(orvlebl::PciAccess)), Exactly(0), &orvlebl::WritePci},
    {orvlebl::kReadPort, Exactly(sizeof(orvlebl::PortAccess)), AtLeast(1), &orvlebl::ReadPort},
    {orvlebl::kWritePort, AtLeast(sizeof(orvlebl::PortAccess)), Exactly(0), &orvlebl::WritePort},
    {orvlebl::kMapMemory, Exactly(sizeof(orvlebl::MapInput)), Exactly(sizeof(orvlebl::Mapping)),
     &orvlebl::MapMemory},
    {orvlebl::kUnmapMemory, Exactly(sizeof(orvlebl::Mapping)), Exactly(0), &orvlebl::UnmapMemory},
    {orvlebl::kReadMemory, Exactly(sizeof(orvlebl::MemoryAccess)), AtLeast(1), &orvlebl::ReadMemory},
    {orvlebl::kWriteMemory, AtLeast(sizeof(orvlebl::MemoryAccess)), Exactly(0), &orvlebl::WriteMemory},
    {orvlebl::kGetProperty, Exactly(sizeof(orvlebl::PropertyQuery)), AtLeast(1), &orvlebl::GetProperty},
};

DWORD Dispatch(DWORD code, orvlebl::Exchange& exchange)
{
    const auto* const control = std::find_if(std::begin(kControls), std::end(kControls),
                                             [&](const Control& row) { return row.code == code; });
    if (control == std::end(kControls))
    {
        return orvlebl::kUnknownControl;
    }
    if (const DWORD refusal = DriverGate::ErrorOfRequest(); refusal != ERROR_SUCCESS)
    {
        return refusal;
    }
    if (!control->input.Admits(exchange.in.size()) || !control->output.Admits(exchange.out.size()))
    {
        return orvlebl::kWrongSize;
    }
    return control->handle(exchange);
}

class KernelDriverDevice : public Device
{
public:
    explicit KernelDriverDevice(bool isObserved) : m_isObserved(isObserved)
    {
    }

    // From Windows Vista on the channel to the driver stays open once it is.
    bool LivesWithTheProcess() const override
    {
        return ReadSystemVersion().major >= 6;
    }

    DWORD Control(DWORD code, const void* in, DWORD inSize, void* out, DWORD outSize,
                  DWORD& returned) override
    {
        DriverGate::PassHold();
        orvlebl::Exchange exchange = {
            {static_cast<const BYTE*>(in), inSize}, {static_cast<BYTE*>(out), outSize}, 0, m_isObserved};
        const DWORD error = Dispatch(code, exchange);
        returned = error == ERROR_SUCCESS ? exchange.returned : 0;
        const std::span<const BYTE> answer = exchange.out.first(returned);
        DriverGate::Note(
            {code, {exchange.in.begin(), exchange.in.end()}, outSize, {answer.begin(), answer.end()}, error});
        return error;
    }

private:
    bool m_isObserved;
};

Outcome<std::shared_ptr<Object>> OpenKernelDriver(std::string_view path, DWORD, DWORD,
                                                  const PlatformCall& call)
{
    if (!EqualIgnoringCase(path, kDevicePath) || !KernelDriver::IsPresent())
    {
        return {nullptr, ERROR_FILE_NOT_FOUND};
    }
    return {std::make_shared<KernelDriverDevice>(call.IsObserved())};
}

const devices::Registration kKernelDriver(&OpenKernelDriver);

} // namespace

} // namespace simulated
