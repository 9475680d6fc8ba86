#include "ProducerTest.h"

namespace {

class Handles : public CameraTest {};

} // namespace

TEST_F(Handles, GarbageIsNeverFollowed) {
    const uintptr_t garbage[] = {
        0, 1, 8, 0x5A1, 0xDEADBEEF, 0x7FFFFFFFFFFFFFFF, ~uintptr_t{0}, ~uintptr_t{0} - 7};
    for (const uintptr_t bits : garbage) {
        auto* handle = reinterpret_cast<void*>(bits);
        uint32_t count = 0;
        size_t size = sizeof count;
        EXPECT_EQ(gentl.TLClose(handle), GC_ERR_INVALID_HANDLE);
        EXPECT_EQ(gentl.IFGetNumDevices(handle, &count), GC_ERR_INVALID_HANDLE);
        EXPECT_EQ(gentl.DevClose(handle), GC_ERR_INVALID_HANDLE);
        EXPECT_EQ(gentl.DSStopAcquisition(handle, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_INVALID_HANDLE);
        EXPECT_EQ(gentl.GCReadPort(handle, 0, &count, &size), GC_ERR_INVALID_HANDLE);
        EXPECT_EQ(gentl.EventKill(handle), GC_ERR_INVALID_HANDLE);
        EXPECT_EQ(gentl.GCUnregisterEvent(handle, EVENT_ERROR), GC_ERR_INVALID_HANDLE);
    }
}

TEST_F(Handles, EveryNeighbourOfARealHandleIsInvalid) {
    Open();
    const auto bits = reinterpret_cast<uintptr_t>(device);
    for (int bit = 0; bit < 64; ++bit) {
        auto* neighbour = reinterpret_cast<void*>(bits ^ (uintptr_t{1} << bit));
        uint32_t count = 0;
        EXPECT_EQ(gentl.DevGetNumDataStreams(neighbour, &count), GC_ERR_INVALID_HANDLE) << bit;
    }
}

TEST_F(Handles, KindsAreNotInterchangeable) {
    Open();
    OpenStream();
    const BUFFER_HANDLE buffer = Announce(1, 64)[0];
    EXPECT_EQ(gentl.DevClose(remote), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(gentl.DevClose(interface), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(gentl.IFClose(device), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(gentl.DSQueueBuffer(buffer, stream), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(gentl.EventFlush(stream), GC_ERR_INVALID_HANDLE);
    EVENT_HANDLE event = nullptr;
    EXPECT_EQ(gentl.GCRegisterEvent(remote, EVENT_ERROR, &event), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(gentl.GCRegisterEvent(newBuffer, EVENT_ERROR, &event), GC_ERR_INVALID_HANDLE);
}

TEST_F(Handles, RevokedBufferIsStaleEvenWhenItsMemoryComesAgain) {
    Open();
    OpenStream();
    uint8_t memory[64];
    int user = 0;
    BUFFER_HANDLE first = nullptr;
    ASSERT_EQ(gentl.DSAnnounceBuffer(stream, memory, sizeof memory, &user, &first), GC_ERR_SUCCESS);
    BUFFER_HANDLE twice = nullptr;
    EXPECT_EQ(gentl.DSAnnounceBuffer(stream, memory, sizeof memory, &user, &twice), GC_ERR_RESOURCE_IN_USE);
    void* base = nullptr;
    void* context = nullptr;
    ASSERT_EQ(gentl.DSRevokeBuffer(stream, first, &base, &context), GC_ERR_SUCCESS);
    EXPECT_EQ(base, memory);
    EXPECT_EQ(context, &user);
    BUFFER_HANDLE second = nullptr;
    ASSERT_EQ(gentl.DSAnnounceBuffer(stream, memory, sizeof memory, &user, &second), GC_ERR_SUCCESS);
    EXPECT_NE(first, second);
    EXPECT_EQ(gentl.DSQueueBuffer(stream, first), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(gentl.DSRevokeBuffer(stream, first, nullptr, nullptr), GC_ERR_INVALID_HANDLE);
}

TEST_F(Handles, BufferOfAnotherStreamIsForeign) {
    Open(gevInterface);
    OpenStream();
    const BUFFER_HANDLE foreign = Announce(1, 64)[0];
    Open(u3vInterface);
    OpenStream();
    EXPECT_EQ(gentl.DSQueueBuffer(stream, foreign), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(gentl.DSRevokeBuffer(stream, foreign, nullptr, nullptr), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(BufferInfoResult(foreign, BUFFER_INFO_SIZE), GC_ERR_INVALID_HANDLE);
}

TEST_F(Handles, ReopenedDeviceHasANewHandle) {
    Open();
    const DEV_HANDLE before = device;
    ASSERT_EQ(gentl.DevClose(device), GC_ERR_SUCCESS);
    ASSERT_EQ(gentl.IFOpenDevice(interface, "ZQ-U3V-0:SIM-U3V-0001", DEVICE_ACCESS_CONTROL, &device), 0);
    EXPECT_NE(device, before);
    EXPECT_EQ(gentl.DevClose(before), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(gentl.DevClose(device), GC_ERR_SUCCESS);
}
