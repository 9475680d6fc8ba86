#include "ProducerTest.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace {

class Loss : public CameraTest {
protected:
    EVENT_HANDLE error = nullptr;
    EVENT_HANDLE module = nullptr;

    void SetUp() override {
        CameraTest::SetUp();
        Open();
        OpenStream();
        ASSERT_EQ(gentl.GCRegisterEvent(device, EVENT_ERROR, &error), GC_ERR_SUCCESS);
        ASSERT_EQ(gentl.GCRegisterEvent(device, EVENT_MODULE, &module), GC_ERR_SUCCESS);
    }

    void NotifyLoss() {
        uint32_t on = 1;
        size_t size = sizeof on;
        ASSERT_EQ(gentl.GCWritePort(device, 0xA04, &on, &size), GC_ERR_SUCCESS);
    }

    void Lose() { ASSERT_EQ(WriteInt(camera::SimulationDeviceLost, 1), GC_ERR_SUCCESS); }
};

} // namespace

TEST_F(Loss, FailsRegistersAndStreamCallsWithIo) {
    MakeSmallAndFast();
    const auto buffers = Announce(3, 64);
    Queue({buffers[0], buffers[1]});
    Start();
    Lose();
    uint32_t word = 0;
    size_t size = sizeof word;
    EXPECT_EQ(gentl.GCReadPort(remote, 0, &word, &size), GC_ERR_IO);
    EXPECT_EQ(WriteInt(camera::AcquisitionStop, 1), GC_ERR_IO);
    EXPECT_EQ(gentl.DSQueueBuffer(stream, buffers[2]), GC_ERR_IO);
    EXPECT_EQ(gentl.DSFlushQueue(stream, ACQ_QUEUE_ALL_DISCARD), GC_ERR_IO);
    EXPECT_EQ(gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_IO);
    EXPECT_EQ(gentl.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, 1), GC_ERR_IO);
    BUFFER_HANDLE buffer = nullptr;
    EXPECT_EQ(gentl.DSAllocAndAnnounceBuffer(stream, 64, nullptr, &buffer), GC_ERR_IO);
    EXPECT_EQ(gentl.GCReadPort(device, 0x300, &word, &size), GC_ERR_SUCCESS);
    EXPECT_FALSE(StreamInfo<bool>(STREAM_INFO_IS_GRABBING));
    for (BUFFER_HANDLE announced : buffers)
        EXPECT_EQ(gentl.DSRevokeBuffer(stream, announced, nullptr, nullptr), GC_ERR_SUCCESS);
    EXPECT_EQ(gentl.DSClose(stream), GC_ERR_SUCCESS);
    EXPECT_EQ(gentl.DevOpenDataStream(device, "Stream0", &stream), GC_ERR_IO);
}

TEST_F(Loss, WaitsForBuffersTimeOut) {
    MakeSmallAndFast();
    Queue(Announce(2, 64));
    Start();
    ASSERT_TRUE(Eventually([&] { return StreamInfo<size_t>(STREAM_INFO_NUM_AWAIT_DELIVERY) >= 2; }));
    Lose();
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(Next(30), nullptr);
    EXPECT_EQ(lastResult, GC_ERR_TIMEOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(30));
    EXPECT_EQ(gentl.EventKill(newBuffer), GC_ERR_SUCCESS);
    EXPECT_EQ(Next(GENTL_INFINITE), nullptr);
    EXPECT_EQ(lastResult, GC_ERR_ABORT);
}

TEST_F(Loss, ModuleEventComesWhenNotificationIsOn) {
    NotifyLoss();
    Lose();
    char data[512];
    size_t size = sizeof data;
    ASSERT_EQ(gentl.EventGetData(module, data, &size, 5000), GC_ERR_SUCCESS);
    INFO_DATATYPE type = 0;
    char id[16] = "";
    size_t idSize = sizeof id;
    ASSERT_EQ(gentl.EventGetDataInfo(module, data, size, EVENT_DATA_ID, &type, id, &idSize), GC_ERR_SUCCESS);
    EXPECT_EQ(type, INFO_DATATYPE_STRING);
    EXPECT_STREQ(id, "9001");
    uint64_t number = 0;
    size_t numberSize = sizeof number;
    ASSERT_EQ(gentl.EventGetDataInfo(module, data, size, EVENT_DATA_NUMID, &type, &number, &numberSize), 0);
    EXPECT_EQ(number, 0x9001U);
    uint8_t value[64] = {};
    size_t valueSize = sizeof value;
    ASSERT_EQ(gentl.EventGetDataInfo(module, data, size, EVENT_DATA_VALUE, &type, value, &valueSize), 0);
    EXPECT_EQ(type, INFO_DATATYPE_BUFFER);
    ASSERT_EQ(valueSize, 16U);
    const uint8_t eventId[8] = {0x01, 0x90, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(std::memcmp(value, eventId, 8), 0);
    uint64_t time = 0;
    std::memcpy(&time, value + 8, 8);
    const auto now = std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
    EXPECT_NEAR(static_cast<double>(time), static_cast<double>(now), 5e9);
}

TEST_F(Loss, ModuleEventStaysAwayWhenNotificationIsOff) {
    Lose();
    char data[512];
    size_t size = sizeof data;
    EXPECT_EQ(gentl.EventGetData(module, data, &size, 0), GC_ERR_TIMEOUT);
}

TEST_F(Loss, ErrorEventSaysWhichCamera) {
    Lose();
    char data[512];
    size_t size = sizeof data;
    ASSERT_EQ(gentl.EventGetData(error, data, &size, 5000), GC_ERR_SUCCESS);
    INFO_DATATYPE type = 0;
    int32_t code = 0;
    size_t codeSize = sizeof code;
    ASSERT_EQ(gentl.EventGetDataInfo(error, data, size, EVENT_DATA_ID, &type, &code, &codeSize),
              GC_ERR_SUCCESS);
    EXPECT_EQ(type, INFO_DATATYPE_INT32);
    EXPECT_EQ(code, GC_ERR_IO);
    char text[128] = "";
    size_t textSize = sizeof text;
    ASSERT_EQ(gentl.EventGetDataInfo(error, data, size, EVENT_DATA_VALUE, &type, text, &textSize),
              GC_ERR_SUCCESS);
    EXPECT_STREQ(text, "the camera SIM-U3V-0001 is lost");
    EXPECT_EQ(gentl.EventGetDataInfo(error, data, size - 1, EVENT_DATA_VALUE, &type, text, &textSize),
              GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(gentl.EventGetDataInfo(module, data, size, EVENT_DATA_VALUE, &type, text, &textSize),
              GC_ERR_INVALID_PARAMETER);
}

TEST_F(Loss, EndsADefaultStopThatWaitsForAFrame) {
    MakePaced(1, 1e6);
    const auto buffers = Announce(1, 640 * 480);
    Queue(buffers);
    Start();
    ASSERT_TRUE(Eventually([&] { return BufferInfo<bool>(buffers[0], BUFFER_INFO_IS_ACQUIRING); }));
    const auto before = std::chrono::steady_clock::now();
    std::thread stopper([&] { gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT); });
    Lose();
    stopper.join();
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(500));
}

TEST_F(Loss, DoesNotWaitForAnEventThatWaitsForIt) {
    for (int round = 0; round < 50; ++round) {
        MakeSmallAndFast();
        for (int64_t event = 0; event < 3; ++event) {
            ASSERT_EQ(WriteInt(camera::EventSelector, event), GC_ERR_SUCCESS);
            ASSERT_EQ(WriteInt(camera::EventNotification, 1), GC_ERR_SUCCESS);
        }
        // Old frames are given up, so that frames begin and end without anybody who takes them.
        uint32_t overwrite = 1;
        size_t size = sizeof overwrite;
        ASSERT_EQ(gentl.GCWritePort(stream, 0x304, &overwrite, &size), GC_ERR_SUCCESS);
        Queue(Announce(3, 64));
        Start();
        ASSERT_TRUE(Eventually([&] { return StreamInfo<uint64_t>(STREAM_INFO_NUM_DELIVERED) > 5; }));
        Lose();
        ASSERT_EQ(gentl.IFClose(interface), GC_ERR_SUCCESS);
        Open();
        OpenStream();
    }
}

TEST_F(Loss, EndsWithTheNextOpening) {
    Lose();
    DEVICE_ACCESS_STATUS status = 0;
    size_t size = sizeof status;
    INFO_DATATYPE type = 0;
    ASSERT_EQ(gentl.DevGetInfo(device, DEVICE_INFO_ACCESS_STATUS, &type, &status, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(status, DEVICE_ACCESS_STATUS_NOACCESS);
    ASSERT_EQ(gentl.IFClose(interface), GC_ERR_SUCCESS);
    Open();
    OpenStream();
    MakeSmallAndFast();
    Queue(Announce(1, 64));
    Start();
    EXPECT_NE(Next(), nullptr);
}
