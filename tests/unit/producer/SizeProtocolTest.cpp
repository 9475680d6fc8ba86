#include "ProducerTest.h"

namespace {

class SizeProtocol : public ProducerTest {
protected:
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    char buffer[64] = {};
    size_t size = sizeof buffer;
};

} // namespace

TEST_F(SizeProtocol, WithoutBufferOnlyTheSizeIsTold) {
    size = 0;
    EXPECT_EQ(gentl.GCGetInfo(TL_INFO_VENDOR, &type, nullptr, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(size, sizeof "ZqApi");
    EXPECT_EQ(type, INFO_DATATYPE_STRING);
}

TEST_F(SizeProtocol, ExactlyEnoughIsEnough) {
    size = sizeof "ZqApi";
    EXPECT_EQ(gentl.GCGetInfo(TL_INFO_VENDOR, &type, buffer, &size), GC_ERR_SUCCESS);
    EXPECT_STREQ(buffer, "ZqApi");
    EXPECT_EQ(size, sizeof "ZqApi");
}

TEST_F(SizeProtocol, OneByteShortWritesNothing) {
    size = sizeof "ZqApi" - 1;
    buffer[0] = '?';
    EXPECT_EQ(gentl.GCGetInfo(TL_INFO_VENDOR, &type, buffer, &size), GC_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(buffer[0], '?');
    EXPECT_EQ(size, sizeof "ZqApi" - 1);
    EXPECT_EQ(type, INFO_DATATYPE_UNKNOWN);
}

TEST_F(SizeProtocol, WrittenSizeReplacesTheCapacity) {
    EXPECT_EQ(gentl.GCGetInfo(TL_INFO_GENTL_VER_MINOR, &type, buffer, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(size, 4U);
    EXPECT_EQ(type, INFO_DATATYPE_UINT32);
    EXPECT_EQ(buffer[0], 5);
}

TEST_F(SizeProtocol, BadPointersAreParameters) {
    auto* allOnes = reinterpret_cast<void*>(~uintptr_t{0});
    EXPECT_EQ(gentl.GCGetInfo(TL_INFO_ID, nullptr, buffer, &size), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(gentl.GCGetInfo(TL_INFO_ID, &type, buffer, nullptr), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(gentl.GCGetInfo(TL_INFO_ID, &type, allOnes, &size), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(gentl.GCGetInfo(TL_INFO_ID, &type, buffer, static_cast<size_t*>(allOnes)),
              GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(gentl.TLOpen(nullptr), GC_ERR_INVALID_PARAMETER);
}

TEST_F(SizeProtocol, UnknownCommandIsNotImplemented) {
    EXPECT_EQ(gentl.GCGetInfo(11, &type, buffer, &size), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(gentl.GCGetInfo(-1, &type, buffer, &size), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(gentl.GCGetInfo(TL_INFO_CUSTOM_ID, &type, buffer, &size), GC_ERR_NOT_IMPLEMENTED);
}

TEST_F(SizeProtocol, SystemInformationHasItsTypesAndValues) {
    struct Row {
        TL_INFO_CMD command;
        INFO_DATATYPE type;
        const char* text;
    };
    const Row rows[] = {
        {TL_INFO_ID, INFO_DATATYPE_STRING, "ZQ-GENTL"},
        {TL_INFO_MODEL, INFO_DATATYPE_STRING, "ZqApi GenTL producer"},
        {TL_INFO_TLTYPE, INFO_DATATYPE_STRING, "Mixed"},
        {TL_INFO_NAME, INFO_DATATYPE_STRING, "libzqgentl.cti"},
        {TL_INFO_PATHNAME, INFO_DATATYPE_STRING, ZQGENTL_FILE},
        {TL_INFO_DISPLAYNAME, INFO_DATATYPE_STRING, "ZqApi simulated cameras"},
    };
    const TL_HANDLE system = OpenSystem();
    for (const Row& row : rows) {
        char text[1024] = "";
        size = sizeof text;
        EXPECT_EQ(gentl.GCGetInfo(row.command, &type, text, &size), GC_ERR_SUCCESS);
        EXPECT_EQ(type, row.type);
        EXPECT_STREQ(text, row.text);
        EXPECT_EQ(size, std::strlen(row.text) + 1);
        char same[1024] = "";
        size = sizeof same;
        EXPECT_EQ(gentl.TLGetInfo(system, row.command, &type, same, &size), GC_ERR_SUCCESS);
        EXPECT_STREQ(same, row.text);
    }
}

TEST_F(SizeProtocol, AnswersThatMayBeLeftOutMustNotBeBad) {
    void* const bad = reinterpret_cast<void*>(~uintptr_t{0});
    const TL_HANDLE system = OpenSystem();
    EXPECT_EQ(gentl.TLUpdateInterfaceList(system, static_cast<bool8_t*>(bad), 0), GC_ERR_INVALID_PARAMETER);
    uint32_t count = 99;
    EXPECT_EQ(gentl.TLGetNumInterfaces(system, &count), GC_ERR_SUCCESS);
    EXPECT_EQ(count, 0U);
    const IF_HANDLE interface = OpenInterface(system, u3vInterface);
    EXPECT_EQ(gentl.IFUpdateDeviceList(interface, static_cast<bool8_t*>(bad), 0), GC_ERR_INVALID_PARAMETER);
    DEV_HANDLE device = nullptr;
    ASSERT_EQ(gentl.IFOpenDevice(interface, "ZQ-U3V-0:SIM-U3V-0001", DEVICE_ACCESS_CONTROL, &device),
              GC_ERR_SUCCESS);
    DS_HANDLE stream = nullptr;
    ASSERT_EQ(gentl.DevOpenDataStream(device, "Stream0", &stream), GC_ERR_SUCCESS);
    BUFFER_HANDLE buffer = nullptr;
    ASSERT_EQ(gentl.DSAllocAndAnnounceBuffer(stream, 64, nullptr, &buffer), GC_ERR_SUCCESS);
    EXPECT_EQ(gentl.DSRevokeBuffer(stream, buffer, static_cast<void**>(bad), nullptr),
              GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(gentl.DSRevokeBuffer(stream, buffer, nullptr, static_cast<void**>(bad)),
              GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(gentl.DSRevokeBuffer(stream, buffer, nullptr, nullptr), GC_ERR_SUCCESS);
}
