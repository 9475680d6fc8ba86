#include <chrono>
#include <thread>

#include "tests/support/AllocationFailure.h"
#include "tests/support/scripted_producer/Descriptions.h"
#include "tests/unit/ZqApi_TL/ModuleTree.h"

namespace ZqTest {
namespace {

/// A description of nothing but these nodes.
std::string DescribedAs(const std::string& nodes) {
    return "<RegisterDescription ModelName=\"M\" VendorName=\"V\" SchemaMajorVersion=\"1\" "
           "SchemaMinorVersion=\"1\">" +
           nodes + "</RegisterDescription>";
}

class DeviceModule : public OpenedDevice {
protected:
    explicit DeviceModule(const std::string& variant = "full") : OpenedDevice(variant) {}

    /// Each test opens its device itself, after its script.
    void SetUp() override {}

    Thrown OpeningFails() {
        return CatchProducerError([this] { Open(); });
    }

    GenApi::CIntegerPtr RemoteInteger(const char* name) {
        return device->GetRemoteIZqPort()->GetINodeMap()->GetNode(name);
    }

    Calls Writes() { return producer.Log("GCWritePort"); }
};

TEST_F(DeviceModule, IsBuiltInTheStatedOrder) {
    Open();
    const Calls log = producer.Log({"IFOpenDevice", "DevGetNumDataStreams", "DevGetDataStreamID",
                                    "DevGetPort", "GCRegisterEvent", "DevClose"});
    const Calls ending(log.begin() + 3, log.end());
    EXPECT_EQ(ending,
              (Calls{"IFOpenDevice(IF1, DEV1, 3)", "DevGetNumDataStreams(DEV1)",
                     "DevGetDataStreamID(DEV1, 0, null)", "DevGetDataStreamID(DEV1, 0, 13)",
                     "DevGetPort(DEV1)", "GCRegisterEvent(DEV1, 0)", "GCRegisterEvent(DEV1, 2)",
                     "GCRegisterEvent(DEV1, 3)", "GCRegisterEvent(DEV1, 4)", "GCRegisterEvent(DEV1, 5)"}));
}

TEST_F(DeviceModule, IsTornDownInTheStatedOrder) {
    Open();
    producer.ClearLog();
    device.reset();
    EXPECT_EQ(producer.Log({"GCWritePort", "EventKill", "GCUnregisterEvent", "DevClose"}),
              (Calls{"EventKill(DEV1/0)", "EventKill(DEV1/2)", "EventKill(DEV1/3)", "EventKill(DEV1/4)",
                     "EventKill(DEV1/5)", "GCUnregisterEvent(DEV1, 5)", "GCUnregisterEvent(DEV1, 0)",
                     "GCUnregisterEvent(DEV1, 4)", "GCUnregisterEvent(DEV1, 3)", "GCUnregisterEvent(DEV1, 2)",
                     "DevClose(DEV1)"}));
}

TEST_F(DeviceModule, NodeMapsAreNamedAfterTheIdItWasOpenedWith) {
    Open();
    EXPECT_STREQ(device->GetLocalIZqPort()->GetINodeMap()->GetDeviceName().c_str(), "LocalDevice_DEV1");
    EXPECT_STREQ(device->GetRemoteIZqPort()->GetINodeMap()->GetDeviceName().c_str(), "RemoteDevice_DEV1");
}

TEST_F(DeviceModule, InformationComesFromTheOpenedDevice) {
    Open();
    const IZqDeviceInfo& info = *device->GetIZqDeviceInfo();
    EXPECT_STREQ(info.GetID().c_str(), "DEV1");
    EXPECT_STREQ(info.GetTLType().c_str(), "U3V");
    producer.Answer("DevGetInfo").Command(DEVICE_INFO_MODEL).With(GC_ERR_NOT_AVAILABLE);
    const Thrown thrown = CatchProducerError([&] { info.GetModel(); });
    EXPECT_EQ(thrown.text, "-1014 = DevGetInfo(PTR, 2, PTR, PTR, PTR)");
    EXPECT_EQ(thrown.function, "DevGetInfo");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqDeviceInfo");
}

TEST_F(DeviceModule, FailingConstructionStepsCloseTheDeviceOnce) {
    struct Row {
        const char* function;
        bool dataQuery;
        const char* text;
    };
    const Row rows[] = {
        {"DevGetNumDataStreams", false, "-1010 = DevGetNumDataStreams(PTR, PTR)"},
        {"DevGetDataStreamID", false, "-1010 = DevGetDataStreamID(PTR, 0, PTR, PTR)"},
        {"DevGetDataStreamID", true, "-1010=DevGetDataStreamID(PTR, 0, PTR, PTR)"},
        {"DevGetPort", false, "-1010 = DevGetPort(PTR, PTR)"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        {
            Answer answer(producer, row.function);
            if (row.dataQuery)
                answer.DataQuery();
            answer.With(GC_ERR_IO);
        }
        producer.ClearLog();
        const Thrown thrown = OpeningFails();
        EXPECT_EQ(thrown.text, row.text);
        EXPECT_EQ(thrown.function, row.function);
        EXPECT_EQ(thrown.source, "ZqApi_TL/ZqDevice");
        EXPECT_EQ(producer.Log("DevClose").size(), 1u);
        system.reset();
        EXPECT_TRUE(producer.NothingOpen());
        producer.AnswerAsUsual();
    }
}

TEST_F(DeviceModule, DamagedRemoteDescriptionFailsTheOpening) {
    producer.SetDescription("REMOTE", "camera.xml", "<RegisterDescription");
    EXPECT_THROW(Open(), GenICam::GenericException);
    EXPECT_EQ(producer.Log("DevClose").size(), 1u);
    EXPECT_EQ(producer.Closed("EVENT"), producer.Opened("EVENT") - 3);
}

TEST_F(DeviceModule, DamagedLocalDescriptionDoesNot) {
    producer.SetDescription("DEV", "device.xml", "<RegisterDescription");
    Open();
    EXPECT_FALSE(device->IsDeviceLost());
    EXPECT_EQ(producer.Log("GCUnregisterEvent"), (Calls{"GCUnregisterEvent(DEV1, 5)"}));
    EXPECT_THROW(device->GetLocalIZqPort()->GetINodeMap(), GenICam::GenericException);
}

TEST_F(DeviceModule, EventsThatAreNotImplementedAreAbsent) {
    for (const int64_t type :
         {EVENT_ERROR, EVENT_FEATURE_INVALIDATE, EVENT_FEATURE_CHANGE, EVENT_REMOTE_DEVICE, EVENT_MODULE})
        producer.Answer("GCRegisterEvent").On("DEV").Event(type).With(GC_ERR_NOT_IMPLEMENTED);
    Open();
    EXPECT_NO_THROW(device->StartEventAcquisitionThread());
    EXPECT_NO_THROW(device->StartEventAcquisitionThread());
    EXPECT_NO_THROW(device->StopEventAcquisitionThread());
    EXPECT_EQ(device->GetDataStreamCount(), 1u);
}

TEST_F(DeviceModule, EventThreadsRunAfterOpening) {
    Open();
    EXPECT_TRUE(producer.WaitForCalls("EventGetData", 5));
}

TEST_F(DeviceModule, StoppingThrowsTheFirstFailureAfterStoppingAll) {
    Open();
    producer.Answer("EventKill").With(GC_ERR_INVALID_HANDLE).AlsoRuns();
    producer.ClearLog();
    EXPECT_EQ(CatchProducerError([&] { device->StopEventAcquisitionThread(); }).text,
              "-1006 = EventKill(PTR)");
    EXPECT_EQ(producer.Log("EventKill").size(), 5u);
    EXPECT_NO_THROW(device->StopEventAcquisitionThread());
}

TEST_F(DeviceModule, ReadOnlyDeviceRefusesFeatureWritesAtThePort) {
    Open(DEVICE_ACCESS_READONLY);
    GenApi::CIntegerPtr width = RemoteInteger("Width");
    EXPECT_FALSE(GenApi::IsWritable(width));
    producer.ClearLog();
    EXPECT_EQ(Catch<GenICam::RuntimeException>([&] { width->SetValue(32); }).text, "Port is not writable.");
    EXPECT_EQ(Writes(), Calls{});
    GenApi::CEnumerationPtr selector = device->GetLocalIZqPort()->GetINodeMap()->GetNode("EventSelector");
    EXPECT_NO_THROW(selector->SetIntValue(0));
}

TEST_F(DeviceModule, ControlledDeviceWritesFeatures) {
    for (const DEVICE_ACCESS_FLAGS flags : {DEVICE_ACCESS_CONTROL, DEVICE_ACCESS_EXCLUSIVE}) {
        Open(flags);
        RemoteInteger("Width")->SetValue(32);
        EXPECT_EQ(producer.GetRegister<uint32_t>("REMOTE1", Scripted::Width), 32u);
        device.reset();
        system.reset();
    }
}

TEST_F(DeviceModule, StreamIndexIsChecked) {
    Open();
    const auto text = [&](size_t index) {
        return Catch<GenICam::OutOfRangeException>([&] { device->CreateIZqDataStream(index, nullptr); }).text;
    };
    EXPECT_EQ(text(1), "nIndex = 1 must be smaller than Max = 1");
    EXPECT_EQ(text(static_cast<size_t>(-1)), "nIndex = -1 must be equal or greater than Min = 0");
}

TEST_F(DeviceModule, RefusedStreamIsReported) {
    Open();
    producer.Answer("DevOpenDataStream").With(GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(CatchProducerError([&] { device->CreateIZqDataStream(0, nullptr); }).text,
              "-1004 = DevOpenDataStream(PTR, PTR, PTR)");
}

TEST_F(DeviceModule, StreamThatCanNotBeBuiltIsClosed) {
    Open();
    producer.Answer("DevGetInfo").Command(DEVICE_INFO_ID).With(GC_ERR_IO);
    EXPECT_EQ(CatchProducerError([&] { device->CreateIZqDataStream(0, nullptr); }).text,
              "-1010 = DevGetInfo(PTR, 0, PTR, PTR, PTR)");
    EXPECT_EQ(producer.Log("DSClose"), (Calls{"DSClose(DS1)"}));
}

TEST_F(DeviceModule, CameraStartsLockedAndStopsBeforeItIsUnlocked) {
    Open();
    producer.ClearLog();
    device->AcquisitionStart();
    device->AcquisitionStop();
    device->AcquisitionStop();
    EXPECT_EQ(Writes(),
              (Calls{"GCWritePort(REMOTE1, 0x110, 01000000)", "GCWritePort(REMOTE1, 0x114, 01000000)",
                     "GCWritePort(REMOTE1, 0x118, 01000000)", "GCWritePort(REMOTE1, 0x110, 00000000)"}));
}

TEST_F(DeviceModule, StopWithoutStartExecutesNothing) {
    Open();
    producer.ClearLog();
    device->AcquisitionStop();
    EXPECT_EQ(producer.Log(), Calls{});
}

TEST_F(DeviceModule, FailingStopCommandLeavesTheParametersLocked) {
    Open();
    device->AcquisitionStart();
    producer.Answer("GCWritePort").At(Scripted::AcquisitionStop).With(GC_ERR_IO);
    EXPECT_EQ(CatchProducerError([&] { device->AcquisitionStop(); }).error, -1010);
    EXPECT_EQ(producer.GetRegister<uint32_t>("REMOTE1", Scripted::TLParamsLocked), 1u);
    EXPECT_NO_THROW(device->AcquisitionStop());
}

TEST_F(DeviceModule, SuccessWithoutAHandleIsAnInvalidHandle) {
    expectNothingOpen = false;
    producer.Answer("IFOpenDevice").OnCall(1).WithoutData();
    EXPECT_EQ(OpeningFails().text, "-1006 = IFOpenDevice(PTR, PTR, 0x3, PTR)");
    system.reset();
    producer.Answer("DevGetPort").OnCall(1).WithoutData();
    EXPECT_EQ(OpeningFails().text, "-1006 = DevGetPort(PTR, PTR)");
    system.reset();
    Open();
    producer.Answer("DevOpenDataStream").WithoutData();
    EXPECT_EQ(CatchProducerError([&] { OpenStream(); }).text, "-1006 = DevOpenDataStream(PTR, PTR, PTR)");
}

TEST_F(DeviceModule, FailedAllocationAtStartOrStopIsReported) {
    Open();
    const auto failing = [](const auto& action) {
        const FailingAllocation allocation(1);
        action();
    };
    EXPECT_EQ(Catch<GenICam::BadAllocException>([&] { failing([&] { device->AcquisitionStart(); }); }).text,
              "std::bad_alloc");
    device->AcquisitionStart();
    EXPECT_EQ(Catch<GenICam::BadAllocException>([&] { failing([&] { device->AcquisitionStop(); }); }).text,
              "std::bad_alloc");
}

TEST_F(DeviceModule, FailingStartCommandTakesTheLockBack) {
    Open();
    producer.Answer("GCWritePort").At(Scripted::AcquisitionStart).With(GC_ERR_IO);
    EXPECT_EQ(CatchProducerError([&] { device->AcquisitionStart(); }).error, -1010);
    EXPECT_EQ(producer.GetRegister<uint32_t>("REMOTE1", Scripted::TLParamsLocked), 0u);
    producer.ClearLog();
    device->AcquisitionStop();
    EXPECT_EQ(Writes(), Calls{});
}

TEST_F(DeviceModule, TeardownStopsAStartedCamera) {
    Open();
    device->AcquisitionStart();
    producer.ClearLog();
    device.reset();
    EXPECT_EQ(Writes(),
              (Calls{"GCWritePort(REMOTE1, 0x118, 01000000)", "GCWritePort(REMOTE1, 0x110, 00000000)"}));
}

std::string CameraDescription(const std::string& nodes) {
    return "<RegisterDescription ModelName=\"M\" VendorName=\"V\" StandardNameSpace=\"None\" "
           "SchemaMajorVersion=\"1\" "
           "SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" "
           "SubMinorVersion=\"0\" xmlns=\"http://www.genicam.org/GenApi/Version_1_1\"><Category "
           "Name=\"Root\"/>" +
           nodes + "<Port Name=\"Device\"/></RegisterDescription>";
}

TEST_F(DeviceModule, CameraWithoutTLParamsLockedCanNotBeStarted) {
    producer.SetDescription("REMOTE", "camera.xml", CameraDescription(""));
    Open();
    const Thrown thrown = Catch<GenICam::LogicalErrorException>([&] { device->AcquisitionStart(); });
    EXPECT_EQ(thrown.text, "NULL pointer dereferenced");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqDevice");
}

TEST_F(DeviceModule, CameraWithoutStartCommandIsNamed) {
    producer.SetDescription("REMOTE", "camera.xml",
                            CameraDescription("<Integer Name=\"TLParamsLocked\"><Value>0</Value></Integer>"));
    Open();
    const Thrown thrown = Catch<GenICam::RuntimeException>([&] { device->AcquisitionStart(); });
    EXPECT_EQ(thrown.text, "Node AcquisitionStart not found.");
    EXPECT_EQ(RemoteInteger("TLParamsLocked")->GetValue(), 0);
}

TEST_F(DeviceModule, StartThatIsNoCommandIsNamed) {
    producer.SetDescription("REMOTE", "camera.xml",
                            DescribedAs("<Integer Name=\"TLParamsLocked\"><Value>0</Value></Integer><Integer "
                                        "Name=\"AcquisitionStart\"><Value>0</Value>"
                                        "</Integer><Port Name=\"Device\"/>"));
    Open();
    EXPECT_EQ(Catch<GenICam::RuntimeException>([&] { device->AcquisitionStart(); }).text,
              "Node AcquisitionStart not found.");
}

TEST_F(DeviceModule, CameraWithoutStopCommandIsNamed) {
    producer.SetDescription("REMOTE", "camera.xml",
                            CameraDescription("<Integer Name=\"TLParamsLocked\"><Value>0</Value></Integer>"
                                              "<Command Name=\"AcquisitionStart\"><Value>0</Value>"
                                              "<CommandValue>1</CommandValue></Command>"));
    Open();
    device->AcquisitionStart();
    EXPECT_EQ(Catch<GenICam::RuntimeException>([&] { device->AcquisitionStop(); }).text,
              "Node AcquisitionStop not found.");
}

TEST_F(DeviceModule, FailuresOfTheTeardownAreNotSeen) {
    expectNothingOpen = false;
    Open();
    device->AcquisitionStart();
    producer.Answer("GCWritePort").With(GC_ERR_IO);
    producer.Answer("EventKill").With(GC_ERR_ERROR).AlsoRuns();
    producer.Answer("GCUnregisterEvent").With(GC_ERR_ERROR).AlsoRuns();
    producer.Answer("DevClose").With(GC_ERR_ERROR).AlsoRuns();
    producer.ClearLog();
    EXPECT_NO_THROW(device.reset());
    EXPECT_EQ(producer.Log("EventKill").size(), 5u);
    EXPECT_EQ(producer.Log("GCUnregisterEvent").size(), 5u);
    EXPECT_EQ(producer.Log("DevClose").size(), 1u);
}

TEST_F(DeviceModule, ProducerIsAskedToNotifyALoss) {
    Open();
    EXPECT_EQ(producer.GetRegister<uint32_t>("DEV1", Scripted::EventSelector), 1u);
    EXPECT_EQ(producer.GetRegister<uint32_t>("DEV1", Scripted::EventNotification), 1u);
}

TEST_F(DeviceModule, RefusedNotificationDoesNotMatter) {
    producer.Answer("GCWritePort").On("DEV").With(GC_ERR_ACCESS_DENIED);
    Open();
    EXPECT_FALSE(device->IsDeviceLost());
}

TEST_F(DeviceModule, ProducerWithoutTheEntriesOfALossIsNotAsked) {
    producer.SetDescription(
        "DEV", "device.xml",
        DescribedAs("<Enumeration Name=\"EventSelector\"><EnumEntry "
                    "Name=\"Other\"><Value>0</Value></EnumEntry><pValue>Reg</pValue>"
                    "</Enumeration><IntReg "
                    "Name=\"Reg\"><Address>0x300</Address><Length>4</Length><AccessMode>RW</AccessMode>"
                    "<pPort>DevicePort</pPort></IntReg><Port Name=\"DevicePort\"/>"));
    Open();
    EXPECT_EQ(producer.Log("GCWritePort"), Calls{});
    EXPECT_FALSE(device->IsDeviceLost());
}

TEST_F(DeviceModule, CameraWithoutAPortOfThatNameIsNotProbed) {
    producer.SetDescription("REMOTE", "camera.xml", DescribedAs("<Port Name=\"Camera\"/>"));
    Open();
    EXPECT_FALSE(device->IsDeviceLost());
}

TEST_F(DeviceModule, InvalidationWithoutAnEventThreadIsNoLoss) {
    producer.Answer("GCRegisterEvent").On("DEV").Event(EVENT_MODULE).With(GC_ERR_NOT_IMPLEMENTED);
    Open();
    device->GetLocalIZqPort()->GetINodeMap()->GetNode("EventDeviceLost")->InvalidateNode();
    EXPECT_FALSE(device->IsDeviceLost());
}

TEST_F(DeviceModule, FailingProbeMeansLostFromTheStart) {
    producer.Answer("GCReadPort").On("REMOTE").At(0).With(GC_ERR_IO);
    Open();
    EXPECT_TRUE(device->IsDeviceLost());
}

TEST_F(DeviceModule, ProbeReadsFourBytesAtAddressZero) {
    Open();
    const Calls reads = producer.Log("GCReadPort");
    ASSERT_FALSE(reads.empty());
    EXPECT_EQ(reads.back(), "GCReadPort(REMOTE1, 0x0, 4)");
}

bool BecomesLost(IZqDevice& device) {
    for (int i = 0; i < 200 && !device.IsDeviceLost(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return device.IsDeviceLost();
}

TEST_F(DeviceModule, ModuleEventReportsALoss) {
    Open();
    ASSERT_TRUE(producer.PushDeviceLost("DEV1"));
    EXPECT_TRUE(BecomesLost(*device));
}

TEST_F(DeviceModule, InvalidationFromAnotherThreadIsNoLoss) {
    Open();
    device->GetLocalIZqPort()->GetINodeMap()->GetNode("EventDeviceLost")->InvalidateNode();
    EXPECT_FALSE(device->IsDeviceLost());
}

TEST_F(DeviceModule, EventOfAnotherIdIsNoLoss) {
    Open();
    PushedEvent event;
    event.id = "0099";
    event.value = std::string(4, '\0');
    const uint64_t before = producer.Count("EventGetDataInfo");
    ASSERT_TRUE(producer.Push("DEV1", EVENT_MODULE, event));
    ASSERT_TRUE(producer.WaitForCalls("EventGetDataInfo", before + 4));
    EXPECT_FALSE(device->IsDeviceLost());
}

TEST_F(DeviceModule, ReleaseOnItsOwnEventThreadIsRefused) {
    Open();
    std::string text;
    std::atomic<bool> done{false};
    device->RegisterCallback(MakeCallback([&](IZqCallbackParamBase*) {
        text = Catch<GenICam::LogicalErrorException>([&] { device->Release(); }).text;
        done = true;
    }));
    ASSERT_TRUE(producer.PushError("DEV1", GC_ERR_IO, "x"));
    while (!done)
        std::this_thread::yield();
    EXPECT_NE(text, "");
}

/// What is released after its system can't be closed any more.
class LateDevice : public DeviceModule {
protected:
    void TearDown() override { device.reset(); }
};

TEST_F(LateDevice, CallsOfADeviceReleasedAfterItsSystemAnswerNotImplemented) {
    Open();
    system.reset();
    EXPECT_EQ(producer.Count("DevClose"), 0u);
    EXPECT_EQ(CatchProducerError([&] { device->GetIZqDeviceInfo()->GetVendor(); }).error, -1003);
    EXPECT_NO_THROW(device.reset());
}

TEST_F(DeviceModule, OpensAndClosesTwoHundredTimes) {
    system = OpenSystem();
    for (int i = 0; i < 200; ++i) {
        device = OpenDevice(system);
        device.reset();
    }
    EXPECT_EQ(producer.Opened("DEV"), 200u);
}

class DeviceWithoutStreams : public DeviceModule {
protected:
    DeviceWithoutStreams() : DeviceModule("without_DevGetNumDataStreams") {}
};

TEST_F(DeviceWithoutStreams, OpensWithNone) {
    Open();
    EXPECT_EQ(device->GetDataStreamCount(), 0u);
    EXPECT_EQ(Catch<GenICam::OutOfRangeException>([&] { device->CreateIZqDataStream(0, nullptr); }).text,
              "nIndex = 0 must be smaller than Max = 0");
}

class DeviceWithoutStreamIds : public DeviceModule {
protected:
    DeviceWithoutStreamIds() : DeviceModule("without_DevGetDataStreamID") {}
};

TEST_F(DeviceWithoutStreamIds, OpensWithNone) {
    Open();
    EXPECT_EQ(device->GetDataStreamCount(), 0u);
    EXPECT_EQ(producer.Count("DevGetNumDataStreams"), 0u);
}

class DeviceWithoutPort : public DeviceModule {
protected:
    DeviceWithoutPort() : DeviceModule("without_DevGetPort") {}
};

TEST_F(DeviceWithoutPort, CanNotBeOpened) {
    EXPECT_EQ(OpeningFails().text, "-1003 = DevGetPort(PTR, PTR)");
    EXPECT_EQ(producer.Log("DevClose").size(), 1u);
}

} // namespace
} // namespace ZqTest
