#include "ProducerTest.h"

#include <set>

namespace {

namespace selector {
constexpr uint32_t ExposureEnd = 0;
constexpr uint32_t FrameStart = 1;
constexpr uint32_t FrameEnd = 2;
constexpr uint32_t Test = 3;
} // namespace selector

struct Item {
    std::string id;
    std::string value;
    uint64_t number = 0;
};

class RemoteEvents : public CameraTest {
protected:
    EVENT_HANDLE event = nullptr;

    void OpenWith(const char* interfaceId, EVENT_TYPE type = EVENT_REMOTE_DEVICE) {
        Open(interfaceId);
        OpenStream();
        MakeSmallAndFast();
        ASSERT_EQ(gentl.GCRegisterEvent(device, type, &event), GC_ERR_SUCCESS);
    }

    void Notify(uint32_t which, bool on = true) {
        ASSERT_EQ(WriteInt(camera::EventSelector, which), GC_ERR_SUCCESS);
        ASSERT_EQ(WriteInt(camera::EventNotification, on ? 1 : 0), GC_ERR_SUCCESS);
    }

    /// The next event as it was received, or nothing.
    std::string Receive(uint64_t timeoutMs = 5000) {
        char bytes[1024];
        size_t size = sizeof bytes;
        lastResult = gentl.EventGetData(event, bytes, &size, timeoutMs);
        return lastResult == GC_ERR_SUCCESS ? std::string(bytes, size) : std::string();
    }

    std::string Data(const std::string& bytes, EVENT_DATA_INFO_CMD command, INFO_DATATYPE expected) {
        char data[1024];
        size_t size = sizeof data;
        INFO_DATATYPE type = 0;
        EXPECT_EQ(gentl.EventGetDataInfo(event, bytes.data(), bytes.size(), command, &type, data, &size),
                  GC_ERR_SUCCESS);
        EXPECT_EQ(type, expected);
        return {data, size};
    }

    Item Parse(const std::string& bytes) {
        Item item;
        item.id = Data(bytes, EVENT_DATA_ID, INFO_DATATYPE_STRING).c_str();
        item.value = Data(bytes, EVENT_DATA_VALUE, INFO_DATATYPE_BUFFER);
        std::memcpy(&item.number, Data(bytes, EVENT_DATA_NUMID, INFO_DATATYPE_UINT64).data(), 8);
        return item;
    }

    static uint64_t Number(const std::string& bytes, size_t at, size_t size, bool big) {
        uint64_t number = 0;
        for (size_t i = 0; i < size; ++i)
            number |= uint64_t{static_cast<uint8_t>(bytes.at(at + (big ? size - 1 - i : i)))} << (8 * i);
        return number;
    }
};

} // namespace

TEST_F(RemoteEvents, AreOffAfterPowerUp) {
    OpenWith(u3vInterface);
    ASSERT_EQ(WriteInt(camera::TestEventGenerate, 1), GC_ERR_SUCCESS);
    Queue(Announce(1, 64));
    Start(1);
    ASSERT_NE(Next(), nullptr);
    EXPECT_EQ(Receive(0), "");
    EXPECT_EQ(lastResult, GC_ERR_TIMEOUT);
}

TEST_F(RemoteEvents, OfGigEVisionAreControlPackets) {
    OpenWith(gevInterface);
    Notify(selector::Test);
    ASSERT_EQ(WriteInt(camera::TestEventGenerate, 1), GC_ERR_SUCCESS);
    const std::string packet = Receive();
    ASSERT_EQ(packet.size(), 24U);
    EXPECT_EQ(packet.substr(0, 8), std::string("\x42\x01\x00\xC0\x00\x10\x00\x01", 8));
    const Item item = Parse(packet);
    EXPECT_EQ(item.id, "4FFF");
    EXPECT_EQ(item.number, 0x4FFFU);
    EXPECT_EQ(item.value, packet.substr(8));
}

TEST_F(RemoteEvents, OfUsb3VisionAreEventPackets) {
    OpenWith(u3vInterface);
    Notify(selector::Test);
    ASSERT_EQ(WriteInt(camera::TestEventGenerate, 1), GC_ERR_SUCCESS);
    const std::string packet = Receive();
    ASSERT_EQ(packet.size(), 24U);
    EXPECT_EQ(packet.substr(0, 12), std::string("U3VE\x00\x00\x00\x0C\x0C\x00\x01\x00", 12));
    const Item item = Parse(packet);
    EXPECT_EQ(item.id, "4FFF");
    EXPECT_EQ(item.value, packet.substr(12));
}

TEST_F(RemoteEvents, OfCoaXPressAreOpaqueButNamed) {
    OpenWith(cxpInterface);
    Notify(selector::Test);
    ASSERT_EQ(WriteInt(camera::TestEventGenerate, 1), GC_ERR_SUCCESS);
    const Item item = Parse(Receive());
    EXPECT_EQ(item.id, "4FFF");
    EXPECT_EQ(item.number, 0x4FFFU);
    EXPECT_EQ(item.value.size(), 24U);
    EXPECT_EQ(Number(item.value, 2, 2, true), 0x4FFFU);
}

TEST_F(RemoteEvents, ExposureEndBelongsToItsBuffer) {
    struct Layout {
        const char* id;
        bool big;
        size_t timestamp, frameId, frameIdSize;
    };
    for (const Layout& layout : {Layout{u3vInterface, false, 4, 12, 8}, Layout{gevInterface, true, 8, 6, 2},
                                 Layout{cxpInterface, true, 8, 16, 8}}) {
        for (const bool paced : {false, true}) {
            SCOPED_TRACE(layout.id + std::string(paced ? " paced" : " free"));
            OpenWith(layout.id);
            if (paced)
                MakePaced(200, 100);
            Notify(selector::ExposureEnd);
            const auto buffers = Announce(3, 64);
            Queue(buffers);
            Start(3);
            for (int i = 0; i < 3; ++i) {
                const Item item = Parse(Receive());
                const BUFFER_HANDLE buffer = Next();
                ASSERT_NE(buffer, nullptr);
                EXPECT_EQ(item.id, "9C40");
                EXPECT_EQ(Number(item.value, layout.timestamp, 8, layout.big),
                          BufferInfo<uint64_t>(buffer, BUFFER_INFO_TIMESTAMP));
                EXPECT_EQ(Number(item.value, layout.frameId, layout.frameIdSize, layout.big),
                          BufferInfo<uint64_t>(buffer, BUFFER_INFO_FRAMEID));
            }
            EXPECT_EQ(gentl.IFClose(interface), GC_ERR_SUCCESS);
        }
    }
}

TEST_F(RemoteEvents, OfAFrameComeInTheirOrder) {
    OpenWith(gevInterface);
    for (const uint32_t which : {selector::ExposureEnd, selector::FrameStart, selector::FrameEnd})
        Notify(which);
    Queue(Announce(1, 64));
    Start(1);
    ASSERT_NE(Next(), nullptr);
    EXPECT_EQ(Parse(Receive()).id, "9C41");
    EXPECT_EQ(Parse(Receive()).id, "9C40");
    EXPECT_EQ(Parse(Receive()).id, "9C42");
    Notify(selector::FrameStart, false);
}

TEST_F(RemoteEvents, NotificationBelongsToTheSelectedEvent) {
    OpenWith(u3vInterface);
    Notify(selector::FrameEnd);
    EXPECT_EQ(ReadInt(camera::EventNotification), 1U);
    ASSERT_EQ(WriteInt(camera::EventSelector, selector::FrameStart), GC_ERR_SUCCESS);
    EXPECT_EQ(ReadInt(camera::EventNotification), 0U);
    EXPECT_EQ(WriteInt(camera::EventNotification, 3), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(WriteInt(camera::EventSelector, 99), GC_ERR_INVALID_VALUE);
}

TEST_F(RemoteEvents, ComeOnceWhenTheyAreWantedOnce) {
    OpenWith(gevInterface);
    ASSERT_EQ(WriteInt(camera::EventSelector, selector::FrameEnd), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::EventNotification, 2), GC_ERR_SUCCESS);
    EXPECT_EQ(ReadInt(camera::EventNotification), 2U);
    Queue(Announce(3, 64));
    Start(3);
    for (int i = 0; i < 3; ++i)
        ASSERT_NE(Next(), nullptr);
    const Item item = Parse(Receive());
    EXPECT_EQ(item.id, "9C42");
    EXPECT_EQ(Number(item.value, 6, 2, true), 0U); // the first frame
    EXPECT_EQ(Receive(0), "");
    EXPECT_EQ(ReadInt(camera::EventNotification), 0U);
    ASSERT_EQ(WriteInt(camera::EventNotification, 2), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::EventNotification, 1), GC_ERR_SUCCESS);
    EXPECT_EQ(ReadInt(camera::EventNotification), 1U);
}

TEST_F(RemoteEvents, OtherBytesAreNoEvent) {
    OpenWith(gevInterface);
    const std::string packet("\x42\x01\x00\xC0\x00\x20\x00\x01", 8);
    char data[64];
    size_t size = sizeof data;
    INFO_DATATYPE type = 0;
    EXPECT_EQ(gentl.EventGetDataInfo(event, packet.data(), packet.size(), EVENT_DATA_ID, &type, data, &size),
              GC_ERR_INVALID_PARAMETER);
}

TEST_F(RemoteEvents, AutomaticExposureTellsItsChanges) {
    OpenWith(u3vInterface, EVENT_FEATURE_CHANGE);
    EVENT_HANDLE changed = event;
    ASSERT_EQ(gentl.GCRegisterEvent(device, EVENT_FEATURE_INVALIDATE, &event), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::ExposureAuto, 2), GC_ERR_SUCCESS);
    Queue(Announce(1, 64));
    Start(1);
    ASSERT_NE(Next(), nullptr);
    const std::string invalidated = Receive();
    EXPECT_STREQ(Data(invalidated, EVENT_DATA_ID, INFO_DATATYPE_STRING).c_str(), "ExposureTime");
    for (const EVENT_DATA_INFO_CMD none : {EVENT_DATA_VALUE, EVENT_DATA_NUMID}) {
        size_t nothing = 0;
        INFO_DATATYPE type = 0;
        EXPECT_EQ(gentl.EventGetDataInfo(event, invalidated.data(), invalidated.size(), none, &type, nullptr,
                                         &nothing),
                  GC_ERR_NOT_AVAILABLE);
    }
    event = changed;
    const std::string bytes = Receive();
    EXPECT_STREQ(Data(bytes, EVENT_DATA_ID, INFO_DATATYPE_STRING).c_str(), "ExposureTime");
    const double told = std::stod(Data(bytes, EVENT_DATA_VALUE, INFO_DATATYPE_STRING));
    double exposure = 0;
    size_t size = sizeof exposure;
    ASSERT_EQ(gentl.GCReadPort(remote, camera::ExposureTime, &exposure, &size), GC_ERR_SUCCESS);
    EXPECT_NEAR(told, exposure, 0.001);
    EXPECT_NE(exposure, 1000.0);
}

TEST_F(RemoteEvents, AutomaticExposureOnceSwitchesItselfOff) {
    OpenWith(u3vInterface, EVENT_FEATURE_INVALIDATE);
    ASSERT_EQ(WriteInt(camera::ExposureAuto, 1), GC_ERR_SUCCESS);
    Queue(Announce(1, 64));
    Start(1);
    ASSERT_NE(Next(), nullptr);
    EXPECT_EQ(ReadInt(camera::ExposureAuto), 0U);
    EXPECT_STREQ(Data(Receive(), EVENT_DATA_ID, INFO_DATATYPE_STRING).c_str(), "ExposureTime");
    EXPECT_STREQ(Data(Receive(), EVENT_DATA_ID, INFO_DATATYPE_STRING).c_str(), "ExposureAuto");
}

TEST_F(RemoteEvents, TemperatureRisesWhileAcquiringAndIsInvalidated) {
    OpenWith(u3vInterface, EVENT_FEATURE_INVALIDATE);
    const auto temperature = [&] {
        double value = 0;
        size_t size = sizeof value;
        EXPECT_EQ(gentl.GCReadPort(remote, 0x300, &value, &size), GC_ERR_SUCCESS);
        return value;
    };
    const double before = temperature();
    EXPECT_EQ(before, 36.0);
    Queue(Announce(1, 64));
    Start();
    EXPECT_STREQ(Data(Receive(), EVENT_DATA_ID, INFO_DATATYPE_STRING).c_str(), "DeviceTemperature");
    EXPECT_GT(temperature(), before);
}

TEST_F(RemoteEvents, FrameWhoseEndWasToldIsNotIncompleteAfterAKill) {
    OpenWith(u3vInterface);
    Notify(selector::FrameEnd);
    const auto buffers = Announce(4, 64);
    for (int round = 0; round < 200; ++round) {
        ASSERT_EQ(gentl.DSFlushQueue(stream, ACQ_QUEUE_ALL_TO_INPUT), GC_ERR_SUCCESS);
        ASSERT_EQ(gentl.DSFlushQueue(stream, ACQ_QUEUE_UNQUEUED_TO_INPUT), GC_ERR_SUCCESS);
        ASSERT_EQ(gentl.EventFlush(event), GC_ERR_SUCCESS);
        Start();
        Receive();
        ASSERT_EQ(gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_KILL), GC_ERR_SUCCESS);
        ASSERT_EQ(WriteInt(camera::AcquisitionStop, 1), GC_ERR_SUCCESS);
        std::set<uint64_t> ended{0};
        const auto receive = [&](uint64_t timeoutMs) {
            const std::string bytes = Receive(timeoutMs);
            if (!bytes.empty())
                ended.insert(Number(Parse(bytes).value, 12, 8, false));
            return !bytes.empty();
        };
        while (receive(0)) {
        }
        while (const BUFFER_HANDLE buffer = Next(0)) {
            const auto id = BufferInfo<uint64_t>(buffer, BUFFER_INFO_FRAMEID);
            const bool whole = !BufferInfo<bool8_t>(buffer, BUFFER_INFO_IS_INCOMPLETE);
            // A kill does not wait for an event that is on its way.
            while (whole && ended.count(id) == 0 && receive(1000)) {
            }
            EXPECT_EQ(whole, ended.count(id) != 0) << id << " in round " << round;
            EXPECT_EQ(BufferInfo<size_t>(buffer, BUFFER_INFO_SIZE_FILLED), whole ? 64U : 0U);
        }
    }
}
