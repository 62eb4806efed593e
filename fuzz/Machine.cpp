// fuzz/Machine.cpp
//
// Notebooks in memory, one for each generation, restored from a snapshot.

#include "fuzz/Machine.h"

#include "CommandCatalogue.h"
#include "Payload.h"
#include "TextTools.h"
#include "base/ChangeCount.h"
#include "base/Clock.h"
#include "base/Trace.h"
#include "control/Batteries.h"
#include "control/Notebook.h"
#include "machine/KernelDriver.h"
#include "machine/Machine.h"
#include "modules/advapi32/Tokens.h"
#include "plugin/PluginExports.h"
#include "transcripts/Samples.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <unistd.h>

namespace fuzz
{

namespace
{

using namespace simulated;

// Removed at the end of the process.
struct Folder
{
    explicit Folder(const char* pattern) : path(pattern)
    {
        if (mkdtemp(path.data()) == nullptr)
        {
            Fail("no folder for the notebook");
        }
    }
    ~Folder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    std::string path;
};

// Reads what it gets, for the sanitizer to see.
int __cdecl TakeEvent(const char* moduleId, const char* eventName, const void* data, DWORD dataLen)
{
    const auto* const bytes = static_cast<const char*>(data);
    return static_cast<int>((moduleId + std::string(eventName) + std::string(bytes, bytes + dataLen)).size());
}

PM_HostInterface theHost = {0, TakeEvent};

// Schemes of a user's own, where the generation lets him make some.
void AddSchemes()
{
    for (unsigned number = 0; number < Samples().size(); ++number)
    {
        const std::string_view command = Samples()[number].command;
        if (command == "ADD_SCHEME" || command == "ADD_SCHEME_ALL")
        {
            std::vector<std::byte> payload = SamplePayload(number);
            const LONG model = 1;
            std::memcpy(payload.data() + offsetof(PM_Power_Scheme_Data, schemeID), &model, sizeof model);
            Machine::Send(Samples()[number].command, Notebook::kFirstUser, payload);
        }
    }
}

const std::string& MakeNotebook(DWORD major)
{
    static Folder folders[] = {Folder("/dev/shm/fuzz-5-XXXXXX"), Folder("/dev/shm/fuzz-6-XXXXXX")};
    const std::string& folder = folders[major == 5 ? 0 : 1].path;
    Clock::SetInstant(true);
    if (!Notebook::Create(
            folder, {.major = major, .minor = major == 5 ? 1U : 0U, .installation = INSTALLATION_FOLDER}))
    {
        Fail("no notebook");
    }
    Batteries::Add();
    DP_Initialize(&theHost);
    AddSchemes();
    DP_Uninitialize();
    return folder;
}

} // namespace

void Fail(const std::string& what)
{
    std::fprintf(stderr, "FOUND: %s\n", what.c_str());
    std::abort();
}

const std::vector<std::byte>& SamplePayload(unsigned number)
{
    static const auto& payloads = *[]
    {
        auto* const all = new std::vector<std::vector<std::byte>>;
        for (const Sample& sample : Samples())
        {
            const auto words = host::SplitWords(sample.fields);
            all->push_back(
                host::BuildPayload(host::FindCommand(sample.command)->payload, words.value()).bytes);
        }
        return all;
    }();
    return payloads[number % payloads.size()];
}

Machine::Machine(DWORD major) : m_folder(MakeNotebook(major)), m_snapshot(m_folder)
{
}

Machine& Machine::Fresh(DWORD major)
{
    static std::unique_ptr<Machine> machines[2];
    std::unique_ptr<Machine>& machine = machines[major == 5 ? 0 : 1];
    if (machine == nullptr)
    {
        machine.reset(new Machine(major));
    }
    static const Machine* present = nullptr;
    static std::uint64_t restoredAt = 0;
    if (present != machine.get() || restoredAt != ChangeCount::Value())
    {
        simulated::Machine::Use(machine->m_folder);
        if (!machine->m_snapshot.Restore())
        {
            Fail("the notebook can't be restored");
        }
        present = machine.get();
        restoredAt = ChangeCount::Value();
    }
    tokens::Reset();
    KernelDriver::ForgetRequests();
    if (DP_Initialize(&theHost) != TRX_OPERATION_OK)
    {
        Fail("the plug-in can't be initialised");
    }
    return *machine;
}

void Machine::Finish()
{
    DP_Uninitialize();
    if (Leaks::Count() != 0)
    {
        Fail("left open: " + Leaks::Describe());
    }
}

LONG Machine::Send(const char* command, const char* user, std::span<const std::byte> payload,
                   std::size_t room)
{
    // Of exactly their sizes, so that the sanitizer sees a byte too far.
    const std::vector<std::byte> params(payload.begin(), payload.end());
    std::vector<std::byte> reply(room);
    auto size = static_cast<DWORD>(room);
    PM_Request request = {};
    std::strncpy(request.command, command, sizeof request.command);
    request.userId = user;
    request.params = payload.data() == nullptr ? nullptr : params.data();
    request.paramsLen = static_cast<DWORD>(payload.size());
    request.result = reply.data();
    request.resultLen = &size;
    const LONG code = DP_HandleRequest(&request);
    CheckResult(command, code, size, room);
    return code;
}

void CheckResult(const char* command, LONG code, DWORD size, std::size_t room)
{
    const bool isCode = code == TRX_OPERATION_OK || code == TRX_OPERATION_REFUSED ||
                        code == TRX_UNKNOWN_COMMAND || code == TRX_OPERATION_FAIL;
    if (!isCode || size > room)
    {
        Fail(std::string(command) + ": result code " + std::to_string(code) + ", reply of " +
             std::to_string(size) + " bytes");
    }
}

void Machine::SendSample(unsigned number)
{
    const Sample& sample = Samples()[number % Samples().size()];
    Send(sample.command, Notebook::kFirstUser, SamplePayload(number));
}

void Machine::SendSample(const std::string& command)
{
    for (unsigned number = 0; number < Samples().size(); ++number)
    {
        if (command == Samples()[number].command)
        {
            SendSample(number);
            return;
        }
    }
}

} // namespace fuzz
