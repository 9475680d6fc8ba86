#include "Row.h"

namespace {

constexpr double longUs = 1e7;
constexpr double briefUs = 50'000;

/// Everything that a line can show is high, and what it doesn't show is low.
void PrepareSources(Rig& rig) {
    rig.Set("UserOutputSelector", "UserOutput0");
    rig.Set("UserOutputValue", 1);
    rig.SetReal("TimerDuration", longUs);
    rig.Do("TimerReset");
    ASSERT_TRUE(Soon([&] { return rig.Text("TimerStatus") == "TimerActive"; }));
    rig.Set("CounterEventSource", "Line1");
    rig.Set("CounterDuration", 10);
    rig.Pulse(1);
    rig.Set("LineSelector", "Line2");
}

template <class Change>
void SetBoth(Rig& rig, const char* selector, Change change) {
    for (const int64_t selected : {1, 0}) {
        rig.Set(selector, selected);
        change();
    }
}

void CountLine0(Rig& rig) {
    rig.Set("CounterEventSource", "Line0");
    rig.Set("CounterDuration", 10);
}

void ListenTo(Rig& rig, const char* event) {
    rig.Listen(Module::Camera, GenTL::EVENT_REMOTE_DEVICE);
    rig.SwitchOn(event);
}

/// Lets happen what counters and timers can listen to, once each but for frames.
void LetHappen(Rig& rig, const std::string& signal) {
    if (signal == "Line0" || signal == "Line1")
        rig.Pulse(signal == "Line0" ? 0 : 1);
    if (signal == "FrameStart" || signal == "ExposureEnd") {
        rig.SmallAndFast();
        static_cast<void>(rig.One());
    }
}

void SeeCounterSource(Rig& rig, const Written& v) {
    rig.Set("CounterDuration", 100);
    if (v.text.find("Timer") == 0) {
        rig.Set("TimerSelector", v.text.substr(0, 6).c_str());
        rig.SetReal("TimerDuration", 10);
        rig.Do("TimerReset");
    }
    rig.Set("CounterSelector", "Counter0");
    for (const char* other : {"Line0", "Line1"}) {
        if (other != v.text)
            LetHappen(rig, other);
    }
    LetHappen(rig, v.text);
    if (v.text == "Off")
        EXPECT_EQ(rig.Get("CounterValue"), 0);
    else
        EXPECT_TRUE(Soon([&] { return rig.Get("CounterValue") >= 1; }));
    if (v.text.find("Line") == 0) {
        EXPECT_EQ(rig.Get("CounterValue"), 1);
    }
}

void SeeCounterDuration(Rig& rig, const Written& v) {
    rig.Pulse(0);
    EXPECT_EQ(rig.Get("CounterValue"), 1 % v.whole);
    EXPECT_EQ(rig.NextEvent(0), v.whole == 1 ? "9C60" : "");
    rig.Pulse(0);
    EXPECT_EQ(rig.Get("CounterValue"), 2 % v.whole);
    EXPECT_EQ(rig.NextEvent(0), v.whole <= 2 ? "9C60" : "");
}

/// The timer that the row is about is Timer0 and lasts; what else it needs to be started is there.
void SeeTimerSource(Rig& rig, const Written& v) {
    if (v.text.find("Counter") == 0) {
        rig.Set("CounterSelector", v.text.substr(0, 8).c_str());
        rig.Set("CounterEventSource", "Line1");
        rig.Set("CounterDuration", 1);
        rig.Pulse(1);
    } else if (v.text == "Timer0End") {
        rig.SetReal("TimerDuration", 10);
        rig.Do("TimerReset");
        EXPECT_EQ(rig.NextEvent(), "9C70");
        EXPECT_EQ(rig.NextEvent(), "9C70") << "it starts itself again";
        return;
    } else if (v.text.find("Timer") == 0) {
        rig.Set("TimerSelector", v.text.substr(0, 6).c_str());
        rig.SetReal("TimerDuration", 10);
        rig.Do("TimerReset");
        rig.Set("TimerSelector", "Timer0");
    }
    LetHappen(rig, v.text);
    if (v.text == "Off")
        EXPECT_EQ(rig.Text("TimerStatus"), "TimerIdle");
    else
        EXPECT_TRUE(Soon([&] { return rig.Text("TimerStatus") == "TimerActive"; }));
}

int64_t EventTime(Rig& rig) {
    return rig.Get("EventTimer0EndTimestamp");
}

int64_t Now(Rig& rig) {
    rig.Do("TimestampLatch");
    return rig.Get("TimestampLatchValue");
}

/// The timer's end comes so much later than its start; of the longest time only the beginning is awaited.
void SeeTimerTime(Rig& rig, const Written& v) {
    const int64_t before = Now(rig);
    rig.Do("TimerReset");
    if (v.real > 1e6) {
        EXPECT_EQ(rig.NextEvent(100), "");
        return;
    }
    ASSERT_EQ(rig.NextEvent(), "9C70");
    EXPECT_GE(EventTime(rig) - before, static_cast<int64_t>(v.real * 1e3));
}

void TriggerByAction(Rig& rig) {
    rig.SmallAndFast();
    rig.Set("TriggerMode", "On");
    rig.Set("TriggerSource", "Action0");
    rig.Set("ActionGroupMask", 1);
    if (rig.IsGev())
        rig.Set(Module::Interface, "ActionGroupMask", 1);
    rig.Begin();
}

/// Only the interface of GigE Vision sends actions; on others the register is all that there is.
void SeeActionKey(Rig& rig, const Written& v, const char* key) {
    if (!rig.IsGev()) {
        if (std::string(key) != "ActionDeviceKey") {
            EXPECT_EQ(rig.Get(key), v.whole);
        }
        return;
    }
    rig.Set(Module::Interface, key, v.whole ^ 2);
    rig.Do(Module::Interface, "ActionCommand");
    EXPECT_EQ(rig.Nothing(), true);
    rig.Set(Module::Interface, key, v.whole);
    rig.Do(Module::Interface, "ActionCommand");
    EXPECT_TRUE(rig.Next());
}

void SeeActionMask(Rig& rig, const Written& v) {
    EXPECT_EQ(rig.Get("ActionGroupMask"), v.whole);
    if (!rig.IsGev())
        return;
    rig.Do(Module::Interface, "ActionCommand");
    const bool excluded = (v.whole & 1) == 0;
    EXPECT_EQ(rig.Nothing(excluded ? 40 : 5000), excluded);
}

} // namespace

Rows ControlRows() {
    return {
        {Module::Camera, "LineSelector", Seen::Register, "LineMode is that of the line", Nothing,
         [](Rig& rig, const Written& v) {
             EXPECT_EQ(rig.Text("LineMode"), v.whole < 2 ? "Input" : "Output");
         }},
        {Module::Camera, "LineInverter", Seen::Chunk, "level of the line, in its register and in the chunk",
         [](Rig& rig) {
             SmallAndFast(rig);
             rig.EnableChunk("LineStatusAll");
         },
         [](Rig& rig, const Written& v) {
             EXPECT_EQ(rig.Get("LineStatus"), v.whole);
             Frame frame = rig.One();
             rig.Attach(frame);
             EXPECT_EQ(rig.Get("ChunkLineStatusAll"), v.whole);
         }},
        {Module::Camera, "LineSource", Seen::Register, "level of the line", PrepareSources,
         [](Rig& rig, const Written& v) {
             const bool high =
                 v.text == "UserOutput0" || v.text == "Timer0Active" || v.text == "Counter0Active";
             EXPECT_EQ(rig.Get("LineStatus"), high) << v.text;
         }},
        {Module::Camera, "UserOutputSelector", Seen::Register, "UserOutputValue is that of the output",
         [](Rig& rig) {
             rig.Set("UserOutputSelector", "UserOutput1");
             rig.Set("UserOutputValue", 1);
         },
         [](Rig& rig, const Written& v) { EXPECT_EQ(rig.Get("UserOutputValue"), v.whole); }},
        {Module::Camera, "UserOutputValue", Seen::Register, "level of the line that shows it",
         [](Rig& rig) {
             rig.Set("LineSelector", "Line3");
             rig.Set("LineSource", "UserOutput0");
         },
         [](Rig& rig, const Written& v) { EXPECT_EQ(rig.Get("LineStatusAll"), v.whole << 3); }},
        {Module::Camera, "CounterSelector", Seen::Register, "CounterDuration is that of the counter",
         [](Rig& rig) {
             SetBoth(rig, "CounterSelector",
                     [&] { rig.Set("CounterDuration", rig.Get("CounterSelector") + 3); });
         },
         [](Rig& rig, const Written& v) { EXPECT_EQ(rig.Get("CounterDuration"), v.whole + 3); }},
        {Module::Camera, "CounterEventSource", Seen::Register, "what CounterValue counts", Nothing,
         SeeCounterSource},
        {Module::Camera, "CounterDuration", Seen::Event, "when the counter ends and begins again",
         [](Rig& rig) {
             CountLine0(rig);
             ListenTo(rig, "Counter0End");
         },
         SeeCounterDuration},
        {Module::Camera, "CounterReset", Seen::Register, "CounterValue is 0",
         [](Rig& rig) {
             CountLine0(rig);
             rig.Pulse(0);
             ASSERT_EQ(rig.Get("CounterValue"), 1);
         },
         [](Rig& rig, const Written&) { EXPECT_EQ(rig.Get("CounterValue"), 0); }},
        {Module::Camera, "TimerSelector", Seen::Register, "TimerDuration is that of the timer",
         [](Rig& rig) {
             SetBoth(rig, "TimerSelector", [&] {
                 rig.SetReal("TimerDuration", 100.0 + static_cast<double>(rig.Get("TimerSelector")));
             });
         },
         [](Rig& rig, const Written& v) {
             EXPECT_EQ(rig.Real("TimerDuration"), 100.0 + static_cast<double>(v.whole));
         }},
        {Module::Camera, "TimerTriggerSource", Seen::Register, "what makes the timer active",
         [](Rig& rig) {
             rig.SetReal("TimerDuration", longUs);
             ListenTo(rig, "Timer0End");
         },
         SeeTimerSource},
        {Module::Camera, "TimerDuration", Seen::Event, "time of the timer's end",
         [](Rig& rig) { ListenTo(rig, "Timer0End"); }, SeeTimerTime},
        {Module::Camera, "TimerDelay", Seen::Event, "time of the timer's end",
         [](Rig& rig) {
             rig.SetReal("TimerDuration", 10);
             ListenTo(rig, "Timer0End");
         },
         SeeTimerTime},
        {Module::Camera, "TimerReset", Seen::Event, "the timer is active, and ends",
         [](Rig& rig) {
             rig.SetReal("TimerDuration", briefUs);
             ListenTo(rig, "Timer0End");
         },
         [](Rig& rig, const Written&) { EXPECT_EQ(rig.NextEvent(), "9C70"); }},
        {Module::Camera, "ActionDeviceKey", Seen::Frames, "commands with this key trigger", TriggerByAction,
         [](Rig& rig, const Written& v) { SeeActionKey(rig, v, "ActionDeviceKey"); }},
        {Module::Camera, "ActionSelector", Seen::Own, "there is one action", Nothing, nullptr},
        {Module::Camera, "ActionGroupKey", Seen::Frames, "commands with this key trigger", TriggerByAction,
         [](Rig& rig, const Written& v) { SeeActionKey(rig, v, "ActionGroupKey"); }},
        {Module::Camera, "ActionGroupMask", Seen::Frames, "commands with one of its bits trigger",
         TriggerByAction, SeeActionMask},
    };
}
