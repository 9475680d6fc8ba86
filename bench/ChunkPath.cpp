// What chunks add to the delivery of a frame when nobody reads them.
//
// 1 MiB frames, as fast as the simulated camera makes them, in alternating rounds without and with every
// chunk switched on; the figure is the ratio of the two medians. Allocations are those of the retrieving
// thread.

#include <ZqApi/ZqApi.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "tests/support/AllocationFailure.h"

namespace {

constexpr int ROUNDS = 15;
constexpr uint64_t FRAMES = 400;

using namespace ZqApi;

struct Camera {
    IZqDevice& device;
    IZqDataStream& stream;
    INodeMap& features;
};

void EnableChunks(INodeMap& features) {
    GenApi::CBooleanPtr(features.GetNode("ChunkModeActive"))->SetValue(true);
    GenApi::CEnumerationPtr selector = features.GetNode("ChunkSelector");
    GenApi::StringList_t chunks;
    selector->GetSymbolics(chunks);
    for (const auto& chunk : chunks) {
        selector->FromString(chunk);
        // The camera works the checksum out from every pixel, which is not what is measured.
        GenApi::CBooleanPtr(features.GetNode("ChunkEnable"))->SetValue(chunk != "PayloadCRC16");
    }
}

/// Microseconds a frame.
double Deliver(const Camera& camera, bool chunks, uint64_t& allocations) {
    GenApi::CBooleanPtr(camera.features.GetNode("ChunkModeActive"))->SetValue(chunks);
    camera.stream.StartAcquisition(GENTL_INFINITE, ACQ_START_FLAGS_DEFAULT);
    camera.device.AcquisitionStart();
    std::chrono::steady_clock::time_point begin;
    for (uint64_t frame = 0; frame < FRAMES; ++frame) {
        if (frame == FRAMES / 10) {
            begin = std::chrono::steady_clock::now();
            allocations -= ZqTest::AllocationCountOfThisThread();
        }
        camera.stream.RetrieveBuffer(10000, ZqTimeoutHandling_ThrowException)->Release();
    }
    const std::chrono::duration<double, std::micro> elapsed = std::chrono::steady_clock::now() - begin;
    allocations += ZqTest::AllocationCountOfThisThread();
    camera.device.AcquisitionStop();
    camera.stream.StopAcquisition(ACQ_STOP_FLAGS_DEFAULT);
    return elapsed.count() / (FRAMES - FRAMES / 10);
}

/// True when a frame has the chunk values of its own.
bool IsRight(const Camera& camera) {
    camera.stream.StartAcquisition(GENTL_INFINITE, ACQ_START_FLAGS_DEFAULT);
    camera.device.AcquisitionStart();
    IZqStreamBufferReleasable* const buffer =
        camera.stream.RetrieveBuffer(10000, ZqTimeoutHandling_ThrowException);
    GenApi::CIntegerPtr id = buffer->GetChunkINodeMap()->GetNode("ChunkFrameID");
    const bool right =
        static_cast<uint64_t>(id->GetValue()) == buffer->GetIZqStreamBufferInfo()->GetFrameID();
    buffer->Release();
    camera.device.AcquisitionStop();
    camera.stream.StopAcquisition(ACQ_STOP_FLAGS_DEFAULT);
    return right;
}

double Median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + ROUNDS / 2, values.end());
    return values[ROUNDS / 2];
}

bool Measure(IZqSystem& system, uint32_t index) {
    IZqInterface& interface = *system.GetIZqInterface(index);
    IZqDeviceReleasable* const device = interface.CreateFirstIZqDevice(DEVICE_ACCESS_CONTROL);
    IZqDataStreamReleasable* const stream = device->CreateIZqDataStream(0, nullptr);
    const Camera camera{*device, *stream, *device->GetRemoteIZqPort()->GetINodeMap()};
    GenApi::CIntegerPtr(camera.features.GetNode("Width"))->SetValue(1024);
    GenApi::CIntegerPtr(camera.features.GetNode("Height"))->SetValue(1024);
    GenApi::CBooleanPtr(camera.features.GetNode("AcquisitionFrameRateEnable"))->SetValue(false);
    EnableChunks(camera.features);
    const bool right = IsRight(camera);
    std::vector<double> without, with;
    uint64_t unused = 0, allocations = 0;
    for (int round = 0; round < ROUNDS; ++round) {
        without.push_back(Deliver(camera, false, unused));
        with.push_back(Deliver(camera, true, allocations));
    }
    std::printf(
        "%-4s without %7.1f us/frame  with chunks %7.1f us/frame  ratio %.3f  %.6f allocations/frame%s\n",
        interface.GetIZqInterfaceInfo()->GetTLType().c_str(), Median(without), Median(with),
        Median(with) / Median(without), static_cast<double>(allocations) / (ROUNDS * (FRAMES - FRAMES / 10)),
        right ? "" : "  WRONG VALUES");
    stream->Release();
    device->Release();
    return right;
}

} // namespace

int main() try {
    ZqApiInitialize(ZqApiBuildVersion);
    IZqSystemReleasable* const system = CreateIZqSystem(ZqSystemVendor_Default, ZqInterfaceType_All);
    bool right = true;
    for (uint32_t index = 0; index < system->GetInterfaceCount(); ++index)
        right &= Measure(*system, index);
    system->Release();
    ZqApiTerminate();
    return right ? 0 : 1;
} catch (const GenICam::GenericException& error) {
    std::fprintf(stderr, "%s\n", error.GetDescription());
    return 1;
}
