#include "ProducerTest.h"

#include <algorithm>

TL_HANDLE ProducerTest::OpenSystem() {
    TL_HANDLE system = nullptr;
    EXPECT_EQ(gentl.TLOpen(&system), GC_ERR_SUCCESS);
    return system;
}

IF_HANDLE ProducerTest::OpenInterface(TL_HANDLE system, const char* id) {
    IF_HANDLE interface = nullptr;
    EXPECT_EQ(gentl.TLOpenInterface(system, id, &interface), GC_ERR_SUCCESS);
    return interface;
}

std::string ProducerTest::LastErrorText() {
    GC_ERROR code = 0;
    char text[1024] = "";
    size_t size = sizeof text;
    EXPECT_EQ(gentl.GCGetLastError(&code, text, &size), GC_ERR_SUCCESS);
    return text;
}

void CameraTest::Open(const char* interfaceId, DEVICE_ACCESS_FLAGS access) {
    if (system == nullptr)
        system = OpenSystem();
    interface = OpenInterface(system, interfaceId);
    ASSERT_EQ(gentl.IFUpdateDeviceList(interface, nullptr, 250), GC_ERR_SUCCESS);
    char id[256] = "";
    size_t size = sizeof id;
    ASSERT_EQ(gentl.IFGetDeviceID(interface, 0, id, &size), GC_ERR_SUCCESS);
    ASSERT_EQ(gentl.IFOpenDevice(interface, id, access, &device), GC_ERR_SUCCESS);
    ASSERT_EQ(gentl.DevGetPort(device, &remote), GC_ERR_SUCCESS);
    bigEndian = std::string(interfaceId) != u3vInterface;
}

void CameraTest::OpenStream() {
    ASSERT_EQ(gentl.DevOpenDataStream(device, "Stream0", &stream), GC_ERR_SUCCESS);
    ASSERT_EQ(gentl.GCRegisterEvent(stream, EVENT_NEW_BUFFER, &newBuffer), GC_ERR_SUCCESS);
}

GC_ERROR CameraTest::WriteInt(uint64_t address, uint32_t value) {
    uint8_t bytes[4];
    for (int i = 0; i < 4; ++i)
        bytes[bigEndian ? 3 - i : i] = static_cast<uint8_t>(value >> (8 * i));
    size_t size = sizeof bytes;
    return gentl.GCWritePort(remote, address, bytes, &size);
}

GC_ERROR CameraTest::WriteFloat(uint64_t address, double value) {
    uint8_t bytes[8];
    std::memcpy(bytes, &value, sizeof bytes);
    if (bigEndian)
        std::reverse(bytes, bytes + 8);
    size_t size = sizeof bytes;
    return gentl.GCWritePort(remote, address, bytes, &size);
}

uint32_t CameraTest::ReadInt(uint64_t address) {
    uint8_t bytes[4] = {};
    size_t size = sizeof bytes;
    EXPECT_EQ(gentl.GCReadPort(remote, address, bytes, &size), GC_ERR_SUCCESS);
    uint32_t value = 0;
    for (int i = 0; i < 4; ++i)
        value |= uint32_t{bytes[bigEndian ? 3 - i : i]} << (8 * i);
    return value;
}

void CameraTest::MakeSmallAndFast() {
    ASSERT_EQ(WriteInt(camera::Width, 8), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::Height, 8), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::AcquisitionFrameRateEnable, 0), GC_ERR_SUCCESS);
}

void CameraTest::MakePaced(double framesPerSecond, double exposureUs) {
    ASSERT_EQ(WriteFloat(camera::ExposureTime, exposureUs), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteFloat(camera::AcquisitionFrameRate, framesPerSecond), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::AcquisitionFrameRateEnable, 1), GC_ERR_SUCCESS);
}

std::vector<BUFFER_HANDLE> CameraTest::Announce(size_t count, size_t size) {
    std::vector<BUFFER_HANDLE> buffers(count);
    for (BUFFER_HANDLE& buffer : buffers)
        EXPECT_EQ(gentl.DSAllocAndAnnounceBuffer(stream, size, nullptr, &buffer), GC_ERR_SUCCESS);
    return buffers;
}

void CameraTest::Queue(const std::vector<BUFFER_HANDLE>& buffers) {
    for (BUFFER_HANDLE buffer : buffers)
        EXPECT_EQ(gentl.DSQueueBuffer(stream, buffer), GC_ERR_SUCCESS);
}

void CameraTest::Start(uint64_t frames) {
    ASSERT_EQ(gentl.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, frames), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::AcquisitionStart, 1), GC_ERR_SUCCESS);
}

BUFFER_HANDLE CameraTest::Next(uint64_t timeoutMs) {
    EVENT_NEW_BUFFER_DATA data{};
    size_t size = sizeof data;
    lastResult = gentl.EventGetData(newBuffer, &data, &size, timeoutMs);
    return lastResult == GC_ERR_SUCCESS ? data.BufferHandle : nullptr;
}

GC_ERROR CameraTest::BufferInfoResult(BUFFER_HANDLE buffer, BUFFER_INFO_CMD command) {
    char value[64];
    size_t size = sizeof value;
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    return gentl.DSGetBufferInfo(stream, buffer, command, &type, value, &size);
}
