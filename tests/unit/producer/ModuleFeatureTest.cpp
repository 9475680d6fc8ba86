// Registers of system, interface, device and stream that do something.

#include "ProducerTest.h"

namespace {

constexpr uint64_t updateList = 0x400;
constexpr uint64_t deviceSelector = 0x410;
constexpr uint64_t updateTimeout = 0x420;
constexpr uint64_t updateTime = 0x424;
constexpr uint64_t eventSelector = 0xA00;
constexpr uint64_t eventNotification = 0xA04;
constexpr uint64_t deviceIp = 0x720;
constexpr uint64_t forcedIp = 0x740;
constexpr uint64_t forcedMask = 0x744;
constexpr uint64_t forceIp = 0x74C;
constexpr uint32_t off = 0;
constexpr uint32_t once = 2;
constexpr uint32_t newBufferData = 3;

class ModuleFeatures : public CameraTest {
protected:
    void Init(const char* cameras) {
        ASSERT_EQ(gentl.GCCloseLib(), GC_ERR_SUCCESS);
        setenv("ZQGENTL_SIM", cameras, 1);
        ASSERT_EQ(gentl.GCInitLib(), GC_ERR_SUCCESS);
        unsetenv("ZQGENTL_SIM");
        system = OpenSystem();
        interface = OpenInterface(system, gevInterface);
        ASSERT_EQ(Write(interface, updateList, 1), GC_ERR_SUCCESS);
    }

    GC_ERROR Write(void* port, uint64_t address, uint32_t value) {
        size_t size = sizeof value;
        return gentl.GCWritePort(port, address, &value, &size);
    }

    uint32_t Read(void* port, uint64_t address) {
        uint32_t value = 0;
        size_t size = sizeof value;
        EXPECT_EQ(gentl.GCReadPort(port, address, &value, &size), GC_ERR_SUCCESS);
        return value;
    }

    DEV_HANDLE OpenAt(const char* id) {
        DEV_HANDLE opened = nullptr;
        EXPECT_EQ(gentl.IFOpenDevice(interface, id, DEVICE_ACCESS_CONTROL, &opened), GC_ERR_SUCCESS);
        return opened;
    }

    EVENT_HANDLE Listen(void* module) {
        EVENT_HANDLE event = nullptr;
        EXPECT_EQ(gentl.GCRegisterEvent(module, EVENT_MODULE, &event), GC_ERR_SUCCESS);
        return event;
    }

    /// The numbers of the next event: its id, its time and, of a stream, its frame.
    std::vector<uint64_t> Numbers(EVENT_HANDLE event, uint64_t timeoutMs = 5000) {
        char bytes[512];
        size_t size = sizeof bytes;
        if (gentl.EventGetData(event, bytes, &size, timeoutMs) != GC_ERR_SUCCESS)
            return {};
        uint64_t numbers[3] = {};
        size_t valueSize = sizeof numbers;
        INFO_DATATYPE type = 0;
        EXPECT_EQ(gentl.EventGetDataInfo(event, bytes, size, EVENT_DATA_VALUE, &type, numbers, &valueSize),
                  GC_ERR_SUCCESS);
        return {numbers, numbers + valueSize / 8};
    }
};

} // namespace

TEST_F(ModuleFeatures, ListStaysWhenItsUpdateTakesTooLong) {
    Open();
    for (void* module : {system, interface})
        ASSERT_EQ(Write(module, updateTime, 20), GC_ERR_SUCCESS);
    bool8_t changed = false;
    EXPECT_EQ(gentl.TLUpdateInterfaceList(system, &changed, 0), GC_ERR_TIMEOUT);
    EXPECT_EQ(gentl.IFUpdateDeviceList(interface, &changed, 5), GC_ERR_TIMEOUT);
    uint32_t count = 99;
    ASSERT_EQ(gentl.TLGetNumInterfaces(system, &count), GC_ERR_SUCCESS);
    EXPECT_EQ(count, 0U);
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(gentl.TLUpdateInterfaceList(system, &changed, GENTL_INFINITE), GC_ERR_SUCCESS);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(20));
    EXPECT_TRUE(changed);
    EXPECT_EQ(gentl.IFUpdateDeviceList(interface, nullptr, 20), GC_ERR_SUCCESS);
}

TEST_F(ModuleFeatures, UpdateByItsCommandWaitsAsLongAsItsFeatureSays) {
    Open();
    for (void* module : {system, interface}) {
        ASSERT_EQ(Write(module, updateTime, 20), GC_ERR_SUCCESS);
        ASSERT_EQ(Write(module, updateTimeout, 19), GC_ERR_SUCCESS);
        EXPECT_EQ(Write(module, updateList, 1), GC_ERR_IO);
        ASSERT_EQ(Write(module, updateTimeout, 20), GC_ERR_SUCCESS);
        EXPECT_EQ(Write(module, updateList, 1), GC_ERR_SUCCESS);
        EXPECT_EQ(Write(module, updateTime, 10001), GC_ERR_INVALID_VALUE);
        EXPECT_EQ(Write(module, updateTimeout, 3600001), GC_ERR_INVALID_VALUE);
    }
}

TEST_F(ModuleFeatures, ForcedAddressIsKeptAndTakenBack) {
    Init("GEV=2");
    ASSERT_EQ(Write(interface, deviceSelector, 1), GC_ERR_SUCCESS);
    EXPECT_EQ(Read(interface, deviceIp), 0xC6120003U);
    ASSERT_EQ(Write(interface, forcedIp, 0x0A000001), GC_ERR_SUCCESS);
    ASSERT_EQ(Write(interface, forcedMask, 0xFF000000), GC_ERR_SUCCESS);
    device = OpenAt("ZQ-GEV-0:SIM-GEV-0002");
    EXPECT_EQ(Write(interface, forceIp, 1), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(Read(device, 0x708), 0xC6120003U);
    ASSERT_EQ(gentl.DevClose(device), GC_ERR_SUCCESS);
    EXPECT_EQ(Write(interface, forceIp, 1), GC_ERR_SUCCESS);
    device = OpenAt("ZQ-GEV-0:SIM-GEV-0002");
    EXPECT_EQ(Read(device, 0x708), 0x0A000001U);
    EXPECT_EQ(Read(device, 0x70C), 0xFF000000U);
    ASSERT_EQ(gentl.DevClose(device), GC_ERR_SUCCESS);
    ASSERT_EQ(Write(interface, deviceSelector, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(Read(interface, deviceIp), 0xC6120002U);
    ASSERT_EQ(Write(interface, deviceSelector, 1), GC_ERR_SUCCESS);
    ASSERT_EQ(Write(interface, forcedIp, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(Write(interface, forceIp, 1), GC_ERR_SUCCESS);
    EXPECT_EQ(Read(interface, deviceIp), 0xC6120003U);
}

TEST_F(ModuleFeatures, NoAddressIsForcedWithoutADevice) {
    Init("GEV=0");
    EXPECT_EQ(Write(interface, forceIp, 1), GC_ERR_ACCESS_DENIED);
}

TEST_F(ModuleFeatures, ActionGoesWhereItIsSent) {
    Init("GEV=2");
    bigEndian = true;
    device = OpenAt("ZQ-GEV-0:SIM-GEV-0002");
    ASSERT_EQ(gentl.DevGetPort(device, &remote), GC_ERR_SUCCESS);
    OpenStream();
    MakeSmallAndFast();
    for (const uint64_t key : {camera::ActionDeviceKey, camera::ActionGroupKey, camera::ActionGroupMask})
        ASSERT_EQ(WriteInt(key, 1), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::TriggerMode, 1), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::TriggerSource, 5), GC_ERR_SUCCESS);
    Queue(Announce(4, 64));
    Start();
    for (const uint64_t key : {0x800, 0x804, 0x808})
        ASSERT_EQ(Write(interface, key, 1), GC_ERR_SUCCESS);
    struct Case {
        uint32_t destination;
        bool comes;
    };
    for (const Case& c : {Case{0xC6120002, false}, Case{0xC6120003, true}, Case{0xC613FFFF, true},
                          Case{0xFFFFFFFF, true}, Case{0, false}}) {
        ASSERT_EQ(Write(interface, 0x820, c.destination), GC_ERR_SUCCESS);
        ASSERT_EQ(Write(interface, 0x80C, 1), GC_ERR_SUCCESS);
        EXPECT_EQ(Next(c.comes ? 5000 : 20) != nullptr, c.comes) << std::hex << c.destination;
    }
}

TEST_F(ModuleFeatures, LinkGivesUpAfterItsTimeAndItsRetries) {
    Open();
    const auto wait = [&](double timeoutUs, uint32_t retries) {
        size_t size = sizeof timeoutUs;
        EXPECT_EQ(gentl.GCWritePort(device, 0x580, &timeoutUs, &size), GC_ERR_SUCCESS);
        EXPECT_EQ(Write(device, 0x588, retries), GC_ERR_SUCCESS);
        uint32_t width = 0;
        size = sizeof width;
        return gentl.GCReadPort(remote, camera::Width, &width, &size);
    };
    ASSERT_EQ(WriteInt(camera::PortDelay, 30), GC_ERR_SUCCESS);
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(wait(10'000, 1), GC_ERR_IO);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(20));
    EXPECT_EQ(wait(10'000, 2), GC_ERR_SUCCESS);
    EXPECT_EQ(wait(30'000, 0), GC_ERR_SUCCESS);
    for (double wrong : {999.0, 6.1e7}) {
        size_t size = sizeof wrong;
        EXPECT_EQ(gentl.GCWritePort(device, 0x580, &wrong, &size), GC_ERR_INVALID_VALUE);
    }
    EXPECT_EQ(Write(device, 0x588, 11), GC_ERR_INVALID_VALUE);
}

TEST_F(ModuleFeatures, EventThatIsWantedOnceComesOnce) {
    Open();
    OpenStream();
    MakeSmallAndFast();
    const EVENT_HANDLE event = Listen(stream);
    EXPECT_EQ(Write(stream, eventNotification, 3), GC_ERR_INVALID_VALUE);
    ASSERT_EQ(Write(stream, eventNotification, once), GC_ERR_SUCCESS);
    EXPECT_EQ(Read(stream, eventNotification), once);
    Queue(Announce(3, 64));
    Start(3);
    for (int i = 0; i < 3; ++i)
        ASSERT_NE(Next(), nullptr);
    EXPECT_EQ(Numbers(event)[0], 0x9030U);
    EXPECT_TRUE(Numbers(event, 0).empty());
    EXPECT_EQ(Read(stream, eventNotification), off);
}

TEST_F(ModuleFeatures, NewBufferDataNamesItsFrame) {
    Open();
    OpenStream();
    MakeSmallAndFast();
    const EVENT_HANDLE event = Listen(stream);
    ASSERT_EQ(Write(stream, eventSelector, newBufferData), GC_ERR_SUCCESS);
    ASSERT_EQ(Write(stream, eventNotification, 1), GC_ERR_SUCCESS);
    Queue(Announce(3, 64));
    Start(3);
    for (uint64_t frame = 0; frame < 3; ++frame) {
        const std::vector<uint64_t> numbers = Numbers(event);
        ASSERT_EQ(numbers.size(), 3U);
        EXPECT_EQ(numbers[0], 0x9033U);
        EXPECT_EQ(numbers[2], frame);
        EXPECT_NE(Next(0), nullptr); // it is there when the event is
    }
}

TEST_F(ModuleFeatures, NewBufferDataTellsOfWhatAKillDelivers) {
    Open();
    OpenStream();
    MakePaced(1, 900'000);
    const EVENT_HANDLE event = Listen(stream);
    ASSERT_EQ(Write(stream, eventSelector, newBufferData), GC_ERR_SUCCESS);
    ASSERT_EQ(Write(stream, eventNotification, 1), GC_ERR_SUCCESS);
    const auto buffers = Announce(1, 64);
    Queue(buffers);
    Start();
    ASSERT_TRUE(Eventually([&] { return BufferInfo<bool>(buffers[0], BUFFER_INFO_IS_ACQUIRING); }));
    ASSERT_EQ(gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_KILL), GC_ERR_SUCCESS);
    const std::vector<uint64_t> numbers = Numbers(event, 0);
    ASSERT_EQ(numbers.size(), 3U);
    EXPECT_EQ(numbers[0], 0x9033U);
    EXPECT_EQ(Next(0), buffers[0]);
}
