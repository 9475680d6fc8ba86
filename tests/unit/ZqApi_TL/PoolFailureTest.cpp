#include <map>

#include "tests/support/AllocationFailure.h"
#include "tests/unit/ZqApi_TL/OpenedStream.h"

namespace ZqTest {
namespace {

class PoolFailure : public OpenedStream {
protected:
    Thrown StartFails() {
        const Thrown thrown = CatchProducerError([this] { Start(); });
        EXPECT_EQ(producer.Opened("BUF"), producer.Closed("BUF"));
        EXPECT_EQ(producer.Count("DSStartAcquisition"), 0u);
        EXPECT_EQ(producer.Log({"EventKill", "GCUnregisterEvent"}).size(), 2 + producer.Closed("BUF"));
        return thrown;
    }

    void NextStartDelivers() {
        producer.AnswerAsUsual();
        Start();
        EXPECT_TRUE(RetrieveNewFrame());
    }
};

TEST_F(PoolFailure, SuccessWithoutAHandleIsAnInvalidHandle) {
    expectNothingOpen = false;
    producer.Answer("DSAllocAndAnnounceBuffer").OnCall(2).WithoutData();
    EXPECT_EQ(CatchProducerError([this] { Start(); }).text,
              "-1006 = DSAllocAndAnnounceBuffer(PTR, 4096, PTR, PTR)");
    NextStartDelivers();
}

TEST_F(PoolFailure, FourthAnnouncementFailing) {
    producer.Answer("DSAllocAndAnnounceBuffer").OnCall(4).With(GC_ERR_OUT_OF_MEMORY);
    const Thrown thrown = StartFails();
    EXPECT_EQ(thrown.text, "-1021 = DSAllocAndAnnounceBuffer(PTR, 4096, PTR, PTR)");
    EXPECT_EQ(thrown.function, "DSAllocAndAnnounceBuffer");
    EXPECT_EQ(thrown.error, -1021);
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqStreamBuffer");
    EXPECT_EQ(producer.Log("DSRevokeBuffer"),
              (Calls{"DSRevokeBuffer(DS1, BUF1)", "DSRevokeBuffer(DS1, BUF2)", "DSRevokeBuffer(DS1, BUF3)"}));
    EXPECT_EQ(producer.Log("GCUnregisterEvent").front(), "GCUnregisterEvent(DS1, 1)");
    NextStartDelivers();
}

TEST_F(PoolFailure, BaseAddressFailingRevokesThatBuffer) {
    producer.Answer("DSGetBufferInfo").Command(BUFFER_INFO_BASE).OnCall(2).With(GC_ERR_IO).Saying("no base");
    const Thrown thrown = CatchProducerError([this] { Start(); });
    EXPECT_EQ(thrown.text, "-1010 = DSGetBufferInfo(PTR, PTR, 0, PTR, PTR, PTR) no base");
    EXPECT_EQ(producer.Log("DSRevokeBuffer"),
              (Calls{"DSRevokeBuffer(DS1, BUF2)", "DSRevokeBuffer(DS1, BUF1)"}));
    NextStartDelivers();
}

TEST_F(PoolFailure, DeviceIdFailingRevokesThatBuffer) {
    producer.Answer("DevGetInfo").Command(DEVICE_INFO_ID).With(GC_ERR_IO);
    EXPECT_EQ(CatchProducerError([this] { Start(); }).text, "-1010 = DevGetInfo(PTR, 0, PTR, PTR, PTR)");
    EXPECT_EQ(producer.Log("DSRevokeBuffer"), (Calls{"DSRevokeBuffer(DS1, BUF1)"}));
    NextStartDelivers();
}

TEST_F(PoolFailure, QueueingFailingRevokesThatBufferFirst) {
    producer.Answer("DSQueueBuffer").OnCall(3).With(GC_ERR_INVALID_HANDLE);
    const Thrown thrown = StartFails();
    EXPECT_EQ(thrown.text, "-1006 = DSQueueBuffer(PTR, PTR)");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqDataStream");
    EXPECT_EQ(producer.Log({"DSRevokeBuffer", "DSFlushQueue"}),
              (Calls{"DSRevokeBuffer(DS1, BUF3)", "DSFlushQueue(DS1, 4)", "DSRevokeBuffer(DS1, BUF1)",
                     "DSRevokeBuffer(DS1, BUF2)"}));
    NextStartDelivers();
}

TEST_F(PoolFailure, FirstFailureLeavesWithItsOwnText) {
    producer.Answer("DSStartAcquisition").With(GC_ERR_INVALID_BUFFER).Saying("need 8");
    producer.Answer("DSFlushQueue").With(GC_ERR_ERROR).AlsoRuns().Saying("flush is broken too");
    const Thrown thrown = CatchProducerError([this] { Start(); });
    EXPECT_EQ(thrown.text, "-1013 = DSStartAcquisition(PTR, 0, -1) need 8");
    EXPECT_EQ(producer.Log("DSRevokeBuffer").size(), 6u);
    EXPECT_FALSE(Retrieve(5000, ThrowException));
    NextStartDelivers();
}

TEST_F(PoolFailure, FailedFlushDoesNotKeepTheBuffers) {
    Start();
    producer.Answer("DSFlushQueue").With(GC_ERR_IO).AlsoRuns();
    EXPECT_NO_THROW(stream.reset());
    EXPECT_EQ(producer.Log("DSRevokeBuffer").size(), 6u);
}

TEST_F(PoolFailure, FailedRevocationDoesNotKeepTheOthers) {
    Start();
    Stop();
    producer.Answer("DSRevokeBuffer").On("BUF2").With(GC_ERR_BUSY).AlsoRuns().Saying("busy");
    producer.Answer("DSRevokeBuffer").On("BUF4").With(GC_ERR_IO).AlsoRuns();
    producer.SetPayloadSize(8192);
    const Thrown thrown = CatchProducerError([this] { Start(); });
    EXPECT_EQ(thrown.text, "-1022 = DSRevokeBuffer(PTR, PTR, PTR, PTR) busy");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqStreamBuffer");
    EXPECT_EQ(producer.Log("DSRevokeBuffer").size(), 6u);
    NextStartDelivers();
    expectNothingOpen = false;
}

TEST_F(PoolFailure, FailedKillWhileReplacingFailsTheStart) {
    Start();
    Stop();
    producer.SetPayloadSize(8192);
    producer.Answer("EventKill").On("DS1/1").OnCall(1).With(GC_ERR_IO).AlsoRuns();
    EXPECT_EQ(CatchProducerError([this] { Start(); }).text, "-1010 = EventKill(PTR)");
    EXPECT_EQ(producer.Opened("BUF"), producer.Closed("BUF"));
    NextStartDelivers();
}

TEST_F(PoolFailure, RefusedErrorEventOfABufferIsAcceptedAsItStands) {
    producer.Answer("GCRegisterEvent").On("BUF").With(GC_ERR_IO);
    Start();
    const Buffer buffer = RetrieveNewFrame();
    EXPECT_NO_THROW(buffer->StartEventAcquisitionThread());
    EXPECT_EQ(producer.Opened("BUF"), 6u);
}

TEST_F(PoolFailure, NoFailedAllocationLeavesAnythingBehind) {
    stream->SetStreamBufferCount(2);
    Start();
    stream.reset();
    bool failed = true;
    for (uint64_t n = 1; failed; ++n) {
        SCOPED_TRACE(n);
        ASSERT_LT(n, 2000u);
        stream = OpenStream();
        stream->SetStreamBufferCount(2);
        {
            const FailingAllocation memory(n);
            try {
                Start();
                Stop();
            } catch (const GenICam::BadAllocException& exception) {
                EXPECT_STREQ(exception.GetDescription(), "std::bad_alloc");
            }
            failed = memory.Failed();
        }
        NextStartDelivers();
        stream.reset();
        ASSERT_EQ(producer.Opened("BUF"), producer.Closed("BUF"));
        ASSERT_EQ(producer.Opened("DS"), producer.Closed("DS"));
    }
}

TEST_F(PoolFailure, NoFailedAllocationLeavesAStreamOpen) {
    stream.reset();
    bool failed = true;
    for (uint64_t n = 1; failed; ++n) {
        SCOPED_TRACE(n);
        ASSERT_LT(n, 500u);
        const FailingAllocation memory(n);
        try {
            OpenStream();
        } catch (const GenICam::BadAllocException& exception) {
            EXPECT_STREQ(exception.GetDescription(), "std::bad_alloc");
        }
        failed = memory.Failed();
        ASSERT_EQ(producer.Opened("DS"), producer.Closed("DS"));
    }
}

/// Memory from the application, every block noted.
class NotingAllocator final : public IZqAllocator {
public:
    void Allocate(void** ppBuffer, size_t size, void** ppContext) override {
        EXPECT_EQ(*ppBuffer, nullptr);
        EXPECT_EQ(*ppContext, nullptr);
        ++allocations;
        if (allocations == throwAt)
            throw std::runtime_error("the application's own");
        if (allocations == nullAt)
            return;
        auto block = std::make_unique<Block>();
        block->bytes.resize(size);
        *ppBuffer = block->bytes.data();
        *ppContext = block.get();
        blocks[*ppBuffer] = std::move(block);
    }
    void Deallocate(void* pBuffer, size_t size, void* pContext) override {
        ++deallocations;
        revokesBefore.push_back(producer->Log("DSRevokeBuffer").size());
        closesBefore.push_back(producer->Count("DSClose"));
        const auto block = blocks.find(pBuffer);
        ASSERT_NE(block, blocks.end());
        EXPECT_EQ(block->second.get(), pContext);
        EXPECT_EQ(block->second->bytes.size(), size);
        blocks.erase(block);
    }
    void OnDeregister() override { ADD_FAILURE() << "streams don't call this"; }

    struct Block {
        std::vector<uint8_t> bytes;
    };
    const ScriptedProducer* producer = nullptr;
    std::map<void*, std::unique_ptr<Block>> blocks;
    int allocations = 0;
    int deallocations = 0;
    int throwAt = 0;
    int nullAt = 0;
    std::vector<size_t> revokesBefore;
    std::vector<uint64_t> closesBefore;
};

class PoolAllocator : public OpenedStream {
protected:
    void SetUp() override {
        OpenedDevice::SetUp();
        allocator.producer = &producer;
        stream = OpenStream(&allocator);
    }
    void TearDown() override {
        OpenedStream::TearDown();
        EXPECT_TRUE(allocator.blocks.empty());
    }

    NotingAllocator allocator;
};

TEST_F(PoolAllocator, SuppliesTheMemoryAndGetsItBackOnce) {
    Start();
    EXPECT_EQ(producer.Log("DSAnnounceBuffer"), Calls(6, "DSAnnounceBuffer(DS1, 4096)"));
    EXPECT_EQ(producer.Count("DSAllocAndAnnounceBuffer"), 0u);
    EXPECT_EQ(producer.Count("DSGetBufferInfo"), 0u);
    stream.reset();
    EXPECT_EQ(allocator.allocations, 6);
    EXPECT_EQ(allocator.deallocations, 6);
    EXPECT_EQ(allocator.revokesBefore, (std::vector<size_t>{1, 2, 3, 4, 5, 6}));
}

TEST_F(PoolAllocator, FrameAndImageAreInItsMemory) {
    Start();
    const Buffer buffer = RetrieveNewFrame(Frame("pixels"));
    IZqImage* const image = buffer->GetIZqImage();
    ASSERT_EQ(allocator.blocks.count(image->GetImageBuffer()), 1u);
    const auto& block = allocator.blocks[image->GetImageBuffer()];
    EXPECT_EQ(image->GetUserContext(), block.get());
    EXPECT_EQ(std::string(block->bytes.begin(), block->bytes.begin() + 6), "pixels");
}

TEST_F(PoolAllocator, RestartKeepsItsMemory) {
    for (int round = 0; round < 3; ++round) {
        Start();
        Stop();
    }
    EXPECT_EQ(allocator.allocations, 6);
    EXPECT_EQ(allocator.deallocations, 0);
}

TEST_F(PoolAllocator, FailedQueueingGivesBackWhatWasTaken) {
    producer.Answer("DSQueueBuffer").OnCall(3).With(GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(CatchProducerError([this] { Start(); }).text, "-1006 = DSQueueBuffer(PTR, PTR)");
    EXPECT_EQ(allocator.allocations, 3);
    EXPECT_EQ(allocator.deallocations, 3);
    EXPECT_EQ(allocator.revokesBefore, (std::vector<size_t>{1, 2, 3}));
    stream.reset();
    EXPECT_EQ(allocator.deallocations, 3);
}

TEST_F(PoolAllocator, BlockThatCannotBeRevokedAfterAFailedConstructionComesBackAfterTheStreamIsClosed) {
    expectNothingOpen = false;
    producer.Answer("DevGetInfo").Command(DEVICE_INFO_ID).With(GC_ERR_IO);
    producer.Answer("DSRevokeBuffer").With(GC_ERR_BUSY);
    EXPECT_EQ(CatchProducerError([this] { Start(); }).text, "-1010 = DevGetInfo(PTR, 0, PTR, PTR, PTR)");
    EXPECT_EQ(allocator.deallocations, 0);
    stream.reset();
    EXPECT_EQ(allocator.closesBefore, (std::vector<uint64_t>{1}));
}

TEST_F(PoolAllocator, FailedAnnouncementGivesItsBlockBack) {
    producer.Answer("DSAnnounceBuffer").OnCall(2).With(GC_ERR_INVALID_PARAMETER);
    const Thrown thrown = CatchProducerError([this] { Start(); });
    EXPECT_EQ(thrown.text, "-1009 = DSAnnounceBuffer(PTR, PTR, 4096, PTR, PTR)");
    EXPECT_EQ(thrown.function, "DSAnnounceBuffer");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqStreamBuffer");
    EXPECT_EQ(allocator.deallocations, 2);
}

TEST_F(PoolAllocator, NoMemoryIsReportedWithoutText) {
    allocator.nullAt = 3;
    const Thrown thrown = Catch<GenICam::BadAllocException>([this] { Start(); });
    EXPECT_EQ(thrown.text, "");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqDataStream");
    EXPECT_EQ(allocator.deallocations, 2);
    EXPECT_EQ(producer.Opened("BUF"), producer.Closed("BUF"));
}

TEST_F(PoolAllocator, ItsOwnExceptionPasses) {
    allocator.throwAt = 3;
    EXPECT_THROW(Start(), std::runtime_error);
    EXPECT_EQ(allocator.deallocations, 2);
    EXPECT_EQ(producer.Opened("BUF"), producer.Closed("BUF"));
}

TEST_F(PoolAllocator, BlockOfABufferThatCannotBeRevokedComesBackAfterTheClose) {
    Start();
    producer.Answer("DSRevokeBuffer").On("BUF3").With(GC_ERR_BUSY).AlsoRuns();
    stream.reset();
    EXPECT_EQ(allocator.deallocations, 6);
    EXPECT_EQ(allocator.closesBefore, (std::vector<uint64_t>{0, 0, 0, 0, 0, 1}));
    expectNothingOpen = false;
}

TEST_F(PoolAllocator, BlockOfAHeldBufferGoesWithThePool) {
    Start();
    Buffer held = RetrieveNewFrame();
    Stop();
    producer.SetPayloadSize(8192);
    Start();
    EXPECT_EQ(allocator.deallocations, 6);
    held.reset();
    EXPECT_EQ(allocator.deallocations, 6);
}

} // namespace
} // namespace ZqTest
