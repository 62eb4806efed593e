// tests/service/ServiceProcess.cpp
//
// Two pipes and a process.

#include "service/ServiceProcess.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr int kPatience = 10000;

/// This process's environment with the notebook in it. The service keeps real time, like any process that
/// nobody hurries.
std::vector<std::string> EnvironmentFor(const std::string& notebook)
{
    std::vector<std::string> environment = {"SIM_NOTEBOOK=" + notebook};
    for (char** entry = environ; *entry != nullptr; ++entry)
    {
        const std::string text = *entry;
        if (text.rfind("SIM_", 0) != 0)
        {
            environment.push_back(text);
        }
    }
    return environment;
}

std::vector<char*> Pointers(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (std::string& text : texts)
    {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
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
    std::vector<std::string> arguments = {ORVLSERVICE};
    arguments.insert(arguments.end(), options.begin(), options.end());
    std::vector<std::string> environment = EnvironmentFor(notebook);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], 0);
    posix_spawn_file_actions_adddup2(&actions, output[1], 1);
    posix_spawn_file_actions_adddup2(&actions, output[1], 2);
    if (posix_spawn(&m_process, ORVLSERVICE, &actions, nullptr, Pointers(arguments).data(),
                    Pointers(environment).data()) != 0)
    {
        m_process = -1;
    }
    posix_spawn_file_actions_destroy(&actions);
    close(input[0]);
    close(output[1]);
    m_input = input[1];
    m_output = output[0];
}

ServiceProcess::~ServiceProcess()
{
    if (m_process != -1)
    {
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
    }
    CloseInput();
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

void ServiceProcess::CloseInput()
{
    if (m_input != -1)
    {
        close(m_input);
        m_input = -1;
    }
}

void ServiceProcess::Signal(int number) const
{
    kill(m_process, number);
}

int ServiceProcess::ExitCode()
{
    // What is printed until the end, so that a full pipe doesn't hold the service up.
    WaitFor("\x01 never printed");
    int status = 0;
    waitpid(m_process, &status, 0);
    m_process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
