#pragma once

#include <cstdlib>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include <ZqApi/ZqApi.h>

/// The simulated cameras through the public interface, with what tests say often.
namespace ZqTest {

using namespace ZqApi;

struct Releaser {
    template <class T>
    void operator()(T* object) const {
        object->Release();
    }
};

using System = std::unique_ptr<IZqSystemReleasable, Releaser>;
using Device = std::unique_ptr<IZqDeviceReleasable, Releaser>;
using Stream = std::unique_ptr<IZqDataStreamReleasable, Releaser>;
using Buffer = std::unique_ptr<IZqStreamBufferReleasable, Releaser>;

// Sanitizers slow everything down; what is repeated for its own sake is repeated less under them.
#ifdef ZQAPI_SLOWED_DOWN
constexpr uint64_t REPEAT_PART = 20;
#else
constexpr uint64_t REPEAT_PART = 1;
#endif

/// Sets a variable before the cameras are looked for, and takes it back.
class SimulatedCameras {
public:
    explicit SimulatedCameras(const char* cameras) { ::setenv("ZQGENTL_SIM", cameras, 1); }
    ~SimulatedCameras() { ::unsetenv("ZQGENTL_SIM"); }
};

/// The library and the system of all three cameras.
class Cameras : public testing::Test {
protected:
    Cameras() {
        ZqApiInitialize(ZqApiBuildVersion);
        system.reset(CreateIZqSystem(ZqSystemVendor_Default, ZqInterfaceType_All));
    }

    ~Cameras() override {
        system.reset();
        ZqApiTerminate();
    }

    Device Open(size_t interface, DEVICE_ACCESS_FLAGS flags = DEVICE_ACCESS_CONTROL) {
        return Device(system->GetIZqInterface(interface)->CreateFirstIZqDevice(flags));
    }

    static Stream OpenStream(Device& device) { return Stream(device->CreateIZqDataStream(0, nullptr)); }

    static GenApi::CIntegerPtr Integer(Device& device, const char* name) {
        return device->GetRemoteIZqPort()->GetINodeMap()->GetNode(name);
    }

    static void SetSize(Device& device, int64_t width, int64_t height) {
        Integer(device, "Width")->SetValue(width);
        Integer(device, "Height")->SetValue(height);
    }

    static void RunFreely(Device& device) {
        GenApi::CBooleanPtr limit =
            device->GetRemoteIZqPort()->GetINodeMap()->GetNode("AcquisitionFrameRateEnable");
        limit->SetValue(false);
    }

    static void Execute(Device& device, const char* command) {
        GenApi::CCommandPtr pCommand = device->GetRemoteIZqPort()->GetINodeMap()->GetNode(command);
        pCommand->Execute();
    }

    static void Start(Device& device, Stream& stream, uint64_t frames = GENTL_INFINITE) {
        stream->StartAcquisition(frames, ACQ_START_FLAGS_DEFAULT);
        device->AcquisitionStart();
    }

    static void Stop(Device& device, Stream& stream) {
        device->AcquisitionStop();
        stream->StopAcquisition(ACQ_STOP_FLAGS_DEFAULT);
    }

    System system;
};

} // namespace ZqTest
