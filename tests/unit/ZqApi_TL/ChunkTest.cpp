#include <atomic>
#include <functional>
#include <random>
#include <thread>

#include "tests/support/AllocationFailure.h"
#include "tests/unit/ZqApi_TL/ChunkCamera.h"

namespace ZqTest {
namespace {

class StreamChunks : public ChunkCamera {
protected:
    explicit StreamChunks(const std::string& variant = "full") : ChunkCamera(variant) {}

    void StartAs(const std::string& tlType, size_t buffers = 1) {
        OpenAs(tlType);
        stream->SetStreamBufferCount(buffers);
        Start();
    }

    std::string MissingMap(const Buffer& buffer) {
        const Thrown thrown = Catch<GenICam::RuntimeException>([&] { buffer->GetChunkINodeMap(); });
        EXPECT_EQ(thrown.source, "ZqApi_TL/ZqStreamBuffer");
        return thrown.text;
    }

    void AnswerChunkList(const std::vector<SINGLE_CHUNK_DATA>& chunks) {
        const auto* const bytes = reinterpret_cast<const char*>(chunks.data());
        producer.Answer("DSGetBufferChunkData").Bytes({bytes, chunks.size() * sizeof chunks[0]});
    }
};

TEST_F(StreamChunks, EveryDeliveryOfABufferShowsItsOwnValues) {
    StartAs("U3V");
    EXPECT_EQ(Timestamp(RetrieveNewFrame(StampedFrame(100))), 100);
    EXPECT_EQ(Timestamp(RetrieveNewFrame(StampedFrame(200))), 200);
    Frame incomplete = StampedFrame(300);
    incomplete.Info<bool8_t>(BUFFER_INFO_IS_INCOMPLETE, INFO_DATATYPE_BOOL8, 1);
    EXPECT_EQ(Timestamp(RetrieveNewFrame(incomplete)), -1);
    const std::string wild = std::string(16, 'x') + Number(TIMESTAMP, 4) + Number(0xFFFFFFFC, 4);
    EXPECT_EQ(Timestamp(RetrieveNewFrame(ChunkFrame(wild))), -1);
    EXPECT_EQ(Timestamp(RetrieveNewFrame(StampedFrame(500))), 500);
    EXPECT_EQ(Timestamp(RetrieveNewFrame(Frame("an image without chunks"))), -1);
    EXPECT_EQ(Timestamp(RetrieveNewFrame(StampedFrame(700))), 700);
}

TEST_F(StreamChunks, EveryBufferHasItsOwnNodeMap) {
    StartAs("U3V", 2);
    const Buffer first = RetrieveNewFrame(StampedFrame(1));
    const Buffer second = RetrieveNewFrame(StampedFrame(2));
    EXPECT_EQ(Timestamp(first), 1);
    EXPECT_EQ(Timestamp(second), 2);
    EXPECT_NE(first->GetChunkINodeMap(), second->GetChunkINodeMap());
    EXPECT_STREQ(first->GetChunkINodeMap()->GetDeviceName().c_str(), "RemoteDevice_DEV1");
}

TEST_F(StreamChunks, StayBetweenReleaseAndTheNextHandOut) {
    StartAs("U3V", 2);
    EXPECT_TRUE(producer.PushFrame("DS1", StampedFrame(1)));
    IZqStreamBufferReleasable* const released = stream->RetrieveBuffer(10000, ReturnNull);
    released->Release();
    GenApi::CIntegerPtr timestamp = released->GetChunkINodeMap()->GetNode("ChunkTimestamp");
    EXPECT_EQ(timestamp->GetValue(), 1);
}

TEST_F(StreamChunks, RefusedPreparationIsTriedAgainByTheNextStartOnly) {
    OpenAs("U3V");
    stream->SetStreamBufferCount(1);
    producer.Answer("GCGetPortInfo").On("REMOTE1").Command(PORT_INFO_TLTYPE).With(GC_ERR_IO);
    Start();
    producer.ClearLog();
    EXPECT_EQ(Timestamp(RetrieveNewFrame(StampedFrame(3))), -1);
    EXPECT_EQ(producer.Log("GCGetPortInfo"), Calls{});
    producer.AnswerAsUsual();
    Stop();
    Start();
    EXPECT_EQ(Timestamp(RetrieveNewFrame(StampedFrame(4))), 4);
}

TEST_F(StreamChunks, ChunkBehindTheFilledPartIsNoneOfThisFrame) {
    StartAs("CXP");
    AnswerChunkList({{TIMESTAMP, 8, 8}});
    Frame frame = ChunkFrame(std::string(16, 'x'));
    EXPECT_NE(Timestamp(RetrieveNewFrame(frame)), -1);
    frame.Info<size_t>(BUFFER_INFO_SIZE_FILLED, INFO_DATATYPE_SIZET, 12);
    EXPECT_EQ(Timestamp(RetrieveNewFrame(frame)), -1);
    frame.Fails(BUFFER_INFO_SIZE_FILLED, GC_ERR_NOT_AVAILABLE);
    EXPECT_NE(Timestamp(RetrieveNewFrame(frame)), -1);
}

TEST_F(StreamChunks, GigEVisionHasItsTagsBigEndian) {
    StartAs("GEV");
    EXPECT_EQ(Timestamp(RetrieveNewFrame(ChunkFrame(BigEndianChunks(Stamped(42))))), 42);
    EXPECT_EQ(Timestamp(RetrieveNewFrame(StampedFrame(43))), -1);
}

TEST_F(StreamChunks, OtherTransportsAreAskedWhereTheChunksLie) {
    StartAs("CXP");
    AnswerChunkList({{TIMESTAMP, 4, 8}, {SIZE, 12, 8}});
    const Buffer buffer =
        RetrieveNewFrame(ChunkFrame("skip" + Number(77, 8) + Number(640, 4) + Number(480, 4)));
    EXPECT_EQ(Timestamp(buffer), 77);
    EXPECT_EQ(ChunkInteger(buffer, "ChunkWidth")->GetValue(), 640);
    EXPECT_EQ(ChunkInteger(buffer, "ChunkHeight")->GetValue(), 480);
    EXPECT_EQ(producer.Log("DSGetBufferChunkData"),
              (Calls{"DSGetBufferChunkData(DS1, BUF1, null)", "DSGetBufferChunkData(DS1, BUF1, 2)"}));
}

TEST_F(StreamChunks, EmptyListIsNoChunkData) {
    StartAs("CXP");
    AnswerChunkList({});
    EXPECT_EQ(Timestamp(RetrieveNewFrame(ChunkFrame("image"))), -1);
    EXPECT_EQ(producer.Log("DSGetBufferChunkData"), (Calls{"DSGetBufferChunkData(DS1, BUF1, null)"}));
}

TEST_F(StreamChunks, AttachingAnAttachedBufferChangesNothing) {
    StartAs("CXP");
    AnswerChunkList({{TIMESTAMP, 0, 8}});
    const Buffer buffer = RetrieveNewFrame(ChunkFrame(Number(5, 8)));
    const size_t asked = producer.Log("DSGetBufferChunkData").size();
    dynamic_cast<IZqStreamBufferInside&>(*buffer).AttachChunkBuffer();
    EXPECT_EQ(producer.Log("DSGetBufferChunkData").size(), asked);
    EXPECT_EQ(Timestamp(buffer), 5);
}

TEST_F(StreamChunks, ListThatLiesIsNoChunkData) {
    StartAs("CXP");
    for (const SINGLE_CHUNK_DATA& chunk : {SINGLE_CHUNK_DATA{TIMESTAMP, 4089, 8},
                                           {TIMESTAMP, -8, 8},
                                           {TIMESTAMP, 8, SIZE_MAX},
                                           {TIMESTAMP, PTRDIFF_MAX, 8}}) {
        AnswerChunkList({chunk});
        EXPECT_EQ(Timestamp(RetrieveNewFrame(ChunkFrame(std::string(64, 'x')))), -1);
    }
    producer.Answer("DSGetBufferChunkData").SizeQuery().Bytes("").Size(SIZE_MAX);
    EXPECT_EQ(Timestamp(RetrieveNewFrame(ChunkFrame(std::string(64, 'x')))), -1);
    producer.AnswerAsUsual();
    EXPECT_EQ(Timestamp(RetrieveNewFrame(ChunkFrame(std::string(64, 'x')))), -1);
    AnswerChunkList({{TIMESTAMP, 0, 8}});
    EXPECT_EQ(Timestamp(RetrieveNewFrame(ChunkFrame(Number(5, 8)))), 5);
}

class StreamChunksWithoutList : public StreamChunks {
protected:
    StreamChunksWithoutList() : StreamChunks("without_DSGetBufferChunkData") {}
};

TEST_F(StreamChunksWithoutList, GenericTransportHasNone) {
    StartAs("CXP");
    EXPECT_EQ(Timestamp(RetrieveNewFrame(ChunkFrame(Number(5, 8)))), -1);
}

TEST_F(StreamChunks, ChunkOnlyPayloadIsAttachedToo) {
    StartAs("U3V");
    const auto bytes = LittleEndianChunks({{TIMESTAMP, Number(9, 8)}});
    EXPECT_EQ(Timestamp(RetrieveNewFrame(ChunkFrame(bytes, PAYLOAD_TYPE_CHUNK_ONLY))), 9);
}

TEST_F(StreamChunks, AnyPayloadTypeMayCarryThemWhenTheProducerSaysSo) {
    StartAs("U3V");
    const auto bytes = LittleEndianChunks(Stamped(9));
    Frame frame = ChunkFrame(bytes, PAYLOAD_TYPE_IMAGE);
    EXPECT_EQ(Timestamp(RetrieveNewFrame(frame)), -1);
    frame.Info<bool8_t>(BUFFER_INFO_CONTAINS_CHUNKDATA, INFO_DATATYPE_BOOL8, 1);
    EXPECT_EQ(Timestamp(RetrieveNewFrame(frame)), 9);
    frame.Fails(BUFFER_INFO_CONTAINS_CHUNKDATA, GC_ERR_NOT_AVAILABLE);
    EXPECT_EQ(Timestamp(RetrieveNewFrame(frame)), -1);
}

TEST_F(StreamChunks, LayoutIsReadWithinTheAnnouncedMemory) {
    StartAs("U3V");
    Frame beyond = StampedFrame(11);
    beyond.Info<size_t>(BUFFER_INFO_SIZE_FILLED, INFO_DATATYPE_SIZET, 1u << 30);
    EXPECT_EQ(Timestamp(RetrieveNewFrame(beyond)), -1);
    Frame nowhere = StampedFrame(12);
    nowhere.Info<void*>(BUFFER_INFO_BASE, INFO_DATATYPE_PTR, nullptr);
    EXPECT_EQ(Timestamp(RetrieveNewFrame(nowhere)), -1);
    Frame elsewhere = StampedFrame(12);
    elsewhere.Info<uint64_t>(BUFFER_INFO_BASE, INFO_DATATYPE_PTR, 0x7800000000001000);
    EXPECT_EQ(Timestamp(RetrieveNewFrame(elsewhere)), -1);
    EXPECT_EQ(Timestamp(RetrieveNewFrame(StampedFrame(13))), 13);
}

TEST_F(StreamChunks, FailingQueriesHandTheBufferOutAllTheSame) {
    StartAs("U3V");
    for (const int command :
         {BUFFER_INFO_IS_INCOMPLETE, BUFFER_INFO_PAYLOADTYPE, BUFFER_INFO_BASE, BUFFER_INFO_SIZE_FILLED}) {
        EXPECT_EQ(Timestamp(RetrieveNewFrame(StampedFrame(1).Fails(command, GC_ERR_IO))), -1) << command;
        EXPECT_EQ(Timestamp(RetrieveNewFrame(StampedFrame(2))), 2) << command;
    }
}

TEST_F(StreamChunks, RootMayBeChunkDataAsWell) {
    producer.AnswerAsUsual();
    Describe("ChunkData");
    StartAs("U3V");
    EXPECT_EQ(Timestamp(RetrieveNewFrame(StampedFrame(3))), 3);
}

TEST_F(StreamChunks, RootChunkDataIsTakenBeforeChunkDataControl) {
    std::string text(20000, '\0');
    producer.ReadRegister("REMOTE1", 0x10000, text.data(), text.size());
    text = text.c_str();
    text.insert(text.find("<Port Name"),
                "<Category Name=\"ChunkData\"><pFeature>ChunkWidth</pFeature></Category>");
    producer.SetDescription("REMOTE", "camera.xml", text);
    StartAs("U3V");
    const Buffer buffer = RetrieveNewFrame(StampedFrame(3));
    EXPECT_NE(buffer->GetChunkINodeMap()->GetNode("ChunkWidth"), nullptr);
    EXPECT_EQ(buffer->GetChunkINodeMap()->GetNode("ChunkTimestamp"), nullptr);
}

TEST_F(StreamChunks, NodeMapHasTheParametersLocked) {
    StartAs("U3V");
    const Buffer buffer = RetrieveNewFrame(StampedFrame(3));
    EXPECT_EQ(ChunkInteger(buffer, "TLParamsLock")->GetValue(), 1);
    EXPECT_EQ(buffer->GetChunkINodeMap()->GetNode("Width"), nullptr);
    GenApi::CIntegerPtr main = device->GetRemoteIZqPort()->GetINodeMap()->GetNode("TLParamsLock");
    EXPECT_EQ(main->GetValue(), 0);
}

TEST_F(StreamChunks, FailedAllocationFailsTheStart) {
    OpenAs("U3V");
    bool failed = true;
    for (uint64_t n = 1; failed && n < 20000; n += n < 300 ? 1 : 97) {
        std::unique_ptr<FailingAllocation> allocation = std::make_unique<FailingAllocation>(n);
        try {
            Start();
        } catch (const GenICam::BadAllocException&) {
        }
        failed = allocation->Failed();
        allocation.reset();
        Stop();
    }
    Start();
    EXPECT_EQ(Timestamp(RetrieveNewFrame(StampedFrame(4))), 4);
}

TEST_F(StreamChunks, SteadyStateAllocatesNothing) {
    AnswerChunkList({{TIMESTAMP, 4, 8}, {SIZE, 12, 8}});
    for (const char* const tlType : {"U3V", "GEV", "CXP"}) {
        StartAs(tlType);
        const Frame frame = ChunkFrame(std::string(tlType) == "GEV" ? BigEndianChunks(Stamped(3))
                                                                    : LittleEndianChunks(Stamped(3)));
        uint64_t allocations = 0;
        for (int round = 0; round < 20; ++round) {
            EXPECT_TRUE(producer.PushFrame("DS1", frame));
            EXPECT_TRUE(Eventually([this] { return Info()->GetNumAwaitDelivery() == 1; }));
            const uint64_t before = AllocationCountOfThisThread();
            const Buffer buffer(stream->RetrieveBuffer(10000, ReturnNull));
            if (round >= 3)
                allocations += AllocationCountOfThisThread() - before;
            EXPECT_NE(Timestamp(buffer), -1);
        }
        EXPECT_EQ(allocations, 0u) << tlType;
        stream.reset();
        device.reset();
        system.reset();
    }
}

TEST_F(StreamChunks, ImageFallsBackToThem) {
    StartAs("U3V");
    const std::string size = Number(640, 4) + Number(480, 4);
    const Buffer buffer = RetrieveNewFrame(
        ChunkFrame(LittleEndianChunks({{IMAGE, "image"}, {SIZE, size}, {FORMAT, Number(0x01100007, 4)}}))
            .Fails(BUFFER_INFO_WIDTH, GC_ERR_NOT_AVAILABLE)
            .Fails(BUFFER_INFO_HEIGHT, GC_ERR_NOT_AVAILABLE)
            .Fails(BUFFER_INFO_DELIVERED_IMAGEHEIGHT, GC_ERR_NOT_AVAILABLE)
            .Fails(BUFFER_INFO_PIXELFORMAT, GC_ERR_NOT_AVAILABLE));
    IZqImage* const image = buffer->GetIZqImage();
    EXPECT_EQ(image->GetImageWidth(), 640u);
    EXPECT_EQ(image->GetImageHeight(), 480u);
    EXPECT_EQ(image->GetImagePixelFormat(), ZqPixelFormat_Mono16);
    EXPECT_EQ(image->GetImageLinePitch(), 1280u);
}

TEST_F(StreamChunks, FormatThatIsNoEnumerationIsNone) {
    std::string text(20000, '\0');
    producer.ReadRegister("REMOTE1", 0x10000, text.data(), text.size());
    text = text.c_str();
    const std::string name = "Name=\"ChunkPixelFormat\"";
    text.replace(text.find(name), name.size(), "Name=\"Other\"");
    text.insert(text.find("<Port Name"), "<Integer " + name + "><Value>17301505</Value></Integer>");
    producer.SetDescription("REMOTE", "camera.xml", text);
    StartAs("U3V");
    Frame frame = StampedFrame(1);
    frame.Fails(BUFFER_INFO_PIXELFORMAT, GC_ERR_NOT_AVAILABLE);
    const Buffer buffer = RetrieveNewFrame(frame);
    EXPECT_EQ(CatchProducerError([&] { buffer->GetIZqImage()->GetImagePixelFormat(); }).error,
              GC_ERR_NOT_AVAILABLE);
}

TEST_F(StreamChunks, ImageFallsBackToNothingWhereTheyAreMissing) {
    StartAs("U3V");
    const Buffer buffer = RetrieveNewFrame(StampedFrame(1)
                                               .Fails(BUFFER_INFO_WIDTH, GC_ERR_NOT_AVAILABLE)
                                               .Fails(BUFFER_INFO_PIXELFORMAT, GC_ERR_NOT_AVAILABLE));
    EXPECT_EQ(buffer->GetIZqImage()->GetImageWidth(), 0u);
    const Thrown thrown = CatchProducerError([&] { buffer->GetIZqImage()->GetImagePixelFormat(); });
    EXPECT_EQ(thrown.text, "-1014 = DSGetBufferInfo(PTR, PTR, 20, PTR, PTR, PTR)");
}

TEST_F(StreamChunks, HeldBufferOfAReplacedPoolHasNoneLeft) {
    StartAs("U3V");
    const Buffer held = RetrieveNewFrame(StampedFrame(5));
    INodeMap* const pNodeMap = held->GetChunkINodeMap();
    Stop();
    producer.SetPayloadSize(8192);
    Start();
    EXPECT_EQ(held->GetChunkINodeMap(), pNodeMap);
    EXPECT_EQ(Timestamp(held), -1);
}

// What the buffer's last reader still reads goes on being read, or is not available, while the pool that the
// buffer belonged to is torn down.
TEST_F(StreamChunks, HeldBufferIsReadWhileItsPoolIsReplaced) {
    StartAs("U3V");
    for (int round = 0; round < 20; ++round) {
        const Buffer held = RetrieveNewFrame(StampedFrame(5));
        std::atomic<bool> ends{false};
        std::thread reader([&] {
            while (!ends) {
                try {
                    const int64_t timestamp = Timestamp(held);
                    EXPECT_TRUE(timestamp == 5 || timestamp == -1) << timestamp;
                } catch (const GenICam::AccessException&) {
                    // Taken away between the question and the reading.
                }
            }
        });
        Stop();
        producer.SetPayloadSize(8192 + round);
        Start();
        ends = true;
        reader.join();
        EXPECT_EQ(Timestamp(held), -1);
    }
}

TEST_F(StreamChunks, WhatANodeCallbackThrowsLosesNoFrame) {
    StartAs("U3V");
    GenApi::INode* pTimestamp = nullptr;
    {
        const Buffer first = RetrieveNewFrame(StampedFrame(1));
        pTimestamp = first->GetChunkINodeMap()->GetNode("ChunkTimestamp");
    }
    bool throws = true;
    const std::function<void(GenApi::INode*)> fail = [&throws](GenApi::INode*) {
        if (throws)
            throw 42;
    };
    const auto callback = GenApi::Register(pTimestamp, fail);
    EXPECT_TRUE(RetrieveNewFrame(StampedFrame(2)));
    EXPECT_TRUE(RetrieveNewFrame(Frame("an image without chunks")));
    throws = false;
    EXPECT_EQ(Timestamp(RetrieveNewFrame(StampedFrame(3))), 3);
    GenApi::Deregister(callback);
}

TEST_F(StreamChunks, SmallOnesMayBeKeptBeyondTheirFrame) {
    std::string text(20000, '\0');
    producer.ReadRegister("REMOTE1", 0x10000, text.data(), text.size());
    text = text.c_str();
    const std::string id = "<ChunkID>00001002</ChunkID>";
    text.insert(text.find(id), "<CacheChunkData>Yes</CacheChunkData>");
    producer.SetDescription("REMOTE", "camera.xml", text);
    producer.SetPayloadSize(8192);
    StartAs("U3V");
    const auto widthAfter = [this](size_t size) {
        const std::string data = Number(640, 4) + Number(480, 4) + std::string(size - 8, '\0');
        {
            const Buffer buffer =
                RetrieveNewFrame(ChunkFrame(LittleEndianChunks({{IMAGE, "i"}, {SIZE, data}})));
            EXPECT_EQ(ChunkInteger(buffer, "ChunkWidth")->GetValue(), 640);
        }
        const Buffer next = RetrieveNewFrame(Frame("an image without chunks"));
        EXPECT_EQ(Timestamp(next), -1);
        const GenApi::CIntegerPtr pWidth = ChunkInteger(next, "ChunkWidth");
        return GenApi::IsReadable(pWidth) ? pWidth->GetValue() : -1;
    };
    EXPECT_EQ(widthAfter(2049), -1);
    EXPECT_EQ(widthAfter(2048), 640);
}

TEST_F(StreamChunks, NoMutationOfALayoutStopsTheStream) {
    std::mt19937 random(5);
    const auto mutated = [&random](std::string bytes) {
        for (size_t changes = 1 + random() % 4; changes > 0; --changes)
            bytes[random() % bytes.size()] = static_cast<char>(random());
        bytes.resize(1 + random() % bytes.size());
        return bytes;
    };
    for (const auto& [tlType, layout] : {std::pair("U3V", &LittleEndianChunks), {"GEV", &BigEndianChunks}}) {
        StartAs(tlType, 2);
        for (int round = 0; round < 5000; ++round) {
            const Buffer buffer = RetrieveNewFrame(ChunkFrame(mutated(layout(Stamped(round)))));
            ASSERT_TRUE(buffer);
            Timestamp(buffer);
        }
        EXPECT_EQ(Timestamp(RetrieveNewFrame(ChunkFrame(layout(Stamped(7))))), 7);
        stream.reset();
        device.reset();
        system.reset();
    }
}

class CameraWithoutChunks : public StreamChunks {
protected:
    void SetUp() override {}
};

TEST_F(CameraWithoutChunks, HasNoNodeMapForThem) {
    StartAs("U3V");
    const Buffer buffer = RetrieveNewFrame(StampedFrame(1));
    EXPECT_EQ(MissingMap(buffer), "Not found a node map for chunk.");
}

class PortChunks : public ChunkCamera {
protected:
    IZqPortInside* Port() { return dynamic_cast<IZqPortInside*>(device->GetRemoteIZqPort()); }
    int64_t MainTimestamp() {
        GenApi::CIntegerPtr timestamp = Port()->GetINodeMap()->GetNode("ChunkTimestamp");
        return GenApi::IsReadable(timestamp) ? timestamp->GetValue() : -1;
    }
    void Attach(std::string& bytes) {
        Port()->AttachChunkBuffer(reinterpret_cast<uint8_t*>(bytes.data()),
                                  static_cast<int64_t>(bytes.size()));
    }
};

TEST_F(PortChunks, DetachBeforeAnyAttachDoesNothing) {
    OpenAs("U3V");
    producer.ClearLog();
    Port()->DetachChunkBuffer();
    EXPECT_EQ(producer.Log(), Calls{});
}

TEST_F(PortChunks, AreReadByThePortsMainNodeMap) {
    OpenAs("U3V");
    std::string first = LittleEndianChunks(Stamped(100)), second = LittleEndianChunks(Stamped(200));
    Attach(first);
    EXPECT_EQ(MainTimestamp(), 100);
    Attach(second);
    EXPECT_EQ(MainTimestamp(), 200);
    Port()->DetachChunkBuffer();
    EXPECT_EQ(MainTimestamp(), -1);
}

TEST_F(PortChunks, GigEVisionPortReadsBigEndianTags) {
    OpenAs("GEV");
    std::string bytes = BigEndianChunks(Stamped(300));
    Attach(bytes);
    EXPECT_EQ(MainTimestamp(), 300);
}

TEST_F(PortChunks, BrokenLayoutPassesToTheCaller) {
    OpenAs("U3V");
    std::string bytes = BigEndianChunks(Stamped(300));
    EXPECT_THROW(Attach(bytes), GenICam::GenericException);
    EXPECT_EQ(MainTimestamp(), -1);
}

TEST_F(PortChunks, CoaXPressPortHasTheGenericAdapterThatCanNotReadALayout) {
    OpenAs("CXP");
    std::string bytes = LittleEndianChunks(Stamped(300));
    EXPECT_THROW(Attach(bytes), GenICam::GenericException);
}

TEST_F(PortChunks, UnknownTransportMakesNoAdapter) {
    OpenAs("U3V");
    std::string bytes = LittleEndianChunks(Stamped(100));
    producer.Answer("GCGetPortInfo").On("REMOTE1").Command(PORT_INFO_TLTYPE).OnCall(1).With(GC_ERR_IO);
    EXPECT_EQ(CatchProducerError([&] { Attach(bytes); }).text,
              "-1010 = GCGetPortInfo(PTR, 3, PTR, PTR, PTR)");
    Attach(bytes);
    EXPECT_EQ(MainTimestamp(), 100);
    Port()->DetachChunkBuffer();
}

TEST_F(PortChunks, NoFailedAllocationLeavesAnAdapterBehind) {
    OpenAs("U3V");
    std::string bytes = LittleEndianChunks(Stamped(100));
    Port()->GetINodeMap();
    bool failed = true;
    for (uint64_t n = 1; failed; ++n) {
        const FailingAllocation failing(n);
        try {
            Attach(bytes);
        } catch (const GenICam::BadAllocException&) {
        }
        failed = failing.Failed();
        Port()->DetachChunkBuffer();
    }
    Attach(bytes);
    EXPECT_EQ(MainTimestamp(), 100);
    Port()->DetachChunkBuffer();
}

TEST_F(PortChunks, TwoFirstUsersFillOneFactory) {
    OpenAs("U3V");
    GenApi::CNodeMapRef first, second;
    std::thread other([&] { Port()->CreateSubTreeNodeMapForChunkData(first); });
    Port()->CreateSubTreeNodeMapForChunkData(second);
    other.join();
    EXPECT_NE(first._GetNode("ChunkTimestamp"), nullptr);
    EXPECT_NE(second._GetNode("ChunkTimestamp"), nullptr);
    EXPECT_NE(first._Ptr, second._Ptr);
}

TEST_F(PortChunks, EveryNodeMapForThemIsOneOfItsOwn) {
    OpenAs("U3V");
    producer.ClearLog();
    GenApi::CNodeMapRef first, second;
    Port()->CreateSubTreeNodeMapForChunkData(first);
    Port()->CreateSubTreeNodeMapForChunkData(second);
    EXPECT_NE(first._Ptr, nullptr);
    EXPECT_NE(first._Ptr, second._Ptr);
    EXPECT_EQ(producer.Log(), Calls{});
}

class PortWithoutChunks : public PortChunks {
protected:
    void SetUp() override {}
};

TEST_F(PortWithoutChunks, LeavesTheReferenceEmpty) {
    OpenAs("U3V");
    GenApi::CNodeMapRef reference;
    EXPECT_NO_THROW(Port()->CreateNodeMapFactoryForChunkData(true));
    EXPECT_NO_THROW(Port()->CreateSubTreeNodeMapForChunkData(reference));
    EXPECT_EQ(reference._Ptr, nullptr);
}

} // namespace
} // namespace ZqTest
