#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include <ZqApi/ZqApi.h>

#include "tests/support/ScriptedProducer.h"

namespace ZqTest {

using namespace ZqApi;

/// What an exception says: its kind, its text without addresses, and for a producer's failure its function
/// and code. Empty when nothing was thrown.
struct Failure {
    std::string kind;
    std::string text;
    std::string function;
    int code = 0;
};

/// Runs the action; std::exception and what is none are kinds that the library must not let out.
Failure FailureOf(const std::function<void()>& action);

/// How a scenario went: the first exception and the step that it left, and what was received.
struct Outcome {
    std::string step;
    Failure failure;
    Failure inCallback;
    int framesRetrieved = 0;
    int framesInCallback = 0;
    bool lost = false;
    /// Steps that left a lock taken.
    std::string locksHeld;
};

/// Which way through the library a scenario takes.
struct Way {
    const char* name;
    const char* tlType;
    bool ownMemory;   ///< buffers from an allocator of the application
    bool restart;     ///< a second acquisition with the kept buffers
    bool firstDevice; ///< CreateFirstIZqDevice instead of the index
};
extern const std::vector<Way> ways;
/// Frames that a scenario retrieves when nothing fails, and those that a callback takes.
int FramesToRetrieve(const Way& way);
constexpr int framesToCallback = 2;

constexpr uint32_t usualPatienceMs = 2000;

/// What an application does with a camera, from opening the system to releasing it. A step that throws is the
/// last but for the releases.
class Scenario {
public:
    Scenario(const Way& way, const ScriptedProducer& producer);

    /// Sets the producer's model up; to be called once for each script.
    void Prepare() const;
    Outcome Run();

    /// Called when a step begins, and with "" at the end.
    std::function<void(const char* step)> onStep;
    /// How long to wait for event threads to have nothing to do.
    uint32_t patienceMs = usualPatienceMs;

private:
    class Memory final : public IZqAllocator {
    public:
        void Allocate(void** ppBuffer, size_t size, void** ppContext) override;
        void Deallocate(void* pBuffer, size_t size, void* pContext) override;
        void OnDeregister() override {}
        std::atomic<int> blocks{0};
    };

    class Callback final : public IZqCallback {
    public:
        explicit Callback(Scenario& scenario) : m_Scenario(scenario) {}
        void Invoke(IZqCallbackParamBase* pParam) override;
        void Destroy() override {}

    private:
        Scenario& m_Scenario;
    };

    void Step(const char* name, const std::function<void()>& action);
    void WaitForEventThreads() const;

    void Open();
    void List();
    void StartEvents();
    void OpenDevice();
    void ReadFeatures();
    void SaveFeatures();
    void OpenStream();
    void Start();
    void GrabByWaiting();
    void GrabByCallback();
    void DeviceEvents();
    void Stop();
    void StopEvents();
    void Release();

    void PushFrame();
    /// Takes a frame, if there is one, and counts it.
    void Retrieve(int& frames);
    static void Read(IZqStreamBufferReleasable* pBuffer);
    void OnNewBuffer();

    const Way& m_Way;
    const ScriptedProducer& m_Producer;
    const size_t m_ThreadsBefore;
    Outcome m_Outcome;
    Memory m_Memory;
    Callback m_Callback{*this};
    IZqSystemReleasable* m_pSystem = nullptr;
    IZqDeviceReleasable* m_pDevice = nullptr;
    IZqDataStreamReleasable* m_pStream = nullptr;
    uint64_t m_nFrame = 0;
};

/// Threads of the process that have not ended.
size_t ThreadCount();

} // namespace ZqTest
