#include "ZqSDKCommon/ZqImageBuffer.h"

#include <algorithm>
#include <stdexcept>

#include "tests/support/AllocationFailure.h"
#include "tests/support/ImageBuffers.h"
#include "tests/unit/ZqApi_TL/ModuleTree.h"

namespace ZqTest {
namespace {

constexpr const char* UNIT = "ZqSDKCommon/ZqImageBuffer";
constexpr size_t NEGATIVE = size_t{1} << 63;

class ImageBufferTest : public testing::Test {
protected:
    size_t Capacity() { return dynamic_cast<CZqImageBuffer&>(*buffer).GetCapacity(); }
    IZqImage& Image() { return *buffer->GetIZqImage(); }
    uint8_t* Bytes() { return BytesOf(Image()); }
    /// Whether `count` bytes from `offset` on are all `value`.
    bool Are(uint8_t value, size_t offset, size_t count) {
        return std::all_of(Bytes() + offset, Bytes() + offset + count,
                           [value](uint8_t byte) { return byte == value; });
    }
    /// "640x480 pitch 640 format 01080001".
    std::string Geometry() {
        auto& image = dynamic_cast<CZqImageBuffer&>(*buffer);
        char text[100];
        std::snprintf(text, sizeof text, "%zux%zu pitch %zu format %08X", image.GetImageWidth(),
                      image.GetImageHeight(), image.GetImageLinePitch(),
                      static_cast<unsigned>(image.GetImagePixelFormat()));
        return text;
    }
    template <class E>
    Thrown SetSizeFailure(size_t width, size_t height, uint32_t format, size_t alignment = 0) {
        return Catch<E>([=] {
            buffer->SetSize(width, height, static_cast<EZqPixelFormatNamingConvention_t>(format), alignment);
        });
    }

    Library library;
    RecordingAllocator allocator;
    ImageBuffer buffer = MakeImageBuffer();
};

TEST_F(ImageBufferTest, BeginsEmpty) {
    EXPECT_FALSE(buffer->HasImageBuffer());
    EXPECT_EQ(Capacity(), 0u);
    EXPECT_EQ(Geometry(), "0x0 pitch 0 format FFFFFFFF");
    const Thrown thrown = Catch<GenICam::RuntimeException>([this] { buffer->GetIZqImage(); });
    EXPECT_EQ(thrown.text, "There is no available image.");
    EXPECT_EQ(thrown.source, UNIT);
}

TEST_F(ImageBufferTest, SizesBelowOneAreRefused) {
    const auto text = [this](size_t width, size_t height) {
        const Thrown thrown =
            SetSizeFailure<GenICam::OutOfRangeException>(width, height, ZqPixelFormat_Mono8);
        EXPECT_EQ(thrown.source, UNIT);
        return thrown.text;
    };
    EXPECT_EQ(text(0, 10), "size_t nWidth = 0 must be greater than Min = 0");
    EXPECT_EQ(text(10, 0), "size_t nHeight = 0 must be greater than Min = 0");
    EXPECT_EQ(text(0, 0), "size_t nWidth = 0 must be greater than Min = 0");
    EXPECT_EQ(text(NEGATIVE, 10), "size_t nWidth = -9223372036854775808 must be greater than Min = 0");
    EXPECT_EQ(text(10, static_cast<size_t>(-1)), "size_t nHeight = -1 must be greater than Min = 0");
}

TEST_F(ImageBufferTest, SizesAreLookedAtBeforeTheFormat) {
    EXPECT_EQ(SetSizeFailure<GenICam::OutOfRangeException>(1, 0, 0x12345678).text,
              "size_t nHeight = 0 must be greater than Min = 0");
}

TEST_F(ImageBufferTest, RefusalsChangeNothing) {
    buffer->SetSize(640, 480, ZqPixelFormat_Mono8, 0);
    const void* const memory = Image().GetImageBuffer();
    SetSizeFailure<GenICam::OutOfRangeException>(0, 10, ZqPixelFormat_BGR8);
    SetSizeFailure<GenICam::OutOfRangeException>(10, 0, ZqPixelFormat_BGR8);
    EXPECT_EQ(SetSizeFailure<GenICam::RuntimeException>(10, 10, 0x12345678).text,
              "Unknown pixelformat 0x12345678");
    EXPECT_EQ(Geometry(), "640x480 pitch 640 format 01080001");
    EXPECT_EQ(Image().GetImageBuffer(), memory);
}

TEST_F(ImageBufferTest, SmallerSizeKeepsMemoryAndContents) {
    buffer->CreateBuffer(640, 480, ZqPixelFormat_Mono8, ZqMemoryInitialization_FFFill);
    const void* const memory = Image().GetImageBuffer();
    buffer->SetSize(320, 240, ZqPixelFormat_Mono8, 0);
    EXPECT_EQ(Image().GetImageBuffer(), memory);
    EXPECT_EQ(Capacity(), 307200u);
    EXPECT_EQ(Image().GetImagePlanePitch(), 76800u);
    EXPECT_TRUE(Are(0xFF, 0, 307200));
}

TEST_F(ImageBufferTest, AnotherFormatOfTheSameNeedKeepsTheMemory) {
    buffer->SetSize(64, 64, ZqPixelFormat_Mono8, 0);
    const void* const memory = Image().GetImageBuffer();
    buffer->SetSize(32, 64, ZqPixelFormat_BayerRG16, 0);
    EXPECT_EQ(Image().GetImageBuffer(), memory);
    EXPECT_EQ(Geometry(), "32x64 pitch 64 format 0110002F");
}

TEST_F(ImageBufferTest, LargerSizeGivesTheOldMemoryBackFirst) {
    buffer = MakeImage(ZqPixelFormat_Mono8, 10, 10, 0, &allocator);
    buffer->SetSize(10, 11, ZqPixelFormat_Mono8, 0);
    EXPECT_EQ(allocator.calls, (Calls{"Allocate 100", "Deallocate 100", "Allocate 110"}));
    EXPECT_EQ(Capacity(), 110u);
}

TEST_F(ImageBufferTest, AlignmentZeroIsTheFormatsOwn) {
    buffer->SetSize(3, 2, ZqPixelFormat_RGB8, 0);
    EXPECT_EQ(Geometry(), "3x2 pitch 12 format 02180014");
    buffer->SetSize(3, 2, ZqPixelFormat_RGB8, 1);
    EXPECT_EQ(Image().GetImageLinePitch(), 9u);
    buffer->SetSize(3, 2, ZqPixelFormat_RGB8, 8);
    EXPECT_EQ(Image().GetImageLinePitch(), 16u);
    buffer->SetSize(4, 2, ZqPixelFormat_YCbCr411_8, 0);
    EXPECT_EQ(Image().GetImageLinePitch(), 6u);
    buffer->SetSize(5, 2, ZqPixelFormat_Mono12p, 0);
    EXPECT_EQ(Image().GetImageLinePitch(), 8u);
}

TEST_F(ImageBufferTest, PlanesFollowEachOther) {
    buffer->SetSize(10, 4, ZqPixelFormat_RGB8_Planar, 0);
    EXPECT_EQ(Image().GetImageLinePitch(), 12u);
    EXPECT_EQ(Image().GetImagePlanePitch(), 48u);
    EXPECT_EQ(Capacity(), 144u);
}

TEST_F(ImageBufferTest, AllocatorWithoutMemoryLeavesItEmpty) {
    buffer = MakeImage(ZqPixelFormat_Mono8, 10, 10, 0, &allocator);
    IZqImage& image = Image();
    allocator.givesNothing = true;
    const Thrown thrown = SetSizeFailure<GenICam::BadAllocException>(10, 11, ZqPixelFormat_Mono8);
    EXPECT_EQ(thrown.text, "");
    EXPECT_EQ(thrown.source, UNIT);
    EXPECT_FALSE(buffer->HasImageBuffer());
    EXPECT_EQ(Geometry(), "0x0 pitch 0 format FFFFFFFF");
    EXPECT_EQ(Capacity(), 0u);
    EXPECT_EQ(image.GetUserContext(), allocator.context);
    EXPECT_EQ(allocator.calls, (Calls{"Allocate 100", "Deallocate 100", "Allocate 110"}));
}

TEST_F(ImageBufferTest, AllocatorThatThrowsForWantOfMemoryIsReported) {
    buffer = MakeImageBuffer(&allocator);
    allocator.throws = true;
    EXPECT_EQ(SetSizeFailure<GenICam::BadAllocException>(10, 11, ZqPixelFormat_Mono8).text, "std::bad_alloc");
    EXPECT_FALSE(buffer->HasImageBuffer());
}

TEST_F(ImageBufferTest, HeapWithoutMemoryLeavesItEmpty) {
    buffer->SetSize(10, 10, ZqPixelFormat_Mono8, 0);
    const AllocationLimit limit(100000);
    EXPECT_EQ(SetSizeFailure<GenICam::BadAllocException>(1000, 1000, ZqPixelFormat_Mono8).text, "");
    EXPECT_FALSE(buffer->HasImageBuffer());
}

TEST_F(ImageBufferTest, BuffersOwnAllocatorStoresNullAndNoContext) {
    auto& own = dynamic_cast<IZqAllocator&>(*buffer);
    void* memory = nullptr;
    void* context = &memory;
    own.Allocate(&memory, 50, &context);
    EXPECT_NE(memory, nullptr);
    EXPECT_EQ(context, &memory);
    own.Deallocate(memory, 50, context);
    const FailingAllocation failing(1);
    own.Allocate(&memory, 50, &context);
    EXPECT_EQ(memory, nullptr);
}

TEST_F(ImageBufferTest, SizesBeyondSixtyFourBitsAreRefusedBeforeAnythingIsReleased) {
    buffer = MakeImage(ZqPixelFormat_Mono8, 10, 10, 0, &allocator);
    const auto text = [this](size_t width, size_t height, uint32_t format, size_t alignment) {
        return SetSizeFailure<GenICam::BadAllocException>(width, height, format, alignment).text;
    };
    EXPECT_EQ(text(size_t{1} << 62, 1, ZqPixelFormat_Mono16, 0), "");       // bits of a line
    EXPECT_EQ(text((size_t{1} << 61) - 1, 1, ZqPixelFormat_BGRa16, 0), ""); // the same, not a power of two
    EXPECT_EQ(text(9, 2, ZqPixelFormat_Mono8, SIZE_MAX), "");               // an aligned line, twice
    EXPECT_EQ(text(9, 1, ZqPixelFormat_RGB8_Planar, SIZE_MAX), "");         // an aligned line, three planes
    EXPECT_EQ(text(SIZE_MAX / 10, 1, ZqPixelFormat_Mono10p, 0), "");        // bits of a line in whole bytes
    EXPECT_EQ(text(1, size_t{1} << 62, ZqPixelFormat_Mono8, 4), "");        // lines
    EXPECT_EQ(text(size_t{1} << 58, 22, ZqPixelFormat_RGB8_Planar, 0), ""); // planes and lines
}

TEST_F(ImageBufferTest, OverflowKeepsTheImage) {
    buffer = MakeImage(ZqPixelFormat_Mono8, 10, 10, 0, &allocator);
    EXPECT_EQ(SetSizeFailure<GenICam::BadAllocException>(size_t{1} << 62, 8, ZqPixelFormat_Mono16).text, "");
    EXPECT_EQ(SetSizeFailure<GenICam::BadAllocException>(1, size_t{1} << 62, ZqPixelFormat_Mono8, 4).text,
              "");
    EXPECT_EQ(Geometry(), "10x10 pitch 10 format 01080001");
    EXPECT_EQ(allocator.calls, Calls{"Allocate 100"});
}

TEST_F(ImageBufferTest, FillsCoverTheWholeCapacity) {
    buffer->CreateBuffer(3, 2, ZqPixelFormat_RGB8, ZqMemoryInitialization_ZeroFill);
    EXPECT_EQ(Capacity(), 24u);
    EXPECT_TRUE(Are(0x00, 0, 24));
    buffer->CreateBuffer(1, 1, ZqPixelFormat_RGB8, ZqMemoryInitialization_FFFill);
    EXPECT_EQ(Capacity(), 24u);
    EXPECT_TRUE(Are(0xFF, 0, 24));
    buffer->CreateBuffer(1, 2, ZqPixelFormat_RGB8, ZqMemoryInitialization_ZeroFill);
    EXPECT_TRUE(Are(0x00, 0, 24));
}

TEST_F(ImageBufferTest, OtherInitialisationsLeaveTheMemoryAlone) {
    buffer->CreateBuffer(8, 8, ZqPixelFormat_Mono8, ZqMemoryInitialization_FFFill);
    for (const int value : {0, 4, -1, 100})
        buffer->CreateBuffer(8, 8, ZqPixelFormat_Mono8, static_cast<_EZqMemoryInitialization_t>(value));
    EXPECT_TRUE(Are(0xFF, 0, 64));
}

TEST_F(ImageBufferTest, CreateBufferRefusesAsSetSizeDoes) {
    EXPECT_EQ(Catch<GenICam::OutOfRangeException>([this] {
                  buffer->CreateBuffer(0, 1, ZqPixelFormat_Mono8, ZqMemoryInitialization_ZeroFill);
              }).text,
              "size_t nWidth = 0 must be greater than Min = 0");
    buffer = MakeImageBuffer(&allocator);
    allocator.givesNothing = true;
    EXPECT_EQ(Catch<GenICam::BadAllocException>([this] {
                  buffer->CreateBuffer(1, 1, ZqPixelFormat_Mono8, ZqMemoryInitialization_ZeroFill);
              }).text,
              "");
}

TEST_F(ImageBufferTest, UserContextIsTheAllocators) {
    EXPECT_EQ(dynamic_cast<IZqImage&>(*buffer).GetUserContext(), nullptr);
    buffer->SetSize(1, 1, ZqPixelFormat_Mono8, 0);
    EXPECT_EQ(Image().GetUserContext(), nullptr);
    buffer = MakeImage(ZqPixelFormat_Mono8, 1, 1, 0, &allocator);
    EXPECT_EQ(Image().GetUserContext(), allocator.context);
}

TEST_F(ImageBufferTest, ReleaseGivesMemoryBackAndThenTheAllocator) {
    buffer = MakeImage(ZqPixelFormat_Mono8, 10, 10, 0, &allocator);
    buffer->SetSize(5, 5, ZqPixelFormat_Mono8, 0);
    buffer.reset();
    EXPECT_EQ(allocator.calls, (Calls{"Allocate 100", "Deallocate 100", "OnDeregister"}));
}

TEST_F(ImageBufferTest, ReleaseOfAnEmptyOneOnlyGivesTheAllocatorBack) {
    buffer = MakeImageBuffer(&allocator);
    buffer.reset();
    EXPECT_EQ(allocator.calls, Calls{"OnDeregister"});
}

TEST_F(ImageBufferTest, SameViewIsRetargeted) {
    buffer->SetSize(640, 480, ZqPixelFormat_Mono8, 0);
    IZqImage* const view = Image().GetROIImage(0, 0, 10, 10);
    EXPECT_EQ(Image().GetROIImage(2, 1, 20, 30), view);
    EXPECT_EQ(view->GetImageWidth(), 20u);
    EXPECT_EQ(view->GetImageBuffer(), Bytes() + 642);
}

TEST_F(ImageBufferTest, ViewThatCannotBeAllocatedIsReported) {
    buffer->SetSize(640, 480, ZqPixelFormat_Mono8, 0);
    {
        const FailingAllocation failing(1);
        const Thrown thrown = Catch<GenICam::BadAllocException>([this] { Image().GetROIImage(0, 0, 1, 1); });
        EXPECT_EQ(thrown.text, "std::bad_alloc");
        EXPECT_EQ(thrown.source, UNIT);
    }
    EXPECT_NO_THROW(Image().GetROIImage(0, 0, 1, 1));
}

TEST_F(ImageBufferTest, EmptyOneHasNoView) {
    EXPECT_EQ(Catch<GenICam::RuntimeException>([this] {
                  dynamic_cast<IZqImage&>(*buffer).GetROIImage(0, 0, 1, 1);
              }).text,
              "Unknown pixelformat 0xFFFFFFFF");
}

TEST_F(ImageBufferTest, ViewOfAnEarlierSizeMayNameNoFormatUntilTheMemoryIsNew) {
    buffer->SetSize(640, 480, ZqPixelFormat_Mono8, 0);
    IZqImage* const view = Image().GetROIImage(1, 0, 10, 10);
    buffer->SetSize(40, 40, ZqPixelFormat_BayerRG10p, 0);
    EXPECT_EQ(view->GetImagePixelFormat(), ZqPixelFormat_Unknown);
    EXPECT_EQ(Catch<GenICam::RuntimeException>([this] { Image().GetROIImage(0, 0, 4, 4); }).text,
              "Unknown pixelformat 0xFFFFFFFF");
    buffer->SetSize(640, 481, ZqPixelFormat_Mono8, 0);
    buffer->SetSize(40, 40, ZqPixelFormat_BayerRG10p, 0);
    EXPECT_NO_THROW(Image().GetROIImage(0, 0, 4, 4));
}

class CopyImage : public ImageBufferTest {
protected:
    ImageBuffer Source(EZqPixelFormatNamingConvention_t format, size_t width, size_t height,
                       size_t alignment = 0) {
        ImageBuffer source = MakeImage(format, width, height, alignment, &allocator);
        FillWithPattern(*source->GetIZqImage());
        return source;
    }
};

TEST_F(CopyImage, TakesSizeFormatAndPixels) {
    const ImageBuffer source = Source(ZqPixelFormat_BGR12p, 10, 7);
    buffer->CopyImage(source->GetIZqImage());
    EXPECT_EQ(Geometry(), "10x7 pitch 48 format 02240049");
    for (size_t line = 0; line < 7; ++line)
        for (size_t byte = 0; byte < (line < 6 ? 48 : 45); ++byte)
            ASSERT_EQ(Bytes()[line * 48 + byte], PatternAt(line * 48 + byte)) << line << " " << byte;
}

TEST_F(CopyImage, WiderPitchIsNotCopied) {
    const ImageBuffer source = Source(ZqPixelFormat_Mono8, 960, 3, 1000);
    buffer->CopyImage(source->GetIZqImage());
    EXPECT_EQ(Geometry(), "960x3 pitch 960 format 01080001");
    for (size_t line = 0; line < 3; ++line)
        for (size_t byte = 0; byte < 960; ++byte)
            ASSERT_EQ(Bytes()[line * 960 + byte], PatternAt(line * 1000 + byte)) << line << " " << byte;
}

TEST_F(CopyImage, NarrowerPitchLeavesThePaddingAlone) {
    const ImageBuffer source = Source(ZqPixelFormat_RGB8, 3, 2, 1);
    buffer->CreateBuffer(3, 2, ZqPixelFormat_RGB8, ZqMemoryInitialization_FFFill);
    buffer->CopyImage(source->GetIZqImage());
    for (size_t line = 0; line < 2; ++line) {
        for (size_t byte = 0; byte < 9; ++byte)
            EXPECT_EQ(Bytes()[line * 12 + byte], PatternAt(line * 9 + byte));
        EXPECT_TRUE(Are(0xFF, line * 12 + 9, 3));
    }
}

TEST_F(CopyImage, EveryPlaneIsCopied) {
    for (const size_t alignment : {0, 16, 1}) {
        const ImageBuffer source = Source(ZqPixelFormat_RGB10_Planar, 5, 4, alignment);
        const size_t pitch = source->GetIZqImage()->GetImageLinePitch();
        buffer->CopyImage(source->GetIZqImage());
        ASSERT_EQ(Image().GetImageLinePitch(), 12u);
        for (size_t line = 0; line < 3 * 4; ++line)
            for (size_t byte = 0; byte < 10; ++byte)
                ASSERT_EQ(Bytes()[line * 12 + byte], PatternAt(line * pitch + byte)) << alignment;
    }
}

// Behind the last line of a region there may be no memory: its pitch is its parent's.
TEST_F(CopyImage, RegionAtTheLowerRightEndsWithItsPixels) {
    const ImageBuffer source = Source(ZqPixelFormat_Mono12p, 20, 10);
    buffer->CopyImage(source->GetIZqImage()->GetROIImage(6, 7, 14, 3));
    EXPECT_EQ(Geometry(), "14x3 pitch 21 format 010C0047");
    for (size_t line = 0; line < 3; ++line)
        for (size_t byte = 0; byte < 21; ++byte)
            EXPECT_EQ(Bytes()[line * 21 + byte], PatternAt((line + 7) * 30 + 9 + byte));
}

TEST_F(CopyImage, RegionWithThePitchOfTheCopy) {
    const ImageBuffer source = Source(ZqPixelFormat_RGB8, 8, 6);
    buffer->CopyImage(source->GetIZqImage()->GetROIImage(1, 2, 7, 4));
    ASSERT_EQ(Geometry(), "7x4 pitch 24 format 02180014");
    for (size_t line = 0; line < 4; ++line)
        for (size_t byte = 0; byte < 21; ++byte)
            EXPECT_EQ(Bytes()[line * 24 + byte], PatternAt((line + 2) * 24 + 3 + byte));
}

TEST_F(CopyImage, RegionOfAMosaicKeepsItsPhase) {
    const ImageBuffer source = Source(ZqPixelFormat_BayerRG8, 8, 6);
    buffer->CopyImage(source->GetIZqImage()->GetROIImage(1, 1, 4, 4));
    EXPECT_EQ(Image().GetImagePixelFormat(), ZqPixelFormat_BayerBG8);
}

TEST_F(CopyImage, ItselfAndItsOwnRegions) {
    buffer = Source(ZqPixelFormat_RGB8, 3, 4, 1);
    // The default pitch is wider than this one, so the copy needs more memory than there is.
    buffer->CopyImage(&Image());
    ASSERT_EQ(Geometry(), "3x4 pitch 12 format 02180014");
    for (size_t line = 0; line < 4; ++line)
        for (size_t byte = 0; byte < 9; ++byte)
            EXPECT_EQ(Bytes()[line * 12 + byte], PatternAt(line * 9 + byte));
    buffer->CopyImage(Image().GetROIImage(1, 1, 2, 3));
    ASSERT_EQ(Geometry(), "2x3 pitch 8 format 02180014");
    for (size_t line = 0; line < 3; ++line)
        for (size_t byte = 0; byte < 6; ++byte)
            EXPECT_EQ(Bytes()[line * 8 + byte], PatternAt((line + 1) * 9 + 3 + byte));
}

TEST_F(CopyImage, StaleRegionsReadAsZeroBeyondTheirMemory) {
    const ImageBuffer source = Source(ZqPixelFormat_Mono8, 64, 48, 1);
    IZqImage* const outer = source->GetIZqImage()->GetROIImage(0, 0, 10, 10);
    IZqImage* const inner = outer->GetROIImage(5, 5, 5, 5);
    source->GetIZqImage()->GetROIImage(59, 43, 5, 5);
    buffer->CopyImage(inner);
    for (size_t line = 0; line < 5; ++line)
        for (size_t byte = 0; byte < 5; ++byte)
            EXPECT_EQ(Bytes()[line * 5 + byte], 0);
}

TEST_F(CopyImage, RegionThatAnInPlaceResizeLeftBehindReadsAsZero) {
    buffer = Source(ZqPixelFormat_Mono8, 10, 100, 1);
    IZqImage* const view = Image().GetROIImage(0, 99, 10, 1);
    buffer->SetSize(100, 10, ZqPixelFormat_Mono8, 1);
    // Of itself, and into more memory than there is: neither pulls the view from under the copy.
    buffer->CopyImage(view);
    EXPECT_EQ(Geometry(), "10x1 pitch 10 format 01080001");
    for (size_t byte = 0; byte < 10; ++byte)
        EXPECT_EQ(Bytes()[byte], 0);
}

TEST_F(CopyImage, EmptySourceIsRefusedByItsSize) {
    const ImageBuffer source = MakeImageBuffer();
    EXPECT_EQ(Catch<GenICam::OutOfRangeException>([&] {
                  buffer->CopyImage(&dynamic_cast<IZqImage&>(*source));
              }).text,
              "size_t nWidth = 0 must be greater than Min = 0");
}

class ForeignImage final : public IZqImage {
public:
    size_t GetImageWidth() override { return 1; }
    size_t GetImageHeight() override { return 1; }
    size_t GetImageLinePitch() override { return 1; }
    size_t GetImagePlanePitch() override { return 1; }
    EZqPixelFormatNamingConvention_t GetImagePixelFormat() override { return ZqPixelFormat_Mono8; }
    void* GetImageBuffer() override { return &m_Byte; }
    void* GetUserContext() override { return nullptr; }
    IZqImage* GetROIImage(size_t, size_t, size_t, size_t) override { return nullptr; }
    IZqPixelComponentValue* GetIZqPixelComponentValue(size_t, size_t) override { return nullptr; }

private:
    uint8_t m_Byte = 0;
};

TEST_F(CopyImage, ForeignImageStopsTheProcess) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    ForeignImage foreign;
    EXPECT_DEATH(buffer->CopyImage(&foreign), "\\(pSrcIZqImageInside\\) != NULL");
    EXPECT_DEATH(buffer->CopyImage(nullptr), "\\(pSrcIZqImageInside\\) != NULL");
}

} // namespace
} // namespace ZqTest
