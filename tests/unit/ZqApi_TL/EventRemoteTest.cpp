#include <algorithm>
#include <filesystem>
#include <functional>
#include <random>

#include <pthread.h>
#include <sched.h>

#include "tests/unit/ZqApi_TL/ChunkCamera.h"
#include "tests/unit/ZqApi_TL/LoadedProducer.h"

namespace ZqTest {
namespace {

std::string Hex(const std::string& digits) {
    std::string bytes;
    for (size_t at = 0; at + 1 < digits.size(); at += 2)
        bytes += static_cast<char>(std::stoi(digits.substr(at, 2), nullptr, 16));
    return bytes;
}

/// The scripted camera with one event 9C40, whose port shows the item's bytes 4 to 7 as EventWord and 16 to
/// 19 as EventData, both big-endian.
class RemoteEvents : public OpenedStream {
protected:
    void SetUp() override {
        std::string text(20000, '\0');
        producer.ReadRegister("REMOTE1", 0x10000, text.data(), text.size());
        text = text.c_str();
        text.insert(text.find("<Port Name"), Feature("EventWord", 4) + Feature("EventData", 16) +
                                                 "<Port Name=\"EventPort\"><EventID>9C40</EventID></Port>");
        producer.SetDescription("REMOTE", "camera.xml", text);
    }

    void TearDown() override {
        if (registered != 0)
            GenApi::Deregister(registered);
        OpenedStream::TearDown();
    }

    /// For a test that opens once more.
    void Close() {
        GenApi::Deregister(registered);
        registered = 0;
        stream.reset();
        device.reset();
        system.reset();
    }

    void OpenAs(const std::string& tlType) {
        producer.Answer("DevGetInfo").Command(DEVICE_INFO_TLTYPE).Text(tlType);
        OpenedStream::SetUp();
        registered = GenApi::Register(Node("EventWord"),
                                      std::function<void(GenApi::INode*)>([this](auto*) { arrived.Set(); }));
    }

    void Push(const PushedEvent& event) {
        arrived.Reset();
        EXPECT_TRUE(producer.Push("DEV1", EVENT_REMOTE_DEVICE, event));
    }
    void PushBlock(const std::string& block) {
        PushedEvent event;
        event.block = block;
        Push(event);
    }
    void PushItem(const std::optional<std::string>& id, int32_t idType = INFO_DATATYPE_STRING) {
        PushedEvent event;
        event.id = id;
        event.idType = idType;
        event.value = ITEM;
        Push(event);
    }

    GenApi::INode* Node(const char* name) { return device->GetRemoteIZqPort()->GetINodeMap()->GetNode(name); }
    int64_t Value(const char* name) { return GenApi::CIntegerPtr(Node(name))->GetValue(); }

    // A GigE Vision item: id 9C40, no stream channel, block 0, timestamp 0x99, four bytes of data.
    const std::string ITEM = Hex("00009c40ffff00000000000000000099deadbeef");
    const std::string GVCP = Hex("420100c20014000b") + ITEM;
    // USB3 Vision: id 9C40, timestamp 1122334455667788, data deadbeef.
    const std::string U3V = Hex("553356450000000c100003000000409c8877665544332211deadbeef");
    Signal arrived;
    GenApi::CallbackHandleType registered{};

private:
    static std::string Feature(const std::string& name, int address) {
        return "<Integer Name=\"" + name + "\"><pValue>" + name + "Reg</pValue></Integer><IntReg Name=\"" +
               name + "Reg\"><Address>" + std::to_string(address) +
               "</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>EventPort</pPort>"
               "<Cachable>WriteThrough</Cachable><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></"
               "IntReg>";
    }
};

TEST_F(RemoteEvents, GigEVisionPacketReachesTheEventsPort) {
    OpenAs("GEV");
    PushBlock(GVCP);
    ASSERT_TRUE(arrived.Wait());
    EXPECT_EQ(Value("EventWord"), 0xFFFF0000);
    EXPECT_EQ(Value("EventData"), 0xDEADBEEF);
    EXPECT_EQ(producer.Log("EventGetDataInfo"), Calls{});
}

TEST_F(RemoteEvents, UsbVisionPacketReachesTheEventsPort) {
    OpenAs("U3V");
    PushBlock(U3V);
    ASSERT_TRUE(arrived.Wait());
    EXPECT_EQ(Value("EventWord"), 0x88776655);
}

TEST_F(RemoteEvents, PacketPaddedWithZerosIsAPacket) {
    OpenAs("GEV");
    PushBlock(GVCP + std::string(100, '\0'));
    EXPECT_TRUE(arrived.Wait());
}

TEST_F(RemoteEvents, ForeignTransportsPacketIsDroppedAndLaterOnesArrive) {
    OpenAs("GEV");
    PushBlock(U3V);
    EXPECT_FALSE(arrived.Wait(20));
    PushBlock(GVCP);
    EXPECT_TRUE(arrived.Wait());
}

TEST_F(RemoteEvents, ItemIsDeliveredUnderItsIdAsText) {
    for (const char* const tlType : {"GEV", "U3V", "CXP"}) {
        OpenAs(tlType);
        PushItem("9C40");
        ASSERT_TRUE(arrived.Wait()) << tlType;
        EXPECT_EQ(Value("EventData"), 0xDEADBEEF);
        Close();
    }
}

TEST_F(RemoteEvents, OnlyTheTwoNamesOfTransportsHaveAdaptersOfTheirOwn) {
    // Only such an adapter can read the identifier out of a bare item.
    for (const char* const tlType : {"", "gev", "GEV2", "u3v", "CXP", "CL"}) {
        OpenAs(tlType);
        PushBlock(ITEM);
        EXPECT_FALSE(arrived.Wait(10)) << tlType;
        Close();
    }
}

TEST_F(RemoteEvents, ThreadEndsBeforeItsEventIsUnregistered) {
    OpenAs("U3V");
    GenApi::Deregister(registered);
    registered = 0;
    stream.reset();
    producer.ClearLog();
    device.reset();
    const Calls log = producer.Log({"EventKill", "GCUnregisterEvent"});
    const auto killed = std::find(log.begin(), log.end(), "EventKill(DEV1/4)");
    const auto unregistered = std::find(log.begin(), log.end(), "GCUnregisterEvent(DEV1, 4)");
    ASSERT_NE(killed, log.end());
    ASSERT_NE(unregistered, log.end());
    EXPECT_LT(killed, unregistered);
}

TEST_F(RemoteEvents, ThreadRunsBeforeAcquisitionWork) {
    const sched_param lowest{sched_get_priority_min(SCHED_RR)};
    int status = 0;
    std::thread([&] { status = pthread_setschedparam(pthread_self(), SCHED_RR, &lowest); }).join();
    if (status != 0)
        GTEST_SKIP() << "this user may not have real-time threads";
    OpenAs("U3V");
    const auto priorities = [] {
        std::vector<int> found;
        for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
            const pid_t id = std::stoi(task.path().filename());
            sched_param scheduling{};
            if (sched_getscheduler(id) == SCHED_RR && sched_getparam(id, &scheduling) == 0)
                found.push_back(scheduling.sched_priority);
        }
        return found;
    };
    // A thread applies its priority itself.
    EXPECT_TRUE(Eventually([&] { return !priorities().empty(); }));
    EXPECT_EQ(priorities(), std::vector<int>{90});
}

TEST_F(RemoteEvents, ItemsAreAskedIdentifierFirst) {
    OpenAs("U3V");
    producer.ClearLog();
    PushItem("9C40");
    ASSERT_TRUE(arrived.Wait());
    EXPECT_EQ(producer.Log("EventGetDataInfo"),
              (Calls{"EventGetDataInfo(DEV1/4, 8, 0, null)", "EventGetDataInfo(DEV1/4, 8, 0, 4)",
                     "EventGetDataInfo(DEV1/4, 8, 1, null)", "EventGetDataInfo(DEV1/4, 8, 1, 20)"}));
}

TEST_F(RemoteEvents, IdMayBeANumber) {
    OpenAs("U3V");
    PushItem(Number(0x9C40, 4), INFO_DATATYPE_INT32);
    ASSERT_TRUE(arrived.Wait());
    EXPECT_EQ(Value("EventData"), 0xDEADBEEF);
    PushItem(Number(0x9C40, 8), INFO_DATATYPE_UINT64);
    EXPECT_TRUE(arrived.Wait());
}

TEST_F(RemoteEvents, ItemsAreNoLargerThanAnnounced) {
    OpenAs("U3V");
    producer.Answer("EventGetDataInfo").Command(EVENT_DATA_ID).DataQuery().Size(5000);
    PushItem(Number(0x9C40, 4), INFO_DATATYPE_INT32);
    ASSERT_TRUE(arrived.Wait());
    EXPECT_EQ(Value("EventData"), 0xDEADBEEF);
}

TEST_F(RemoteEvents, IdMayBeHexadecimalWithItsMark) {
    OpenAs("U3V");
    for (const char* const id : {"0x9C40", "0X9c40"}) {
        PushItem(id);
        EXPECT_TRUE(arrived.Wait()) << id;
    }
}

TEST_F(RemoteEvents, IdOfAnotherTypeOrSizeIsNone) {
    OpenAs("U3V");
    for (const auto& [bytes, type] : {std::pair(Number(0x9C40, 8), int32_t{INFO_DATATYPE_FLOAT64}),
                                      {Number(0x9C40, 8) + Number(0, 8), INFO_DATATYPE_UINT64},
                                      {std::string(), INFO_DATATYPE_UINT64}}) {
        PushItem(bytes, type);
        EXPECT_FALSE(arrived.Wait(20)) << type;
    }
    PushItem("9C40");
    EXPECT_TRUE(arrived.Wait());
}

TEST_F(RemoteEvents, IdMayBeTheNumericOneAlone) {
    OpenAs("U3V");
    PushedEvent event;
    event.value = ITEM;
    event.numId = 0x9C40;
    Push(event);
    EXPECT_TRUE(arrived.Wait());
}

TEST_F(RemoteEvents, IdThatIsNoNumberGivesWayToTheNumericOne) {
    OpenAs("U3V");
    PushedEvent event;
    event.id = "ExposureEnd";
    event.value = ITEM;
    event.numId = 0x9C40;
    Push(event);
    EXPECT_TRUE(arrived.Wait());
}

TEST_F(RemoteEvents, PacketMayStandInTheValue) {
    OpenAs("GEV");
    PushedEvent event;
    event.id = "9C40";
    event.value = GVCP;
    Push(event);
    ASSERT_TRUE(arrived.Wait());
    EXPECT_EQ(Value("EventData"), 0xDEADBEEF);
}

TEST_F(RemoteEvents, BlockThatHasNoIdIsTheAdaptersMatter) {
    OpenAs("GEV");
    PushBlock(ITEM);
    ASSERT_TRUE(arrived.Wait());
    EXPECT_EQ(Value("EventData"), 0xDEADBEEF);
}

TEST_F(RemoteEvents, BlockWithoutIdOnAGenericTransportIsDropped) {
    OpenAs("CXP");
    PushBlock(ITEM);
    EXPECT_FALSE(arrived.Wait(20));
    PushItem("9C40");
    EXPECT_TRUE(arrived.Wait());
}

TEST_F(RemoteEvents, EventWithoutPayloadInvalidatesItsNodes) {
    OpenAs("CXP");
    PushItem("9C40");
    ASSERT_TRUE(arrived.Wait());
    PushedEvent bare;
    bare.id = "9C40";
    Push(bare);
    EXPECT_TRUE(arrived.Wait());
}

TEST_F(RemoteEvents, DamagedOnesAreDroppedAndLaterOnesArrive) {
    OpenAs("GEV");
    PushBlock(GVCP.substr(0, 20));
    PushBlock(std::string(1, '\0'));
    PushItem("no digits");
    PushItem("7777");
    EXPECT_FALSE(arrived.Wait(20));
    PushBlock(GVCP);
    EXPECT_TRUE(arrived.Wait());
}

TEST_F(RemoteEvents, NoMutationOfAPacketStopsTheEvents) {
    std::mt19937 random(7);
    for (const auto& [tlType, packet] : {std::pair("GEV", GVCP), {"U3V", U3V}}) {
        OpenAs(tlType);
        for (int round = 0; round < 5000; ++round) {
            std::string bytes = packet;
            for (size_t changes = 1 + random() % 4; changes > 0; --changes)
                bytes[random() % bytes.size()] = static_cast<char>(random());
            bytes.resize(1 + random() % bytes.size());
            PushBlock(bytes);
        }
        // All of them have been looked at when the wait after the last one begins.
        ASSERT_TRUE(producer.WaitForCalls("EventGetData", 5000));
        arrived.Reset();
        EXPECT_TRUE(Eventually([&, &whole = packet] {
            PushBlock(whole);
            return arrived.Wait(100);
        }));
        Close();
    }
}

} // namespace
} // namespace ZqTest
