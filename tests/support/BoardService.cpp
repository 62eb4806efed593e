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
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_requests, {});
}

void BoardService::Serve()
{
    const HANDLE signals[] = {m_stop.Get(), m_boards.Doorbell()};
    while (WaitForMultipleObjects(2, signals, FALSE, INFINITE) == WAIT_OBJECT_0 + 1)
    {
        service::Request request;
        EXPECT_TRUE(m_boards.Take(request));
        {
            const std::lock_guard lock(m_mutex);
            m_requests.push_back(request);
        }
        if (const std::optional<service::Answer> answer = m_behaviour(request))
        {
            EXPECT_TRUE(m_boards.Give(*answer));
        }
    }
}
