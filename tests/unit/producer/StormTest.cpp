#include "ProducerTest.h"

#include <atomic>
#include <thread>

namespace {

class Storm : public CameraTest {};

} // namespace

TEST_F(Storm, ThreadsOnOneStreamNeverBreakIt) {
    Open();
    OpenStream();
    MakeSmallAndFast();
    Queue(Announce(8, 64));
    Start();
    std::atomic<bool> stop{false};
    std::atomic<uint64_t> frames{0};
    const auto fetch = [&] {
        while (!stop) {
            EVENT_NEW_BUFFER_DATA data{};
            size_t size = sizeof data;
            if (gentl.EventGetData(newBuffer, &data, &size, 1) != GC_ERR_SUCCESS)
                continue;
            uint64_t id = 0;
            size = sizeof id;
            INFO_DATATYPE type = 0;
            gentl.DSGetBufferInfo(stream, data.BufferHandle, BUFFER_INFO_FRAMEID, &type, &id, &size);
            gentl.DSQueueBuffer(stream, data.BufferHandle);
            ++frames;
        }
    };
    std::thread fetchers[] = {std::thread(fetch), std::thread(fetch)};
    std::thread flusher([&] {
        for (int round = 0; round < 500; ++round)
            gentl.DSFlushQueue(stream, round % 5);
    });
    std::thread restarter([&] {
        for (int round = 0; round < 200; ++round) {
            gentl.DSStopAcquisition(stream, ACQ_STOP_FLAGS_KILL);
            gentl.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE);
            WriteInt(camera::AcquisitionFrameRateEnable, 0);
            gentl.EventKill(newBuffer);
        }
    });
    flusher.join();
    restarter.join();
    // After all that every buffer is still there and the stream goes on.
    EXPECT_EQ(gentl.DSFlushQueue(stream, ACQ_QUEUE_UNQUEUED_TO_INPUT), GC_ERR_SUCCESS);
    const uint64_t enough = frames + 1000;
    EXPECT_TRUE(Eventually([&] { return frames >= enough; }));
    stop = true;
    for (std::thread& fetcher : fetchers)
        fetcher.join();
    EXPECT_EQ(StreamInfo<size_t>(STREAM_INFO_NUM_ANNOUNCED), 8U);
    EXPECT_EQ(StreamInfo<uint64_t>(STREAM_INFO_NUM_UNDERRUN), 0U);
}

TEST_F(Storm, ClosingUnderRunningCallsIsSafe) {
    for (int round = 0; round < 50; ++round) {
        Open();
        OpenStream();
        MakeSmallAndFast();
        const auto buffers = Announce(4, 64);
        Queue(buffers);
        Start();
        const DS_HANDLE closing = stream;
        const EVENT_HANDLE event = newBuffer;
        std::atomic<bool> closed{false};
        std::thread fetcher([&] {
            GC_ERROR result = GC_ERR_SUCCESS;
            while (result != GC_ERR_INVALID_HANDLE && result != GC_ERR_ABORT) {
                EVENT_NEW_BUFFER_DATA data{};
                size_t size = sizeof data;
                result = gentl.EventGetData(event, &data, &size, GENTL_INFINITE);
                if (result == GC_ERR_SUCCESS)
                    gentl.DSQueueBuffer(closing, data.BufferHandle);
            }
        });
        std::thread asker([&] {
            while (!closed) {
                char text[64];
                size_t size = sizeof text;
                INFO_DATATYPE type = 0;
                gentl.DSGetInfo(closing, STREAM_INFO_ID, &type, text, &size);
                gentl.GCReadPort(remote, 0, text, &(size = 4));
            }
        });
        ASSERT_EQ(gentl.TLClose(system), GC_ERR_SUCCESS);
        closed = true;
        fetcher.join();
        asker.join();
        system = nullptr;
    }
}

TEST_F(Storm, BuffersAnnouncedDuringAClosingGoWithTheStream) {
    Open();
    for (int round = 0; round < 100; ++round) {
        OpenStream();
        std::vector<BUFFER_HANDLE> announced[4];
        std::atomic<int> begun{0};
        std::vector<std::thread> announcers;
        for (std::vector<BUFFER_HANDLE>& own : announced) {
            announcers.emplace_back([&] {
                ++begun;
                BUFFER_HANDLE buffer = nullptr;
                while (own.size() < 1000 &&
                       gentl.DSAllocAndAnnounceBuffer(stream, 64, nullptr, &buffer) == GC_ERR_SUCCESS)
                    own.push_back(buffer);
            });
        }
        ASSERT_TRUE(Eventually([&] { return begun == 4; }));
        ASSERT_EQ(gentl.DSClose(stream), GC_ERR_SUCCESS);
        for (std::thread& announcer : announcers)
            announcer.join();
        for (const std::vector<BUFFER_HANDLE>& own : announced) {
            for (BUFFER_HANDLE buffer : own) {
                EVENT_HANDLE event = nullptr;
                ASSERT_EQ(gentl.GCRegisterEvent(buffer, EVENT_ERROR, &event), GC_ERR_INVALID_HANDLE);
            }
        }
    }
}

TEST_F(Storm, OneOfManyClosersWins) {
    for (int round = 0; round < 50; ++round) {
        system = OpenSystem();
        std::atomic<int> successes{0};
        std::vector<std::thread> closers;
        for (int i = 0; i < 4; ++i)
            closers.emplace_back([&] { successes += gentl.TLClose(system) == GC_ERR_SUCCESS; });
        for (std::thread& closer : closers)
            closer.join();
        ASSERT_EQ(successes, 1);
    }
}

TEST_F(Storm, ThreeCamerasStreamAtOnce) {
    std::vector<std::thread> threads;
    std::atomic<int> complete{0};
    for (const char* id : {u3vInterface, gevInterface, cxpInterface}) {
        Open(id);
        OpenStream();
        MakeSmallAndFast();
        Queue(Announce(6, 64));
        Start(500);
        threads.emplace_back([this, ds = stream, event = newBuffer, &complete] {
            for (uint64_t expected = 0; expected < 500; ++expected) {
                EVENT_NEW_BUFFER_DATA data{};
                size_t size = sizeof data;
                ASSERT_EQ(gentl.EventGetData(event, &data, &size, 5000), GC_ERR_SUCCESS);
                uint64_t id = 0;
                size = sizeof id;
                INFO_DATATYPE type = 0;
                ASSERT_EQ(
                    gentl.DSGetBufferInfo(ds, data.BufferHandle, BUFFER_INFO_FRAMEID, &type, &id, &size), 0);
                ASSERT_EQ(id, expected);
                gentl.DSQueueBuffer(ds, data.BufferHandle);
            }
            ++complete;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(complete, 3);
}
