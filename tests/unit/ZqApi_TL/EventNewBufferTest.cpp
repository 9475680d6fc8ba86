#include <algorithm>

#include "ZqApi_TL/ZqEventNewBuffer.h"
#include "tests/unit/ZqApi_TL/OpenedStream.h"

namespace ZqTest {
namespace {

class NewBufferEvent : public OpenedStream {
protected:
    std::string Record(void* pUserPointer) {
        const EVENT_NEW_BUFFER_DATA record{nullptr, pUserPointer};
        return std::string(reinterpret_cast<const char*>(&record), sizeof record);
    }
};

TEST_F(NewBufferEvent, BringsFramesInTheOrderOfTheirFilling) {
    Start();
    for (const char* pixels : {"first", "second", "third"})
        EXPECT_TRUE(producer.PushFrame("DS1", Frame(pixels)));
    for (const char* pixels : {"first", "second", "third"}) {
        const Buffer buffer = Retrieve();
        ASSERT_TRUE(buffer);
        const std::string bytes(static_cast<const char*>(buffer->GetIZqStreamBufferInfo()->GetBaseAddress()),
                                buffer->GetIZqStreamBufferInfo()->GetSizeFilled());
        EXPECT_EQ(bytes, pixels);
    }
}

TEST_F(NewBufferEvent, WaitsWithSixteenBytesAndAsksForNoSize) {
    producer.ClearLog();
    Start();
    EXPECT_TRUE(Eventually([this] {
        const Calls waits = producer.Log("EventGetData");
        return std::find(waits.begin(), waits.end(), "EventGetData(DS1/1, 16, 500)") != waits.end();
    }));
    for (const std::string& call : producer.Log("EventGetInfo"))
        EXPECT_EQ(call.rfind("EventGetInfo(BUF", 0), 0u) << call;
}

TEST_F(NewBufferEvent, IsPushedThroughTheInsideInterface) {
    Start();
    const Buffer buffer = RetrieveNewFrame();
    void* const pInside = dynamic_cast<IZqStreamBufferInside*>(buffer.get());
    EXPECT_EQ(buffer->GetIZqStreamBufferInfo()->GetUserPtr(), pInside);
}

TEST_F(NewBufferEvent, RecordWithoutUserPointerIsIgnored) {
    Start();
    EXPECT_TRUE(producer.PushRecord("DS1", Record(nullptr)));
    EXPECT_TRUE(RetrieveNewFrame());
    EXPECT_FALSE(Retrieve(0));
}

TEST_F(NewBufferEvent, FailingQueriesNeitherLoseTheFrameNorTheThread) {
    Start();
    const Frame hopeless = Frame("pixels")
                               .Fails(BUFFER_INFO_IS_INCOMPLETE, GC_ERR_IO)
                               .Fails(BUFFER_INFO_DATA_SIZE, GC_ERR_IO)
                               .Fails(BUFFER_INFO_WIDTH, GC_ERR_IO)
                               .Fails(BUFFER_INFO_PIXELFORMAT, GC_ERR_IO);
    EXPECT_TRUE(RetrieveNewFrame(hopeless));
    EXPECT_TRUE(RetrieveNewFrame());
}

class NewBufferEventDeathTest : public NewBufferEvent {
protected:
    void SetUp() override {
        testing::FLAGS_gtest_death_test_style = "threadsafe";
        NewBufferEvent::SetUp();
    }
};

TEST_F(NewBufferEventDeathTest, ShortRecordStopsTheProcess) {
    EXPECT_DEATH(
        {
            Start();
            (void)producer.PushRecord("DS1", std::string(15, 'x'));
            Retrieve(INFINITE);
        },
        "sizeof\\(EVENT_NEW_BUFFER_DATA\\) <= iSize");
}

TEST_F(NewBufferEventDeathTest, NullProducerStopsTheProcess) {
    EXPECT_DEATH(CZqEventNewBuffer(nullptr, this, "name"), "m_pCZqGenTL != NULL");
}

} // namespace
} // namespace ZqTest
