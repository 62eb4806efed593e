// tests/service/ServiceProcess.cpp
//
// Two pipes and a process.

#include "service/ServiceProcess.h"

#include <cstdlib>
#include <fcntl.h>
#include <poll.h>

namespace
{

constexpr int kPatience = 10000;

/// Becomes the service on a notebook, on the real clock.
bool Become(const std::string& notebook, const std::vector<std::string>& options, int input, int output)
{
    dup2(input, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    for (const char* const name : {"SIM_ACCOUNT", "SIM_CLOCK", "SIM_DEBUG_OUTPUT", "SIM_TRACE"})
    {
        unsetenv(name);
    }
    setenv("SIM_NOTEBOOK", notebook.c_str(), 1);
    std::vector<char*> arguments = {const_cast<char*>(ORVLSERVICE)};
    for (const std::string& option : options)
    {
        arguments.push_back(const_cast<char*>(option.c_str()));
    }
    arguments.push_back(nullptr);
    return execv(ORVLSERVICE, arguments.data()) == 0;
}

} // namespace

ServiceProcess::ServiceProcess(const std::string& notebook, const std::vector<std::string>& options)
{
    int input[2];
    int output[2];
    if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0)
    {
        return;
    }
    m_process =
        std::make_unique<ChildProcess>([&] { return Become(notebook, options, input[0], output[1]); });
    close(input[0]);
    close(output[1]);
    m_input = input[1];
    m_output = output[0];
}

ServiceProcess::~ServiceProcess()
{
    m_process.reset();
    close(m_input);
    close(m_output);
}

bool ServiceProcess::WaitFor(const std::string& text)
{
    while (m_printed.find(text) == std::string::npos)
    {
        pollfd ready = {m_output, POLLIN, 0};
        char buffer[4096];
        const ssize_t count = poll(&ready, 1, kPatience) == 1 ? read(m_output, buffer, sizeof buffer) : 0;
        if (count <= 0)
        {
            return false;
        }
        m_printed.append(buffer, static_cast<std::size_t>(count));
    }
    return true;
}
