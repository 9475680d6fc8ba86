#include <atomic>

#include "tests/support/AllocationFailure.h"
#include "tests/unit/ZqApi_TL/OpenedStream.h"

namespace ZqTest {
namespace {

/// Two interfaces: IF1 with DEV1, IFB with DEVB; arrays of their devices and streams.
class Arrays : public ModuleTree {
protected:
    explicit Arrays(const std::string& variant = "full") : ModuleTree(variant) {
        producer.AddInterface("IFB", "GEV");
        producer.AddDevice("IFB", "DEVB");
    }

    void SetUp() override {
        system = OpenSystem();
        for (size_t index = 0; index < 2; ++index)
            devices.Register(
                system->GetIZqInterface(index)->CreateIZqDevice(size_t{0}, DEVICE_ACCESS_CONTROL));
        for (size_t index = 0; index < 2; ++index)
            streams.Register(devices[index]->CreateIZqDataStream(0, nullptr));
    }

    void TearDown() override {
        streams.Release();
        devices.Release();
        system.reset();
        ModuleTree::TearDown();
    }

    void Start() { streams.StartAcquisition(GENTL_INFINITE, ACQ_START_FLAGS_DEFAULT); }

    System system;
    CIZqDevicePtrArray devices;
    CIZqDataStreamPtrArray streams;
};

TEST_F(Arrays, EntriesKeepTheirOrder) {
    CIZqDevicePtrArray array;
    EXPECT_EQ(array.GetSize(), 0u);
    IZqDeviceReleasable* const first = devices.Deregister(0);
    IZqDeviceReleasable* const second = devices.Deregister(0);
    EXPECT_EQ(devices.GetSize(), 0u);
    EXPECT_EQ(array.Register(first), 0u);
    EXPECT_EQ(array.Register(second), 1u);
    EXPECT_EQ(array[0], first);
    EXPECT_EQ(array[1], second);
    EXPECT_EQ(array.Deregister(0), first);
    EXPECT_EQ(array[0], second);
    EXPECT_EQ(producer.Log("DevClose"), Calls{});
    devices.Register(first);
    devices.Register(array.Deregister(0));
}

TEST_F(Arrays, IndexIsChecked) {
    for (const auto& access :
         {+[](CIZqDevicePtrArray&array, size_t index) { static_cast<void>(array[index]); },
          +[](CIZqDevicePtrArray&array, size_t index) { array.Deregister(index); }}) {
        const Thrown beyond = Catch<GenICam::OutOfRangeException>([&] { access(devices, 2); });
        EXPECT_EQ(beyond.text, "nIndex = 2 must be smaller than Max = 2");
        EXPECT_EQ(beyond.source, "ZqApi_TL/ZqAutoPtrArray");
        EXPECT_EQ(Catch<GenICam::OutOfRangeException>([&] { access(devices, SIZE_MAX); }).text,
                  "nIndex = -1 must be equal or greater than Min = 0");
    }
    EXPECT_EQ(devices.GetSize(), 2u);
}

TEST_F(Arrays, DestructionReleasesInOrderAndSwallowsFailures) {
    {
        CIZqDataStreamPtrArray array;
        array.Register(streams.Deregister(0));
        array.Register(nullptr);
        array.Register(streams.Deregister(0));
        producer.ClearLog();
    }
    EXPECT_EQ(producer.Log("DSClose"), (Calls{"DSClose(DS1)", "DSClose(DS2)"}));
}

TEST_F(Arrays, StreamThatRefusesItsReleaseStaysInTheArray) {
    Start();
    std::atomic<bool> refused{false};
    void* const handle = streams[0]->RegisterCallback(MakeCallback([&](IZqCallbackParamBase*) {
        try {
            streams.Release();
        } catch (const GenICam::LogicalErrorException&) {
            refused = true;
        }
    }));
    EXPECT_TRUE(producer.PushFrame("DS1", Frame("pixels")));
    EXPECT_TRUE(Eventually([&] { return refused.load(); }));
    EXPECT_EQ(streams.GetSize(), 2u);
    streams[0]->DeregisterCallback(handle);
}

TEST_F(Arrays, ReleaseLeavesAnEmptyArray) {
    streams.Register(nullptr);
    streams.Release();
    EXPECT_EQ(streams.GetSize(), 0u);
    EXPECT_EQ(producer.Log("DSClose"), (Calls{"DSClose(DS1)", "DSClose(DS2)"}));
    streams.Register(devices[0]->CreateIZqDataStream(0, nullptr));
    EXPECT_EQ(streams.GetSize(), 1u);
}

TEST_F(Arrays, NullEntryStopsTheProcess) {
    CIZqDevicePtrArray array;
    array.Register(nullptr);
    EXPECT_DEATH(static_cast<void>(array[0]), "\\(pUT\\) != NULL");
    EXPECT_DEATH(array.AcquisitionStart(), "\\(pUT\\) != NULL");
}

TEST_F(Arrays, CamerasStartAndStopInOrder) {
    producer.ClearLog();
    devices.AcquisitionStart();
    devices.AcquisitionStop();
    EXPECT_EQ(producer.Log("GCWritePort"),
              (Calls{"GCWritePort(REMOTE1, 0x110, 01000000)", "GCWritePort(REMOTE1, 0x114, 01000000)",
                     "GCWritePort(REMOTE2, 0x110, 01000000)", "GCWritePort(REMOTE2, 0x114, 01000000)",
                     "GCWritePort(REMOTE1, 0x118, 01000000)", "GCWritePort(REMOTE1, 0x110, 00000000)",
                     "GCWritePort(REMOTE2, 0x118, 01000000)", "GCWritePort(REMOTE2, 0x110, 00000000)"}));
    EXPECT_NO_THROW(CIZqDevicePtrArray().AcquisitionStart());
}

TEST_F(Arrays, FirstFailureEndsAnOperationOnAll) {
    producer.ClearLog();
    producer.Answer("GCWritePort").On("REMOTE1").With(GC_ERR_IO);
    EXPECT_THROW(devices.AcquisitionStart(), CZqGenTLErrorException);
    EXPECT_EQ(producer.Log("GCWritePort").size(), 1u);
    producer.Answer("DSStartAcquisition").On("DS2").With(GC_ERR_IO);
    EXPECT_EQ(CatchProducerError([this] { Start(); }).text, "-1010 = DSStartAcquisition(PTR, 0, -1)");
    EXPECT_TRUE(streams.IsGrabbingAny());
    EXPECT_FALSE(streams.IsGrabbingAll());
}

TEST_F(Arrays, StreamsStartStopAndTellWhetherTheyGrab) {
    EXPECT_FALSE(streams.IsGrabbingAny());
    EXPECT_FALSE(streams.IsGrabbingAll());
    Start();
    EXPECT_TRUE(streams.IsGrabbingAll());
    streams.StopAcquisition(ACQ_STOP_FLAGS_DEFAULT);
    EXPECT_FALSE(streams.IsGrabbingAny());
    EXPECT_EQ(producer.Log("DSStopAcquisition"),
              (Calls{"DSStopAcquisition(DS1, 0)", "DSStopAcquisition(DS2, 0)"}));
    EXPECT_TRUE(CIZqDataStreamPtrArray().IsGrabbingAll());
    EXPECT_FALSE(CIZqDataStreamPtrArray().IsGrabbingAny());
}

TEST_F(Arrays, BufferComesFromTheStreamThatHasOne) {
    Start();
    EXPECT_TRUE(producer.PushFrame("DS2", Frame("second")));
    const Buffer buffer(streams.RetrieveBuffer(10000, ReturnNull));
    ASSERT_TRUE(buffer);
    EXPECT_EQ(buffer->GetIZqDataStream(), streams[1]);
}

TEST_F(Arrays, LowestIndexWins) {
    Start();
    EXPECT_TRUE(producer.PushFrame("DS2", Frame("second")));
    EXPECT_TRUE(producer.PushFrame("DS1", Frame("first")));
    EXPECT_TRUE(Eventually([this] {
        // Delivered by the producer and in the stream's own queue.
        return streams[0]->GetIZqDataStreamInfo()->GetNumDelivered() == 0 &&
               streams[1]->GetIZqDataStreamInfo()->GetNumDelivered() == 0;
    }));
    for (size_t index = 0; index < 2; ++index) {
        const Buffer buffer(streams.RetrieveBuffer(10000, ReturnNull));
        ASSERT_TRUE(buffer);
        EXPECT_EQ(buffer->GetIZqDataStream(), streams[index]);
    }
}

TEST_F(Arrays, TimeOutIsNullOrThrown) {
    Start();
    EXPECT_EQ(streams.RetrieveBuffer(1, ReturnNull), nullptr);
    const Thrown thrown =
        Catch<GenICam::TimeoutException>([this] { streams.RetrieveBuffer(1, ThrowException); });
    EXPECT_EQ(thrown.text,
              "A timeout occurred during the processing of CIZqDataStreamPtrArray::RetrieveBuffer(1, 1)");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqAutoPtrArray");
}

TEST_F(Arrays, EmptyOneTimesOutAtOnce) {
    CIZqDataStreamPtrArray none;
    EXPECT_EQ(none.RetrieveBuffer(INFINITE, ReturnNull), nullptr);
    EXPECT_EQ(Catch<GenICam::TimeoutException>([&] { none.RetrieveBuffer(5000, ThrowException); }).text,
              "A timeout occurred during the processing of CIZqDataStreamPtrArray::RetrieveBuffer(5000, 1)");
}

TEST_F(Arrays, FailedAllocationLeavesTheObjectWithTheCaller) {
    {
        const FailingAllocation failing(1);
        EXPECT_EQ(Catch<GenICam::BadAllocException>([] { CIZqDevicePtrArray array; }).text, "std::bad_alloc");
    }
    CIZqDevicePtrArray array;
    IZqDeviceReleasable* const device = devices.Deregister(0);
    {
        const FailingAllocation failing(1);
        const Thrown thrown = Catch<GenICam::BadAllocException>([&] { array.Register(device); });
        EXPECT_EQ(thrown.text, "std::bad_alloc");
        EXPECT_EQ(thrown.source, "ZqApi_TL/ZqAutoPtrArray");
    }
    EXPECT_EQ(array.GetSize(), 0u);
    devices.Register(device);
}

/// A data stream that is not the library's.
class ForeignStream final : public IZqDataStreamReleasable {
public:
    void* RegisterCallback(IZqCallback*) override { return nullptr; }
    void DeregisterCallback(void*) override {}
    IZqDevice* GetIZqDevice() override { return nullptr; }
    IZqPort* GetIZqPort() override { return nullptr; }
    const IZqDataStreamInfo* GetIZqDataStreamInfo() override { return nullptr; }
    size_t GetStreamBufferCount() override { return 0; }
    void SetStreamBufferCount(size_t) override {}
    IZqStreamBufferReleasable* RetrieveBuffer(uint32_t, EZqTimeoutHandling_t) override { return nullptr; }
    void StartAcquisition(uint64_t, ACQ_START_FLAGS) override {}
    void StopAcquisition(ACQ_STOP_FLAGS) override {}
    bool IsGrabbing() override { return false; }
    double GetCurrentFPS() override { return 0; }
    double GetCurrentBPS() override { return 0; }
    void Release() override {
        throw GenICam::LogicalErrorException("stays", "test", 1, "LogicalErrorException");
    }
    void StartEventAcquisitionThread() override {}
    void StopEventAcquisitionThread() override {}
};

TEST_F(Arrays, ForeignStreamStopsTheRetrieval) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    ForeignStream foreign;
    streams.Register(&foreign);
    EXPECT_DEATH(streams.RetrieveBuffer(0, ReturnNull), "\\(pIZqDataStreamInside\\) != NULL");
    streams.Deregister(2);
}

TEST_F(Arrays, RefusedReleaseIsSwallowedByTheDestructorAndStaysOtherwise) {
    ForeignStream foreign;
    CIZqDataStreamPtrArray array;
    array.Register(streams.Deregister(0));
    array.Register(&foreign);
    EXPECT_THROW(array.Release(), GenICam::LogicalErrorException);
    EXPECT_EQ(array.GetSize(), 1u);
    EXPECT_EQ(array[0], &foreign);
    EXPECT_EQ(producer.Log("DSClose"), (Calls{"DSClose(DS1)"}));
}

TEST_F(Arrays, ElevenStreamsAreWaitedOnAtOnce) {
    for (int index = 0; index < 9; ++index)
        producer.AddDevice("IFB", "MORE" + std::to_string(index));
    IZqInterface* const pInterface = system->GetIZqInterface(1);
    pInterface->UpdateDeviceList();
    ASSERT_EQ(pInterface->GetDeviceCount(), 10u);
    CIZqDevicePtrArray moreDevices;
    CIZqDataStreamPtrArray all;
    all.Register(streams.Deregister(0));
    all.Register(streams.Deregister(0));
    for (size_t index = 1; index < 10; ++index)
        moreDevices.Register(pInterface->CreateIZqDevice(index, DEVICE_ACCESS_CONTROL));
    for (size_t index = 0; index < 9; ++index)
        all.Register(moreDevices[index]->CreateIZqDataStream(0, nullptr));
    all.StartAcquisition(GENTL_INFINITE, ACQ_START_FLAGS_DEFAULT);
    EXPECT_TRUE(producer.PushFrame("DS11", Frame("last")));
    {
        const Buffer buffer(all.RetrieveBuffer(10000, ReturnNull));
        ASSERT_TRUE(buffer);
        EXPECT_EQ(buffer->GetIZqDataStream(), all[10]);
    }
    const FailingAllocation failing(1);
    EXPECT_THROW(all.RetrieveBuffer(0, ReturnNull), GenICam::BadAllocException);
}

class SystemArrays : public ModuleTree {
protected:
    SystemArrays() { producer.AllowSeveralSystems(); }
};

TEST_F(SystemArrays, FirstDeviceComesFromTheFirstSystemThatHasOne) {
    CIZqSystemPtrArray systems;
    systems.Register(CreateIZqSystem(ZqSystemVendor_Default, ZqInterfaceType_GEV));
    systems.Register(CreateIZqSystem(ZqSystemVendor_Default, ZqInterfaceType_All));
    const Device device(systems.CreateFirstIZqDevice(DEVICE_ACCESS_CONTROL));
    ASSERT_TRUE(device);
    EXPECT_STREQ(device->GetIZqDeviceInfo()->GetID().c_str(), "DEV1");
}

TEST_F(SystemArrays, SystemThatThrowsIsPassedOver) {
    CIZqSystemPtrArray systems;
    systems.Register(CreateIZqSystem(ZqSystemVendor_Default, ZqInterfaceType_All));
    systems.Register(CreateIZqSystem(ZqSystemVendor_Default, ZqInterfaceType_All));
    producer.Answer("IFOpenDevice").OnCall(1).With(GC_ERR_ACCESS_DENIED);
    const Device device(systems.CreateFirstIZqDevice(DEVICE_ACCESS_CONTROL));
    EXPECT_TRUE(device);
    for (const DEVICE_ACCESS_FLAGS flags : {DEVICE_ACCESS_FLAGS{1}, DEVICE_ACCESS_FLAGS{5}})
        EXPECT_EQ(Catch<GenICam::RuntimeException>([&] { systems.CreateFirstIZqDevice(flags); }).text,
                  "There is no available device.");
}

TEST_F(SystemArrays, NoDeviceAnywhereSaysSo) {
    CIZqSystemPtrArray systems;
    EXPECT_EQ(
        Catch<GenICam::RuntimeException>([&] { systems.CreateFirstIZqDevice(DEVICE_ACCESS_CONTROL); }).text,
        "There is no available device.");
    systems.Register(CreateIZqSystem(ZqSystemVendor_Default, ZqInterfaceType_GEV));
    const Thrown thrown =
        Catch<GenICam::RuntimeException>([&] { systems.CreateFirstIZqDevice(DEVICE_ACCESS_CONTROL); });
    EXPECT_EQ(thrown.text, "There is no available device.");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqAutoPtrArray");
    systems.Release();
    EXPECT_EQ(systems.GetSize(), 0u);
}

} // namespace
} // namespace ZqTest
