// tests/transcripts/Scene.h
//
// The notebook of the transcripts and failure rows: a service behind the boards, two batteries, two adapters
// of a kind, schemes of two users whose values differ between AC and DC. Every request starts from the same
// state.
#pragma once

#include "acceptance/Environment.h"
#include "acceptance/Host.h"
#include "control/Snapshot.h"
#include "control/State.h"
#include "support/BoardService.h"
#include "transcripts/Samples.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

/// Everything that can be seen of one request.
struct RequestOutcome
{
    Answer answer;
    std::vector<Event> events;
    std::vector<service::Request> serviceRequests;
    std::vector<std::string> pluginLog; ///< "trxpm.log"
    std::vector<std::string> engineLog; ///< "orvl.log"
    std::vector<std::string> debugger;
    std::string calls; ///< platform calls by class
};

class Scene
{
public:
    /// `major` is 5 for the index-based power manager, 6 for the GUID-based one.
    explicit Scene(DWORD major);
    ~Scene();

    /// Restores the initial state and sends `sample`.
    RequestOutcome Run(const Sample& sample);

    /// Sends `sample` on the state as it is.
    RequestOutcome Send(const Sample& sample);

    void Restore();

    /// What `Run` changed.
    std::vector<std::string> Changes() const;

private:
    void SeedHardware() const;
    void SeedUsersPolicy() const;
    void SeedSchemes();
    void Expect(const char* command, const std::string& fields);

    environment::Machine m_machine;
    DWORD m_major;
    std::string m_folder;
    std::unique_ptr<BoardService> m_service;
    std::optional<Host> m_host;
    std::optional<simulated::Snapshot> m_snapshot;
    simulated::State m_state;
};
