#include "ProducerTest.h"

#include <cstdlib>

namespace {

class Populations : public ProducerTest {
protected:
    void SetUp() override {}
    void TearDown() override {
        unsetenv("ZQGENTL_SIM");
        gentl.GCCloseLib();
    }

    GC_ERROR Init(const char* text) {
        setenv("ZQGENTL_SIM", text, 1);
        return gentl.GCInitLib();
    }

    /// Every device's ID, interface by interface.
    std::vector<std::string> Devices() {
        std::vector<std::string> ids;
        const TL_HANDLE system = OpenSystem();
        EXPECT_EQ(gentl.TLUpdateInterfaceList(system, nullptr, 0), GC_ERR_SUCCESS);
        uint32_t interfaces = 0;
        EXPECT_EQ(gentl.TLGetNumInterfaces(system, &interfaces), GC_ERR_SUCCESS);
        for (uint32_t i = 0; i < interfaces; ++i) {
            char text[128];
            size_t size = sizeof text;
            EXPECT_EQ(gentl.TLGetInterfaceID(system, i, text, &size), GC_ERR_SUCCESS);
            ids.push_back(text);
            const IF_HANDLE interface = OpenInterface(system, text);
            EXPECT_EQ(gentl.IFUpdateDeviceList(interface, nullptr, 0), GC_ERR_SUCCESS);
            uint32_t devices = 0;
            EXPECT_EQ(gentl.IFGetNumDevices(interface, &devices), GC_ERR_SUCCESS);
            for (uint32_t k = 0; k < devices; ++k) {
                size = sizeof text;
                EXPECT_EQ(gentl.IFGetDeviceID(interface, k, text, &size), GC_ERR_SUCCESS);
                ids.push_back(text);
            }
        }
        return ids;
    }
};

} // namespace

TEST_F(Populations, FollowTheEnvironment) {
    ASSERT_EQ(Init("GEV=2,CXP=0"), GC_ERR_SUCCESS);
    EXPECT_EQ(Devices(), (std::vector<std::string>{"ZQ-GEV-0", "ZQ-GEV-0:SIM-GEV-0001",
                                                   "ZQ-GEV-0:SIM-GEV-0002", "ZQ-CXP-0"}));
}

TEST_F(Populations, MayHave256Cameras) {
    ASSERT_EQ(Init("U3V=100,GEV=100,CXP=56"), GC_ERR_SUCCESS);
    const std::vector<std::string> ids = Devices();
    EXPECT_EQ(ids.size(), 259U);
    EXPECT_EQ(ids.back(), "ZQ-CXP-0:SIM-CXP-0056");
}

TEST_F(Populations, RefuseWhatCannotBeRead) {
    for (const char* text : {"U3V", "U3V=", "U3V=x", "U3V=-1", "USB=1", "U3V=1,U3V=1", "U3V=200,GEV=57"})
        EXPECT_EQ(Init(text), GC_ERR_INVALID_VALUE) << text;
}

TEST_F(Populations, MayBeEmpty) {
    ASSERT_EQ(Init(""), GC_ERR_SUCCESS);
    EXPECT_TRUE(Devices().empty());
}

TEST_F(Populations, SelectorOfAnInterfaceShowsEachDevice) {
    ASSERT_EQ(Init("U3V=3"), GC_ERR_SUCCESS);
    const IF_HANDLE interface = OpenInterface(OpenSystem(), u3vInterface);
    ASSERT_EQ(gentl.IFUpdateDeviceList(interface, nullptr, 0), GC_ERR_SUCCESS);
    uint32_t index = 2;
    size_t size = sizeof index;
    ASSERT_EQ(gentl.GCWritePort(interface, 0x410, &index, &size), GC_ERR_SUCCESS);
    char id[64];
    size = sizeof id;
    ASSERT_EQ(gentl.GCReadPort(interface, 0x500, id, &size), GC_ERR_SUCCESS);
    EXPECT_STREQ(id, "ZQ-U3V-0:SIM-U3V-0003");
    index = 3;
    size = sizeof index;
    EXPECT_EQ(gentl.GCWritePort(interface, 0x410, &index, &size), GC_ERR_INVALID_VALUE);
}

namespace {

class NativeCodes : public CameraTest {
protected:
    void SetUp() override {
        setenv("ZQGENTL_SIM", "CXP=2", 1);
        CameraTest::SetUp();
        unsetenv("ZQGENTL_SIM");
        system = OpenSystem();
        interface = OpenInterface(system, cxpInterface);
        ASSERT_EQ(gentl.IFOpenDevice(interface, "ZQ-CXP-0:SIM-CXP-0002", DEVICE_ACCESS_CONTROL, &device),
                  GC_ERR_SUCCESS);
        ASSERT_EQ(gentl.DevGetPort(device, &remote), GC_ERR_SUCCESS);
        bigEndian = true;
        OpenStream();
        MakeSmallAndFast();
    }

    void ExpectCode(uint32_t pixelFormat, uint64_t code, uint64_t space) {
        ASSERT_EQ(WriteInt(camera::PixelFormat, pixelFormat), GC_ERR_SUCCESS);
        Queue(Announce(1, 1024));
        Start(1);
        const BUFFER_HANDLE buffer = Next();
        ASSERT_NE(buffer, nullptr);
        EXPECT_EQ(BufferInfo<uint64_t>(buffer, BUFFER_INFO_PIXELFORMAT), code);
        EXPECT_EQ(BufferInfo<uint64_t>(buffer, BUFFER_INFO_PIXELFORMAT_NAMESPACE), space);
        ASSERT_EQ(gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    }
};

} // namespace

TEST_F(NativeCodes, OfCoaXPressWhereThereIsOne) {
    ExpectCode(0x01080001, 0x101, PIXELFORMAT_NAMESPACE_UNKNOWN);
    ExpectCode(0x0110002F, 0x325, PIXELFORMAT_NAMESPACE_UNKNOWN);
    ExpectCode(0x02180014, 0x401, PIXELFORMAT_NAMESPACE_UNKNOWN);
    ExpectCode(0x02100041, 0x821, PIXELFORMAT_NAMESPACE_UNKNOWN);
    ExpectCode(0x02100045, 0x02100045, PIXELFORMAT_NAMESPACE_PFNC_32BIT);
}
