// fuzz/Answers.cpp
//
// Hardware and a service that answer anything. An input is a byte for the generation of Windows (even: 5.1);
// who answers, as bits; for the graphics driver a method, its result, its error, its capabilities and a
// policy's record; for the adapter its description and its speed; for the service an offset on the result
// board and the bytes that it puts there; the number of requests and their samples. The rest are the answers
// of the kernel driver and the batteries, in the order in which they are asked: an error's number, or a
// length and as many bytes.

#include "fuzz/Input.h"
#include "fuzz/Machine.h"

#include "base/Clock.h"
#include "control/Adapters.h"
#include "control/Batteries.h"
#include "foundation/Owners.h"
#include "machine/Graphics.h"
#include "machine/KernelDriver.h"
#include "modules/kernel32/Devices.h"
#include "service/Boards.h"

#include <optional>
#include <thread>

using namespace simulated;

namespace
{

enum Answering : unsigned
{
    Driver = 1,
    AnyBattery = 2,
    GraphicsDriver = 4,
    Adapter = 8,
    Service = 16
};

constexpr DWORD kErrors[] = {
    ERROR_GEN_FAILURE,    ERROR_BUSY,          ERROR_INSUFFICIENT_BUFFER, ERROR_MORE_DATA,
    ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_INVALID_PARAMETER,   ERROR_INVALID_FUNCTION};
constexpr unsigned kFirstError = 200;
constexpr unsigned kMostRequests = 3;

// What the devices take their answers from while requests run.
fuzz::Input* answers = nullptr;

class AnsweringDevice final : public Device
{
public:
    explicit AnsweringDevice(bool livesWithTheProcess) : m_livesWithTheProcess(livesWithTheProcess)
    {
    }

    bool LivesWithTheProcess() const override
    {
        return m_livesWithTheProcess;
    }

    DWORD Control(DWORD, const void*, DWORD, void* out, DWORD outSize, DWORD& returned) override
    {
        const unsigned length = answers->Byte();
        if (length >= kFirstError)
        {
            return kErrors[length % std::size(kErrors)];
        }
        const std::string bytes = answers->Bytes(length);
        returned = std::min(static_cast<DWORD>(bytes.size()), outSize);
        std::copy_n(bytes.begin(), returned, static_cast<char*>(out));
        return ERROR_SUCCESS;
    }

private:
    bool m_livesWithTheProcess; ///< from 6.0 on the plug-in never closes its driver
};

DWORD present = 5;

// Asked when the notebook's own driver and batteries aren't there.
Outcome<std::shared_ptr<Object>> OpenAnything(std::string_view path, DWORD, DWORD, const PlatformCall&)
{
    return {std::make_shared<AnsweringDevice>(present == 6 && path.find("orvlebl") != path.npos),
            ERROR_SUCCESS};
}

const devices::Registration kAnything(&OpenAnything);

// The process behind the boards. It puts the same bytes on the result board for each request.
class OtherSide
{
public:
    OtherSide(LONG offset, std::string bytes) : m_offset(offset), m_bytes(std::move(bytes))
    {
        using namespace service_boards;
        if (m_parameters.Reset(kParameters, kSize, 1, kInstance) != 0 ||
            m_results.Reset(kResults, kSize, 1, kInstance) != 0)
        {
            fuzz::Fail("no boards");
        }
        m_thread = std::thread([this] { Serve(); });
    }
    ~OtherSide()
    {
        SetEvent(m_stop.Get());
        m_thread.join();
    }
    OtherSide(const OtherSide&) = delete;
    OtherSide& operator=(const OtherSide&) = delete;

private:
    void Serve()
    {
        const HANDLE signals[] = {m_stop.Get(), m_parameters.Doorbell()};
        for (DWORD signalled = WAIT_TIMEOUT; signalled != WAIT_OBJECT_0;)
        {
            signalled = WaitForMultipleObjects(2, signals, FALSE, INFINITE);
            if (signalled == WAIT_OBJECT_0 + 1)
            {
                static_cast<void>(m_parameters.Flag(1));
                static_cast<void>(
                    m_results.Paste(m_offset, m_bytes.data(), static_cast<LONG>(m_bytes.size())));
                static_cast<void>(m_results.Flag(0));
            }
        }
    }

    LONG m_offset;
    std::string m_bytes;
    service::ServedBoard m_parameters;
    service::ServedBoard m_results;
    owners::Handle m_stop{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    std::thread m_thread;
};

void SeedGraphics(fuzz::Input& input)
{
    constexpr const char* kMethods[] = {
        "", "PowerApiOpen", "PowerApiClose", "GetPowerPolicy", "SetPowerPolicy", "GetPowerPolicy.ABR"};
    constexpr const char* kPolicies[] = {"FRQG", "ABR", "LUMS"};
    const std::string method = input.OneOf(kMethods);
    const auto result = input.Number<HRESULT>();
    const DWORD error = input.Byte();
    if (!method.empty())
    {
        Graphics::Refuse(method, {result, error});
    }
    Graphics::SetCapabilities(input.Number<DWORD>());
    const std::string policy = input.OneOf(kPolicies);
    std::vector<DWORD> record(input.Byte() % 8);
    for (DWORD& word : record)
    {
        word = input.Number<DWORD>();
    }
    Graphics::SetPolicy(policy, record);
}

void SeedAdapter(fuzz::Input& input)
{
    constexpr const char* kSettings[] = {"*SpeedDuplex", "SpeedDuplex", "DuplexMode", "RequestedMediaType"};
    const std::string description = input.Bytes();
    const std::string setting = input.OneOf(kSettings);
    Adapters::Clear();
    static_cast<void>(Adapters::Add(description, {{setting, input.Bytes()}}));
}

void Seed(fuzz::Input& input, unsigned who)
{
    if ((who & Driver) != 0)
    {
        KernelDriver::SetPresent(false);
    }
    for (unsigned battery = 0; (who & AnyBattery) != 0 && battery < Batteries::Count(); ++battery)
    {
        Batteries::RefuseOpening(battery, ERROR_FILE_NOT_FOUND);
    }
    if ((who & GraphicsDriver) != 0)
    {
        SeedGraphics(input);
    }
    if ((who & Adapter) != 0)
    {
        SeedAdapter(input);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    present = input.Byte() % 2 == 0 ? 5 : 6;
    fuzz::Machine::Fresh(present);
    const unsigned who = input.Byte();
    Seed(input, who);
    std::optional<OtherSide> otherSide;
    if ((who & Service) != 0)
    {
        const auto offset = input.Number<std::uint16_t>();
        otherSide.emplace(offset, input.Bytes());
    }
    const std::string samples = input.Bytes(1 + input.Byte() % kMostRequests);
    answers = &input;
    for (const char sample : samples)
    {
        fuzz::Machine::SendSample(static_cast<unsigned char>(sample));
    }
    answers = nullptr;
    otherSide.reset();
    fuzz::Machine::Finish();
    return 0;
}
