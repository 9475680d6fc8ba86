// What one frame costs on its way through the library: time, allocations, context switches.
//
// 64-byte frames, as fast as the simulated camera makes them, by waiting and by callback. Allocations are
// counted in the whole process, the producer's included, after the first tenth.

#include <ZqApi/ZqApi.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include <sys/resource.h>

#include "tests/support/AllocationFailure.h"

namespace {

constexpr uint64_t FRAMES = 1000000;

using namespace ZqApi;

uint64_t ContextSwitches() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<uint64_t>(usage.ru_nvcsw + usage.ru_nivcsw);
}

/// Counts frames that come each once and in order, and measures from the end of the first tenth on.
class Measurement {
public:
    void Take(IZqStreamBufferReleasable* buffer) {
        if (buffer->GetIZqStreamBufferInfo()->GetFrameID() != m_Frames)
            m_InOrder = false;
        buffer->Release();
        if (++m_Frames != FRAMES / 10)
            return;
        m_Begin = std::chrono::steady_clock::now();
        m_Allocations = ZqTest::AllocationCount();
        m_Switches = ContextSwitches();
    }

    bool IsComplete() const { return m_Frames >= FRAMES; }

    bool Print(const char* name) const {
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - m_Begin;
        const double measured = static_cast<double>(FRAMES - FRAMES / 10);
        std::printf("%-10s %9.0f frames/s %8.3f us/frame %8.6f allocations/frame %8.4f switches/frame%s\n",
                    name, measured / elapsed.count(), elapsed.count() * 1e6 / measured,
                    static_cast<double>(ZqTest::AllocationCount() - m_Allocations) / measured,
                    static_cast<double>(ContextSwitches() - m_Switches) / measured,
                    m_InOrder ? "" : "  FRAMES LOST");
        return m_InOrder;
    }

private:
    std::atomic<uint64_t> m_Frames{0};
    bool m_InOrder = true;
    std::chrono::steady_clock::time_point m_Begin;
    uint64_t m_Allocations = 0;
    uint64_t m_Switches = 0;
};

void SetUpCamera(IZqDevice& device) {
    INodeMap& features = *device.GetRemoteIZqPort()->GetINodeMap();
    GenApi::CIntegerPtr(features.GetNode("Width"))->SetValue(8);
    GenApi::CIntegerPtr(features.GetNode("Height"))->SetValue(8);
    GenApi::CBooleanPtr(features.GetNode("AcquisitionFrameRateEnable"))->SetValue(false);
}

bool MeasureWaiting(IZqDevice& device, IZqDataStream& stream) {
    Measurement measurement;
    stream.StartAcquisition(FRAMES, ACQ_START_FLAGS_DEFAULT);
    device.AcquisitionStart();
    while (!measurement.IsComplete())
        measurement.Take(stream.RetrieveBuffer(10000, ZqTimeoutHandling_ThrowException));
    const bool complete = measurement.Print("waiting");
    device.AcquisitionStop();
    stream.StopAcquisition(ACQ_STOP_FLAGS_DEFAULT);
    return complete;
}

bool MeasureCallback(IZqDevice& device, IZqDataStream& stream) {
    Measurement measurement;
    void* const handle = stream.RegisterCallback(MakeCallback([&](IZqCallbackParamBase*) {
        if (IZqStreamBufferReleasable* const buffer = stream.RetrieveBuffer(0, ZqTimeoutHandling_ReturnNull))
            measurement.Take(buffer);
    }));
    stream.StartAcquisition(FRAMES, ACQ_START_FLAGS_DEFAULT);
    device.AcquisitionStart();
    while (!measurement.IsComplete())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const bool complete = measurement.Print("callback");
    device.AcquisitionStop();
    stream.StopAcquisition(ACQ_STOP_FLAGS_DEFAULT);
    stream.DeregisterCallback(handle);
    return complete;
}

} // namespace

int main() try {
    ZqApiInitialize(ZqApiBuildVersion);
    IZqSystemReleasable* const system = CreateIZqSystem(ZqSystemVendor_Default, ZqInterfaceType_U3V);
    IZqDeviceReleasable* const device = system->CreateFirstIZqDevice(DEVICE_ACCESS_CONTROL);
    SetUpCamera(*device);
    IZqDataStreamReleasable* const stream = device->CreateIZqDataStream(0, nullptr);
    const bool waiting = MeasureWaiting(*device, *stream);
    const bool callback = MeasureCallback(*device, *stream);
    stream->Release();
    device->Release();
    system->Release();
    ZqApiTerminate();
    return waiting && callback ? 0 : 1;
} catch (const GenICam::GenericException& error) {
    std::fprintf(stderr, "%s\n", error.GetDescription());
    return 1;
}
