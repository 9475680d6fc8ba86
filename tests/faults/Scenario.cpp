#include "tests/faults/Scenario.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <new>
#include <thread>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include "tests/faults/Pthreads.h"
#include "tests/support/AllocationFailure.h"
#include "tests/support/ChunkNodes.h"

namespace ZqTest {

using namespace GenTL;

namespace {

template <class E>
Failure Describe(const char* kind, const E& exception) {
    return {kind, WithoutPointers(exception.GetDescription()), {}, 0};
}

template <class E>
Failure DescribeCall(const char* kind, const E& exception) {
    return {kind, WithoutPointers(exception.GetDescription()), exception.GetFunctionName().c_str(),
            static_cast<int>(exception.GetError())};
}

/// The kernel's flags of a thread; all are set of one that is gone.
unsigned long FlagsOf(const char* task) {
    const std::string path = std::string("/proc/self/task/") + task + "/stat";
    char line[1024];
    const int file = open(path.c_str(), O_RDONLY);
    const ssize_t size = file < 0 ? 0 : read(file, line, sizeof line - 1);
    if (file >= 0)
        close(file);
    if (size <= 0)
        return ~0UL;
    line[size] = '\0';
    // The 9th field; the second, in brackets, is the name.
    const char* at = std::strrchr(line, ')');
    for (int field = 2; at != nullptr && field < 9; ++field)
        at = std::strchr(at + 1, ' ');
    return at == nullptr ? ~0UL : std::strtoul(at, nullptr, 10);
}

} // namespace

// clang-format off
const std::vector<Way> ways = {
    // name                 TLType  ownMemory  restart  firstDevice
    {"UsbCamera",           "U3V",  false,     false,   false},
    {"EthernetCameraTwice", "GEV",  true,      true,    false},
    {"FrameGrabber",        "CXP",  false,     false,   true},
};
// clang-format on

int FramesToRetrieve(const Way& way) {
    return way.restart ? 4 : 2;
}

size_t ThreadCount() {
    // A joined thread may stand in the list for a moment longer.
    constexpr unsigned long exiting = 0x4;
    size_t count = 0;
    DIR* const tasks = opendir("/proc/self/task");
    for (const dirent* task = nullptr; tasks != nullptr && (task = readdir(tasks)) != nullptr;)
        if (task->d_name[0] != '.' && (FlagsOf(task->d_name) & exiting) == 0)
            ++count;
    closedir(tasks);
    return count;
}

Failure FailureOf(const std::function<void()>& action) {
    try {
        action();
        return {};
    } catch (const Failure& failure) {
        return failure;
    } catch (const CZqGenTLErrorException& exception) {
        return DescribeCall("ZqGenTLErrorException", exception);
    } catch (const CZqLinuxErrorException& exception) {
        return DescribeCall("ZqLinuxErrorException", exception);
    } catch (const GenICam::BadAllocException& exception) {
        return Describe("BadAllocException", exception);
    } catch (const GenICam::InvalidArgumentException& exception) {
        return Describe("InvalidArgumentException", exception);
    } catch (const GenICam::OutOfRangeException& exception) {
        return Describe("OutOfRangeException", exception);
    } catch (const GenICam::LogicalErrorException& exception) {
        return Describe("LogicalErrorException", exception);
    } catch (const GenICam::AccessException& exception) {
        return Describe("AccessException", exception);
    } catch (const GenICam::TimeoutException& exception) {
        return Describe("TimeoutException", exception);
    } catch (const GenICam::RuntimeException& exception) {
        return Describe("RuntimeException", exception);
    } catch (const GenICam::GenericException& exception) {
        return Describe("GenericException", exception);
    } catch (const std::bad_alloc& exception) {
        return {"std::bad_alloc", exception.what(), {}, 0};
    } catch (const std::exception& exception) {
        return {"std::exception", exception.what(), {}, 0};
    }
}

void Scenario::Memory::Allocate(void** ppBuffer, size_t size, void**) {
    *ppBuffer = ::operator new(size, std::nothrow);
    blocks += *ppBuffer != nullptr ? 1 : 0;
}

void Scenario::Memory::Deallocate(void* pBuffer, size_t, void*) {
    --blocks;
    ::operator delete(pBuffer);
}

Scenario::Scenario(const Way& way, const ScriptedProducer& producer)
    : m_Way(way), m_Producer(producer), m_ThreadsBefore(ThreadCount()) {}

void Scenario::Prepare() const {
    m_Producer.ClearInterfaces();
    m_Producer.AddInterface("IF1", m_Way.tlType);
    m_Producer.AddDevice("IF1", "DEV1");
    DescribeChunks(m_Producer, "ChunkDataControl");
}

void Scenario::WaitForEventThreads() const {
    const SparedAllocations own;
    const auto waiting = m_Producer.Resolve<decltype(&Zqsp_WaitingForEvents)>("Zqsp_WaitingForEvents");
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(patienceMs);
    // Counting the threads costs several times what it takes them to come to rest.
    constexpr int looksPerCount = 8;
    size_t threads = 0;
    for (int look = 0; std::chrono::steady_clock::now() < deadline; ++look) {
        if (look % looksPerCount == 0)
            threads = ThreadCount() - m_ThreadsBefore;
        if (waiting() == threads)
            return;
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
}

void Scenario::Step(const char* name, const std::function<void()>& action) {
    {
        const SparedAllocations own;
        if (onStep)
            onStep(name);
    }
    const int64_t before = HeldLocks();
    const Failure failure = FailureOf(action);
    const SparedAllocations own;
    if (HeldLocks() != before)
        m_Outcome.locksHeld += std::string(name) + " ";
    if (failure.kind.empty() || !m_Outcome.failure.kind.empty())
        return;
    m_Outcome.step = name;
    m_Outcome.failure = failure;
}

Outcome Scenario::Run() {
    struct {
        const char* name;
        void (Scenario::*action)();
        bool wanted;
    } const steps[] = {
        {"open", &Scenario::Open, true},
        {"list", &Scenario::List, true},
        {"start events", &Scenario::StartEvents, true},
        {"open device", &Scenario::OpenDevice, true},
        {"read features", &Scenario::ReadFeatures, true},
        {"save features", &Scenario::SaveFeatures, true},
        {"open stream", &Scenario::OpenStream, true},
        {"start", &Scenario::Start, true},
        {"grab", &Scenario::GrabByWaiting, true},
        {"callback", &Scenario::GrabByCallback, true},
        {"device events", &Scenario::DeviceEvents, true},
        {"stop", &Scenario::Stop, true},
        {"restart", &Scenario::Start, m_Way.restart},
        {"grab again", &Scenario::GrabByWaiting, m_Way.restart},
        {"stop again", &Scenario::Stop, m_Way.restart},
        {"stop events", &Scenario::StopEvents, true},
    };
    m_Outcome = {};
    for (const auto& step : steps)
        if (step.wanted && m_Outcome.failure.kind.empty())
            Step(step.name, [&] { (this->*step.action)(); });
    Release();
    const SparedAllocations own;
    if (onStep)
        onStep("");
    if (m_Memory.blocks != 0)
        m_Outcome.locksHeld += "(memory of the application not given back) ";
    return m_Outcome;
}

} // namespace ZqTest
