// tests/support/BoardService.h
//
// A service behind the boards as a thread of the test's own process, with answers that the test chooses.
#pragma once

#include "service/Boards.h"

#include "foundation/Owners.h"

#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

class BoardService
{
public:
    /// The answer to a request; nothing for none at all.
    using Behaviour = std::function<std::optional<service::Answer>(const service::Request&)>;

    /// Creates the boards and serves until the end of the object. By default each request is answered
    /// with 0.
    explicit BoardService(Behaviour behaviour = [](const service::Request&) -> std::optional<service::Answer>
                          {
                              return service::Answer{service_boards::kDone, 0};
                          });
    ~BoardService();
    BoardService(const BoardService&) = delete;
    BoardService& operator=(const BoardService&) = delete;

    /// The requests since the last call, once all that came are answered.
    std::vector<service::Request> TakeRequests();

private:
    void Serve();

    Behaviour m_behaviour;
    service::Boards m_boards;
    owners::Handle m_stop;
    std::mutex m_mutex;
    std::vector<service::Request> m_requests;
    std::thread m_thread;
};
