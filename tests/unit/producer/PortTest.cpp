#include "ProducerTest.h"

namespace {

class Ports : public CameraTest {};

} // namespace

TEST_F(Ports, AddressZeroOfEveryCameraIsReadable) {
    for (const char* id : {u3vInterface, gevInterface, cxpInterface}) {
        Open(id);
        EXPECT_EQ(ReadInt(0), 0x00010000U) << id;
    }
}

TEST_F(Ports, BytesFollowTheByteOrderOfTheCamera) {
    const uint8_t little[4] = {0x80, 0x02, 0x00, 0x00};
    const uint8_t big[4] = {0x00, 0x00, 0x02, 0x80};
    uint8_t bytes[4];
    size_t size = sizeof bytes;
    Open(u3vInterface);
    ASSERT_EQ(gentl.GCReadPort(remote, camera::Width, bytes, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(std::memcmp(bytes, little, 4), 0);
    Open(gevInterface);
    ASSERT_EQ(gentl.GCReadPort(remote, camera::Width, bytes, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(std::memcmp(bytes, big, 4), 0);
}

TEST_F(Ports, AnyPieceOfAnyRegisterCanBeAccessed) {
    Open();
    uint8_t pair[8];
    size_t size = sizeof pair;
    ASSERT_EQ(gentl.GCReadPort(remote, camera::Width, pair, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(pair[0], 0x80);
    EXPECT_EQ(pair[4], 0xE0);
    uint8_t high = 0;
    size = 1;
    ASSERT_EQ(gentl.GCReadPort(remote, camera::Width + 1, &high, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(high, 2);
    high = 1;
    ASSERT_EQ(gentl.GCWritePort(remote, camera::Width + 1, &high, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(ReadInt(camera::Width), 0x180U);
}

TEST_F(Ports, HolesAndOverrunsAreInvalidAddresses) {
    Open();
    uint32_t words[64];
    size_t size = 4;
    EXPECT_EQ(gentl.GCReadPort(remote, 0x8000, words, &size), GC_ERR_INVALID_ADDRESS);
    EXPECT_EQ(gentl.GCReadPort(remote, ~uint64_t{0}, words, &size), GC_ERR_INVALID_ADDRESS);
    size = 256;
    EXPECT_EQ(gentl.GCReadPort(remote, 0, words, &size), GC_ERR_INVALID_ADDRESS);
    EXPECT_EQ(gentl.GCReadPort(remote, 0, nullptr, &size), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(gentl.GCReadPort(remote, 0, words, nullptr), GC_ERR_INVALID_PARAMETER);
}

TEST_F(Ports, AccessOfRegistersIsKept) {
    Open();
    EXPECT_EQ(WriteInt(0x400, 640), GC_ERR_ACCESS_DENIED);
    uint32_t word = 0;
    size_t size = 4;
    EXPECT_EQ(gentl.GCReadPort(remote, camera::AcquisitionStart, &word, &size), GC_ERR_ACCESS_DENIED);
    // Half of the range can be written, so none of it is.
    uint8_t both[8] = {};
    size = sizeof both;
    EXPECT_EQ(gentl.GCWritePort(remote, 0x5FC + 8, both, &size), GC_ERR_INVALID_ADDRESS);
}

TEST_F(Ports, ValuesOutsideTheLimitsAreRefused) {
    Open();
    EXPECT_EQ(WriteInt(camera::Width, 0), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(WriteInt(camera::Width, 12), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(WriteInt(camera::Width, 1928), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(WriteInt(camera::Width, 1920), GC_ERR_SUCCESS);
    EXPECT_EQ(WriteInt(camera::OffsetX, 8), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(WriteInt(camera::Width, 1912), GC_ERR_SUCCESS);
    EXPECT_EQ(WriteInt(camera::OffsetX, 8), GC_ERR_SUCCESS);
    EXPECT_EQ(WriteInt(camera::Width, 1920), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(WriteInt(camera::Height, 0), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(WriteInt(camera::OffsetY, 600), GC_ERR_SUCCESS);
    EXPECT_EQ(WriteInt(camera::Height, 481), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(WriteInt(camera::PixelFormat, 0x010C0004), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(WriteFloat(camera::ExposureTime, 9.0), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(WriteFloat(camera::AcquisitionFrameRate, 1001.0), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(WriteFloat(camera::ExposureTime, 100.0), GC_ERR_SUCCESS);
    EXPECT_EQ(WriteFloat(camera::AcquisitionFrameRate, 1001.0), GC_ERR_SUCCESS);
}

TEST_F(Ports, LockedParametersAreRefused) {
    Open();
    ASSERT_EQ(WriteInt(camera::TLParamsLocked, 1), GC_ERR_SUCCESS);
    EXPECT_EQ(WriteInt(camera::Width, 320), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(WriteInt(camera::Height, 320), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(WriteInt(camera::PixelFormat, 0x01080001), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(WriteInt(camera::AcquisitionMode, 1), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(WriteFloat(camera::AcquisitionFrameRate, 10.0), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::TLParamsLocked, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(WriteInt(camera::Width, 320), GC_ERR_SUCCESS);
}

TEST_F(Ports, ReadOnlyDeviceRefusesWritesToTheCamera) {
    Open(gevInterface, DEVICE_ACCESS_READONLY);
    EXPECT_EQ(WriteInt(camera::Width, 320), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(ReadInt(camera::Width), 640U);
    bool8_t writable = true;
    size_t size = sizeof writable;
    INFO_DATATYPE type = 0;
    EXPECT_EQ(gentl.GCGetPortInfo(remote, PORT_INFO_ACCESS_WRITE, &type, &writable, &size), GC_ERR_SUCCESS);
    EXPECT_FALSE(writable);
}

TEST_F(Ports, SettingsStartAnewWithEveryOpening) {
    Open();
    ASSERT_EQ(WriteInt(camera::Width, 8), GC_ERR_SUCCESS);
    ASSERT_EQ(gentl.IFClose(interface), GC_ERR_SUCCESS);
    Open();
    EXPECT_EQ(ReadInt(camera::Width), 640U);
}

TEST_F(Ports, StackedAccessStopsAtTheFirstFailure) {
    Open();
    uint32_t width = 0;
    uint32_t height = 0;
    PORT_REGISTER_STACK_ENTRY entries[] = {{camera::Width, &width, 4},
                                           {camera::Height, &height, 4},
                                           {0x8000, &width, 4},
                                           {camera::Width, &width, 4}};
    size_t count = 2;
    EXPECT_EQ(gentl.GCReadPortStacked(remote, entries, &count), GC_ERR_SUCCESS);
    EXPECT_EQ(count, 2U);
    EXPECT_EQ(width, 640U);
    EXPECT_EQ(height, 480U);
    count = 4;
    EXPECT_EQ(gentl.GCReadPortStacked(remote, entries, &count), GC_ERR_INVALID_ADDRESS);
    EXPECT_EQ(count, 2U);
    width = 16;
    count = 4;
    EXPECT_EQ(gentl.GCWritePortStacked(remote, entries, &count), GC_ERR_INVALID_ADDRESS);
    EXPECT_EQ(count, 2U);
    EXPECT_EQ(ReadInt(camera::Width), 16U);
}

TEST_F(Ports, SelectorOfTheSystemShowsEachInterface) {
    system = OpenSystem();
    constexpr uint64_t update = 0x400;
    constexpr uint64_t selector = 0x410;
    constexpr uint64_t idRegister = 0x500;
    uint32_t value = 1;
    size_t size = 4;
    EXPECT_EQ(gentl.GCWritePort(system, selector, &value, &size), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(gentl.GCWritePort(system, update, &value, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(gentl.GCWritePort(system, selector, &value, &size), GC_ERR_SUCCESS);
    char id[64] = "";
    size = sizeof id;
    EXPECT_EQ(gentl.GCReadPort(system, idRegister, id, &size), GC_ERR_SUCCESS);
    EXPECT_STREQ(id, "ZQ-GEV-0");
}
