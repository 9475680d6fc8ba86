#include "tests/unit/zq/DescribedCamera.h"

#include <nlohmann/json.hpp>

#include <thread>

using namespace GenTL;
using ZqTest::PushedEvent;

namespace {

/// The items of events: id, timestamp 0x99, frame id 7.
const std::string frameStart("\0\0\x9c\x41\xff\xff\0\0\0\0\0\0\0\0\0\x99\0\0\0\7", 20);
const std::string frameStartWait("\0\0\x9c\x49\xff\xff\0\0\0\0\0\0\0\0\0\x42", 16);

class ZqEvents : public DescribedCamera {
protected:
    void Push(const std::string& id, const std::string& item) {
        PushedEvent event;
        event.id = id;
        event.value = item;
        EXPECT_TRUE(producer.Push("DEV1", EVENT_REMOTE_DEVICE, event));
    }

    /// Runs the tool, and the other thing once the tool has written to the camera that often.
    template <class Meanwhile>
    int Run(const std::vector<std::string>& arguments, uint64_t writes, Meanwhile meanwhile) {
        producer.ClearLog();
        std::thread thread([&] {
            // Opening a device writes twice to the producer's own module.
            EXPECT_TRUE(producer.WaitForCalls("GCWritePort", 2 + writes));
            meanwhile();
        });
        const int result = tool.Run(arguments);
        thread.join();
        return result;
    }
};

TEST_F(ZqEvents, ArePrintedWithTheirValuesAndSwitchedBack) {
    SetRegister(eventSelector, 1);
    const int result = Run({"events", "DEV1", "-n", "2", "--timeout", "10000"}, 4, [this] {
        EXPECT_EQ(Register(notification), 1U);
        EXPECT_EQ(Register(notification + 4), 1U);
        Push("9C41", frameStart);
        Push("9C49", frameStartWait);
    });
    EXPECT_EQ(result, 0) << tool.err.str();
    EXPECT_EQ(tool.out.str(), "FrameStart 9C41 153 EventFrameStartFrameID=7\n"
                              "FrameStartWait 9C49 66\n");
    EXPECT_EQ(Register(notification), 0U);
    EXPECT_EQ(Register(notification + 4), 0U);
    EXPECT_EQ(Register(eventSelector), 1U);
    EXPECT_TRUE(producer.NothingOpen());
}

TEST_F(ZqEvents, NamedOnesAsJsonLines) {
    SetRegister(notification + 4, 1);
    const int result =
        Run({"events", "DEV1", "FrameStart", "-n", "1", "--jsonl", "--timeout", "10000"}, 2, [this] {
            Push("9C49", frameStartWait);
            Push("9C41", frameStart);
        });
    EXPECT_EQ(result, 0) << tool.err.str();
    EXPECT_EQ(tool.out.str(), "{\"event\":\"FrameStart\",\"id\":\"9C41\",\"timestamp\":153,"
                              "\"values\":{\"EventFrameStartFrameID\":7}}\n");
    EXPECT_EQ(Register(notification + 4), 1U);
}

TEST_F(ZqEvents, NoneInTimeEndsWith5AndSwitchesBack) {
    EXPECT_EQ(tool.Run({"events", "DEV1", "--timeout", "150"}), 5);
    EXPECT_EQ(tool.err.str(),
              "zq: waiting for events of DEV1 failed\n"
              "  why: none came within 150 ms\n"
              "  try: have the camera acquire with --acquire, or give more time with --timeout\n");
    EXPECT_EQ(Register(notification), 0U);
    EXPECT_EQ(Register(notification + 4), 0U);
    EXPECT_TRUE(producer.NothingOpen());
}

TEST_F(ZqEvents, InterruptEndsThemAsUsual) {
    const auto interrupt = [] { ZqTool::interrupted = true; };
    EXPECT_EQ(Run({"events", "DEV1"}, 4, interrupt), 0);
    ZqTool::interrupted = false;
    EXPECT_EQ(Register(notification), 0U);
    EXPECT_EQ(Run({"events", "DEV1", "-n", "3"}, 4, interrupt), 1);
    ZqTool::interrupted = false;
    EXPECT_NE(tool.err.str().find("  why: interrupted by a signal\n"), std::string::npos);
    EXPECT_TRUE(producer.NothingOpen());
}

TEST_F(ZqEvents, UnknownOnesEndWith3AndSayWhatThereIs) {
    EXPECT_EQ(tool.Run({"events", "DEV1", "FrameEnd"}), 3);
    EXPECT_EQ(tool.err.str(), "zq: looking for the event FrameEnd failed\n"
                              "  why: DEV1 has no event of that name\n"
                              "  try: one of FrameStart, FrameStartWait\n");
}

TEST_F(ZqEvents, FailureWhileSwitchingOnSwitchesBack) {
    producer.Answer("GCWritePort").At(notification + 4).With(GC_ERR_IO);
    EXPECT_EQ(tool.Run({"events", "DEV1"}), 1);
    EXPECT_EQ(tool.err.str().rfind("zq: setting EventNotification of DEV1 to On failed\n", 0), 0U)
        << tool.err.str();
    EXPECT_EQ(Register(notification), 0U);
    EXPECT_TRUE(producer.NothingOpen());
}

TEST_F(ZqEvents, CommandsAreExecutedOnceTheEventsAreOn) {
    const int result =
        Run({"events", "DEV1", "--execute", "AcquisitionStop", "-n", "1", "--timeout", "10000"}, 5,
            [this] { Push("9C41", frameStart); });
    EXPECT_EQ(result, 0) << tool.err.str();
    const auto writes = producer.Log("GCWritePort");
    ASSERT_GT(writes.size(), 6U);
    EXPECT_EQ(writes[5], "GCWritePort(REMOTE1, 0x208, 01000000)");
    EXPECT_EQ(writes[6], "GCWritePort(REMOTE1, 0x118, 01000000)");
}

TEST_F(ZqEvents, CameraAcquiresMeanwhileWhenAsked) {
    producer.AutoStream(20);
    const int result = Run({"events", "DEV1", "--acquire", "-n", "1", "--timeout", "10000"}, 6, [this] {
        EXPECT_TRUE(producer.WaitForCalls("DSQueueBuffer", 20));
        Push("9C41", frameStart);
    });
    EXPECT_EQ(result, 0) << tool.err.str();
    EXPECT_EQ(producer.Count("DSStopAcquisition"), 1U);
    EXPECT_TRUE(producer.NothingOpen());
}

TEST(ZqEventsOfPlainCamera, EndsWith3) {
    const ZqTest::ScriptedProducer producer;
    Tool tool;
    EXPECT_EQ(tool.Run({"events", "DEV1"}), 3);
    EXPECT_EQ(tool.err.str().rfind("zq: looking for EventSelector failed\n", 0), 0U) << tool.err.str();
}

} // namespace
