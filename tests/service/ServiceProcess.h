// tests/service/ServiceProcess.h
//
// The service as a real process on the test's notebook. It ends with the object, whatever the test did.
#pragma once

#include "support/ChildProcess.h"

#include <memory>
#include <string>
#include <vector>

class ServiceProcess
{
public:
    /// Starts the service; see `IsServing`.
    ServiceProcess(const std::string& notebook, const std::vector<std::string>& options);
    ~ServiceProcess();
    ServiceProcess(const ServiceProcess&) = delete;
    ServiceProcess& operator=(const ServiceProcess&) = delete;

    /// Reads what the service prints until `text` is among it; false when the service ends without it or
    /// prints nothing for ten seconds.
    bool WaitFor(const std::string& text);
    bool IsServing()
    {
        return WaitFor("serving\n");
    }

private:
    std::unique_ptr<ChildProcess> m_process;
    int m_input = -1;
    int m_output = -1;
    std::string m_printed;
};
