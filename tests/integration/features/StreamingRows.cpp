#include "Row.h"

namespace {

void ChunksOn(Rig& rig) {
    rig.SmallAndFast();
    rig.Set("ChunkModeActive", 1);
}

void HearTest(Rig& rig) {
    rig.Listen(Module::Camera, GenTL::EVENT_REMOTE_DEVICE);
    rig.Set("EventSelector", "Test");
}

} // namespace

Rows StreamingRows() {
    return {
        {Module::Camera, "TLParamsLocked", Seen::Register, "what the size of an image depends on is locked",
         Nothing,
         [](Rig& rig, const Written& v) {
             for (const char* locked :
                  {"Width", "Height", "PixelFormat", "BinningHorizontal", "AcquisitionMode"})
                 EXPECT_EQ(rig.Writable(locked), v.whole == 0) << locked;
             EXPECT_TRUE(rig.Writable("OffsetX"));
         }},
        {Module::Camera, "ChunkModeActive", Seen::Chunk, "frames carry chunks", SmallAndFast,
         [](Rig& rig, const Written& v) {
             const Frame frame = rig.One();
             EXPECT_EQ(frame.hasChunks, v.whole != 0);
             EXPECT_EQ(frame.chunks.size(), v.whole != 0 ? 1U : 0U);
         }},
        {Module::Camera, "ChunkSelector", Seen::Chunk, "the chunk that is switched",
         [](Rig& rig) { ChunksOn(rig); },
         [](Rig& rig, const Written& v) {
             EXPECT_EQ(rig.Get("ChunkEnable"), v.text == "Image");
             rig.Set("ChunkEnable", 1);
             Frame frame = rig.One();
             rig.Attach(frame);
             if (v.text != "Image") {
                 ASSERT_EQ(frame.chunks.size(), 2U);
                 EXPECT_TRUE(GenApi::IsReadable(&rig.Node(Module::Camera, "Chunk" + v.text)));
             }
         }},
        {Module::Camera, "ChunkEnable", Seen::Chunk, "frames carry the chunk",
         [](Rig& rig) {
             ChunksOn(rig);
             rig.Set("ChunkSelector", "FrameID");
         },
         [](Rig& rig, const Written& v) {
             std::vector<Frame> frames = rig.Grab(2);
             rig.Attach(frames[1]);
             EXPECT_EQ(GenApi::IsReadable(&rig.Node(Module::Camera, "ChunkFrameID")), v.whole != 0);
             if (v.whole != 0) {
                 EXPECT_EQ(rig.Get("ChunkFrameID"), 1);
             }
         }},
        {Module::Camera, "EventSelector", Seen::Register, "EventNotification is that of the event",
         [](Rig& rig) { rig.SwitchOn("Test"); },
         [](Rig& rig, const Written& v) {
             EXPECT_EQ(rig.Text("EventNotification"), v.text == "Test" ? "On" : "Off");
         }},
        {Module::Camera, "EventNotification", Seen::Event, "the event comes", HearTest,
         [](Rig& rig, const Written& v) {
             rig.Do("TestEventGenerate");
             EXPECT_EQ(rig.NextEvent(0), v.whole != 0 ? "4FFF" : "");
             rig.Do("TestEventGenerate");
             EXPECT_EQ(rig.NextEvent(0), v.text == "On" ? "4FFF" : "");
             EXPECT_EQ(rig.Text("EventNotification"), v.text == "On" ? "On" : "Off");
         }},
        {Module::Camera, "TestEventGenerate", Seen::Event, "the event comes",
         [](Rig& rig) {
             HearTest(rig);
             rig.Set("EventNotification", "On");
         },
         [](Rig& rig, const Written&) {
             EXPECT_EQ(rig.NextEvent(0), "4FFF");
             EXPECT_EQ(rig.Get("EventTest"), 0x4FFF);
             EXPECT_GT(rig.Get("EventTestTimestamp"), 0);
         }},
    };
}
