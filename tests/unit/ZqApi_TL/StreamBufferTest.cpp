#include "tests/unit/ZqApi_TL/OpenedStream.h"

namespace ZqTest {
namespace {

class StreamBuffers : public OpenedStream {
protected:
    IZqStreamBufferInside* Inside(const Buffer& buffer) {
        return dynamic_cast<IZqStreamBufferInside*>(buffer.get());
    }
};

TEST_F(StreamBuffers, KnowTheirStreamAndHandle) {
    Start();
    const Buffer buffer = RetrieveNewFrame();
    EXPECT_EQ(buffer->GetIZqDataStream(), stream.get());
    EXPECT_EQ(Inside(buffer)->GetIZqDataStreamInside(), OpenedStream::Inside());
    EXPECT_NE(Inside(buffer)->GetBufferHandle(), nullptr);
}

TEST_F(StreamBuffers, ProducersMemoryIsReported) {
    Start();
    const Buffer buffer = RetrieveNewFrame(Frame("pixels"));
    const auto* const base = static_cast<const char*>(buffer->GetIZqStreamBufferInfo()->GetBaseAddress());
    ASSERT_NE(base, nullptr);
    EXPECT_EQ(buffer->GetIZqImage()->GetImageBuffer(), base);
    EXPECT_EQ(std::string(base, 6), "pixels");
    EXPECT_EQ(buffer->GetIZqImage()->GetUserContext(), nullptr);
}

TEST_F(StreamBuffers, PortIsNamedByIndexAndDevice) {
    producer.SetDescription("BUF", "buffer.xml", [this] {
        std::string text(20000, '\0');
        producer.ReadRegister("DS1", 0x10000, text.data(), text.size());
        return std::string(text.c_str());
    }());
    Start();
    for (const char* name : {"StreamBuffer_x_0_DEV1", "StreamBuffer_x_1_DEV1", "StreamBuffer_x_2_DEV1",
                             "StreamBuffer_x_3_DEV1"}) {
        Buffer buffer = RetrieveNewFrame();
        EXPECT_STREQ(buffer->GetIZqPort()->GetINodeMap()->GetDeviceName().c_str(), name);
    }
}

TEST_F(StreamBuffers, ProducerWithoutBufferPortsStreamsAllTheSame) {
    producer.Answer("GCGetPortInfo").On("BUF").With(GC_ERR_NOT_IMPLEMENTED);
    Start();
    const Buffer buffer = RetrieveNewFrame();
    ASSERT_NE(buffer->GetIZqPort(), nullptr);
    for (int time = 0; time < 2; ++time) {
        const Thrown thrown = CatchProducerError([&] { buffer->GetIZqPort()->GetINodeMap(); });
        EXPECT_EQ(thrown.text, "-1003 = GCGetPortInfo(PTR, 12, PTR, PTR, PTR)");
    }
}

TEST_F(StreamBuffers, OtherPortsAreNamedByTheirModule) {
    EXPECT_STREQ(device->GetLocalIZqPort()->GetINodeMap()->GetDeviceName().c_str(), "LocalDevice_DEV1");
    EXPECT_STREQ(device->GetRemoteIZqPort()->GetINodeMap()->GetDeviceName().c_str(), "RemoteDevice_DEV1");
    EXPECT_STREQ(stream->GetIZqPort()->GetINodeMap()->GetDeviceName().c_str(), "DataStream_0_DEV1");
}

TEST_F(StreamBuffers, NoChunkNodeMapWithoutChunks) {
    Start();
    const Buffer buffer = RetrieveNewFrame();
    const Thrown thrown = Catch<GenICam::RuntimeException>([&] { buffer->GetChunkINodeMap(); });
    EXPECT_EQ(thrown.text, "Not found a node map for chunk.");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqStreamBuffer");
}

TEST_F(StreamBuffers, AttachingDoesNothingWithoutChunks) {
    Start();
    const Buffer buffer = RetrieveNewFrame();
    producer.ClearLog();
    EXPECT_NO_THROW(Inside(buffer)->AttachChunkBuffer());
    EXPECT_NO_THROW(Inside(buffer)->DetachChunkBuffer());
    EXPECT_EQ(producer.Log(), Calls{});
}

TEST_F(StreamBuffers, ImageIsMissingOnlyWhenTheProducerSaysSo) {
    Start();
    const auto frame = [](uint8_t present) {
        return Frame("pixels").Info<uint8_t>(BUFFER_INFO_IMAGEPRESENT, INFO_DATATYPE_BOOL8, present);
    };
    const Buffer absent = RetrieveNewFrame(frame(0));
    const Thrown thrown = Catch<GenICam::RuntimeException>([&] { absent->GetIZqImage(); });
    EXPECT_EQ(thrown.text, "There is no available image.");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqStreamBuffer");
    EXPECT_NE(RetrieveNewFrame(frame(2))->GetIZqImage(), nullptr);
    EXPECT_NE(RetrieveNewFrame(Frame("pixels").Fails(BUFFER_INFO_IMAGEPRESENT, GC_ERR_IO))->GetIZqImage(),
              nullptr);
}

TEST_F(StreamBuffers, CallbacksAreTheirOwn) {
    Start();
    const Buffer first = RetrieveNewFrame();
    const Buffer second = RetrieveNewFrame();
    Signal told;
    void* const handle = first->RegisterCallback(MakeCallback([&](IZqCallbackParamBase*) { told.Set(); }));
    EXPECT_EQ(Catch<GenICam::InvalidArgumentException>([&] { second->DeregisterCallback(handle); }).text,
              "hCallback is invalid.");
    first->StartEventAcquisitionThread();
    second->StartEventAcquisitionThread();
    EXPECT_TRUE(producer.PushError("BUF2", GC_ERR_IO, "the other's"));
    EXPECT_FALSE(told.Wait(20));
    EXPECT_TRUE(producer.PushError("BUF1", GC_ERR_IO, "its own"));
    EXPECT_TRUE(told.Wait());
    first->DeregisterCallback(handle);
}

TEST_F(StreamBuffers, RunningErrorThreadEndsWithThePool) {
    Start();
    {
        const Buffer buffer = RetrieveNewFrame();
        buffer->StartEventAcquisitionThread();
    }
    producer.ClearLog();
    stream.reset();
    EXPECT_EQ(producer.Log("EventKill"), (Calls{"EventKill(DS1/1)", "EventKill(BUF1/0)"}));
}

class ReadOnlyDevice : public OpenedDevice {
protected:
    void SetUp() override { Open(DEVICE_ACCESS_READONLY); }
};

TEST_F(ReadOnlyDevice, FeaturesOfTheCameraAreNotWritable) {
    producer.ClearLog();
    const GenApi::CIntegerPtr width = device->GetRemoteIZqPort()->GetINodeMap()->GetNode("Width");
    EXPECT_FALSE(GenApi::IsWritable(width));
    EXPECT_EQ(Catch<GenICam::RuntimeException>([&] { width->SetValue(64); }).text, "Port is not writable.");
    EXPECT_EQ(producer.Log("GCWritePort"), Calls());
}

TEST_F(ReadOnlyDevice, FeaturesOfTheLocalModuleAreWritable) {
    const GenApi::CEnumerationPtr selector =
        device->GetLocalIZqPort()->GetINodeMap()->GetNode("EventSelector");
    selector->FromString("FeatureTest");
    EXPECT_EQ(producer.GetRegister<uint32_t>("DEV1", 0x100), 0u);
    selector->FromString("DeviceLost");
    EXPECT_EQ(producer.GetRegister<uint32_t>("DEV1", 0x100), 1u);
}

} // namespace
} // namespace ZqTest
