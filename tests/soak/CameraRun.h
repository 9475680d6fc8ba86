#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <string>

#include <ZqApi/ZqApi.h>

#include "tests/soak/Chance.h"
#include "tests/soak/FrameAccount.h"
#include "tests/soak/Totals.h"

namespace ZqSoak {

struct Releaser {
    template <class T>
    void operator()(T* object) const {
        object->Release();
    }
};

using System = std::unique_ptr<ZqApi::IZqSystemReleasable, Releaser>;
using Device = std::unique_ptr<ZqApi::IZqDeviceReleasable, Releaser>;
using Stream = std::unique_ptr<ZqApi::IZqDataStreamReleasable, Releaser>;
using Buffer = std::unique_ptr<ZqApi::IZqStreamBufferReleasable, Releaser>;
using Clock = std::chrono::steady_clock;

/// One camera on a thread of its own: opened, set up, acquired from, lost, found again, until time is up.
class CameraRun {
public:
    CameraRun(ZqApi::IZqInterface& interface, const std::string& id, uint64_t seed);

    void Run(Clock::time_point end);
    const Totals& GetTotals() const { return m_Totals; }
    const std::string& GetId() const { return m_Id; }

private:
    /// How an acquisition goes.
    struct Plan {
        Expectation expected;
        size_t buffers = 0;
        const char* handling = nullptr;
        bool callback = false;
        bool killed = false;
        bool lost = false;
        int64_t durationMs = 0;
    };

    Device Open();
    void SetUp();
    /// False once the camera is lost.
    bool Acquire(Clock::time_point end);
    Plan MakePlan();
    void Configure(const Plan& plan);
    void Consume(FrameAccount& account, const Plan& plan, Clock::time_point end);
    void TakeOne(ZqApi::IZqStreamBufferReleasable* pBuffer, FrameAccount& account);
    bool TakeIfThere(FrameAccount& account);
    void Stop(const Plan& plan);
    void Finish(FrameAccount& account, const Plan& plan, uint64_t underrunBefore, uint64_t begunBefore);

    void UseFeatures(const std::atomic<bool>& ends, uint64_t seed);
    void UseAFeature(Chance& chance);
    void FailOnPurpose();
    void SaveFeatures();
    void AwaitLoss();

    ZqApi::INodeMap& Nodes() { return *m_Device->GetRemoteIZqPort()->GetINodeMap(); }
    void Set(const char* name, int64_t value);
    void Switch(const char* name, bool on);
    void Choose(const char* name, const char* entry);
    void Execute(const char* command);
    int64_t Get(const char* name);
    void Complain(const std::string& text);

    ZqApi::IZqInterface& m_Interface;
    const std::string m_Id;
    Chance m_Chance;
    Device m_Device;
    Stream m_Stream;
    std::atomic<bool> m_Lost{false};
    int m_Acquisition = 0;
    Totals m_Totals;
    std::atomic<uint64_t> m_FeatureAccesses{0};
    std::atomic<uint64_t> m_PortErrors{0};
    std::atomic<uint64_t> m_Saves{0};
    std::atomic<uint64_t> m_Failures{0};
};

} // namespace ZqSoak
