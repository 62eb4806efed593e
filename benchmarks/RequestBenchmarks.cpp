// benchmarks/RequestBenchmarks.cpp
//
// What a request costs in the plug-in itself, and what the platform's calls add. The platform here is the
// simulated one, whose files and registry are slower or faster than Windows'; so beside a request that
// calls the platform the same calls are measured alone, and the difference is the plug-in's share.

#include "control/Notebook.h"
#include "foundation/Text.h"
#include "plugin/CommandTable.h"
#include "plugin/ConfigCommands.h"
#include "plugin/PluginExports.h"
#include "plugin/SchemeConversion.h"

#include <benchmark/benchmark.h>

#include <shlwapi.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

namespace
{

constexpr const char* kFile = "ORVLCfg.ini";
constexpr const char* kSection = "OrvlDevMgr";
constexpr const char* kItem = "TimeoutMS";

// A request with its own buffers.
struct Request
{
    explicit Request(const char* command)
    {
        std::memcpy(record.command, command, std::strlen(command));
        record.userId = "alice";
        record.result = reply;
        record.resultLen = &size;
    }
    template <class Payload>
    Request(const char* command, const Payload& payload) : Request(command)
    {
        record.params = &payload;
        record.paramsLen = sizeof payload;
    }

    LONG Send()
    {
        size = sizeof reply;
        return DP_HandleRequest(&record);
    }

    PM_Request record{};
    char reply[1024];
    DWORD size = sizeof reply;
};

PM_Config_Data ConfigAccess()
{
    PM_Config_Data data{};
    std::memcpy(data.file, kFile, std::strlen(kFile));
    std::memcpy(data.section, kSection, std::strlen(kSection));
    std::memcpy(data.item, kItem, std::strlen(kItem));
    return data;
}

void Send(benchmark::State& state, Request& request, LONG expected)
{
    for (auto _ : state)
    {
        if (request.Send() != expected)
        {
            state.SkipWithError("the request doesn't answer as it should");
            break;
        }
    }
}

void FindFirstCommand(benchmark::State& state)
{
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(FindCommand("GET_CPU_SPEED"));
    }
}
BENCHMARK(FindFirstCommand);

void FindLastCommand(benchmark::State& state)
{
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(FindCommand("AUTORUN_ORVA"));
    }
}
BENCHMARK(FindLastCommand);

// Copies the record and looks up an unknown name: no platform call at all.
void UnknownCommand(benchmark::State& state)
{
    Request request("NO_SUCH_COMMAND");
    Send(state, request, TRX_UNKNOWN_COMMAND);
}
BENCHMARK(UnknownCommand);

// The shortest request that reaches a handler: lock, handler, one attempt to open the log.
void RefusedCommand(benchmark::State& state)
{
    Request request("GET_LUMS_LEVEL");
    Send(state, request, TRX_OPERATION_REFUSED);
}
BENCHMARK(RefusedCommand);

void OneLogLineOfThePlatform(benchmark::State& state)
{
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(_wfopen(L"C:/temp1234567890/trxpm.log", L"ab"));
    }
}
BENCHMARK(OneLogLineOfThePlatform);

void EncodeWholeScheme(benchmark::State& state)
{
    PWRSET setting{};
    PM_Power_Scheme_Data_ALL record;
    for (auto _ : state)
    {
        ConvertPwrSet(setting, record);
        benchmark::DoNotOptimize(record);
    }
}
BENCHMARK(EncodeWholeScheme);

// It includes four text conversions.
void DecodeConfigRecord(benchmark::State& state)
{
    const PM_Config_Data wire = ConfigAccess();
    ConfigData data;
    for (auto _ : state)
    {
        ConvertConfigData(wire, data);
        benchmark::DoNotOptimize(data);
    }
}
BENCHMARK(DecodeConfigRecord);

void ConfigRequest(benchmark::State& state)
{
    const PM_Config_Data data = ConfigAccess();
    Request request("GET_INT_FROM_CONFIG", data);
    Send(state, request, TRX_OPERATION_OK);
}
BENCHMARK(ConfigRequest);

// The calls that the request above makes, in its order.
void ConfigRequestsShareOfThePlatform(benchmark::State& state)
{
    const PM_Config_Data data = ConfigAccess();
    wchar_t text[256];
    for (auto _ : state)
    {
        for (const char* const field : {data.file, data.section, data.item})
        {
            MultiByteToWideChar(CP_ACP, 0, field, static_cast<int>(std::strlen(field)), text, 255);
        }
        benchmark::DoNotOptimize(_wfopen(L"C:/temp1234567890/trxpm.log", L"ab"));
        HKEY key = nullptr;
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Kelvo\\ORVL", 0, KEY_READ, &key);
        wchar_t path[MAX_PATH] = {};
        DWORD size = sizeof path;
        RegQueryValueExW(key, L"CfgPath", nullptr, nullptr, reinterpret_cast<LPBYTE>(path), &size);
        RegCloseKey(key);
        text::Append(path, L"ORVLCfg.ini");
        PathFileExistsW(path);
        benchmark::DoNotOptimize(GetPrivateProfileIntW(L"OrvlDevMgr", L"TimeoutMS", 0, path));
    }
}
BENCHMARK(ConfigRequestsShareOfThePlatform);

// What every scheme command costs for a known user.
void SchemeCommandOverhead(benchmark::State& state)
{
    Request request("INIT_CFG_FILE");
    Send(state, request, TRX_OPERATION_OK);
}
BENCHMARK(SchemeCommandOverhead);

void QueryWholeScheme(benchmark::State& state)
{
    const LONG scheme = 1;
    Request request("QUERY_SCHEME_ALL", scheme);
    Send(state, request, TRX_OPERATION_OK);
}
BENCHMARK(QueryWholeScheme);

// A notebook that lives as long as the program.
class FreshNotebook
{
public:
    FreshNotebook()
    {
        std::error_code ignored;
        std::string pattern = (std::filesystem::temp_directory_path(ignored) / "notebook-XXXXXX").string();
        if (mkdtemp(pattern.data()) != nullptr)
        {
            m_folder = pattern;
        }
    }
    ~FreshNotebook()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    FreshNotebook(const FreshNotebook&) = delete;
    FreshNotebook& operator=(const FreshNotebook&) = delete;

    bool Create() const
    {
        return !m_folder.empty() &&
               simulated::Notebook::Create(m_folder, {.installation = INSTALLATION_FOLDER});
    }

private:
    std::string m_folder;
};

} // namespace

int main(int count, char** arguments)
{
    benchmark::Initialize(&count, arguments);
    const FreshNotebook notebook;
    if (!notebook.Create())
    {
        std::fputs("can't make a notebook\n", stderr);
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
