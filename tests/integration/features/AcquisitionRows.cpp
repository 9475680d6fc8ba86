#include "Row.h"

namespace {

constexpr double periodSlackNs = 1000;

/// Ends what has begun, so that the next value finds a camera at rest.
size_t CountUpTo(Rig& rig, size_t most) {
    size_t count = 0;
    while (count < most && rig.Next(60))
        ++count;
    return count;
}

void SeeMode(Rig& rig, const Written& v) {
    rig.Set("AcquisitionFrameCount", v.text == "MultiFrame" ? 3 : 1);
    rig.Begin();
    EXPECT_EQ(CountUpTo(rig, 6), v.text == "SingleFrame" ? 1U : v.text == "MultiFrame" ? 3U : 6U);
    EXPECT_EQ(rig.Get("AcquisitionActive"), v.text == "Continuous");
}

void SeeFrameRate(Rig& rig, const Written& v) {
    EXPECT_NEAR(rig.Real("AcquisitionResultingFrameRate"), v.real, v.real * 1e-9);
    rig.Begin();
    const std::optional<Frame> first = rig.Next();
    ASSERT_TRUE(first);
    if (v.real < 1) {
        EXPECT_TRUE(rig.Nothing(100));
        return;
    }
    const std::optional<Frame> second = rig.Next();
    ASSERT_TRUE(second);
    const auto frames = static_cast<double>(second->id - first->id);
    EXPECT_GE(static_cast<double>(second->timestampNs - first->timestampNs),
              frames * 1e9 / v.real - periodSlackNs);
}

void SeeExposureAuto(Rig& rig, const Written& v) {
    double last = 1000.0; // after opening
    rig.Begin();
    size_t changes = 0;
    for (int i = 0; i < 8; ++i) {
        std::optional<Frame> frame = rig.Next();
        ASSERT_TRUE(frame);
        rig.Attach(*frame);
        changes += rig.Real("ChunkExposureTime") != last ? 1 : 0;
        last = rig.Real("ChunkExposureTime");
    }
    EXPECT_EQ(changes > 0, v.text != "Off");
    EXPECT_EQ(rig.Text("ExposureAuto"), v.text == "Once" ? "Off" : v.text);
}

void AwaitTrigger(Rig& rig) {
    rig.SmallAndFast();
    rig.Set("TriggerMode", "On");
    rig.Begin();
}

/// The end of a counter or of a timer comes from a pulse of Line1, through what listens to it.
void LetLine1End(Rig& rig, const std::string& name, const char* selector, const char* source) {
    rig.Set(selector, name.c_str());
    rig.Set(source, "Line1");
    if (name.find("Timer") == 0)
        rig.SetReal("TimerDuration", 10);
}

void Fire(Rig& rig, const std::string& source) {
    const std::string name = source.substr(0, source.find("End"));
    if (source == "Software")
        rig.Do("TriggerSoftware");
    else if (source == "Line0")
        rig.Pulse(0);
    else if (source == "Line1")
        rig.Pulse(1);
    else if (source.find("Counter") == 0)
        LetLine1End(rig, name, "CounterSelector", "CounterEventSource");
    else if (source.find("Timer") == 0)
        LetLine1End(rig, name, "TimerSelector", "TimerTriggerSource");
    else if (rig.IsGev())
        rig.Do(Module::Interface, "ActionCommand");
    if (name != source)
        rig.Pulse(1);
}

/// Keys that match, so that an action command is one for this camera.
void PrepareSources(Rig& rig) {
    AwaitTrigger(rig);
    rig.Set("ActionGroupMask", 1);
    if (rig.IsGev())
        rig.Set(Module::Interface, "ActionGroupMask", 1);
}

void SeeSource(Rig& rig, const Written& v) {
    Fire(rig, v.text == "Line0" ? "Software" : "Line0");
    EXPECT_TRUE(rig.Nothing()) << "another source fired";
    Fire(rig, v.text);
    // Only the interface of GigE Vision has the command that actions come from.
    EXPECT_EQ(rig.Nothing(v.text == "Action0" && !rig.IsGev() ? 40 : 5000),
              v.text == "Action0" && !rig.IsGev());
}

void SeeActivation(Rig& rig, const Written& v) {
    rig.Set("SimulationLine0", 1);
    EXPECT_EQ(rig.Nothing(v.text == "FallingEdge" ? 40 : 5000), v.text == "FallingEdge");
    rig.Set("SimulationLine0", 0);
    EXPECT_EQ(rig.Nothing(v.text == "RisingEdge" ? 40 : 5000), v.text == "RisingEdge");
}

void SeeTriggerDelay(Rig& rig, const Written& v) {
    rig.Do("TimestampLatch");
    const int64_t before = rig.Get("TimestampLatchValue");
    rig.Do("TriggerSoftware");
    const std::optional<Frame> frame = rig.Next();
    ASSERT_TRUE(frame);
    EXPECT_GE(static_cast<int64_t>(frame->timestampNs), before + static_cast<int64_t>(v.real * 1e3));
    EXPECT_LT(static_cast<int64_t>(frame->timestampNs),
              before + static_cast<int64_t>(v.real * 1e3) + 1'000'000'000);
}

void SeeSelector(Rig& rig, const Written& v) {
    rig.Set("TriggerMode", "On");
    rig.Begin();
    EXPECT_TRUE(rig.Nothing());
    rig.Do("TriggerSoftware");
    EXPECT_EQ(CountUpTo(rig, 6), v.text == "FrameStart" ? 1U : 6U);
}

} // namespace

Rows AcquisitionRows() {
    return {
        {Module::Camera, "AcquisitionMode", Seen::Frames, "how many frames come", SmallAndFast, SeeMode},
        {Module::Camera, "AcquisitionFrameCount", Seen::Frames, "how many frames come",
         [](Rig& rig) {
             SmallAndFast(rig);
             rig.Set("AcquisitionMode", "MultiFrame");
         },
         [](Rig& rig, const Written& v) {
             rig.Begin();
             EXPECT_EQ(CountUpTo(rig, 6), static_cast<size_t>(std::min<int64_t>(v.whole, 6)));
         }},
        {Module::Camera, "AcquisitionStart", Seen::Frames, "frames come",
         [](Rig& rig) {
             SmallAndFast(rig);
             rig.StartStream();
         },
         [](Rig& rig, const Written&) {
             EXPECT_TRUE(rig.Next());
             EXPECT_EQ(rig.Get("AcquisitionActive"), 1);
         }},
        {Module::Camera, "AcquisitionStop", Seen::Frames, "no more frames come",
         [](Rig& rig) {
             SmallAndFast(rig);
             rig.Begin();
         },
         [](Rig& rig, const Written&) {
             EXPECT_EQ(rig.Get("AcquisitionActive"), 0);
             EXPECT_LE(CountUpTo(rig, 20), 5U);
         }},
        {Module::Camera, "AcquisitionFrameRateEnable", Seen::Frames, "whether frames keep a period", Nothing,
         [](Rig& rig, const Written& v) {
             EXPECT_EQ(rig.Real("AcquisitionResultingFrameRate"), v.whole != 0 ? 30.0 : 0.0);
             const std::vector<Frame> frames = rig.Grab(4);
             const uint64_t whole = frames[3].timestampNs - frames[0].timestampNs;
             EXPECT_EQ(whole >= 99'000'000 && whole % 33'333'333 < 1000, v.whole != 0);
         }},
        {Module::Camera, "AcquisitionFrameRate", Seen::Frames, "the period of frames", Nothing, SeeFrameRate},
        {Module::Camera, "ExposureTime", Seen::Chunk, "the chunk, and how often frames can come",
         [](Rig& rig) { rig.EnableChunk("ExposureTime"); },
         [](Rig& rig, const Written& v) {
             Frame frame = rig.One();
             rig.Attach(frame);
             EXPECT_EQ(rig.Real("ChunkExposureTime"), v.real);
             EXPECT_NEAR(rig.Real("AcquisitionResultingFrameRate"), std::min(30.0, 1e6 / v.real), 1e-9);
         }},
        {Module::Camera, "ExposureAuto", Seen::Chunk, "exposure times follow the scene",
         [](Rig& rig) { rig.EnableChunk("ExposureTime"); }, SeeExposureAuto},
        {Module::Camera, "TriggerSelector", Seen::Frames, "what waits for a trigger", SmallAndFast,
         SeeSelector},
        {Module::Camera, "TriggerMode", Seen::Frames, "frames wait for a trigger", SmallAndFast,
         [](Rig& rig, const Written& v) {
             rig.Begin();
             EXPECT_EQ(rig.Nothing(v.whole != 0 ? 40 : 5000), v.whole != 0);
             rig.Do("TriggerSoftware");
             EXPECT_TRUE(rig.Next());
         }},
        {Module::Camera, "TriggerSoftware", Seen::Frames, "a frame comes", AwaitTrigger,
         [](Rig& rig, const Written&) {
             EXPECT_TRUE(rig.Next());
             EXPECT_TRUE(rig.Nothing());
         }},
        {Module::Camera, "TriggerSource", Seen::Frames, "a frame comes when it fires", PrepareSources,
         SeeSource},
        {Module::Camera, "TriggerActivation", Seen::Frames, "the edge that a frame comes with",
         [](Rig& rig) {
             AwaitTrigger(rig);
             rig.Set("TriggerSource", "Line0");
         },
         SeeActivation},
        {Module::Camera, "TriggerDelay", Seen::Frames, "the frame's time behind the trigger's", AwaitTrigger,
         SeeTriggerDelay},
    };
}
