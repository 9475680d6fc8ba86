#include <algorithm>
#include <functional>

#include "ZqApi_TL/EventItem.h"
#include "ZqApi_TL/NodeLookup.h"
#include "tests/unit/ZqApi_TL/LoadedProducer.h"
#include "tests/unit/ZqApi_TL/OpenedStream.h"

namespace ZqTest {
namespace {

constexpr uint64_t WIDTH_REGISTER = 0x100;

class FeatureEvents : public OpenedStream {
protected:
    explicit FeatureEvents(const std::string& variant = "full") : OpenedStream(variant) {}

    void SetUp() override {
        OpenedStream::SetUp();
        width = RemoteNodes()->GetNode("Width");
        EXPECT_EQ(width->GetValue(), 64);
        callback = GenApi::Register(width->GetNode(),
                                    std::function<void(GenApi::INode*)>([this](auto*) { changed.Set(); }));
        producer.ClearLog();
    }
    void TearDown() override {
        GenApi::Deregister(callback);
        OpenedStream::TearDown();
    }

    INodeMap* RemoteNodes() { return device->GetRemoteIZqPort()->GetINodeMap(); }

    void Invalidate(const std::optional<std::string>& feature) {
        PushedEvent event;
        event.id = feature;
        EXPECT_TRUE(producer.Push("DEV1", EVENT_FEATURE_INVALIDATE, event));
    }
    void Change(const std::optional<std::string>& feature, const std::optional<std::string>& value) {
        PushedEvent event;
        event.id = feature;
        event.value = value;
        EXPECT_TRUE(producer.Push("DEV1", EVENT_FEATURE_CHANGE, event));
    }
    uint32_t WidthRegister() { return producer.GetRegister<uint32_t>("REMOTE1", WIDTH_REGISTER); }

    GenApi::CIntegerPtr width;
    Signal changed;
    GenApi::CallbackHandleType callback{};
};

TEST_F(FeatureEvents, InvalidatedFeatureIsReadAnewOnce) {
    producer.SetRegister<uint32_t>("REMOTE1", WIDTH_REGISTER, 128);
    EXPECT_EQ(width->GetValue(), 64);
    Invalidate("Width");
    ASSERT_TRUE(changed.Wait());
    EXPECT_EQ(width->GetValue(), 128);
    EXPECT_EQ(width->GetValue(), 128);
    EXPECT_EQ(producer.Log("GCReadPort"), (Calls{"GCReadPort(REMOTE1, 0x100, 4)"}));
    EXPECT_EQ(producer.Log("EventGetDataInfo"),
              (Calls{"EventGetDataInfo(DEV1/2, 8, 0, null)", "EventGetDataInfo(DEV1/2, 8, 0, 5)"}));
}

TEST_F(FeatureEvents, UnknownOrUnreadableFeatureDoesNotStopLaterOnes) {
    producer.Answer("EventGetDataInfo").OnCall(1).With(GC_ERR_IO);
    Invalidate("Width");
    Invalidate("NoSuchFeature");
    Invalidate(std::nullopt);
    Invalidate(std::string());
    EXPECT_FALSE(changed.Wait(20));
    Invalidate(std::string("Width", 6));
    EXPECT_TRUE(changed.Wait());
}

TEST_F(FeatureEvents, ChangedFeatureIsWrittenThrough) {
    Change("Width", "200");
    ASSERT_TRUE(changed.Wait());
    EXPECT_EQ(width->GetValue(), 200);
    EXPECT_EQ(WidthRegister(), 200u);
    EXPECT_EQ(producer.Log({"EventGetDataInfo", "GCWritePort"}),
              (Calls{"EventGetDataInfo(DEV1/3, 8, 0, null)", "EventGetDataInfo(DEV1/3, 8, 0, 5)",
                     "EventGetDataInfo(DEV1/3, 8, 1, null)", "EventGetDataInfo(DEV1/3, 8, 1, 3)",
                     "GCWritePort(REMOTE1, 0x100, c8000000)"}));
}

TEST_F(FeatureEvents, EnumerationChangesByItsEntry) {
    Change("PixelFormat", "Mono16");
    EXPECT_TRUE(Eventually([&] { return producer.GetRegister<uint32_t>("REMOTE1", 0x108) == 17825799; }));
}

TEST_F(FeatureEvents, ChangeThatIsRefusedDoesNotStopLaterOnes) {
    producer.Answer("EventGetDataInfo").Command(EVENT_DATA_VALUE).OnCall(1).With(GC_ERR_IO);
    Change("Width", "99");
    Change("NoSuchFeature", "1");
    Change("Width", "no number");
    Change("Width", "70000");
    Change("Width", std::nullopt);
    Change("Device", "not a value node");
    Change("Width", std::string("333", 4));
    ASSERT_TRUE(Eventually([this] { return WidthRegister() == 333; }));
    EXPECT_EQ(producer.Log("GCWritePort"), (Calls{"GCWritePort(REMOTE1, 0x100, 4d010000)"}));
}

class FeatureEventsWithoutDataInfo : public FeatureEvents {
protected:
    FeatureEventsWithoutDataInfo() : FeatureEvents("without_EventGetDataInfo") {}
};

TEST_F(FeatureEventsWithoutDataInfo, AreDroppedAndTheThreadsGoOn) {
    Invalidate("Width");
    Change("Width", "200");
    const auto waits = [this](const char* event) {
        const Calls calls = producer.Log("EventGetData");
        return std::count_if(calls.begin(), calls.end(),
                             [event](const std::string& call) { return call.rfind(event, 0) == 0; });
    };
    // What brought the event, and the wait after it.
    EXPECT_TRUE(
        Eventually([&] { return waits("EventGetData(DEV1/2") >= 2 && waits("EventGetData(DEV1/3") >= 2; }));
    EXPECT_FALSE(changed.IsSet());
    EXPECT_EQ(WidthRegister(), 64u);
}

using EventItems = LoadedProducer;

TEST_F(EventItems, UnreadableOneIsReportedWithItsBlock) {
    EVENT_HANDLE hEvent = nullptr;
    ASSERT_EQ(CallProducer(genTL->GCRegisterEvent, hTL, EVENT_MODULE, &hEvent), GC_ERR_SUCCESS);
    PushedEvent event;
    event.id = "0001";
    ASSERT_TRUE(producer.Push("TL1", EVENT_MODULE, event));
    uint8_t bytes[64];
    size_t size = sizeof bytes;
    ASSERT_EQ(CallProducer(genTL->EventGetData, hEvent, static_cast<void*>(bytes), &size, uint64_t{1000}),
              GC_ERR_SUCCESS);
    const EventBlock block{genTL.get(), "ZqApi_TL/Unit", hEvent, bytes, size};
    const auto fails = [&] {
        const Thrown thrown = CatchProducerError([&] { ReadEventItem(block, EVENT_DATA_ID); });
        EXPECT_EQ(thrown.source, "ZqApi_TL/Unit");
        EXPECT_EQ(thrown.function, "EventGetDataInfo");
        EXPECT_EQ(thrown.error, GC_ERR_IO);
        return thrown.text;
    };
    producer.Answer("EventGetDataInfo").OnCall(1).With(GC_ERR_IO);
    EXPECT_EQ(fails(), "-1010 = EventGetDataInfo(PTR, PTR, 8, 0, PTR, PTR, PTR)");
    producer.Answer("EventGetDataInfo").DataQuery().OnCall(1).With(GC_ERR_IO).Saying("gone");
    EXPECT_EQ(fails(), "-1010 = EventGetDataInfo(PTR, PTR, 8, 0, PTR, PTR, PTR) gone");
    EXPECT_STREQ(ReadEventItem(block, EVENT_DATA_ID).Text().c_str(), "0001");
    CallProducer(genTL->GCUnregisterEvent, hTL, EVENT_MODULE);
}

TEST_F(FeatureEvents, MissingNodeIsNamed) {
    const Thrown thrown = Catch<GenICam::RuntimeException>(
        [this] { FindNode("ZqApi_TL/Unit", 7, RemoteNodes(), "NoSuchFeature"); });
    EXPECT_EQ(thrown.text, "Node NoSuchFeature not found.");
    EXPECT_EQ(thrown.source, "ZqApi_TL/Unit");
}

} // namespace
} // namespace ZqTest
