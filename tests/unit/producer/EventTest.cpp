#include "ProducerTest.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace {

class Events : public CameraTest {
protected:
    void SetUp() override {
        CameraTest::SetUp();
        Open();
        OpenStream();
    }

    GC_ERROR Register(void* source, EVENT_TYPE type) {
        EVENT_HANDLE event = nullptr;
        return gentl.GCRegisterEvent(source, type, &event);
    }

    GC_ERROR Wait(EVENT_HANDLE event, uint64_t timeoutMs) {
        char data[1024];
        size_t size = sizeof data;
        return gentl.EventGetData(event, data, &size, timeoutMs);
    }

    template <class T>
    T Info(EVENT_HANDLE event, EVENT_INFO_CMD command) {
        T value{};
        size_t size = sizeof value;
        INFO_DATATYPE type = 0;
        EXPECT_EQ(gentl.EventGetInfo(event, command, &type, &value, &size), GC_ERR_SUCCESS);
        EXPECT_EQ(size, sizeof value);
        return value;
    }

    void DeliverOne() {
        MakeSmallAndFast();
        Queue(Announce(1, 64));
        Start(1);
    }

    /// Three small frames in the output queue.
    void DeliverThree() {
        MakeSmallAndFast();
        Queue(Announce(3, 64));
        Start(3);
        EXPECT_TRUE(Eventually([&] { return StreamInfo<size_t>(STREAM_INFO_NUM_AWAIT_DELIVERY) >= 3; }));
    }
};

} // namespace

TEST_F(Events, EveryModuleTakesItsTypes) {
    const BUFFER_HANDLE buffer = Announce(1, 64)[0];
    for (void* source : {system, interface, device, stream, buffer})
        EXPECT_EQ(Register(source, EVENT_ERROR), GC_ERR_SUCCESS);
    for (void* source : {system, interface, device, stream, buffer})
        EXPECT_EQ(Register(source, EVENT_MODULE), GC_ERR_SUCCESS);
    for (EVENT_TYPE type : {EVENT_FEATURE_INVALIDATE, EVENT_FEATURE_CHANGE, EVENT_REMOTE_DEVICE}) {
        EXPECT_EQ(Register(device, type), GC_ERR_SUCCESS);
        EXPECT_EQ(Register(system, type), GC_ERR_NOT_IMPLEMENTED);
        EXPECT_EQ(Register(stream, type), GC_ERR_NOT_IMPLEMENTED);
    }
    EXPECT_EQ(Register(device, EVENT_NEW_BUFFER), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(Register(device, 77), GC_ERR_NOT_IMPLEMENTED);
}

TEST_F(Events, RegistrationIsOncePerModuleAndType) {
    EXPECT_EQ(Register(stream, EVENT_NEW_BUFFER), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(gentl.GCUnregisterEvent(stream, EVENT_NEW_BUFFER), GC_ERR_SUCCESS);
    EXPECT_EQ(gentl.GCUnregisterEvent(stream, EVENT_NEW_BUFFER), GC_ERR_NOT_INITIALIZED);
    EXPECT_EQ(Wait(newBuffer, 0), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(Register(stream, EVENT_NEW_BUFFER), GC_ERR_SUCCESS);
}

TEST_F(Events, EachKillEndsOneWaitAndBeatsData) {
    DeliverThree();
    EXPECT_EQ(gentl.EventKill(newBuffer), GC_ERR_SUCCESS);
    EXPECT_EQ(gentl.EventKill(newBuffer), GC_ERR_SUCCESS);
    EXPECT_EQ(Wait(newBuffer, 0), GC_ERR_ABORT);
    EXPECT_EQ(Wait(newBuffer, GENTL_INFINITE), GC_ERR_ABORT);
    EXPECT_EQ(Info<size_t>(newBuffer, EVENT_NUM_IN_QUEUE), 3U);
    EXPECT_EQ(Wait(newBuffer, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(Info<uint64_t>(newBuffer, EVENT_NUM_FIRED), 3U);
}

TEST_F(Events, KillEndsExactlyOneOfTwoWaits) {
    std::atomic<int> ended{0};
    std::atomic<int> aborted{0};
    std::atomic<int> fetched{0};
    const auto wait = [&] {
        const GC_ERROR result = Wait(newBuffer, GENTL_INFINITE);
        aborted += result == GC_ERR_ABORT;
        fetched += result == GC_ERR_SUCCESS;
        ++ended;
    };
    std::thread first(wait);
    std::thread second(wait);
    EXPECT_EQ(gentl.EventKill(newBuffer), GC_ERR_SUCCESS);
    EXPECT_TRUE(Eventually([&] { return ended >= 1; }));
    DeliverOne();
    first.join();
    second.join();
    EXPECT_EQ(aborted, 1);
    EXPECT_EQ(fetched, 1);
}

TEST_F(Events, UnregisteringAbortsWaitsAndFreesFilledBuffers) {
    DeliverThree();
    EVENT_HANDLE error = nullptr;
    ASSERT_EQ(gentl.GCRegisterEvent(stream, EVENT_ERROR, &error), GC_ERR_SUCCESS);
    std::atomic<bool> waiting{false};
    std::thread waiter([&] {
        waiting = true;
        const GC_ERROR result = Wait(error, GENTL_INFINITE);
        EXPECT_TRUE(result == GC_ERR_ABORT || result == GC_ERR_INVALID_HANDLE);
    });
    EXPECT_TRUE(Eventually([&] { return waiting.load(); }));
    EXPECT_EQ(gentl.GCUnregisterEvent(stream, EVENT_ERROR), GC_ERR_SUCCESS);
    waiter.join();
    EXPECT_EQ(gentl.GCUnregisterEvent(stream, EVENT_NEW_BUFFER), GC_ERR_SUCCESS);
    EXPECT_EQ(StreamInfo<size_t>(STREAM_INFO_NUM_AWAIT_DELIVERY), 0U);
}

TEST_F(Events, BuffersFilledBeforeTheRegistrationAreHandedOut) {
    ASSERT_EQ(gentl.GCUnregisterEvent(stream, EVENT_NEW_BUFFER), GC_ERR_SUCCESS);
    DeliverThree();
    ASSERT_EQ(gentl.GCRegisterEvent(stream, EVENT_NEW_BUFFER, &newBuffer), GC_ERR_SUCCESS);
    EXPECT_EQ(Info<uint64_t>(newBuffer, EVENT_NUM_FIRED), 3U);
    EXPECT_NE(Next(0), nullptr);
}

TEST_F(Events, TooSmallABufferRemovesNothing) {
    DeliverThree();
    char data[15];
    size_t size = sizeof data;
    EXPECT_EQ(gentl.EventGetData(newBuffer, data, &size, 0), GC_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(Info<size_t>(newBuffer, EVENT_NUM_IN_QUEUE), 3U);
    EXPECT_EQ(gentl.EventGetData(newBuffer, nullptr, nullptr, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(Info<size_t>(newBuffer, EVENT_NUM_IN_QUEUE), 2U);
}

TEST_F(Events, FlushEmptiesTheOutputQueue) {
    DeliverThree();
    EXPECT_EQ(gentl.EventFlush(newBuffer), GC_ERR_SUCCESS);
    EXPECT_EQ(StreamInfo<size_t>(STREAM_INFO_NUM_AWAIT_DELIVERY), 0U);
    EXPECT_EQ(Wait(newBuffer, 0), GC_ERR_TIMEOUT);
}

TEST_F(Events, TheirSizesAreKnown) {
    EXPECT_EQ(Info<EVENT_TYPE>(newBuffer, EVENT_EVENT_TYPE), EVENT_NEW_BUFFER);
    EXPECT_EQ(Info<size_t>(newBuffer, EVENT_SIZE_MAX), 16U);
    EXPECT_EQ(Info<size_t>(newBuffer, EVENT_INFO_DATA_SIZE_MAX), 8U);
    EVENT_HANDLE module = nullptr;
    ASSERT_EQ(gentl.GCRegisterEvent(device, EVENT_MODULE, &module), GC_ERR_SUCCESS);
    EXPECT_EQ(Info<size_t>(module, EVENT_SIZE_MAX), 512U);
    EXPECT_EQ(Info<size_t>(module, EVENT_INFO_DATA_SIZE_MAX), 256U);
}

TEST_F(Events, NewBufferDataIsExplained) {
    DeliverThree();
    EVENT_NEW_BUFFER_DATA data{};
    size_t size = sizeof data;
    ASSERT_EQ(gentl.EventGetData(newBuffer, &data, &size, 0), GC_ERR_SUCCESS);
    void* id = nullptr;
    size_t idSize = sizeof id;
    INFO_DATATYPE type = 0;
    EXPECT_EQ(gentl.EventGetDataInfo(newBuffer, &data, size, EVENT_DATA_ID, &type, &id, &idSize),
              GC_ERR_SUCCESS);
    EXPECT_EQ(type, INFO_DATATYPE_PTR);
    EXPECT_EQ(id, data.BufferHandle);
    EXPECT_EQ(gentl.EventGetDataInfo(newBuffer, &data, 3, EVENT_DATA_ID, &type, &id, &idSize),
              GC_ERR_INVALID_PARAMETER);
}

TEST_F(Events, WaitLastsAsLongAsItsTimeout) {
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(Wait(newBuffer, 30), GC_ERR_TIMEOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(30));
}

TEST_F(Events, WaitForNothingWithWrongPointers) {
    char data[64];
    void* const bad = reinterpret_cast<void*>(~uintptr_t{0});
    size_t size = sizeof data;
    EXPECT_EQ(gentl.EventGetData(newBuffer, data, nullptr, GENTL_INFINITE), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(gentl.EventGetData(newBuffer, bad, &size, GENTL_INFINITE), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(gentl.EventGetData(newBuffer, data, static_cast<size_t*>(bad), GENTL_INFINITE),
              GC_ERR_INVALID_PARAMETER);
}
