#include "ProducerTest.h"

namespace {

/// Lines, counter, timer, user sets, actions, analog settings and files of a camera, by its registers.
class Control : public CameraTest {
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

    void Write(uint64_t address, uint32_t value) { ASSERT_EQ(WriteInt(address, value), GC_ERR_SUCCESS); }

    void WriteLong(uint64_t address, uint64_t value) {
        size_t size = sizeof value;
        ASSERT_EQ(gentl.GCWritePort(remote, address, &value, &size), GC_ERR_SUCCESS);
    }

    void Reopen() {
        ASSERT_EQ(gentl.IFClose(interface), GC_ERR_SUCCESS);
        Open();
    }

    void TriggerBy(uint32_t source) {
        Write(camera::TriggerMode, 1);
        Write(camera::TriggerSource, source);
        Queue(Announce(4, 1024));
        Start();
    }

    std::string Pixels() {
        Queue(Announce(1, 64));
        Start(1);
        const BUFFER_HANDLE buffer = Next();
        EXPECT_EQ(gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
        Write(camera::AcquisitionStop, 1);
        return {BufferInfo<const char*>(buffer, BUFFER_INFO_BASE), 8};
    }
};

} // namespace

TEST_F(Control, LineTriggersByItsEdge) {
    TriggerBy(1);
    Write(camera::SimulationLine0, 1);
    EXPECT_NE(Next(), nullptr);
    Write(camera::SimulationLine0, 1);
    Write(camera::SimulationLine0, 0);
    Write(camera::SimulationLine1, 1);
    EXPECT_EQ(Next(20), nullptr);
    Write(camera::TriggerActivation, 1);
    Write(camera::SimulationLine0, 1);
    EXPECT_EQ(Next(20), nullptr);
    Write(camera::SimulationLine0, 0);
    EXPECT_NE(Next(), nullptr);
}

TEST_F(Control, LinesShowTheirLevels) {
    Write(camera::SimulationLine0, 1);
    EXPECT_EQ(ReadInt(camera::LineStatusAll), 1U);
    Write(camera::LineSelector, 0);
    Write(camera::LineInverter, 1);
    EXPECT_EQ(ReadInt(camera::LineStatus), 0U);
    EXPECT_EQ(WriteInt(camera::LineSource, 1), GC_ERR_ACCESS_DENIED);
    Write(camera::LineSelector, 3);
    EXPECT_EQ(ReadInt(camera::LineMode), 1U);
    Write(camera::LineSource, 2);
    Write(camera::UserOutputSelector, 1);
    Write(camera::UserOutputValue, 1);
    EXPECT_EQ(ReadInt(camera::LineStatusAll), 8U);
    EXPECT_EQ(WriteInt(camera::LineSelector, 4), GC_ERR_INVALID_VALUE);
}

TEST_F(Control, LineStatusIsInItsChunk) {
    Write(camera::SimulationLine1, 1);
    Write(camera::ChunkModeActive, 1);
    Write(camera::ChunkSelector, 10);
    Write(camera::ChunkEnable, 1);
    Queue(Announce(1, 128));
    Start(1);
    const BUFFER_HANDLE buffer = Next();
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(BufferInfo<const uint8_t*>(buffer, BUFFER_INFO_BASE)[72], 2);
}

TEST_F(Control, CounterEndsAndTriggers) {
    Write(camera::CounterEventSource, 4);
    Write(camera::CounterDuration, 3);
    TriggerBy(3);
    for (int i = 0; i < 2; ++i) {
        Write(camera::SimulationLine1, 1);
        Write(camera::SimulationLine1, 0);
    }
    EXPECT_EQ(ReadInt(camera::CounterValue), 2U);
    EXPECT_EQ(Next(20), nullptr);
    Write(camera::SimulationLine1, 1);
    EXPECT_NE(Next(), nullptr);
    EXPECT_EQ(ReadInt(camera::CounterValue), 0U);
}

TEST_F(Control, CounterCountsFrames) {
    Write(camera::CounterEventSource, 1);
    Write(camera::CounterDuration, 100);
    Queue(Announce(4, 64));
    Start(4);
    for (int i = 0; i < 4; ++i)
        ASSERT_NE(Next(), nullptr);
    EXPECT_GE(ReadInt(camera::CounterValue), 4U);
    Write(camera::CounterReset, 1);
    EXPECT_EQ(ReadInt(camera::CounterValue), 0U);
}

TEST_F(Control, TimerThatStartsItselfIsAClock) {
    ASSERT_EQ(WriteFloat(camera::TimerDuration, 2000), GC_ERR_SUCCESS);
    Write(camera::TimerTriggerSource, 5);
    TriggerBy(4);
    const auto before = std::chrono::steady_clock::now();
    Write(camera::TimerReset, 1);
    for (int i = 0; i < 4; ++i)
        ASSERT_NE(Next(), nullptr);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(8));
}

TEST_F(Control, UserSetKeepsSettingsOverClosing) {
    Write(camera::Height, 16);
    Write(camera::UserSetSelector, 1);
    Write(camera::UserSetSave, 1);
    Write(camera::Height, 24);
    Reopen();
    EXPECT_EQ(ReadInt(camera::Height), 480U);
    Write(camera::UserSetSelector, 1);
    Write(camera::UserSetLoad, 1);
    EXPECT_EQ(ReadInt(camera::Height), 16U);
    EXPECT_EQ(ReadInt(camera::UserSetSelector), 1U);
    Write(camera::UserSetDefault, 1);
    Reopen();
    EXPECT_EQ(ReadInt(camera::Height), 16U);
    Write(camera::UserSetSelector, 0);
    Write(camera::UserSetLoad, 1);
    EXPECT_EQ(ReadInt(camera::Height), 480U);
    EXPECT_EQ(WriteInt(camera::UserSetSave, 1), GC_ERR_ACCESS_DENIED);
}

TEST_F(Control, UserSetIsNotLoadedWhileLocked) {
    Write(camera::TLParamsLocked, 1);
    EXPECT_EQ(WriteInt(camera::UserSetLoad, 1), GC_ERR_ACCESS_DENIED);
}

TEST_F(Control, ActionReachesCamerasWithItsKeys) {
    Use(gevInterface);
    Write(camera::ActionDeviceKey, 7);
    Write(camera::ActionGroupKey, 3);
    Write(camera::ActionGroupMask, 6);
    TriggerBy(5);
    const auto act = [&](uint32_t deviceKey, uint32_t groupKey, uint32_t mask) {
        const uint32_t values[] = {deviceKey, groupKey, mask, 1};
        for (size_t i = 0; i < 4; ++i) {
            size_t size = 4;
            ASSERT_EQ(gentl.GCWritePort(interface, 0x800 + 4 * i, &values[i], &size), GC_ERR_SUCCESS);
        }
    };
    act(8, 3, 2);
    act(7, 4, 2);
    act(7, 3, 1);
    EXPECT_EQ(Next(20), nullptr);
    act(7, 3, 2);
    EXPECT_NE(Next(), nullptr);
}

TEST_F(Control, GainBlackLevelAndTableChangeThePicture) {
    EXPECT_EQ(Pixels(), std::string("\0\1\2\3\4\5\6\7", 8));
    ASSERT_EQ(WriteFloat(camera::BlackLevel, 2), GC_ERR_SUCCESS);
    EXPECT_EQ(Pixels(), std::string("\2\3\4\5\6\7\x8\x9", 8));
    ASSERT_EQ(WriteFloat(camera::BlackLevel, 0), GC_ERR_SUCCESS);
    Write(camera::LUTEnable, 1);
    Write(camera::LUTIndex, 3);
    Write(camera::LUTValue, 200);
    EXPECT_EQ(ReadInt(camera::LUTValue), 200U);
    EXPECT_EQ(static_cast<uint8_t>(Pixels()[3]), 200);
    uint8_t table[256];
    size_t size = sizeof table;
    ASSERT_EQ(gentl.GCReadPort(remote, 0x3000, table, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(table[3], 200);
    EXPECT_EQ(table[4], 4);
    ASSERT_EQ(WriteFloat(camera::Gain, 6.0205999), GC_ERR_SUCCESS);
    EXPECT_EQ(static_cast<uint8_t>(Pixels()[4]), 8);
    EXPECT_EQ(WriteFloat(camera::Gain, 24.1), GC_ERR_INVALID_VALUE);
}

TEST_F(Control, FileIsWrittenAndReadBack) {
    const auto operate = [&](uint32_t operation) {
        Write(camera::FileOperationSelector, operation);
        Write(camera::FileOperationExecute, 1);
        return ReadInt(camera::FileOperationStatus);
    };
    char text[] = "kept";
    size_t size = sizeof text;
    EXPECT_EQ(operate(2), 1U) << "reading a closed file";
    Write(camera::FileOpenMode, 1);
    EXPECT_EQ(operate(0), 0U);
    EXPECT_EQ(operate(0), 1U) << "open already";
    ASSERT_EQ(gentl.GCWritePort(remote, 0x2000, text, &size), GC_ERR_SUCCESS);
    WriteLong(camera::FileAccessLength, sizeof text);
    EXPECT_EQ(operate(3), 0U);
    EXPECT_EQ(ReadInt(camera::FileOperationResult), sizeof text);
    EXPECT_EQ(operate(1), 0U);
    EXPECT_EQ(ReadInt(camera::FileSize), sizeof text);

    Reopen();
    Write(camera::FileOpenMode, 0);
    EXPECT_EQ(operate(0), 0U);
    WriteLong(camera::FileAccessOffset, 1);
    WriteLong(camera::FileAccessLength, 100);
    EXPECT_EQ(operate(2), 0U);
    EXPECT_EQ(ReadInt(camera::FileOperationResult), sizeof text - 1);
    size = sizeof text - 1;
    ASSERT_EQ(gentl.GCReadPort(remote, 0x2000, text, &size), GC_ERR_SUCCESS);
    EXPECT_STREQ(text, "ept");
    EXPECT_EQ(operate(3), 1U) << "open for reading";
    EXPECT_EQ(operate(1), 0U);
    EXPECT_EQ(operate(4), 0U);
    EXPECT_EQ(ReadInt(camera::FileSize), 0U);
}

TEST_F(Control, SettingsOfATriggerSurviveReopeningOnlyInAUserSet) {
    Write(camera::TriggerMode, 1);
    Reopen();
    EXPECT_EQ(ReadInt(camera::TriggerMode), 0U);
}
