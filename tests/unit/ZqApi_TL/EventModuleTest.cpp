#include <algorithm>
#include <chrono>

#include "tests/unit/ZqApi_TL/LoadedProducer.h"
#include "tests/unit/ZqApi_TL/OpenedStream.h"

namespace ZqTest {
namespace {

std::string WithTerminator(const std::string& text) {
    return std::string(text.c_str(), text.size() + 1);
}

class ModuleEvent : public OpenedStream {
protected:
    explicit ModuleEvent(const std::string& variant = "full") : OpenedStream(variant) {}

    void Push(const std::optional<std::string>& id, const std::optional<std::string>& value) {
        PushedEvent event;
        event.id = id;
        event.value = value;
        EXPECT_TRUE(producer.Push("DEV1", EVENT_MODULE, event));
    }

    bool IsLostWithin(uint32_t timeoutMs) {
        return Signal::WaitFor(*static_cast<CEventObject*>(InsideDevice()->GetDeviceLostEventHandle()),
                               timeoutMs);
    }
    IZqDeviceInside* InsideDevice() { return dynamic_cast<IZqDeviceInside*>(device.get()); }
    INodeMap* LocalNodes() { return device->GetLocalIZqPort()->GetINodeMap(); }
};

TEST_F(ModuleEvent, ItemsAreAskedIdentifierFirst) {
    producer.ClearLog();
    Push(WithTerminator("0001"), "12");
    ASSERT_TRUE(IsLostWithin(10000));
    EXPECT_EQ(producer.Log("EventGetDataInfo"),
              (Calls{"EventGetDataInfo(DEV1/5, 8, 0, null)", "EventGetDataInfo(DEV1/5, 8, 0, 5)",
                     "EventGetDataInfo(DEV1/5, 8, 1, null)", "EventGetDataInfo(DEV1/5, 8, 1, 2)"}));
}

TEST_F(ModuleEvent, LossIsSeenAlsoWithoutAValue) {
    EXPECT_FALSE(device->IsDeviceLost());
    EXPECT_TRUE(producer.PushDeviceLost("DEV1"));
    EXPECT_TRUE(IsLostWithin(1000));
    EXPECT_TRUE(device->IsDeviceLost());
}

TEST_F(ModuleEvent, IdentifierNeedsNoTerminator) {
    Push("0001", std::nullopt);
    EXPECT_TRUE(IsLostWithin(10000));
}

TEST_F(ModuleEvent, InvalidationByTheApplicationIsNoLoss) {
    LocalNodes()->GetNode("EventDeviceLost")->InvalidateNode();
    EXPECT_FALSE(device->IsDeviceLost());
}

TEST_F(ModuleEvent, UnreadableEmptyAndForeignIdentifiersAreDropped) {
    producer.Answer("EventGetDataInfo").Command(EVENT_DATA_ID).OnCall(1).With(GC_ERR_IO);
    producer.Answer("EventGetDataInfo").Command(EVENT_DATA_ID).DataQuery().OnCall(1).With(GC_ERR_IO);
    Push(WithTerminator("0001"), "the size fails");
    Push(WithTerminator("0001"), "the data fails");
    Push(std::nullopt, "no identifier");
    Push(std::string(), "an empty one");
    Push(std::string(1, '\0'), "only a terminator");
    Push(WithTerminator("not hexadecimal"), "is swallowed");
    Push(WithTerminator("7777"), "nobody's");
    EXPECT_FALSE(IsLostWithin(50));
    Push(WithTerminator("0001"), std::nullopt);
    EXPECT_TRUE(IsLostWithin(10000));
}

TEST_F(ModuleEvent, EventThreadsStopInTheStatedOrder) {
    producer.ClearLog();
    device->StopEventAcquisitionThread();
    EXPECT_EQ(producer.Log("EventKill"), (Calls{"EventKill(DEV1/0)", "EventKill(DEV1/2)", "EventKill(DEV1/3)",
                                                "EventKill(DEV1/4)", "EventKill(DEV1/5)"}));
}

TEST_F(ModuleEvent, EventsAreDeletedModuleFirst) {
    stream.reset();
    producer.ClearLog();
    device.reset();
    EXPECT_EQ(producer.Log({"GCUnregisterEvent", "DevClose"}),
              (Calls{"GCUnregisterEvent(DEV1, 5)", "GCUnregisterEvent(DEV1, 0)", "GCUnregisterEvent(DEV1, 4)",
                     "GCUnregisterEvent(DEV1, 3)", "GCUnregisterEvent(DEV1, 2)", "DevClose(DEV1)"}));
}

TEST_F(ModuleEvent, EveryEventButErrorIsOptional) {
    stream.reset();
    device.reset();
    for (const int type : {EVENT_FEATURE_INVALIDATE, EVENT_FEATURE_CHANGE, EVENT_REMOTE_DEVICE, EVENT_MODULE})
        producer.Answer("GCRegisterEvent").Event(type).With(GC_ERR_NOT_IMPLEMENTED);
    producer.Answer("GCRegisterEvent").On("BUF").Event(EVENT_ERROR).With(GC_ERR_NOT_IMPLEMENTED);
    device = OpenDevice(system);
    device->StartEventAcquisitionThread();
    device->StartEventAcquisitionThread();
    stream = OpenStream();
    Start();
    EXPECT_TRUE(RetrieveNewFrame());
    EXPECT_NO_THROW(device->StopEventAcquisitionThread());
}

TEST_F(ModuleEvent, FailedStopOfOneThreadStopsTheOthersToo) {
    producer.Answer("EventKill").On("DEV1/2").With(GC_ERR_IO).AlsoRuns();
    producer.Answer("EventKill").On("DEV1/4").With(GC_ERR_ERROR).AlsoRuns();
    EXPECT_EQ(CatchProducerError([this] { device->StopEventAcquisitionThread(); }).text,
              "-1010 = EventKill(PTR)");
    EXPECT_EQ(producer.Log("EventKill").size(), 5u);
    EXPECT_NO_THROW(device->StopEventAcquisitionThread());
}

/// A local description with a port that receives the bytes of event 0002.
class ModuleEventData : public ModuleEvent {
protected:
    ModuleEventData() {
        std::string text(20000, '\0');
        producer.ReadRegister("DEV1", 0x10000, text.data(), text.size());
        text = text.c_str();
        text.insert(text.find("<Port Name"),
                    "<Integer Name=\"EventValue\"><pValue>EventValueReg</pValue></Integer>"
                    "<IntReg Name=\"EventValueReg\"><Address>0</Address><Length>4</Length>"
                    "<AccessMode>RO</AccessMode><pPort>EventPort</pPort><Cachable>WriteThrough</Cachable>"
                    "<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>"
                    "<Port Name=\"EventPort\"><EventID>0002</EventID></Port>");
        producer.SetDescription("DEV", "device.xml", text);
    }
};

TEST_F(ModuleEventData, ValueBytesReachTheEventsPort) {
    GenApi::INode* const node = LocalNodes()->GetNode("EventValue");
    ASSERT_NE(node, nullptr);
    Signal changed;
    const auto handle =
        GenApi::Register(node, std::function<void(GenApi::INode*)>([&](auto*) { changed.Set(); }));
    Push(WithTerminator("0002"), std::string("\x2A\x01\0\0", 4));
    ASSERT_TRUE(changed.Wait());
    EXPECT_EQ(GenApi::CIntegerPtr(node)->GetValue(), 298);
    GenApi::Deregister(handle);
}

class ModuleEventWithoutDataInfo : public ModuleEvent {
protected:
    ModuleEventWithoutDataInfo() : ModuleEvent("without_EventGetDataInfo") {}
};

TEST_F(ModuleEventWithoutDataInfo, DoesNothing) {
    EXPECT_TRUE(producer.PushDeviceLost("DEV1"));
    // The wait after the one that brought the event.
    EXPECT_TRUE(Eventually([this] {
        const Calls waits = producer.Log("EventGetData");
        return std::count(waits.begin(), waits.end(), "EventGetData(DEV1/5, 1024, 500)") >= 2;
    }));
    EXPECT_FALSE(device->IsDeviceLost());
}

class ModuleEventOfAnInterface : public ModuleTree {};

TEST_F(ModuleEventOfAnInterface, RunsAfterAStopWithoutStartAndEndsWithItsSystem) {
    System system = OpenSystem();
    system->GetIZqInterface(0)->StopEventAcquisitionThread();
    ASSERT_TRUE(producer.WaitForCalls("EventGetData", 1));
    EXPECT_EQ(producer.Log("EventGetData").front(), "EventGetData(IF1/5, 1024, 500)");
    producer.ClearLog();
    const auto start = std::chrono::steady_clock::now();
    system.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
    EXPECT_EQ(producer.Log({"EventKill", "GCUnregisterEvent", "IFClose"}),
              (Calls{"EventKill(IF1/5)", "GCUnregisterEvent(IF1, 5)", "GCUnregisterEvent(IF1, 0)",
                     "IFClose(IF1)", "GCUnregisterEvent(TL1, 0)"}));
}

} // namespace
} // namespace ZqTest
