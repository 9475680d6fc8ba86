#include "ZqApi_TL/ZqStreamBufferImage.h"
#include "ZqSDKCommon/ZqROIImage.h"
#include "tests/support/AllocationFailure.h"
#include "tests/support/ImageBuffers.h"
#include "tests/unit/ZqApi_TL/OpenedStream.h"

namespace ZqTest {
namespace {

Frame& Size(Frame& frame, int32_t command, size_t value) {
    return frame.Info<size_t>(command, INFO_DATATYPE_SIZET, value);
}

class StreamImage : public OpenedStream {
protected:
    void SetUp() override {
        OpenedStream::SetUp();
        Start();
    }
    void TearDown() override {
        buffer.reset();
        OpenedStream::TearDown();
    }

    IZqImage* Image(const Frame& frame) {
        buffer.reset();
        buffer = RetrieveNewFrame(frame);
        return buffer->GetIZqImage();
    }

    static Frame Format(uint64_t value, uint64_t nameSpace) {
        return Frame("pixels")
            .Info<uint64_t>(BUFFER_INFO_PIXELFORMAT, INFO_DATATYPE_UINT64, value)
            .Info<uint64_t>(BUFFER_INFO_PIXELFORMAT_NAMESPACE, INFO_DATATYPE_UINT64, nameSpace);
    }

    Buffer buffer;
};

TEST_F(StreamImage, DescribesTheFrame) {
    IZqImage* const image = Image(Frame("pixels"));
    EXPECT_EQ(image->GetImageWidth(), 64u);
    EXPECT_EQ(image->GetImageHeight(), 64u);
    EXPECT_EQ(image->GetImagePixelFormat(), ZqPixelFormat_Mono8);
    EXPECT_EQ(image->GetImageLinePitch(), 64u);
    EXPECT_EQ(image->GetImagePlanePitch(), 4096u);
}

TEST_F(StreamImage, WidthThatNobodyKnowsIsZero) {
    EXPECT_EQ(Image(Frame("pixels").Fails(BUFFER_INFO_WIDTH, GC_ERR_NOT_AVAILABLE))->GetImageWidth(), 0u);
    EXPECT_EQ(Image(Frame("pixels").Info<size_t>(BUFFER_INFO_WIDTH, INFO_DATATYPE_SIZET, 0))->GetImageWidth(),
              0u);
}

TEST_F(StreamImage, DeliveredHeightCountsUnlessItIsZeroOrUnknown) {
    Frame both("pixels");
    Size(Size(both, BUFFER_INFO_DELIVERED_IMAGEHEIGHT, 30), BUFFER_INFO_HEIGHT, 480);
    EXPECT_EQ(Image(both)->GetImageHeight(), 30u);
    Frame none("pixels");
    Size(Size(none, BUFFER_INFO_DELIVERED_IMAGEHEIGHT, 0), BUFFER_INFO_HEIGHT, 480);
    EXPECT_EQ(Image(none)->GetImageHeight(), 480u);
    Frame unknown("pixels");
    Size(unknown.Fails(BUFFER_INFO_DELIVERED_IMAGEHEIGHT, GC_ERR_IO), BUFFER_INFO_HEIGHT, 480);
    EXPECT_EQ(Image(unknown)->GetImageHeight(), 480u);
    Frame zero("pixels");
    Size(Size(zero, BUFFER_INFO_DELIVERED_IMAGEHEIGHT, 0), BUFFER_INFO_HEIGHT, 0);
    EXPECT_EQ(Image(zero)->GetImageHeight(), 0u);
    EXPECT_EQ(Image(Frame("pixels")
                        .Fails(BUFFER_INFO_DELIVERED_IMAGEHEIGHT, GC_ERR_IO)
                        .Fails(BUFFER_INFO_HEIGHT, GC_ERR_IO))
                  ->GetImageHeight(),
              0u);
}

TEST_F(StreamImage, ClaimsBeyondItsMemoryReadAsZero) {
    Frame huge(std::string(4096, 'x'));
    Size(Size(huge, BUFFER_INFO_WIDTH, 4096), BUFFER_INFO_HEIGHT, 4096);
    Size(huge, BUFFER_INFO_DELIVERED_IMAGEHEIGHT, 4096);
    Size(huge, BUFFER_INFO_IMAGEOFFSET, 96);
    IZqImage* const image = Image(huge);
    EXPECT_EQ(image->GetIZqPixelComponentValue(3999, 0)->GetValue(0), uint64_t{'x'});
    EXPECT_EQ(image->GetIZqPixelComponentValue(4000, 0)->GetValue(0), 0u);
    EXPECT_EQ(image->GetIZqPixelComponentValue(4095, 4095)->GetValue(0), 0u);
    const std::unique_ptr<IZqImageBufferReleasable, Releaser> copy(CreateIZqImageBuffer(nullptr));
    copy->CopyImage(image);
    EXPECT_EQ(copy->GetIZqImage()->GetIZqPixelComponentValue(3999, 0)->GetValue(0), uint64_t{'x'});
    EXPECT_EQ(copy->GetIZqImage()->GetIZqPixelComponentValue(4000, 0)->GetValue(0), 0u);
    copy->CopyImage(image->GetROIImage(0, 4000, 4096, 96));
    EXPECT_EQ(copy->GetIZqImage()->GetIZqPixelComponentValue(4095, 95)->GetValue(0), 0u);
    Size(huge, BUFFER_INFO_IMAGEOFFSET, SIZE_MAX);
    EXPECT_EQ(Image(huge)->GetIZqPixelComponentValue(0, 0)->GetValue(0), 0u);
}

TEST_F(StreamImage, LinePitchIsWholeBytesAndPadding) {
    Frame packed = Format(ZqPixelFormat_Mono12p, PIXELFORMAT_NAMESPACE_PFNC_32BIT);
    Size(packed, BUFFER_INFO_WIDTH, 3);
    EXPECT_EQ(Image(packed)->GetImageLinePitch(), 5u);
    Size(packed, BUFFER_INFO_XPADDING, 7);
    EXPECT_EQ(Image(packed)->GetImageLinePitch(), 12u);
    packed.Fails(BUFFER_INFO_XPADDING, GC_ERR_IO);
    EXPECT_EQ(Image(packed)->GetImageLinePitch(), 5u);
}

TEST_F(StreamImage, PlanePitchTakesTheFallBacksOfTheHeight) {
    Frame frame("pixels");
    Size(Size(Size(frame, BUFFER_INFO_DELIVERED_IMAGEHEIGHT, 0), BUFFER_INFO_HEIGHT, 10),
         BUFFER_INFO_XPADDING, 6);
    EXPECT_EQ(Image(frame)->GetImagePlanePitch(), 700u);
}

TEST_F(StreamImage, UnknownFormatHasNoPitch) {
    IZqImage* const image = Image(Format(0x12345678, PIXELFORMAT_NAMESPACE_PFNC_32BIT));
    EXPECT_EQ(static_cast<uint32_t>(image->GetImagePixelFormat()), 0x12345678u);
    EXPECT_EQ(Catch<GenICam::RuntimeException>([&] { image->GetImageLinePitch(); }).text,
              "Unknown pixelformat 0x12345678");
}

TEST_F(StreamImage, PixelsBeginAtTheOffset) {
    const auto distance = [this](const Frame& frame) {
        auto* const begin = static_cast<char*>(Image(frame)->GetImageBuffer());
        return begin - static_cast<char*>(buffer->GetIZqStreamBufferInfo()->GetBaseAddress());
    };
    Frame frame("pixels");
    EXPECT_EQ(distance(Size(frame, BUFFER_INFO_IMAGEOFFSET, 100)), 100);
    EXPECT_EQ(distance(frame.Fails(BUFFER_INFO_IMAGEOFFSET, GC_ERR_IO)), 0);
}

TEST_F(StreamImage, UnreadableFormatIsTheProducersOwnFailure) {
    const auto failure = [this](const Frame& frame) {
        IZqImage* const image = Image(frame);
        const Thrown thrown = CatchProducerError([&] { image->GetImagePixelFormat(); });
        EXPECT_EQ(thrown.function, "DSGetBufferInfo");
        return thrown.text;
    };
    EXPECT_EQ(failure(Frame("pixels").Fails(BUFFER_INFO_PIXELFORMAT, GC_ERR_NOT_AVAILABLE)),
              "-1014 = DSGetBufferInfo(PTR, PTR, 20, PTR, PTR, PTR)");
    EXPECT_EQ(failure(Frame("pixels").Fails(BUFFER_INFO_PIXELFORMAT_NAMESPACE, GC_ERR_NOT_IMPLEMENTED)),
              "-1003 = DSGetBufferInfo(PTR, PTR, 21, PTR, PTR, PTR)");
}

TEST_F(StreamImage, FormatIsTheLowHalfOfItsValue) {
    EXPECT_EQ(static_cast<uint32_t>(Image(Format(0xABCDEF0101080001, 4))->GetImagePixelFormat()),
              0x01080001u);
}

TEST_F(StreamImage, OtherInterfacesKeepTheFormatOfAnyNamespace) {
    EXPECT_EQ(static_cast<uint32_t>(Image(Format(0x101, 0))->GetImagePixelFormat()), 0x101u);
}

TEST_F(StreamImage, InterfaceIsAskedForOnce) {
    IZqImage* const image = Image(Format(0x101, 0));
    image->GetImagePixelFormat();
    producer.ClearLog();
    EXPECT_EQ(static_cast<uint32_t>(image->GetImagePixelFormat()), 0x101u);
    EXPECT_EQ(producer.Log("IFGetInfo"), Calls{});
}

using ImageWithoutMemory = OpenedStream;

TEST_F(ImageWithoutMemory, HasNoPixels) {
    producer.Answer("DSGetBufferInfo").Command(BUFFER_INFO_BASE).Value<void*>(nullptr);
    Start();
    const Buffer buffer = RetrieveNewFrame();
    IZqImage* const image = buffer->GetIZqImage();
    EXPECT_EQ(image->GetImageBuffer(), nullptr);
    IZqImage* const view = image->GetROIImage(8, 2, 16, 4);
    EXPECT_EQ(view->GetImageBuffer(), nullptr);
    EXPECT_EQ(ReadableSizeOf(*image), 0u);
    EXPECT_EQ(ReadableSizeOf(*view), 0u);
}

TEST_F(StreamImage, NamespaceBeyondItsRangeStopsTheProcess) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    IZqImage* const image = Image(Format(0x101, uint64_t{1} << 32));
    EXPECT_DEATH(image->GetImagePixelFormat(), "nPixelFormatNamespace <= UINT32_MAX");
}

TEST_F(StreamImage, RegionIsAViewOfTheFrame) {
    IZqImage* const image = Image(Frame(std::string(4096, 'a')));
    IZqImage* const view = image->GetROIImage(8, 2, 16, 4);
    EXPECT_EQ(view->GetImageWidth(), 16u);
    EXPECT_EQ(view->GetImageLinePitch(), 64u);
    EXPECT_EQ(view->GetImageBuffer(), static_cast<char*>(image->GetImageBuffer()) + 2 * 64 + 8);
    EXPECT_EQ(image->GetROIImage(0, 0, 1, 1), view);
    EXPECT_EQ(view->GetImageWidth(), 1u);
    EXPECT_EQ(Catch<GenICam::OutOfRangeException>([&] { image->GetROIImage(1, 0, 64, 1); }).text,
              "size_t x = 1 must be equal or smaller than Max = 0");
}

TEST_F(StreamImage, RegionOfAMosaicHasItsPhase) {
    Frame frame = Format(ZqPixelFormat_BayerRG8, PIXELFORMAT_NAMESPACE_PFNC_32BIT);
    EXPECT_EQ(Image(frame)->GetROIImage(1, 0, 4, 4)->GetImagePixelFormat(), ZqPixelFormat_BayerGR8);
}

TEST_F(StreamImage, RegionThatCannotBeAllocatedIsReported) {
    IZqImage* const image = Image(Frame("pixels"));
    const FailingAllocation failing(1);
    const Thrown thrown = Catch<GenICam::BadAllocException>([&] { image->GetROIImage(0, 0, 1, 1); });
    EXPECT_EQ(thrown.text, "std::bad_alloc");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqStreamBufferImage");
}

TEST_F(StreamImage, RegionEndsWithItsBuffer) {
    Image(Frame("pixels"))->GetROIImage(0, 0, 1, 1);
    buffer.reset();
    Stop();
    stream.reset();
}

TEST_F(StreamImage, PixelsAreReadFromTheFrame) {
    IZqImage* const image = Image(Frame("pixels"));
    EXPECT_EQ(image->GetIZqPixelComponentValue(1, 0)->GetValue(0), static_cast<uint64_t>('i'));
    IZqPixelComponentValue* const value = image->GetROIImage(2, 0, 4, 1)->GetIZqPixelComponentValue(3, 0);
    EXPECT_EQ(value->GetCount(), 1u);
    EXPECT_EQ(value->GetPixelComponent(0), ZqPixelComponent_Mono8);
    EXPECT_EQ(value->GetValue(0), static_cast<uint64_t>('s'));
    EXPECT_EQ(value, image->GetIZqPixelComponentValue(0, 0));
    EXPECT_EQ(Catch<GenICam::OutOfRangeException>([&] { image->GetIZqPixelComponentValue(64, 0); }).text,
              "size_t x = 64 must be smaller than Max = 64");
}

TEST_F(StreamImage, PackedPixelsAreReadAtTheirPitch) {
    Frame frame = Format(ZqPixelFormat_Mono12p, PIXELFORMAT_NAMESPACE_PFNC_32BIT);
    frame.data = std::string("\0\0\0\0\0\x21\x43\x65", 8);
    Size(Size(frame, BUFFER_INFO_WIDTH, 2), BUFFER_INFO_XPADDING, 2);
    IZqImage* const image = Image(frame);
    EXPECT_EQ(image->GetIZqPixelComponentValue(0, 1)->GetValue(0), 0x321u);
    EXPECT_EQ(image->GetIZqPixelComponentValue(1, 1)->GetValue(0), 0x654u);
}

TEST_F(StreamImage, FrameThatTellsNothingLeavesTheLastPixel) {
    IZqPixelComponentValue* const value = Image(Frame("pixels"))->GetIZqPixelComponentValue(0, 0);
    producer.Answer("DSGetBufferInfo").With(GC_ERR_IO);
    IZqImage* const image = buffer->GetIZqImage();
    EXPECT_EQ(Catch<GenICam::OutOfRangeException>([&] { image->GetIZqPixelComponentValue(0, 0); }).text,
              "size_t x = 0 must be smaller than Max = 0");
    producer.Answer("DSGetBufferInfo").With(GC_ERR_SUCCESS);
    EXPECT_EQ(value->GetValue(0), static_cast<uint64_t>('p'));
}

TEST_F(StreamImage, CopyOutlivesTheFrame) {
    IZqImage* const image = Image(Frame("pixels"));
    const ImageBuffer copy = MakeImageBuffer();
    copy->CopyImage(image);
    EXPECT_EQ(copy->GetIZqImage()->GetImageLinePitch(), 64u);
    EXPECT_EQ(copy->GetIZqImage()->GetIZqPixelComponentValue(0, 0)->GetValue(0), static_cast<uint64_t>('p'));
}

class CoaXPressImage : public StreamImage {
protected:
    CoaXPressImage() {
        producer.ClearInterfaces();
        producer.AddInterface("CXP1", "CXP");
        producer.AddDevice("CXP1", "DEV1");
    }

    uint32_t FormatOf(uint64_t value, uint64_t nameSpace) {
        const Buffer frame = RetrieveNewFrame(Format(value, nameSpace));
        return static_cast<uint32_t>(frame->GetIZqImage()->GetImagePixelFormat());
    }
};

TEST_F(CoaXPressImage, CodesOutsideTheCommonNamespaceAreTranslated) {
    EXPECT_EQ(FormatOf(0x101, 0), 0x01080001u);
    EXPECT_EQ(FormatOf(0x311, 0), static_cast<uint32_t>(ZqPixelFormat_BayerGR8));
    EXPECT_EQ(FormatOf(0x314, 0), 0xFFFFFFFFu);
    EXPECT_EQ(FormatOf(0x601, 0), 0xFFFFFFFFu);
    EXPECT_EQ(FormatOf(0x101, 4), 0x101u);
}

TEST(CoaXPressPixelFormat, EveryCodeHasItsFormatOrNone) {
    const auto none = static_cast<uint32_t>(-1);
    const uint32_t mono[] = {none, 0x01080001, 0x01100003, 0x01100005, 0x01100025, 0x01100007, none, none};
    const uint32_t bayer[4][8] = {{none, 0x01080008, 0x0110000C, 0x01100010, none, 0x0110002E, none, none},
                                  {none, 0x01080009, 0x0110000D, 0x01100011, none, 0x0110002F, none, none},
                                  {none, 0x0108000A, 0x0110000E, 0x01100012, none, 0x01100030, none, none},
                                  {none, 0x0108000B, 0x0110000F, 0x01100013, none, 0x01100031, none, none}};
    const auto expected = [&](uint32_t kind, uint32_t pattern, uint32_t depth) -> uint32_t {
        if (kind == 1)
            return depth < 8 ? mono[depth] : none;
        if (kind == 3 && pattern >= 1 && pattern <= 4)
            return depth < 8 ? bayer[pattern - 1][depth] : none;
        switch (kind << 8 | pattern << 4 | depth) {
        case 0x401:
            return 0x02180014;
        case 0x501:
            return 0x02200016;
        case 0x721:
            return 0x0210003E;
        case 0x821:
            return 0x02100041;
        default:
            return none;
        }
    };
    for (uint32_t code = 0; code < 0x1000; ++code)
        EXPECT_EQ(static_cast<uint32_t>(FromCoaXPressPixelFormat(code)),
                  expected(code >> 8, code >> 4 & 0xF, code & 0xF))
            << std::hex << code;
}

} // namespace
} // namespace ZqTest
