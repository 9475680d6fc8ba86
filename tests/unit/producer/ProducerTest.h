#pragma once

#include "Functions.h"

#include <chrono>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

using namespace GenTL;

constexpr const char* u3vInterface = "ZQ-U3V-0";
constexpr const char* gevInterface = "ZQ-GEV-0";
constexpr const char* cxpInterface = "ZQ-CXP-0";

/// Addresses of camera registers, written down here again from the descriptions.
namespace camera {
constexpr uint64_t Width = 0x410;
constexpr uint64_t Height = 0x414;
constexpr uint64_t OffsetX = 0x418;
constexpr uint64_t OffsetY = 0x41C;
constexpr uint64_t PixelFormat = 0x420;
constexpr uint64_t AcquisitionMode = 0x500;
constexpr uint64_t AcquisitionFrameCount = 0x504;
constexpr uint64_t AcquisitionStart = 0x508;
constexpr uint64_t AcquisitionStop = 0x50C;
constexpr uint64_t AcquisitionFrameRate = 0x510;
constexpr uint64_t AcquisitionFrameRateEnable = 0x520;
constexpr uint64_t ExposureTime = 0x528;
constexpr uint64_t TLParamsLocked = 0x600;
constexpr uint64_t SimulationDeviceLost = 0x700;
constexpr uint64_t LossDelay = 0x704;
constexpr uint64_t ReturnTime = 0x708;
constexpr uint64_t InterfaceLost = 0x70C;
constexpr uint64_t DropEvery = 0x710;
constexpr uint64_t IncompleteEvery = 0x714;
constexpr uint64_t LateEvery = 0x718;
constexpr uint64_t LateTime = 0x71C;
constexpr uint64_t LargerEvery = 0x720;
constexpr uint64_t BadChunksEvery = 0x724;
constexpr uint64_t ErrorEvery = 0x728;
constexpr uint64_t ErrorCode = 0x72C;
constexpr uint64_t ReadErrorAddress = 0x740;
constexpr uint64_t WriteErrorAddress = 0x748;
constexpr uint64_t PortErrorCode = 0x750;
constexpr uint64_t PortDelay = 0x758;
constexpr uint64_t ChunkModeActive = 0x800;
constexpr uint64_t ChunkSelector = 0x804;
constexpr uint64_t ChunkEnable = 0x808;
constexpr uint64_t EventSelector = 0x840;
constexpr uint64_t EventNotification = 0x844;
constexpr uint64_t TestEventGenerate = 0x848;
constexpr uint64_t ExposureAuto = 0x540;
constexpr uint64_t Gain = 0x900;
constexpr uint64_t BinningHorizontal = 0x428;
constexpr uint64_t BinningVertical = 0x42C;
constexpr uint64_t WidthMax = 0x438;
constexpr uint64_t HeightMax = 0x43C;
constexpr uint64_t AcquisitionActive = 0x530;
constexpr uint64_t TriggerSelector = 0x550;
constexpr uint64_t TriggerMode = 0x554;
constexpr uint64_t TriggerSoftware = 0x558;
constexpr uint64_t TriggerSource = 0x55C;
constexpr uint64_t TriggerDelay = 0x568;
constexpr uint64_t ComponentSelector = 0x444;
constexpr uint64_t ComponentEnable = 0x448;
constexpr uint64_t TriggerActivation = 0x560;
constexpr uint64_t SimulationLine0 = 0x760;
constexpr uint64_t SimulationLine1 = 0x764;
constexpr uint64_t BlackLevel = 0x908;
constexpr uint64_t LUTEnable = 0xA04;
constexpr uint64_t LUTIndex = 0xA08;
constexpr uint64_t LUTValue = 0xA0C;
constexpr uint64_t LineSelector = 0xB00;
constexpr uint64_t LineMode = 0xB04;
constexpr uint64_t LineInverter = 0xB08;
constexpr uint64_t LineStatus = 0xB0C;
constexpr uint64_t LineStatusAll = 0xB10;
constexpr uint64_t LineSource = 0xB14;
constexpr uint64_t UserOutputSelector = 0xB18;
constexpr uint64_t UserOutputValue = 0xB1C;
constexpr uint64_t CounterEventSource = 0xC04;
constexpr uint64_t CounterDuration = 0xC08;
constexpr uint64_t CounterValue = 0xC0C;
constexpr uint64_t CounterReset = 0xC10;
constexpr uint64_t TimerTriggerSource = 0xC44;
constexpr uint64_t TimerDuration = 0xC48;
constexpr uint64_t TimerReset = 0xC58;
constexpr uint64_t UserSetSelector = 0xD00;
constexpr uint64_t UserSetLoad = 0xD04;
constexpr uint64_t UserSetSave = 0xD08;
constexpr uint64_t UserSetDefault = 0xD0C;
constexpr uint64_t ActionDeviceKey = 0xE00;
constexpr uint64_t ActionGroupKey = 0xE08;
constexpr uint64_t ActionGroupMask = 0xE0C;
constexpr uint64_t FileOperationSelector = 0xF04;
constexpr uint64_t FileOperationExecute = 0xF08;
constexpr uint64_t FileOpenMode = 0xF0C;
constexpr uint64_t FileAccessOffset = 0xF10;
constexpr uint64_t FileAccessLength = 0xF18;
constexpr uint64_t FileOperationStatus = 0xF20;
constexpr uint64_t FileOperationResult = 0xF28;
constexpr uint64_t FileSize = 0xF30;
} // namespace camera

/// Waits, without sleeping, until the condition holds; false after ten seconds.
template <class Condition>
bool Eventually(Condition condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::yield();
    }
    return true;
}

/// One initialised library per test, with the few calls that every test needs.
class ProducerTest : public testing::Test {
protected:
    const Functions& gentl = Producer();

    void SetUp() override { ASSERT_EQ(gentl.GCInitLib(), GC_ERR_SUCCESS); }
    void TearDown() override { EXPECT_EQ(gentl.GCCloseLib(), GC_ERR_SUCCESS); }

    TL_HANDLE OpenSystem();
    IF_HANDLE OpenInterface(TL_HANDLE system, const char* id);

    std::string LastErrorText();
};

/// An open camera with its stream, and the small language that the stream tests are written in.
class CameraTest : public ProducerTest {
protected:
    TL_HANDLE system = nullptr;
    IF_HANDLE interface = nullptr;
    DEV_HANDLE device = nullptr;
    PORT_HANDLE remote = nullptr;
    DS_HANDLE stream = nullptr;
    EVENT_HANDLE newBuffer = nullptr;
    bool bigEndian = false;

    void Open(const char* interfaceId = u3vInterface, DEVICE_ACCESS_FLAGS access = DEVICE_ACCESS_CONTROL);
    void OpenStream();

    GC_ERROR WriteInt(uint64_t address, uint32_t value);
    GC_ERROR WriteFloat(uint64_t address, double value);
    uint32_t ReadInt(uint64_t address);

    /// 8 x 8 pixels, as fast as it goes.
    void MakeSmallAndFast();
    void MakePaced(double framesPerSecond, double exposureUs);
    std::vector<BUFFER_HANDLE> Announce(size_t count, size_t size);
    void Queue(const std::vector<BUFFER_HANDLE>& buffers);
    void Start(uint64_t frames = GENTL_INFINITE);

    /// The next filled buffer, or null with the result in lastResult.
    BUFFER_HANDLE Next(uint64_t timeoutMs = 5000);
    GC_ERROR lastResult = GC_ERR_SUCCESS;

    template <class T>
    T BufferInfo(BUFFER_HANDLE buffer, BUFFER_INFO_CMD command);
    template <class T>
    T StreamInfo(STREAM_INFO_CMD command);
    GC_ERROR BufferInfoResult(BUFFER_HANDLE buffer, BUFFER_INFO_CMD command);
};

template <class T>
T CameraTest::BufferInfo(BUFFER_HANDLE buffer, BUFFER_INFO_CMD command) {
    T value{};
    size_t size = sizeof value;
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    EXPECT_EQ(gentl.DSGetBufferInfo(stream, buffer, command, &type, &value, &size), GC_ERR_SUCCESS)
        << command;
    EXPECT_EQ(size, sizeof value) << command;
    return value;
}

template <class T>
T CameraTest::StreamInfo(STREAM_INFO_CMD command) {
    T value{};
    size_t size = sizeof value;
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    EXPECT_EQ(gentl.DSGetInfo(stream, command, &type, &value, &size), GC_ERR_SUCCESS) << command;
    EXPECT_EQ(size, sizeof value) << command;
    return value;
}
