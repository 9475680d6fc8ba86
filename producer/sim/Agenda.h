#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace zqgentl {

/// What a camera does by itself at later times, on a thread that exists from the first entry to Stop. Each
/// job is entered at most once: entering it again moves it. Work without a name may be entered several times.
/// Any thread may call any member; Stop not from a job.
class Agenda {
public:
    using Clock = std::chrono::steady_clock;
    enum class Job { Temperature, LoseDevice, LoseInterface, Timer0, Timer1, StartTrigger };
    static constexpr size_t jobCount = 6;
    static constexpr size_t namelessMax = 32;

    Agenda() = default;
    Agenda(const Agenda&) = delete;
    Agenda& operator=(const Agenda&) = delete;
    ~Agenda() { Stop(); }

    void After(Clock::duration delay, Job job, std::function<void()> work);
    /// False when as much is entered as there is room for.
    bool At(Clock::time_point due, std::function<void()> work);
    /// Drops every entry and ends the thread; no job runs when it returns. Entries may follow.
    void Stop();

private:
    struct Entry {
        Clock::time_point due;
        std::function<void()> work; // null: not entered
    };

    void Enter(Entry& entry, Clock::time_point due, std::function<void()> work);
    void Run();
    [[nodiscard]] Entry* Next();

    std::mutex m_lock;
    std::condition_variable m_wake;
    std::array<Entry, jobCount + namelessMax> m_entries; // those of the jobs first
    bool m_quit = false;
    std::thread m_thread;
};

} // namespace zqgentl
