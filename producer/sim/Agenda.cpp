#include "producer/sim/Agenda.h"

#include <algorithm>

namespace zqgentl {

void Agenda::After(Clock::duration delay, Job job, std::function<void()> work) {
    std::lock_guard<std::mutex> guard(m_lock);
    if (!m_quit)
        Enter(m_entries[static_cast<size_t>(job)], Clock::now() + delay, std::move(work));
}

bool Agenda::At(Clock::time_point due, std::function<void()> work) {
    std::lock_guard<std::mutex> guard(m_lock);
    const auto isFree = [](const Entry& entry) { return entry.work == nullptr; };
    const auto found = std::find_if(m_entries.begin() + jobCount, m_entries.end(), isFree);
    if (m_quit || found == m_entries.end())
        return false;
    Enter(*found, due, std::move(work));
    return true;
}

void Agenda::Enter(Entry& entry, Clock::time_point due, std::function<void()> work) {
    entry = {due, std::move(work)};
    if (!m_thread.joinable())
        m_thread = std::thread([this] { Run(); });
    m_wake.notify_one();
}

void Agenda::Stop() {
    std::thread ending;
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_quit = true;
        for (Entry& entry : m_entries)
            entry.work = nullptr;
        ending.swap(m_thread);
        m_wake.notify_one();
    }
    if (ending.joinable())
        ending.join();
    std::lock_guard<std::mutex> guard(m_lock);
    m_quit = false;
}

Agenda::Entry* Agenda::Next() {
    Entry* next = nullptr;
    for (Entry& entry : m_entries) {
        if (entry.work != nullptr && (next == nullptr || entry.due < next->due))
            next = &entry;
    }
    return next;
}

void Agenda::Run() {
    std::unique_lock<std::mutex> lock(m_lock);
    while (!m_quit) {
        Entry* next = Next();
        if (next == nullptr) {
            m_wake.wait(lock);
        } else if (const Clock::time_point due = next->due; due > Clock::now()) {
            m_wake.wait_until(lock, due);
        } else {
            const std::function<void()> work = std::move(next->work);
            next->work = nullptr;
            lock.unlock();
            work();
            lock.lock();
        }
    }
}

} // namespace zqgentl
