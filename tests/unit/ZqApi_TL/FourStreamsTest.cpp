#include <thread>

#include "tests/unit/ZqApi_TL/ModuleTree.h"

namespace ZqTest {
namespace {

#ifdef ZQAPI_SLOWED_DOWN
constexpr uint64_t FRAMES = 500;
#else
constexpr uint64_t FRAMES = 5000;
#endif

class FourStreams : public ModuleTree {
protected:
    FourStreams() {
        producer.ClearInterfaces();
        producer.AddInterface("IF1", "U3V");
        for (const char* const id : {"DEV1", "DEV2", "DEV3", "DEV4"})
            producer.AddDevice("IF1", id);
        producer.SetPayloadSize(64);
        producer.AutoStream(FRAMES);
        for (const char* const function : {"EventGetData", "DSGetBufferInfo", "DSQueueBuffer"})
            producer.DontLog(function);
    }

    /// Takes every frame of one device's stream and returns how many were out of order.
    static uint64_t Grab(IZqInterface& interface, size_t index) {
        const Device device(interface.CreateIZqDevice(index, DEVICE_ACCESS_CONTROL));
        const Stream stream(device->CreateIZqDataStream(0, nullptr));
        stream->StartAcquisition(GENTL_INFINITE, ACQ_START_FLAGS_DEFAULT);
        uint64_t outOfOrder = 0;
        uint64_t last = 0;
        for (uint64_t frame = 0; frame < FRAMES; ++frame) {
            const Buffer buffer(stream->RetrieveBuffer(10000, ZqTimeoutHandling_ThrowException));
            const uint64_t id = buffer->GetIZqStreamBufferInfo()->GetFrameID();
            outOfOrder += frame != 0 && id != last + 1 ? 1 : 0;
            last = id;
        }
        stream->StopAcquisition(ACQ_STOP_FLAGS_DEFAULT);
        return outOfOrder;
    }
};

TEST_F(FourStreams, AtOnceLoseAndMixNothing) {
    System system = OpenSystem();
    std::vector<std::thread> threads;
    for (size_t index = 0; index < 4; ++index)
        threads.emplace_back([&, index] { EXPECT_EQ(Grab(*system->GetIZqInterface(0), index), 0u); });
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace
} // namespace ZqTest
