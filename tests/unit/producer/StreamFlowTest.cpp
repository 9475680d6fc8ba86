#include "ProducerTest.h"

namespace {

class StreamFlow : public CameraTest {
protected:
    void SetUp() override {
        CameraTest::SetUp();
        Open();
        OpenStream();
    }
};

} // namespace

TEST_F(StreamFlow, DeliversNumberedFramesOfTheMovingPattern) {
    MakeSmallAndFast();
    Queue(Announce(4, 64));
    Start();
    uint64_t lastTime = 0;
    for (uint64_t id = 0; id < 1000; ++id) {
        const BUFFER_HANDLE buffer = Next();
        ASSERT_NE(buffer, nullptr) << lastResult;
        EXPECT_EQ(BufferInfo<uint64_t>(buffer, BUFFER_INFO_FRAMEID), id);
        const auto* pixels = BufferInfo<const uint8_t*>(buffer, BUFFER_INFO_BASE);
        for (unsigned y = 0; y < 8; ++y) {
            for (unsigned x = 0; x < 8; ++x)
                ASSERT_EQ(pixels[8 * y + x], (x + y + id) % 256);
        }
        const auto time = BufferInfo<uint64_t>(buffer, BUFFER_INFO_TIMESTAMP);
        EXPECT_GT(time, lastTime);
        lastTime = time;
        ASSERT_EQ(gentl.DSQueueBuffer(stream, buffer), GC_ERR_SUCCESS);
    }
}
