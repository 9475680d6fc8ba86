#include "ZqSDKCommon/Worker.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>

#include <sched.h>
#include <signal.h>

#include "ZqSDKCommon/Error.h"
#include "ZqSDKCommon/MutexLock.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqSDKCommon/Worker";
constexpr const char* NAME_PREFIX = "ZqApi_TL_";
// The system refuses longer names.
constexpr size_t LONGEST_NAME = 15;
constexpr int32_t LOWEST_REAL_TIME_PRIORITY = 2;

int32_t ClampTo(int policy, int32_t priority) {
    return std::clamp(priority, sched_get_priority_min(policy), sched_get_priority_max(policy));
}

int DefaultPolicy() {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    int policy = SCHED_OTHER;
    pthread_attr_getschedpolicy(&attributes, &policy);
    pthread_attr_destroy(&attributes);
    return policy;
}

/// Blocks every asynchronous signal while a thread is created, which inherits that.
class SignalBlock {
public:
    SignalBlock() {
        sigset_t blocked;
        sigfillset(&blocked);
        for (const int synchronous : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS, SIGABRT})
            sigdelset(&blocked, synchronous);
        pthread_sigmask(SIG_BLOCK, &blocked, &m_Former);
    }
    ~SignalBlock() { pthread_sigmask(SIG_SETMASK, &m_Former, nullptr); }
    SignalBlock(const SignalBlock&) = delete;
    SignalBlock& operator=(const SignalBlock&) = delete;

private:
    sigset_t m_Former;
};

/// Set while it lives, also when the body is left by a cancelled thread's unwinding.
class RunningMark {
public:
    explicit RunningMark(std::atomic<uint32_t>& running) : m_Running(running) { m_Running.store(1); }
    ~RunningMark() { m_Running.store(0); }
    RunningMark(const RunningMark&) = delete;
    RunningMark& operator=(const RunningMark&) = delete;

private:
    std::atomic<uint32_t>& m_Running;
};

} // namespace

CWorker::CWorker(const char* name) try : m_Name(name), m_StopRequest(nullptr, true, false, nullptr) {
} catch (const GenICam::BadAllocException& failure) {
    throw ReportError<GenICam::BadAllocException>(UNIT, __LINE__, "%s", failure.GetDescription());
}

CWorker::~CWorker() {
    CWorker::Stop();
    m_StopRequest.Close();
    pthread_mutex_destroy(&m_ControlMutex);
    pthread_mutex_destroy(&m_RunMutex);
}

bool CWorker::IsStopRequest(unsigned int milliseconds) {
    return WaitForSingleObject(GetStopRequestEvent(), milliseconds) == WAIT_OBJECT_0;
}

void* CWorker::GetStopRequestEvent() {
    return m_StopRequest.IsClosing() ? nullptr : &m_StopRequest;
}

void CWorker::Start() {
    Stop();
    // The thread can't join itself to make room for its successor.
    if (IsOwnThread())
        return;
    const MutexLock control(m_ControlMutex);
    if (HasThread())
        return;
    m_StopRequest.ResetEvent();
    ClampPriority();
    const SignalBlock noSignals;
    pthread_t thread = 0;
    if (pthread_create(&thread, nullptr, &CWorker::ThreadEntry, this) == 0)
        m_Thread.store(thread);
}

void CWorker::Stop() {
    if (!HasThread())
        return;
    RequestStop();
    if (IsOwnThread())
        return;
    const MutexLock control(m_ControlMutex);
    const pthread_t thread = m_Thread.load();
    if (thread == 0)
        return;
    pthread_join(thread, nullptr);
    // The system gives a joined thread's identifier to the next thread that comes along.
    m_OwnThread.store(0);
    const MutexLock run(m_RunMutex);
    m_Thread.store(0);
}

void* CWorker::ThreadEntry(void* worker) {
    static_cast<CWorker*>(worker)->ThreadStart();
    return nullptr;
}

void CWorker::ThreadStart() {
    m_OwnThread.store(pthread_self());
    ApplyPriority();
    SetOwnName();
    const MutexLock run(m_RunMutex);
    const RunningMark mark(m_Running);
    mWork();
}

void CWorker::SetOwnName() const {
    if (m_Name == nullptr)
        return;
    const size_t prefix = std::strlen(NAME_PREFIX);
    const char* const name = std::strncmp(m_Name, NAME_PREFIX, prefix) == 0 ? m_Name + prefix : m_Name;
    // No allocation: there is nobody on this thread to catch its failure.
    char cut[LONGEST_NAME + 1] = {};
    std::strncpy(cut, name, LONGEST_NAME);
    pthread_setname_np(pthread_self(), cut);
}

void CWorker::ClampPriority() {
    if (m_Priority >= LOWEST_REAL_TIME_PRIORITY)
        m_Priority = ClampTo(SCHED_RR, m_Priority);
}

// On the thread itself: the system's call for a process would reach the whole application, or a stranger.
void CWorker::ApplyPriority() const {
    if (m_Priority < LOWEST_REAL_TIME_PRIORITY) {
        pthread_setschedprio(pthread_self(), ClampTo(DefaultPolicy(), m_Priority));
        return;
    }
    sched_param parameter{};
    parameter.sched_priority = m_Priority;
    pthread_setschedparam(pthread_self(), SCHED_RR, &parameter);
}

} // namespace ZqApi
