// tests/support/BoardService.cpp
//
// The loop of the service, without its process.

#include "support/BoardService.h"

#include <gtest/gtest.h>

#include <utility>

BoardService::BoardService(Behaviour behaviour)
    : m_behaviour(std::move(behaviour)), m_stop(CreateEventW(nullptr, TRUE, FALSE, nullptr))
{
    EXPECT_TRUE(m_boards.Create());
    m_thread = std::thread([this] { Serve(); });
}

BoardService::~BoardService()
{
    SetEvent(m_stop.Get());
    m_thread.join();
}

std::vector<service::Request> BoardService::TakeRequests()
{
    // A caller whose wait failed doesn't wait for its answer.
    for (;; std::this_thread::yield())
    {
        const std::lock_guard lock(m_mutex);
        if (WaitForSingleObject(m_boards.Doorbell(), 0) != WAIT_OBJECT_0)
        {
            return std::exchange(m_requests, {});
        }
    }
}

void BoardService::Serve()
{
    const HANDLE signals[] = {m_stop.Get(), m_boards.Doorbell()};
    while (WaitForMultipleObjects(2, signals, FALSE, INFINITE) == WAIT_OBJECT_0 + 1)
    {
        const std::lock_guard lock(m_mutex);
        service::Request request;
        EXPECT_TRUE(m_boards.Take(request));
        m_requests.push_back(request);
        if (const std::optional<service::Answer> answer = m_behaviour(request))
        {
            EXPECT_TRUE(m_boards.Give(*answer));
        }
    }
}
