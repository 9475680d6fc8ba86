#include <functional>

#include "tests/unit/ZqApi_TL/OpenedStream.h"

namespace ZqTest {
namespace {

template <class T>
std::string BytesOf(T value) {
    return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}

/// One getter: which command it asks, what the producer answers and what that reads as.
template <class Info>
struct Getter {
    int32_t command;
    std::string answer;
    std::string result;
    std::function<std::string(const Info&)> get;
};

template <class Info, class T>
Getter<Info> Number(int32_t command, T (Info::*getter)() const, T value) {
    const auto text = [getter](const Info& info) { return std::to_string((info.*getter)()); };
    return {command, BytesOf(value), std::to_string(value), text};
}

template <class Info>
Getter<Info> Flag(int32_t command, bool (Info::*getter)() const) {
    // Any other value than 0 means true.
    const auto text = [getter](const Info& info) { return std::string((info.*getter)() ? "true" : "false"); };
    return {command, BytesOf<uint8_t>(255), "true", text};
}

template <class Info>
Getter<Info> Pointer(int32_t command, void* (Info::*getter)() const) {
    const auto text = [getter](const Info& info) {
        return std::to_string(reinterpret_cast<uintptr_t>((info.*getter)()));
    };
    return {command, BytesOf<uintptr_t>(0x1234567890), std::to_string(0x1234567890), text};
}

template <class Info>
Getter<Info> Text(int32_t command, gcstring (Info::*getter)() const) {
    const auto text = [getter](const Info& info) { return std::string((info.*getter)().c_str()); };
    return {command, "an answer", "an answer", text};
}

constexpr uint64_t LONG = 0x123456789ABCDEF0;
constexpr size_t SIZE = 0x123456789A;

const std::vector<Getter<IZqDataStreamInfo>>& StreamGetters() {
    using I = IZqDataStreamInfo;
    static const std::vector<Getter<I>> getters = {
        Text(0, &I::GetID),
        Number(1, &I::GetNumDelivered, LONG),
        Number(2, &I::GetNumUnderrun, LONG),
        Number(3, &I::GetNumAnnounced, LONG),
        Number(4, &I::GetNumQueued, LONG),
        Number(5, &I::GetNumAwaitDelivery, LONG),
        Number(6, &I::GetNumStarted, LONG),
        Number(7, &I::GetPayloadSize, SIZE),
        Flag(8, &I::IsGrabbing),
        Flag(9, &I::GetDefinesPayloadSize),
        Text(10, &I::GetTLType),
        Number(11, &I::GetNumChunksMax, SIZE),
        Number(12, &I::GetBufAnnounceMin, SIZE),
        Number(13, &I::GetBufAlignment, SIZE),
    };
    return getters;
}

const std::vector<Getter<IZqStreamBufferInfo>>& BufferGetters() {
    using I = IZqStreamBufferInfo;
    static const std::vector<Getter<I>> getters = {
        Pointer(0, &I::GetBaseAddress),
        Number(1, &I::GetBufferSize, SIZE),
        Pointer(2, &I::GetUserPtr),
        Number(3, &I::GetTimestamp, LONG),
        Flag(4, &I::IsNewData),
        Flag(5, &I::IsQueued),
        Flag(6, &I::IsAcquiring),
        Flag(7, &I::IsIncomplete),
        Text(8, &I::GetTLType),
        Number(9, &I::GetSizeFilled, SIZE),
        Number(10, &I::GetWidth, SIZE),
        Number(11, &I::GetHeight, SIZE),
        Number(12, &I::GetXOffset, SIZE),
        Number(13, &I::GetYOffset, SIZE),
        Number(14, &I::GetXPadding, SIZE),
        Number(15, &I::GetYPadding, SIZE),
        Number(16, &I::GetFrameID, LONG),
        Flag(17, &I::IsImagePresent),
        Number(18, &I::GetImageOffset, SIZE),
        Number(19, &I::GetPayloadType, SIZE),
        Number(20, &I::GetPixelFormat, LONG),
        Number(21, &I::GetPixelFormatNameSpace, LONG),
        Number(22, &I::GetDeliverdImageHeight, SIZE),
        Number(23, &I::GetDeliverdChunkPayloadSize, SIZE),
        Number(24, &I::GetChunkLayoutID, LONG),
        Text(25, &I::GetFileName),
        Number(26, &I::GetPixelEndianness, int32_t{-7}),
        Number(27, &I::GetDataSize, SIZE),
        Number(28, &I::GetTimestampNS, LONG),
        Flag(29, &I::IsDataLargerThanBuffer),
        Flag(30, &I::HasChunkData),
    };
    return getters;
}

using StreamInfo = OpenedStream;

TEST_F(StreamInfo, EveryGetterReadsItsCommand) {
    for (const auto& getter : StreamGetters()) {
        producer.Answer("DSGetInfo").On("DS1").Command(getter.command).Bytes(getter.answer);
        EXPECT_EQ(getter.get(*Info()), getter.result) << getter.command;
    }
}

TEST_F(StreamInfo, EveryGetterReportsItsFailure) {
    for (const auto& getter : StreamGetters()) {
        producer.Answer("DSGetInfo").Command(getter.command).With(GC_ERR_NOT_AVAILABLE).Saying("hidden");
        const Thrown thrown = CatchProducerError([&] { getter.get(*Info()); });
        EXPECT_EQ(thrown.text,
                  "-1014 = DSGetInfo(PTR, " + std::to_string(getter.command) + ", PTR, PTR, PTR) hidden");
        EXPECT_EQ(thrown.function, "DSGetInfo");
        EXPECT_EQ(thrown.error, -1014);
        EXPECT_EQ(thrown.source, "ZqApi_TL/ZqDataStreamInfo");
    }
}

TEST_F(StreamInfo, DescribesTheScriptedStream) {
    EXPECT_STREQ(Info()->GetID().c_str(), "DEV1_Stream0");
    EXPECT_STREQ(Info()->GetTLType().c_str(), "U3V");
    EXPECT_EQ(Info()->GetPayloadSize(), 4096u);
    EXPECT_TRUE(Info()->GetDefinesPayloadSize());
    EXPECT_EQ(Info()->GetBufAnnounceMin(), 1u);
}

TEST_F(StreamInfo, SizeThatIsNoNumberIsNamed) {
    stream.reset();
    device.reset();
    system.reset();
    producer.SetDescription(
        "REMOTE", "camera.xml",
        "<RegisterDescription SchemaMajorVersion=\"1\"><String Name=\"PayloadSize\"><Value>x</Value>"
        "</String><Port Name=\"Device\"/></RegisterDescription>");
    OpenedStream::SetUp();
    producer.Answer("DSGetInfo").Command(STREAM_INFO_PAYLOAD_SIZE).With(GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(Catch<GenICam::RuntimeException>([&] { Info()->GetPayloadSize(); }).text,
              "Node PayloadSize not found.");
}

class StreamBufferInfo : public OpenedStream {
protected:
    void SetUp() override {
        OpenedStream::SetUp();
        Start();
        buffer = RetrieveNewFrame();
        producer.ClearLog();
    }
    void TearDown() override {
        buffer.reset();
        OpenedStream::TearDown();
    }

    const IZqStreamBufferInfo& BufferInfo() { return *buffer->GetIZqStreamBufferInfo(); }

    Buffer buffer;
};

TEST_F(StreamBufferInfo, EveryGetterReadsItsCommand) {
    for (const auto& getter : BufferGetters()) {
        producer.Answer("DSGetBufferInfo").On("BUF1").Command(getter.command).Bytes(getter.answer);
        EXPECT_EQ(getter.get(BufferInfo()), getter.result) << getter.command;
    }
}

TEST_F(StreamBufferInfo, EveryGetterReportsItsFailure) {
    for (const auto& getter : BufferGetters()) {
        producer.Answer("DSGetBufferInfo").Command(getter.command).With(GC_ERR_NO_DATA).Saying("none");
        const Thrown thrown = CatchProducerError([&] { getter.get(BufferInfo()); });
        EXPECT_EQ(thrown.text, "-1008 = DSGetBufferInfo(PTR, PTR, " + std::to_string(getter.command) +
                                   ", PTR, PTR, PTR) none");
        EXPECT_EQ(thrown.function, "DSGetBufferInfo");
        EXPECT_EQ(thrown.error, -1008);
        EXPECT_EQ(thrown.source, "ZqApi_TL/ZqStreamBufferInfo");
    }
}

} // namespace
} // namespace ZqTest
