#include "ProducerTest.h"

namespace {

class Lists : public ProducerTest {
protected:
    template <class Ask>
    std::string Text(Ask ask) {
        char text[256] = "";
        size_t size = sizeof text;
        INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
        EXPECT_EQ(ask(&type, text, &size), GC_ERR_SUCCESS);
        EXPECT_EQ(type, INFO_DATATYPE_STRING);
        EXPECT_EQ(size, std::strlen(text) + 1);
        return text;
    }
};

struct Expected {
    const char* interfaceId;
    const char* tlType;
    const char* deviceId;
    const char* model;
    const char* serial;
};
const Expected expected[] = {
    {"ZQ-U3V-0", "U3V", "ZQ-U3V-0:SIM-U3V-0001", "Sim-U3V-2M", "SIM-U3V-0001"},
    {"ZQ-GEV-0", "GEV", "ZQ-GEV-0:SIM-GEV-0001", "Sim-GEV-5M", "SIM-GEV-0001"},
    {"ZQ-CXP-0", "CXP", "ZQ-CXP-0:SIM-CXP-0001", "Sim-CXP-12M", "SIM-CXP-0001"},
};

} // namespace

TEST_F(Lists, AreEmptyUntilTheyAreUpdated) {
    const TL_HANDLE system = OpenSystem();
    uint32_t count = 99;
    ASSERT_EQ(gentl.TLGetNumInterfaces(system, &count), GC_ERR_SUCCESS);
    EXPECT_EQ(count, 0U);
    char text[64];
    size_t size = sizeof text;
    EXPECT_EQ(gentl.TLGetInterfaceID(system, 0, text, &size), GC_ERR_INVALID_INDEX);
}

TEST_F(Lists, FirstUpdateAfterEachOpeningIsAChange) {
    for (int opening = 0; opening < 2; ++opening) {
        const TL_HANDLE system = OpenSystem();
        bool8_t changed = false;
        ASSERT_EQ(gentl.TLUpdateInterfaceList(system, &changed, 250), GC_ERR_SUCCESS);
        EXPECT_TRUE(changed);
        ASSERT_EQ(gentl.TLUpdateInterfaceList(system, &changed, 250), GC_ERR_SUCCESS);
        EXPECT_FALSE(changed);
        EXPECT_EQ(gentl.TLUpdateInterfaceList(system, nullptr, 250), GC_ERR_SUCCESS);
        const IF_HANDLE interface = OpenInterface(system, u3vInterface);
        ASSERT_EQ(gentl.IFUpdateDeviceList(interface, &changed, 500), GC_ERR_SUCCESS);
        EXPECT_TRUE(changed);
        ASSERT_EQ(gentl.IFUpdateDeviceList(interface, &changed, 500), GC_ERR_SUCCESS);
        EXPECT_FALSE(changed);
        ASSERT_EQ(gentl.TLClose(system), GC_ERR_SUCCESS);
    }
}

TEST_F(Lists, NameEveryInterfaceAndItsCamera) {
    const TL_HANDLE system = OpenSystem();
    ASSERT_EQ(gentl.TLUpdateInterfaceList(system, nullptr, 250), GC_ERR_SUCCESS);
    uint32_t count = 0;
    ASSERT_EQ(gentl.TLGetNumInterfaces(system, &count), GC_ERR_SUCCESS);
    ASSERT_EQ(count, 3U);
    for (uint32_t i = 0; i < count; ++i) {
        const Expected& e = expected[i];
        char id[64] = "";
        size_t size = sizeof id;
        ASSERT_EQ(gentl.TLGetInterfaceID(system, i, id, &size), GC_ERR_SUCCESS);
        EXPECT_STREQ(id, e.interfaceId);
        EXPECT_EQ(Text([&](auto... to) {
                      return gentl.TLGetInterfaceInfo(system, id, INTERFACE_INFO_TLTYPE, to...);
                  }),
                  e.tlType);
        const IF_HANDLE interface = OpenInterface(system, id);
        EXPECT_EQ(Text([&](auto... to) { return gentl.IFGetInfo(interface, INTERFACE_INFO_ID, to...); }),
                  e.interfaceId);
        ASSERT_EQ(gentl.IFUpdateDeviceList(interface, nullptr, 250), GC_ERR_SUCCESS);
        ASSERT_EQ(gentl.IFGetNumDevices(interface, &count), GC_ERR_SUCCESS);
        ASSERT_EQ(count, 1U);
        size = sizeof id;
        ASSERT_EQ(gentl.IFGetDeviceID(interface, 0, id, &size), GC_ERR_SUCCESS);
        EXPECT_STREQ(id, e.deviceId);
        const auto info = [&](DEVICE_INFO_CMD command) {
            return Text([&](auto... to) { return gentl.IFGetDeviceInfo(interface, id, command, to...); });
        };
        EXPECT_EQ(info(DEVICE_INFO_MODEL), e.model);
        EXPECT_EQ(info(DEVICE_INFO_VENDOR), "ZqApi");
        EXPECT_EQ(info(DEVICE_INFO_SERIAL_NUMBER), e.serial);
        EXPECT_EQ(info(DEVICE_INFO_TLTYPE), e.tlType);
        EXPECT_EQ(gentl.IFGetDeviceID(interface, 1, id, &size), GC_ERR_INVALID_INDEX);
        count = 3;
    }
    char id[64];
    size_t size = sizeof id;
    EXPECT_EQ(gentl.TLGetInterfaceID(system, 3, id, &size), GC_ERR_INVALID_INDEX);
}

TEST_F(Lists, AccessStatusFollowsOpeningAndClosing) {
    const IF_HANDLE interface = OpenInterface(OpenSystem(), u3vInterface);
    const auto status = [&] {
        DEVICE_ACCESS_STATUS value = 0;
        size_t size = sizeof value;
        INFO_DATATYPE type = 0;
        EXPECT_EQ(gentl.IFGetDeviceInfo(interface, "ZQ-U3V-0:SIM-U3V-0001", DEVICE_INFO_ACCESS_STATUS, &type,
                                        &value, &size),
                  GC_ERR_SUCCESS);
        return value;
    };
    DEV_HANDLE device = nullptr;
    EXPECT_EQ(status(), DEVICE_ACCESS_STATUS_READWRITE);
    ASSERT_EQ(gentl.IFOpenDevice(interface, "ZQ-U3V-0:SIM-U3V-0001", DEVICE_ACCESS_CONTROL, &device), 0);
    EXPECT_EQ(status(), DEVICE_ACCESS_STATUS_OPEN_READWRITE);
    ASSERT_EQ(gentl.DevClose(device), GC_ERR_SUCCESS);
    ASSERT_EQ(gentl.IFOpenDevice(interface, "ZQ-U3V-0:SIM-U3V-0001", DEVICE_ACCESS_READONLY, &device), 0);
    EXPECT_EQ(status(), DEVICE_ACCESS_STATUS_OPEN_READONLY);
    ASSERT_EQ(gentl.DevClose(device), GC_ERR_SUCCESS);
    EXPECT_EQ(status(), DEVICE_ACCESS_STATUS_READWRITE);
}

TEST_F(Lists, TimestampFrequencyIsOneGigahertz) {
    const IF_HANDLE interface = OpenInterface(OpenSystem(), gevInterface);
    uint64_t frequency = 0;
    size_t size = sizeof frequency;
    INFO_DATATYPE type = 0;
    EXPECT_EQ(gentl.IFGetDeviceInfo(interface, "ZQ-GEV-0:SIM-GEV-0001", DEVICE_INFO_TIMESTAMP_FREQUENCY,
                                    &type, &frequency, &size),
              GC_ERR_SUCCESS);
    EXPECT_EQ(type, INFO_DATATYPE_UINT64);
    EXPECT_EQ(frequency, 1000000000U);
}

TEST_F(Lists, DataStreamIsFixed) {
    const IF_HANDLE interface = OpenInterface(OpenSystem(), gevInterface);
    DEV_HANDLE device = nullptr;
    ASSERT_EQ(gentl.IFOpenDevice(interface, "ZQ-GEV-0:SIM-GEV-0001", DEVICE_ACCESS_CONTROL, &device), 0);
    uint32_t count = 0;
    EXPECT_EQ(gentl.DevGetNumDataStreams(device, &count), GC_ERR_SUCCESS);
    EXPECT_EQ(count, 1U);
    char id[64];
    size_t size = sizeof id;
    EXPECT_EQ(gentl.DevGetDataStreamID(device, 0, id, &size), GC_ERR_SUCCESS);
    EXPECT_STREQ(id, "Stream0");
    EXPECT_EQ(gentl.DevGetDataStreamID(device, 1, id, &size), GC_ERR_INVALID_INDEX);
}
