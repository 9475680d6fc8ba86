#include "tests/unit/zq/Tool.h"

#include "tests/unit/zq/Decoded.h"

#include <sys/stat.h>

#include <chrono>
#include <fstream>
#include <thread>

using namespace GenTL;
using ZqTest::ScriptedProducer;

namespace {

using Names = std::vector<std::string>;

constexpr uint64_t pixelFormatRegister = 0x108;

TEST(ZqGrab, WritesOnePictureAFrameAndOneLineOfResult) {
    const ScriptedProducer producer;
    producer.AutoStream(20);
    const TemporaryFolder folder;
    Tool tool;
    ASSERT_EQ(tool.Run({"grab", "-n", "3", "-o", folder.File("new/deep")}), 0) << tool.err.str();
    EXPECT_EQ(tool.out.str().rfind("DEV1: 3 frames, 3 complete, 0 incomplete, 0 lost, ", 0), 0U)
        << tool.out.str();
    EXPECT_EQ(tool.err.str(), "");
    EXPECT_EQ(ReadPng(folder.File("new/deep/000002.png")).samples, std::vector<unsigned>(64 * 64, 1));
    EXPECT_EQ(ReadPng(folder.File("new/deep/000003.png")).samples, std::vector<unsigned>(64 * 64, 2));
    EXPECT_EQ(ReadPng(folder.File("new/deep/000003.png")).width, 64U);
    EXPECT_TRUE(producer.NothingOpen());
}

TEST(ZqGrab, LocksStartsAndStopsInOrder) {
    const ScriptedProducer producer;
    producer.AutoStream(20);
    Tool tool;
    ASSERT_EQ(tool.Run({"grab"}), 0) << tool.err.str();
    EXPECT_EQ(producer.Log({"DSStartAcquisition", "GCWritePort", "DSStopAcquisition", "DSClose", "DevClose"}),
              (Names{"GCWritePort(DEV1, 0x100, 01000000)", "GCWritePort(DEV1, 0x104, 01000000)",
                     "DSStartAcquisition(DS1, 0, 18446744073709551615)",
                     "GCWritePort(REMOTE1, 0x110, 01000000)", "GCWritePort(REMOTE1, 0x114, 01000000)",
                     "GCWritePort(REMOTE1, 0x118, 01000000)", "GCWritePort(REMOTE1, 0x110, 00000000)",
                     "DSStopAcquisition(DS1, 0)", "DSClose(DS1)", "DevClose(DEV1)"}));
}

TEST(ZqGrab, AnnouncesSixBuffersOrTheProducersMinimum) {
    const ScriptedProducer producer;
    producer.AutoStream(20);
    Tool tool;
    ASSERT_EQ(tool.Run({"grab"}), 0) << tool.err.str();
    EXPECT_EQ(producer.Opened("BUF"), 6U);
    producer.Answer("DSGetInfo").Command(STREAM_INFO_BUF_ANNOUNCE_MIN).Value<size_t>(9);
    ASSERT_EQ(tool.Run({"grab"}), 0) << tool.err.str();
    EXPECT_EQ(producer.Opened("BUF"), 6U + 9U);
}

TEST(ZqGrab, RawFilesHoldTheBytesAndSayTheirShape) {
    const ScriptedProducer producer;
    producer.AutoStream(20);
    const TemporaryFolder folder;
    Tool tool;
    ASSERT_EQ(tool.Run({"grab", "-n", "2", "-o", folder.Path(), "--format", "raw"}), 0) << tool.err.str();
    EXPECT_EQ(folder.Names(), (Names{"000001_64x64_Mono8.raw", "000002_64x64_Mono8.raw"}));
    EXPECT_EQ(ReadBytes(folder.File("000002_64x64_Mono8.raw")), std::string(4096, '\1'));
}

TEST(ZqGrab, TenBitSamplesFillTheTopOfASixteenBitPng) {
    const ScriptedProducer producer;
    producer.SetRegister<uint32_t>("REMOTE", pixelFormatRegister, 0x01100003);
    producer.SetPayloadSize(64 * 64 * 2);
    producer.AutoStream(20);
    const TemporaryFolder folder;
    Tool tool;
    ASSERT_EQ(tool.Run({"grab", "-n", "2", "-o", folder.Path()}), 0) << tool.err.str();
    EXPECT_EQ(ReadPng(folder.File("000002.png")).samples, std::vector<unsigned>(64 * 64, 0x0101 << 6));
}

TEST(ZqGrab, MosaicsKeepTheirPhaseOrBecomeColours) {
    const ScriptedProducer producer;
    producer.SetRegister<uint32_t>("REMOTE", pixelFormatRegister, 0x0108000B); // BayerBG8
    producer.AutoStream(20);
    const TemporaryFolder folder;
    Tool tool;
    ASSERT_EQ(tool.Run({"grab", "-n", "2", "-o", folder.Path()}), 0) << tool.err.str();
    EXPECT_EQ(ReadPng(folder.File("000002.png")).texts["BayerPhase"], "BG");
    ASSERT_EQ(tool.Run({"grab", "-n", "2", "-o", folder.Path(), "--demosaic"}), 0) << tool.err.str();
    EXPECT_EQ(ReadPng(folder.File("000002.png")).samples, std::vector<unsigned>(64 * 64 * 3, 1));
    EXPECT_EQ(tool.Run({"grab", "-o", folder.Path(), "--demosaic", "--format", "raw"}), 2);
}

TEST(ZqGrab, UnknownPixelFormatsAreNamed) {
    const ScriptedProducer producer;
    producer.SetRegister<uint32_t>("REMOTE", pixelFormatRegister, 0x810A1234);
    producer.AutoStream(20);
    const TemporaryFolder folder;
    Tool tool;
    EXPECT_EQ(tool.Run({"grab", "-o", folder.Path()}), 1);
    EXPECT_NE(tool.err.str().find("0x810A1234"), std::string::npos) << tool.err.str();
    EXPECT_TRUE(producer.NothingOpen());
}

TEST(ZqGrab, PictureBeyondItsBufferIsRefused) {
    const ScriptedProducer producer;
    producer.AutoStream(20);
    producer.Answer("DSGetBufferInfo").Command(BUFFER_INFO_WIDTH).Value<size_t>(65);
    const TemporaryFolder folder;
    Tool tool;
    EXPECT_EQ(tool.Run({"grab", "-o", folder.Path()}), 1);
    EXPECT_EQ(tool.err.str(), "zq: reading a picture of 65x64 Mono8 failed\n"
                              "  why: its buffer holds only 4096 bytes\n"
                              "  try: try again; if it stays, report it to the producer's maker\n");
    EXPECT_TRUE(producer.NothingOpen());
}

TEST(ZqGrab, FilesThatCannotBeWrittenAreNamed) {
    const ScriptedProducer producer;
    producer.AutoStream(20);
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.File("000002.tiff"));
    Tool tool;
    EXPECT_EQ(tool.Run({"grab", "-n", "3", "-o", folder.Path(), "--format", "tiff"}), 1);
    EXPECT_EQ(tool.err.str().rfind("zq: writing " + folder.File("000002.tiff") + " failed\n", 0), 0U)
        << tool.err.str();
    EXPECT_TRUE(producer.NothingOpen());
}

// The first file is a pipe, which takes nothing until somebody reads from it.
TEST(ZqGrab, SlowFilesDoNotStallTheFirstFramesAndAreReported) {
    const ScriptedProducer producer;
    producer.AutoStream(20);
    const TemporaryFolder folder;
    const std::string pipe = folder.File("000001_64x64_Mono8.raw");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::string read;
    std::thread reader([&] {
        // Six buffers are queued at the start, and eight frames are retrieved and given back meanwhile.
        EXPECT_TRUE(producer.WaitForCalls("DSQueueBuffer", 6 + 8));
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        read = ReadBytes(pipe);
    });
    Tool tool;
    EXPECT_EQ(tool.Run({"grab", "-n", "12", "-o", folder.Path(), "--format", "raw"}), 0) << tool.err.str();
    reader.join();
    EXPECT_EQ(read, std::string(4096, '\0'));
    EXPECT_EQ(tool.err.str().rfind("zq: DEV1: waits for files to be written: ", 0), 0U) << tool.err.str();
    EXPECT_EQ(folder.Names().size(), 12U);
}

TEST(ZqGrab, SettingsAreMadeBeforeTheStart) {
    const ScriptedProducer producer;
    producer.AutoStream(20);
    Tool tool;
    ASSERT_EQ(tool.Run({"grab", "DEV1", "--set", "Width=32", "--set", "Height=16"}), 0) << tool.err.str();
    EXPECT_EQ(producer.GetRegister<uint32_t>("REMOTE1", 0x100), 32U);
    EXPECT_EQ(producer.GetRegister<uint32_t>("REMOTE1", 0x104), 16U);
    EXPECT_EQ(tool.Run({"grab", "DEV1", "--set", "Width"}), 2);
    EXPECT_EQ(tool.Run({"grab", "DEV1", "--set", "Depth=1"}), 3);
}

TEST(ZqGrab, CameraWithoutChunksEndsWith3) {
    const ScriptedProducer producer;
    Tool tool;
    EXPECT_EQ(tool.Run({"grab", "DEV1", "--chunks"}), 3);
    EXPECT_EQ(tool.err.str(), "zq: looking for ChunkModeActive failed\n"
                              "  why: DEV1 has no feature of that name\n"
                              "  try: check what there is with: zq features DEV1 --all\n");
    EXPECT_TRUE(producer.NothingOpen());
}

TEST(ZqGrab, IncompleteFramesAreCountedAndNotWritten) {
    const ScriptedProducer producer;
    producer.AutoStream(20);
    producer.Answer("DSGetBufferInfo").Command(BUFFER_INFO_IS_INCOMPLETE).Value<uint8_t>(1);
    const TemporaryFolder folder;
    Tool tool;
    ASSERT_EQ(tool.Run({"grab", "-n", "2", "-o", folder.Path()}), 0) << tool.err.str();
    EXPECT_EQ(tool.out.str().rfind("DEV1: 2 frames, 0 complete, 2 incomplete, 0 lost, ", 0), 0U)
        << tool.out.str();
    EXPECT_EQ(folder.Names(), Names{});
}

TEST(ZqGrab, NoFrameInTimeEndsWith5) {
    const ScriptedProducer producer;
    producer.AutoStream(1);
    Tool tool;
    EXPECT_EQ(tool.Run({"grab", "-n", "2", "--timeout", "50"}), 5);
    EXPECT_EQ(tool.err.str(),
              "zq: waiting for frame 2 of 2 from DEV1 failed\n"
              "  why: -1011 GC_ERR_TIMEOUT: none came within 50 ms\n"
              "  try: check the camera's trigger mode, see that no other program receives this "
              "stream, or give more time with --timeout\n");
    EXPECT_EQ(tool.out.str(), "");
    EXPECT_TRUE(producer.NothingOpen());
}

TEST(ZqGrab, FramesBeforeAFailureAreWritten) {
    const ScriptedProducer producer;
    producer.AutoStream(4);
    const TemporaryFolder folder;
    Tool tool;
    EXPECT_EQ(tool.Run({"grab", "-n", "5", "-o", folder.Path(), "--timeout", "50"}), 5);
    EXPECT_EQ(folder.Names(), (Names{"000001.png", "000002.png", "000003.png", "000004.png"}));
}

TEST(ZqGrab, RefusedCameraEndsWith1AndTheProducersWords) {
    const ScriptedProducer producer;
    producer.Answer("IFOpenDevice").With(GC_ERR_ACCESS_DENIED).Saying("taken by host 7");
    Tool tool;
    EXPECT_EQ(tool.Run({"grab", "DEV1"}), 1);
    EXPECT_EQ(tool.err.str(), "zq: opening DEV1 failed\n"
                              "  why: -1005 GC_ERR_ACCESS_DENIED from IFOpenDevice: taken by host 7\n"
                              "  try: close the other program that uses the camera\n");
    EXPECT_TRUE(producer.NothingOpen());
}

TEST(ZqGrab, FailedStartsLeaveNothingOpen) {
    const ScriptedProducer producer;
    Tool tool;
    producer.Answer("DSStartAcquisition").With(GC_ERR_INVALID_BUFFER);
    EXPECT_EQ(tool.Run({"grab"}), 1);
    EXPECT_EQ(tool.err.str().rfind("zq: starting the acquisition of DEV1 failed\n"
                                   "  why: -1013 GC_ERR_INVALID_BUFFER from DSStartAcquisition\n",
                                   0),
              0U)
        << tool.err.str();
    producer.AnswerAsUsual();
    producer.Answer("GCWritePort").At(0x114).With(GC_ERR_IO);
    EXPECT_EQ(tool.Run({"grab"}), 1);
    EXPECT_EQ(producer.Count("DSStopAcquisition"), 1U);
    EXPECT_TRUE(producer.NothingOpen());
}

TEST(ZqGrab, CameraIsFoundByIdSerialOrName) {
    const ScriptedProducer producer;
    producer.AddDevice("IF1", "DEV2");
    producer.Answer("IFGetDeviceInfo").Id("DEV2").Command(DEVICE_INFO_SERIAL_NUMBER).Text("4711");
    producer.Answer("IFGetDeviceInfo").Id("DEV2").Command(DEVICE_INFO_USER_DEFINED_NAME).Text("right side");
    producer.AutoStream(20);
    Tool tool;
    for (const char* name : {"DEV2", "4711", "right side"}) {
        EXPECT_EQ(tool.Run({"grab", name}), 0) << tool.err.str();
        EXPECT_EQ(tool.out.str().rfind("DEV2: 1 frames", 0), 0U) << tool.out.str();
    }
    EXPECT_EQ(tool.Run({"grab", "DEV3"}), 3);
    EXPECT_EQ(tool.err.str(), "zq: looking for DEV3 failed\n"
                              "  why: no camera has that name\n"
                              "  try: check what there is with: zq list\n");
}

TEST(ZqGrab, WithoutNameTheFirstFreeCameraIsTaken) {
    const ScriptedProducer producer;
    producer.AddDevice("IF1", "DEV1", DEVICE_ACCESS_STATUS_BUSY);
    producer.AutoStream(20);
    Tool tool;
    EXPECT_EQ(tool.Run({"grab"}), 3);
    EXPECT_NE(tool.err.str().find("every camera is in use"), std::string::npos);
    producer.AddDevice("IF1", "DEV2");
    EXPECT_EQ(tool.Run({"grab"}), 0) << tool.err.str();
    EXPECT_EQ(tool.out.str().rfind("DEV2: ", 0), 0U);
}

TEST(ZqGrab, FolderThatCannotBeMadeIsNamed) {
    const ScriptedProducer producer;
    const TemporaryFolder folder;
    std::ofstream(folder.File("file")) << "x";
    Tool tool;
    EXPECT_EQ(tool.Run({"grab", "-o", folder.File("file/below")}), 1);
    EXPECT_EQ(tool.err.str().rfind("zq: making the folder " + folder.File("file/below") + " failed\n", 0), 0U)
        << tool.err.str();
}

TEST(ZqGrab, BarIsDrawnOnTerminalsOnly) {
    const ScriptedProducer producer;
    producer.AutoStream(20);
    Tool tool;
    ASSERT_EQ(tool.Run({"grab", "-n", "2"}, true), 0);
    EXPECT_NE(tool.err.str().find("[" + std::string(40, '#') + "] 2/2  "), std::string::npos)
        << tool.err.str();
    ASSERT_EQ(tool.Run({"grab", "-n", "2"}, false), 0);
    EXPECT_EQ(tool.err.str(), "");
}

TEST(ZqGrab, InterruptStopsCleanly) {
    const ScriptedProducer producer;
    ZqTool::interrupted = true;
    Tool tool;
    EXPECT_EQ(tool.Run({"grab", "-n", "2"}), 1);
    ZqTool::interrupted = false;
    EXPECT_EQ(tool.err.str().rfind(
                  "zq: grabbing frame 1 of 2 from DEV1 failed\n  why: interrupted by a signal\n", 0),
              0U)
        << tool.err.str();
    EXPECT_EQ(producer.Count("DSStopAcquisition"), 1U);
    EXPECT_TRUE(producer.NothingOpen());
}

} // namespace
