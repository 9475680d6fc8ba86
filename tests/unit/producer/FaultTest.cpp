#include "ProducerTest.h"

namespace {

class Faults : public CameraTest {
protected:
    void SetUp() override {
        CameraTest::SetUp();
        Use(u3vInterface);
    }

    void Use(const char* interfaceId) {
        Open(interfaceId);
        OpenStream();
        MakeSmallAndFast();
    }

    /// The frames of an acquisition of six, with this fault in every third.
    std::vector<BUFFER_HANDLE> AcquireSix(uint64_t fault, size_t bufferSize = 64) {
        EXPECT_EQ(WriteInt(fault, 3), GC_ERR_SUCCESS);
        EXPECT_EQ(WriteInt(camera::AcquisitionMode, 2), GC_ERR_SUCCESS);
        EXPECT_EQ(WriteInt(camera::AcquisitionFrameCount, 6), GC_ERR_SUCCESS);
        Queue(Announce(6, bufferSize));
        Start();
        std::vector<BUFFER_HANDLE> frames;
        while (BUFFER_HANDLE buffer = Next(frames.size() < 4 ? 5000 : 200))
            frames.push_back(buffer);
        return frames;
    }

    std::vector<bool> Flags(const std::vector<BUFFER_HANDLE>& frames, BUFFER_INFO_CMD command) {
        std::vector<bool> flags;
        for (BUFFER_HANDLE frame : frames)
            flags.push_back(BufferInfo<bool8_t>(frame, command));
        return flags;
    }

    GC_ERROR WriteLong(uint64_t address, int64_t value) {
        size_t size = sizeof value;
        return gentl.GCWritePort(remote, address, &value, &size);
    }

    /// What the next error event says; success when there is none.
    GC_ERROR ErrorOf(EVENT_HANDLE event) {
        char data[512];
        size_t size = sizeof data;
        if (gentl.EventGetData(event, data, &size, 0) != GC_ERR_SUCCESS)
            return GC_ERR_SUCCESS;
        int32_t code = 0;
        size_t codeSize = sizeof code;
        INFO_DATATYPE type = 0;
        EXPECT_EQ(gentl.EventGetDataInfo(event, data, size, EVENT_DATA_ID, &type, &code, &codeSize), 0);
        return code;
    }

    GC_ERROR Reopen() {
        char id[64] = "ZQ-U3V-0:SIM-U3V-0001";
        EXPECT_EQ(gentl.DevClose(device), GC_ERR_SUCCESS);
        return gentl.IFOpenDevice(interface, id, DEVICE_ACCESS_CONTROL, &device);
    }
};

using Pattern = std::vector<bool>;
const Pattern everyThird = {false, false, true, false, false, true};

} // namespace

TEST_F(Faults, DroppedFramesUseUpTheirIds) {
    std::vector<uint64_t> ids;
    for (BUFFER_HANDLE frame : AcquireSix(camera::DropEvery))
        ids.push_back(BufferInfo<uint64_t>(frame, BUFFER_INFO_FRAMEID));
    EXPECT_EQ(ids, (std::vector<uint64_t>{0, 1, 3, 4}));
    EXPECT_EQ(StreamInfo<uint64_t>(STREAM_INFO_NUM_UNDERRUN), 0U);
}

TEST_F(Faults, DroppedFramesOfAPacedCamera) {
    MakePaced(500, 10);
    EXPECT_EQ(AcquireSix(camera::DropEvery).size(), 4U);
    EXPECT_EQ(StreamInfo<uint64_t>(STREAM_INFO_NUM_UNDERRUN), 0U);
}

TEST_F(Faults, IncompleteFramesEndInTheMiddle) {
    const auto frames = AcquireSix(camera::IncompleteEvery);
    ASSERT_EQ(frames.size(), 6U);
    EXPECT_EQ(Flags(frames, BUFFER_INFO_IS_INCOMPLETE), everyThird);
    EXPECT_EQ(BufferInfo<size_t>(frames[2], BUFFER_INFO_SIZE_FILLED), 32U);
    EXPECT_EQ(BufferInfo<size_t>(frames[2], BUFFER_INFO_DELIVERED_IMAGEHEIGHT), 4U);
    EXPECT_FALSE(BufferInfo<bool8_t>(frames[2], BUFFER_INFO_DATA_LARGER_THAN_BUFFER));
}

TEST_F(Faults, LargerFramesSaySo) {
    const auto frames = AcquireSix(camera::LargerEvery);
    ASSERT_EQ(frames.size(), 6U);
    EXPECT_EQ(Flags(frames, BUFFER_INFO_DATA_LARGER_THAN_BUFFER), everyThird);
    EXPECT_EQ(Flags(frames, BUFFER_INFO_IS_INCOMPLETE), everyThird);
}

TEST_F(Faults, LargerFramesAreErrorsOfTheirStreamAndBuffer) {
    EXPECT_EQ(WriteInt(camera::LargerEvery, 2), GC_ERR_SUCCESS);
    const std::vector<BUFFER_HANDLE> buffers = Announce(1, 64);
    EVENT_HANDLE ofStream = nullptr;
    EVENT_HANDLE ofBuffer = nullptr;
    ASSERT_EQ(gentl.GCRegisterEvent(stream, EVENT_ERROR, &ofStream), GC_ERR_SUCCESS);
    ASSERT_EQ(gentl.GCRegisterEvent(buffers[0], EVENT_ERROR, &ofBuffer), GC_ERR_SUCCESS);
    Queue(buffers);
    Start();
    ASSERT_NE(Next(), nullptr);
    EXPECT_EQ(ErrorOf(ofStream), GC_ERR_SUCCESS) << "the first frame fits";
    Queue(buffers);
    ASSERT_NE(Next(), nullptr);
    EXPECT_EQ(ErrorOf(ofStream), GC_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(ErrorOf(ofBuffer), GC_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(ErrorOf(ofStream), GC_ERR_SUCCESS) << "one for each";
}

TEST_F(Faults, LossesAreErrorsOfAllThatIsLost) {
    EVENT_HANDLE ofSystem = nullptr;
    EVENT_HANDLE ofInterface = nullptr;
    EVENT_HANDLE ofStream = nullptr;
    ASSERT_EQ(gentl.GCRegisterEvent(system, EVENT_ERROR, &ofSystem), GC_ERR_SUCCESS);
    ASSERT_EQ(gentl.GCRegisterEvent(interface, EVENT_ERROR, &ofInterface), GC_ERR_SUCCESS);
    ASSERT_EQ(gentl.GCRegisterEvent(stream, EVENT_ERROR, &ofStream), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::InterfaceLost, 1), GC_ERR_SUCCESS);
    for (EVENT_HANDLE event : {ofSystem, ofInterface, ofStream})
        EXPECT_EQ(ErrorOf(event), GC_ERR_IO);
}

TEST_F(Faults, LateFramesKeepTheirTimestamp) {
    ASSERT_EQ(WriteInt(camera::LateTime, 50), GC_ERR_SUCCESS);
    const auto before = std::chrono::steady_clock::now();
    const auto frames = AcquireSix(camera::LateEvery);
    ASSERT_EQ(frames.size(), 6U);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(100));
    const auto taken = [&](size_t i) { return BufferInfo<uint64_t>(frames[i], BUFFER_INFO_TIMESTAMP); };
    EXPECT_GE(taken(3) - taken(2), 50000000U);
}

TEST_F(Faults, StreamStopsWhileAFrameIsLate) {
    ASSERT_EQ(WriteInt(camera::LateEvery, 1), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::LateTime, 3600000), GC_ERR_SUCCESS);
    Queue(Announce(2, 64));
    Start();
    EXPECT_EQ(Next(20), nullptr);
    EXPECT_EQ(gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_KILL), GC_ERR_SUCCESS);
    EXPECT_EQ(gentl.DSClose(stream), GC_ERR_SUCCESS);
}

TEST_F(Faults, KilledStreamDeliversTheLateFrameUnderItsOwnNumber) {
    ASSERT_EQ(WriteInt(camera::LateEvery, 3), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::LateTime, 3600000), GC_ERR_SUCCESS);
    Queue(Announce(3, 64));
    Start();
    ASSERT_NE(Next(), nullptr);
    ASSERT_NE(Next(), nullptr);
    EXPECT_EQ(Next(20), nullptr);
    EXPECT_EQ(gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_KILL), GC_ERR_SUCCESS);
    const BUFFER_HANDLE late = Next(0);
    ASSERT_NE(late, nullptr);
    EXPECT_EQ(BufferInfo<uint64_t>(late, BUFFER_INFO_FRAMEID), 2U);
    EXPECT_TRUE(BufferInfo<bool8_t>(late, BUFFER_INFO_IS_INCOMPLETE));
}

TEST_F(Faults, BadChunksCannotBeParsed) {
    for (const char* id : {u3vInterface, gevInterface, cxpInterface}) {
        SCOPED_TRACE(id);
        if (std::string(id) != u3vInterface)
            Use(id);
        ASSERT_EQ(WriteInt(camera::ChunkModeActive, 1), GC_ERR_SUCCESS);
        ASSERT_EQ(WriteInt(camera::ChunkSelector, 1), GC_ERR_SUCCESS);
        ASSERT_EQ(WriteInt(camera::ChunkEnable, 1), GC_ERR_SUCCESS);
        const auto frames = AcquireSix(camera::BadChunksEvery, 128);
        ASSERT_EQ(frames.size(), 6U);
        for (size_t i = 0; i < frames.size(); ++i) {
            size_t count = 0;
            EXPECT_EQ(gentl.DSGetBufferChunkData(stream, frames[i], nullptr, &count),
                      everyThird[i] ? GC_ERR_PARSING_CHUNK_DATA : GC_ERR_SUCCESS);
            EXPECT_FALSE(BufferInfo<bool8_t>(frames[i], BUFFER_INFO_IS_INCOMPLETE));
        }
    }
}

TEST_F(Faults, ErrorEventsComeWithTheirFrames) {
    EVENT_HANDLE event = nullptr;
    ASSERT_EQ(gentl.GCRegisterEvent(device, EVENT_REMOTE_DEVICE, &event), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::EventSelector, 4), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::EventNotification, 1), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::ErrorCode, 0x1234), GC_ERR_SUCCESS);
    ASSERT_EQ(AcquireSix(camera::ErrorEvery).size(), 6U);
    for (const uint64_t frameId : {2, 5}) {
        uint8_t packet[512];
        size_t size = sizeof packet;
        ASSERT_EQ(gentl.EventGetData(event, packet, &size, 0), GC_ERR_SUCCESS);
        ASSERT_EQ(size, 36U);
        EXPECT_EQ(packet[24], frameId);
        EXPECT_EQ(packet[32], 0x34);
        EXPECT_EQ(packet[33], 0x12);
    }
}

TEST_F(Faults, OfThePortHitOneAddress) {
    ASSERT_EQ(WriteLong(camera::ReadErrorAddress, camera::Height + 1), GC_ERR_SUCCESS);
    uint64_t both = 0;
    size_t size = 4;
    EXPECT_EQ(gentl.GCReadPort(remote, camera::Height, &both, &size), GC_ERR_IO);
    size = 8;
    EXPECT_EQ(gentl.GCReadPort(remote, camera::Width, &both, &size), GC_ERR_IO);
    EXPECT_EQ(ReadInt(camera::Width), 8U);
    EXPECT_EQ(WriteInt(camera::Height, 9), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteLong(camera::PortErrorCode, GC_ERR_TIMEOUT), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteLong(camera::WriteErrorAddress, camera::Height), GC_ERR_SUCCESS);
    EXPECT_EQ(WriteInt(camera::Height, 10), GC_ERR_TIMEOUT);
    ASSERT_EQ(WriteLong(camera::ReadErrorAddress, -1), GC_ERR_SUCCESS);
    EXPECT_EQ(ReadInt(camera::Height), 9U);
}

TEST_F(Faults, SlowPortTakesItsTime) {
    ASSERT_EQ(WriteInt(camera::PortDelay, 20), GC_ERR_SUCCESS);
    const auto before = std::chrono::steady_clock::now();
    ReadInt(camera::Width);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(20));
}

TEST_F(Faults, LostDeviceReturnsAfterItsTime) {
    ASSERT_EQ(WriteInt(camera::LossDelay, 10), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::ReturnTime, 100), GC_ERR_SUCCESS);
    EVENT_HANDLE error = nullptr;
    ASSERT_EQ(gentl.GCRegisterEvent(device, EVENT_ERROR, &error), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::SimulationDeviceLost, 1), GC_ERR_SUCCESS);
    EXPECT_EQ(ReadInt(camera::Width), 8U);
    char data[512];
    size_t size = sizeof data;
    ASSERT_EQ(gentl.EventGetData(error, data, &size, 5000), GC_ERR_SUCCESS);
    bool8_t changed = false;
    uint32_t count = 7;
    EXPECT_EQ(gentl.IFUpdateDeviceList(interface, &changed, 0), GC_ERR_SUCCESS);
    EXPECT_TRUE(changed);
    EXPECT_EQ(gentl.IFGetNumDevices(interface, &count), GC_ERR_SUCCESS);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(Reopen(), GC_ERR_IO);
    ASSERT_TRUE(Eventually(
        [&] { return gentl.IFUpdateDeviceList(interface, &changed, 0) == GC_ERR_SUCCESS && changed != 0; }));
    EXPECT_EQ(gentl.IFOpenDevice(interface, "ZQ-U3V-0:SIM-U3V-0001", DEVICE_ACCESS_CONTROL, &device),
              GC_ERR_SUCCESS);
}

TEST_F(Faults, LostInterfaceTakesItsCamerasAlong) {
    EVENT_HANDLE error = nullptr;
    ASSERT_EQ(gentl.GCRegisterEvent(interface, EVENT_ERROR, &error), GC_ERR_SUCCESS);
    ASSERT_EQ(gentl.TLUpdateInterfaceList(system, nullptr, 0), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::InterfaceLost, 1), GC_ERR_SUCCESS);
    char data[512];
    size_t size = sizeof data;
    EXPECT_EQ(gentl.EventGetData(error, data, &size, 0), GC_ERR_SUCCESS);
    uint32_t value = 0;
    size = 4;
    EXPECT_EQ(gentl.GCReadPort(remote, camera::Width, &value, &size), GC_ERR_IO);
    bool8_t changed = false;
    uint32_t count = 0;
    EXPECT_EQ(gentl.TLUpdateInterfaceList(system, &changed, 0), GC_ERR_SUCCESS);
    EXPECT_TRUE(changed);
    EXPECT_EQ(gentl.TLGetNumInterfaces(system, &count), GC_ERR_SUCCESS);
    EXPECT_EQ(count, 2U);
    EXPECT_EQ(Reopen(), GC_ERR_IO);
    EXPECT_EQ(gentl.IFClose(interface), GC_ERR_SUCCESS);
    EXPECT_EQ(gentl.TLUpdateInterfaceList(system, &changed, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(gentl.TLGetNumInterfaces(system, &count), GC_ERR_SUCCESS);
    EXPECT_EQ(count, 3U);
}

/// What a camera that was held up makes in one go finds buffers, as its host has had no time to return them.
TEST_F(Faults, FramesThatAreOverdueWaitForTheirHost) {
    MakePaced(100, 100);
    ASSERT_EQ(WriteInt(camera::LateEvery, 50), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::LateTime, 400), GC_ERR_SUCCESS);
    Queue(Announce(2, 64));
    Start();
    for (uint64_t id = 0; id < 89;) {
        const BUFFER_HANDLE buffer = Next();
        ASSERT_NE(buffer, nullptr);
        id = BufferInfo<uint64_t>(buffer, BUFFER_INFO_FRAMEID);
        Queue({buffer});
    }
    EXPECT_LT(StreamInfo<uint64_t>(STREAM_INFO_NUM_UNDERRUN), 10U); // of 40 that were overdue
}

/// A host that returns none doesn't hold them up for good.
TEST_F(Faults, FramesThatAreOverdueAreLostWithoutAHost) {
    MakePaced(100, 100);
    ASSERT_EQ(WriteInt(camera::LateEvery, 2), GC_ERR_SUCCESS);
    ASSERT_EQ(WriteInt(camera::LateTime, 200), GC_ERR_SUCCESS);
    Queue(Announce(2, 64));
    const auto before = std::chrono::steady_clock::now();
    Start();
    ASSERT_TRUE(Eventually([&] { return StreamInfo<uint64_t>(STREAM_INFO_NUM_UNDERRUN) >= 60; }));
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(600));
}
