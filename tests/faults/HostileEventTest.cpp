// Events that nobody ordered: refused registrations with garbage, storms, buffers that are no news.
#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "tests/faults/Fault.h"
#include "tests/unit/ZqApi_TL/ModuleTree.h"

namespace ZqTest {

using namespace GenTL;

namespace {

class HostileEvents : public OpenedDevice {
protected:
    void SetUp() override {
        OpenedDevice::SetUp();
        stream = OpenStream();
    }
    void TearDown() override {
        stream.reset();
        OpenedDevice::TearDown();
    }

    void Start() { stream->StartAcquisition(GENTL_INFINITE, ACQ_START_FLAGS_DEFAULT); }

    Buffer NextFrame() {
        EXPECT_TRUE(producer.PushFrame("DS1", Frame("pixels")));
        return Buffer(stream->RetrieveBuffer(10000, ZqTimeoutHandling_ReturnNull));
    }

    void PushRecord(void* handle, void* userPointer) {
        const EVENT_NEW_BUFFER_DATA record{handle, userPointer};
        EXPECT_TRUE(
            producer.PushRecord("DS1", std::string(reinterpret_cast<const char*>(&record), sizeof record)));
    }

    /// Gives a buffer back whatever the producer thinks of it.
    static void GiveBack(Buffer buffer) {
        IZqStreamBufferReleasable* const pBuffer = buffer.release();
        try {
            pBuffer->Release();
        } catch (const CZqGenTLErrorException& refused) {
            EXPECT_EQ(refused.GetError(), GC_ERR_RESOURCE_IN_USE);
        }
    }

    Stream stream;
};

} // namespace

TEST_F(HostileEvents, NullUserPointersAreIgnored) {
    Start();
    for (int record = 0; record < 100; ++record)
        PushRecord(reinterpret_cast<void*>(0x10), nullptr);
    EXPECT_TRUE(NextFrame());
    EXPECT_EQ(stream->RetrieveBuffer(0, ZqTimeoutHandling_ReturnNull), nullptr);
}

TEST_F(HostileEvents, BufferDeliveredTwiceIsSurvived) {
    Start();
    Buffer first = NextFrame();
    ASSERT_TRUE(first);
    const IZqStreamBufferInfo* const pInfo = first->GetIZqStreamBufferInfo();
    void* const userPointer = pInfo->GetUserPtr();
    // While the application has it, and again after it was given back.
    PushRecord(nullptr, userPointer);
    Buffer again(stream->RetrieveBuffer(100, ZqTimeoutHandling_ReturnNull));
    GiveBack(std::move(first));
    if (again)
        GiveBack(std::move(again));
    PushRecord(nullptr, userPointer);
    Buffer afterwards(stream->RetrieveBuffer(100, ZqTimeoutHandling_ReturnNull));
    if (afterwards)
        GiveBack(std::move(afterwards));
    EXPECT_TRUE(NextFrame());
    stream->StopAcquisition(ACQ_STOP_FLAGS_DEFAULT);
    Start();
    EXPECT_TRUE(NextFrame());
}

TEST_F(HostileEvents, RefusedRegistrationMayLeaveGarbageInTheHandle) {
    for (const char* const module : {"DEV", "DS", "BUF"})
        producer.Answer("GCRegisterEvent")
            .On(module)
            .With(GC_ERR_RESOURCE_IN_USE)
            .Value<uint64_t>(0xDEADBEEF);
    stream.reset();
    device.reset();
    producer.ClearLog();
    device = OpenDevice(system);
    stream = OpenStream();
    Start();
    stream->StopAcquisition(ACQ_STOP_FLAGS_DEFAULT);
    stream.reset();
    device.reset();
    // Nothing is asked of a handle that was not given, and nothing is unregistered that is another's.
    EXPECT_EQ(producer.Log({"EventGetInfo", "EventKill", "GCUnregisterEvent"}), Calls{});
}

TEST_F(HostileEvents, StormsOnEveryModuleEndWithTheRelease) {
    const int events = Amount(5000, 5000, 200);
    system->StartEventAcquisitionThread();
    system->GetIZqInterface(0)->StartEventAcquisitionThread();
    stream->StartEventAcquisitionThread();
    Start();
    PushedEvent event;
    event.id = std::string("Width", sizeof "Width");
    event.value = std::string("64", sizeof "64");
    event.valueType = INFO_DATATYPE_STRING;
    for (int i = 0; i < events; ++i) {
        for (const int type :
             {EVENT_FEATURE_INVALIDATE, EVENT_FEATURE_CHANGE, EVENT_REMOTE_DEVICE, EVENT_MODULE})
            EXPECT_TRUE(producer.Push("DEV1", type, event));
        for (const char* const module : {"TL1", "IF1", "DEV1", "DS1"})
            EXPECT_TRUE(producer.PushError(module, GC_ERR_IO, "storm"));
    }
    EXPECT_TRUE(NextFrame());
}

TEST_F(HostileEvents, EventGetDataMayFailAThousandTimesInARow) {
    producer.Answer("EventGetData").Event(EVENT_NEW_BUFFER).With(GC_ERR_IO).Times(1000);
    Start();
    EXPECT_TRUE(producer.WaitForCalls("EventGetData", 1000));
    EXPECT_EQ(CatchProducerError([&] { stream->RetrieveBuffer(10000, ZqTimeoutHandling_ReturnNull); }).error,
              GC_ERR_IO);
    EXPECT_TRUE(Eventually([&] {
        try {
            return stream->RetrieveBuffer(0, ZqTimeoutHandling_ReturnNull) == nullptr;
        } catch (const CZqGenTLErrorException&) {
            return false;
        }
    }));
    EXPECT_TRUE(NextFrame());
}

} // namespace ZqTest
