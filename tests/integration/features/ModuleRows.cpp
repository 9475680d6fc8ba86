#include "Row.h"

#include <cstring>

using namespace GenTL;

namespace {

std::string IdAt(Rig& rig, bool device, int64_t index) {
    char id[256] = "";
    size_t size = sizeof id;
    const auto number = static_cast<uint32_t>(index);
    const GC_ERROR result = device ? rig.gentl.IFGetDeviceID(rig.interface, number, id, &size)
                                   : rig.gentl.TLGetInterfaceID(rig.system, number, id, &size);
    return result == GC_ERR_SUCCESS ? id : "none";
}

void UpdateBoth(Rig& rig) {
    rig.Do(Module::System, "InterfaceUpdateList");
    rig.Do(Module::Interface, "DeviceUpdateList");
}

/// A camera that waits for actions with the keys 1, 1 and the mask 1.
void AwaitAction(Rig& rig) {
    rig.SmallAndFast();
    for (const char* key : {"ActionDeviceKey", "ActionGroupKey", "ActionGroupMask"}) {
        rig.Set(key, 1);
        rig.Set(Module::Interface, key, 1);
    }
    rig.Set("TriggerMode", "On");
    rig.Set("TriggerSource", "Action0");
    rig.Begin();
}

int64_t CameraTime(Rig& rig) {
    rig.Do("TimestampLatch");
    return rig.Get("TimestampLatchValue");
}

/// One that has to come is waited for, however busy the machine is.
void ExpectFrame(Rig& rig, bool comes) {
    EXPECT_EQ(rig.Nothing(comes ? 5000 : 40), !comes);
}

/// The camera follows the command if its own key is the one that was written, else it doesn't.
template <bool Any>
void SeeKey(Rig& rig, const Written& v, const char* key) {
    rig.Do(Module::Interface, "ActionCommand");
    ExpectFrame(rig, Any ? (v.whole & 1) != 0 : v.whole == 1);
    rig.Set(key, Any && v.whole == 0 ? 1 : v.whole);
    rig.Do(Module::Interface, "ActionCommand");
    ExpectFrame(rig, !Any || v.whole != 0);
}

/// So many events of one kind, or none when they are off, or the first alone.
void ExpectEvents(Rig& rig, Module module, const std::string& notification, const char* id, int64_t count) {
    for (int64_t i = 0; i < count; ++i) {
        const bool comes = notification == "On" || (notification == "Once" && i == 0);
        EXPECT_EQ(rig.NextEvent(comes ? 5000 : 10), comes ? id : "");
    }
    EXPECT_EQ(rig.Text(module, "EventNotification"), notification == "On" ? "On" : "Off");
}

constexpr int64_t searchMs = 20;

/// The list of three is updated by its command if that waits long enough.
void SeeUpdateTimeout(Rig& rig, const Written& v, Module module, const char* command, const char* selector) {
    rig.Set(module, "SimulationUpdateTime", searchMs);
    if (v.whole < searchMs) {
        EXPECT_ANY_THROW(rig.Do(module, command));
    } else {
        rig.Do(module, command);
    }
    EXPECT_EQ(rig.As<GenApi::IInteger>(module, selector).GetMax(), v.whole < searchMs ? 0 : 2);
}

/// What GevDeviceForceIP gives the second camera, which is not open.
void ForceSecond(Rig& rig) {
    UpdateBoth(rig);
    rig.Set(Module::Interface, "DeviceSelector", 2);
    rig.Set(Module::Interface, "GevDeviceForceIPAddress", 0x0A000001);
}

template <int64_t InsteadOf0>
void SeeForced(Rig& rig, const Written& v, const char* shown) {
    rig.Do(Module::Interface, "GevDeviceForceIP");
    EXPECT_EQ(rig.Get(Module::Interface, shown), v.whole == 0 ? InsteadOf0 : v.whole);
}

void SeeDestination(Rig& rig, const Written& v) {
    rig.Do(Module::Interface, "ActionCommand");
    EXPECT_EQ(rig.Nothing(v.whole == 0xFFFFFFFF ? 5000 : 20), v.whole != 0xFFFFFFFF);
    rig.Set(Module::Interface, "GevActionDestinationIPAddress",
            rig.Get(Module::Device, "GevDeviceIPAddress"));
    rig.Do(Module::Interface, "ActionCommand");
    EXPECT_TRUE(rig.Next());
}

/// Whether the camera answers within so much time, and so many tries.
bool Answers(Rig& rig, int64_t delayMs, double timeoutUs, int64_t retries) {
    rig.As<GenApi::IFloat>(Module::Device, "LinkCommandTimeout").SetValue(timeoutUs);
    rig.Set(Module::Device, "LinkCommandRetryCount", retries);
    rig.Set("SimulationPortDelay", delayMs);
    uint32_t width = 0;
    size_t size = sizeof width;
    return rig.gentl.GCReadPort(rig.remote, 0x410, &width, &size) == GC_ERR_SUCCESS;
}

/// Every second frame is too large for its buffer.
void PrepareTransfers(Rig& rig) {
    rig.SmallAndFast();
    rig.Set("SimulationLargerEvery", 2);
    rig.Listen(Module::Stream, EVENT_MODULE);
}

void SeeDiscarded(Rig& rig) {
    rig.Set(Module::Stream, "StreamBufferHandlingMode", "NewestOnly");
    rig.Begin(3);
    EXPECT_EQ(rig.NextEvent(), "9032");
    EXPECT_GT(rig.Get(Module::Stream, "EventBuffersDiscardedFrameID"), 0);
}

void SeeHandling(Rig& rig, const Written& v) {
    rig.Begin(3);
    ASSERT_TRUE(
        Soon([&] { return rig.Get(Module::Stream, "StreamStartedFrameCount") >= 12 || v.whole == 0; }));
    ASSERT_TRUE(Soon([&] { return rig.Get(Module::Stream, "StreamOutputBufferCount") > 0; }));
    if (v.whole == 0) {
        ASSERT_TRUE(Soon([&] { return rig.Get(Module::Stream, "StreamOutputBufferCount") == 3; }));
        EXPECT_EQ(rig.Next()->id, 0U);
    } else if (v.whole == 1) {
        EXPECT_GT(rig.Next()->id, 0U);
    } else {
        EXPECT_EQ(rig.Get(Module::Stream, "StreamOutputBufferCount"), 1);
    }
}

} // namespace

Rows ModuleRows() {
    return {
        {Module::System, "InterfaceUpdateList", Seen::Register, "the interfaces are in the list", Nothing,
         [](Rig& rig, const Written&) {
             EXPECT_EQ(rig.As<GenApi::IInteger>(Module::System, "InterfaceSelector").GetMax(), 2);
             EXPECT_EQ(IdAt(rig, false, 2), "ZQ-CXP-0");
         }},
        {Module::System, "InterfaceSelector", Seen::Register, "InterfaceID is that of the interface",
         UpdateBoth,
         [](Rig& rig, const Written& v) {
             EXPECT_EQ(rig.Text(Module::System, "InterfaceID"), IdAt(rig, false, v.whole));
         }},
        {Module::Interface, "DeviceUpdateList", Seen::Register, "the devices are in the list", Nothing,
         [](Rig& rig, const Written&) {
             EXPECT_EQ(rig.As<GenApi::IInteger>(Module::Interface, "DeviceSelector").GetMax(), 2);
             EXPECT_NE(IdAt(rig, true, 2), "none");
         }},
        {Module::Interface, "DeviceSelector", Seen::Register, "DeviceID is that of the device", UpdateBoth,
         [](Rig& rig, const Written& v) {
             EXPECT_EQ(rig.Text(Module::Interface, "DeviceID"), IdAt(rig, true, v.whole));
         }},
        {Module::System, "InterfaceUpdateTimeout", Seen::Register, "how long the update waits", Nothing,
         [](Rig& rig, const Written& v) {
             SeeUpdateTimeout(rig, v, Module::System, "InterfaceUpdateList", "InterfaceSelector");
         }},
        {Module::Interface, "DeviceUpdateTimeout", Seen::Register, "how long the update waits", Nothing,
         [](Rig& rig, const Written& v) {
             SeeUpdateTimeout(rig, v, Module::Interface, "DeviceUpdateList", "DeviceSelector");
         }},
        {Module::System, "SimulationUpdateTime", Seen::Register, "how long the update takes", Nothing,
         [](Rig& rig, const Written& v) {
             EXPECT_EQ(rig.gentl.TLUpdateInterfaceList(rig.system, nullptr, 5),
                       v.whole > 5 ? GC_ERR_TIMEOUT : GC_ERR_SUCCESS);
         }},
        {Module::Interface, "SimulationUpdateTime", Seen::Register, "how long the update takes", Nothing,
         [](Rig& rig, const Written& v) {
             EXPECT_EQ(rig.gentl.IFUpdateDeviceList(rig.interface, nullptr, 5),
                       v.whole > 5 ? GC_ERR_TIMEOUT : GC_ERR_SUCCESS);
         }},
        {Module::Interface, "GevDeviceForceIPAddress", Seen::Register, "the address after GevDeviceForceIP",
         ForceSecond,
         [](Rig& rig, const Written& v) { SeeForced<0xC6120004>(rig, v, "GevDeviceIPAddress"); }},
        {Module::Interface, "GevDeviceForceSubnetMask", Seen::Register, "the mask after GevDeviceForceIP",
         ForceSecond, [](Rig& rig, const Written& v) { SeeForced<0>(rig, v, "GevDeviceSubnetMask"); }},
        {Module::Interface, "GevDeviceForceGateway", Seen::Register, "the gateway after GevDeviceForceIP",
         ForceSecond, [](Rig& rig, const Written& v) { SeeForced<0>(rig, v, "GevDeviceGateway"); }},
        {Module::Interface, "GevDeviceForceIP", Seen::Register, "the address is another", ForceSecond,
         [](Rig& rig, const Written&) {
             EXPECT_EQ(rig.Get(Module::Interface, "GevDeviceIPAddress"), 0x0A000001);
         }},
        {Module::Interface, "GevActionDestinationIPAddress", Seen::Frames, "which cameras are triggered",
         AwaitAction, SeeDestination},
        {Module::Device, "LinkCommandTimeout", Seen::Port, "how long an answer is waited for", Nothing,
         [](Rig& rig, const Written& v) { EXPECT_EQ(Answers(rig, 20, v.real, 0), v.real >= 20e3); }},
        {Module::Device, "LinkCommandRetryCount", Seen::Port, "how often an access is tried again", Nothing,
         [](Rig& rig, const Written& v) { EXPECT_EQ(Answers(rig, 15, 10e3, v.whole), v.whole > 0); }},
        {Module::Interface, "GevInterfaceGatewaySelector", Seen::Own, "there is one gateway", Nothing,
         nullptr},
        {Module::Interface, "GevInterfaceSubnetSelector", Seen::Own, "there is one subnet", Nothing, nullptr},
        {Module::Interface, "ActionDeviceKey", Seen::Frames, "cameras with this key are triggered",
         AwaitAction, [](Rig& rig, const Written& v) { SeeKey<false>(rig, v, "ActionDeviceKey"); }},
        {Module::Interface, "ActionGroupKey", Seen::Frames, "cameras with this key are triggered",
         AwaitAction, [](Rig& rig, const Written& v) { SeeKey<false>(rig, v, "ActionGroupKey"); }},
        {Module::Interface, "ActionGroupMask", Seen::Frames, "cameras with one of its bits are triggered",
         AwaitAction, [](Rig& rig, const Written& v) { SeeKey<true>(rig, v, "ActionGroupMask"); }},
        {Module::Interface, "ActionScheduledTimeEnable", Seen::Frames, "the camera waits for the time",
         AwaitAction,
         [](Rig& rig, const Written& v) {
             rig.Set(Module::Interface, "ActionScheduledTime", CameraTime(rig) + 60'000'000);
             rig.Do(Module::Interface, "ActionCommand");
             EXPECT_EQ(rig.Nothing(v.whole != 0 ? 20 : 5000), v.whole != 0);
             EXPECT_EQ(rig.Nothing(v.whole != 0 ? 5000 : 20), v.whole == 0);
         }},
        {Module::Interface, "ActionScheduledTime", Seen::Frames, "when the camera is triggered",
         [](Rig& rig) {
             AwaitAction(rig);
             rig.Set(Module::Interface, "ActionScheduledTimeEnable", 1);
         },
         [](Rig& rig, const Written& v) {
             rig.Do(Module::Interface, "ActionCommand");
             EXPECT_EQ(rig.Nothing(v.whole > 1 ? 40 : 5000), v.whole > 1);
             const int64_t due = CameraTime(rig) + 30'000'000;
             rig.Set(Module::Interface, "ActionScheduledTime", due);
             rig.Do(Module::Interface, "ActionCommand");
             const std::optional<Frame> frame = rig.Next();
             ASSERT_TRUE(frame);
             EXPECT_GE(static_cast<int64_t>(frame->timestampNs), due);
         }},
        {Module::Interface, "ActionCommand", Seen::Frames, "the camera is triggered", AwaitAction,
         [](Rig& rig, const Written&) { EXPECT_TRUE(rig.Next()); }},
        {Module::Device, "StreamSelector", Seen::Register, "StreamID is that of the stream", Nothing,
         [](Rig& rig, const Written&) { EXPECT_EQ(rig.Text(Module::Device, "StreamID"), "Stream0"); }},
        {Module::System, "EventSelector", Seen::Own, "there is one event", Nothing, nullptr},
        {Module::System, "EventNotification", Seen::Event, "the event comes",
         [](Rig& rig) { rig.Listen(Module::System, EVENT_MODULE); },
         [](Rig& rig, const Written& v) {
             rig.Set("SimulationReturnTime", 1);
             rig.Do("SimulationInterfaceLost");
             ExpectEvents(rig, Module::System, v.text, "9020", 2); // gone, and back
         }},
        {Module::Interface, "EventSelector", Seen::Event, "the event that is switched",
         [](Rig& rig) { rig.Listen(Module::Interface, EVENT_MODULE); },
         [](Rig& rig, const Written& v) {
             rig.Set(Module::Interface, "EventNotification", "On");
             rig.Set("SimulationReturnTime", 1);
             rig.Do(v.text == "InterfaceLost" ? "SimulationInterfaceLost" : "SimulationDeviceLost");
             ExpectEvents(rig, Module::Interface, "On", v.text == "InterfaceLost" ? "9010" : "9011",
                          v.whole + 1);
         }},
        {Module::Interface, "EventNotification", Seen::Event, "the event comes",
         [](Rig& rig) {
             rig.Listen(Module::Interface, EVENT_MODULE);
             rig.Set(Module::Interface, "EventSelector", "DeviceListChanged");
         },
         [](Rig& rig, const Written& v) {
             rig.Set("SimulationReturnTime", 1);
             rig.Do("SimulationDeviceLost");
             ExpectEvents(rig, Module::Interface, v.text, "9011", 2);
             if (v.whole != 0) {
                 EXPECT_GT(rig.Get(Module::Interface, "EventDeviceListChangedTimestamp"), 0);
             }
         }},
        {Module::Stream, "EventSelector", Seen::Event, "the event that is switched", PrepareTransfers,
         [](Rig& rig, const Written& v) {
             rig.Set(Module::Stream, "EventNotification", "On");
             static_cast<void>(rig.Grab(3));
             // Nothing is given up as long as buffers are queued.
             const char* const ids[] = {"9030", "9031", "", "9033"};
             EXPECT_EQ(rig.NextEvent(v.text == "NewBufferData" ? 5000 : 0), ids[v.whole]);
             if (v.text == "BuffersDiscarded")
                 SeeDiscarded(rig);
         }},
        {Module::Stream, "EventNotification", Seen::Event, "the event comes", PrepareTransfers,
         [](Rig& rig, const Written& v) {
             static_cast<void>(rig.Grab(2));
             ExpectEvents(rig, Module::Stream, v.text, "9030", 2);
             if (v.whole != 0) {
                 EXPECT_EQ(rig.Get(Module::Stream, "EventTransferEndFrameID"), v.text == "On" ? 1 : 0);
             }
         }},
        {Module::Device, "EventSelector", Seen::Own, "there is one event", Nothing, nullptr},
        {Module::Device, "EventNotification", Seen::Event, "the event comes",
         [](Rig& rig) { rig.Listen(Module::Device, EVENT_MODULE); },
         [](Rig& rig, const Written& v) {
             rig.Do("SimulationDeviceLost");
             ExpectEvents(rig, Module::Device, v.text, "9001", 1);
             if (v.whole != 0) {
                 EXPECT_GT(rig.Get(Module::Device, "EventDeviceLostTimestamp"), 0);
             }
         }},
        {Module::Device, "DeviceEndianessMechanism", Seen::Own, "registers are big endian by either", Nothing,
         nullptr},
        {Module::Stream, "StreamBufferHandlingMode", Seen::Frames, "which of the frames are delivered",
         [](Rig& rig) { rig.SetReal("AcquisitionFrameRate", 500); }, SeeHandling},
    };
}
