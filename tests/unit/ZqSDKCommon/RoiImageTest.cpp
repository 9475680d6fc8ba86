#include "ZqSDKCommon/ZqROIImage.h"

#include <random>

#include "ZqApi_TL/PixelFormatTable.h"
#include "tests/support/AllocationFailure.h"
#include "tests/support/ImageBuffers.h"
#include "tests/unit/ZqApi_TL/ModuleTree.h"

namespace ZqTest {
namespace {

constexpr size_t NEGATIVE = size_t{1} << 63;

class RoiImage : public testing::Test {
protected:
    IZqImage& Parent(EZqPixelFormatNamingConvention_t format, size_t width = 640, size_t height = 480) {
        buffer = MakeImage(format, width, height);
        return *buffer->GetIZqImage();
    }
    static std::string Refusal(IZqImage& parent, size_t x, size_t y, size_t width, size_t height) {
        const Thrown thrown =
            Catch<GenICam::OutOfRangeException>([&] { parent.GetROIImage(x, y, width, height); });
        EXPECT_EQ(thrown.source, "ZqSDKCommon/ZqROIImage");
        return thrown.text;
    }
    /// Bytes from the parent's first pixel to the view's.
    static ptrdiff_t Distance(IZqImage& parent, IZqImage& view) { return BytesOf(view) - BytesOf(parent); }

    Library library;
    RecordingAllocator allocator;
    ImageBuffer buffer;
};

TEST_F(RoiImage, WholeParentIsARegion) {
    IZqImage& parent = Parent(ZqPixelFormat_Mono8);
    IZqImage& view = *parent.GetROIImage(0, 0, 640, 480);
    EXPECT_EQ(view.GetImageWidth(), 640u);
    EXPECT_EQ(view.GetImageHeight(), 480u);
    EXPECT_EQ(view.GetImageLinePitch(), 640u);
    EXPECT_EQ(view.GetImagePlanePitch(), 307200u);
    EXPECT_EQ(view.GetImageBuffer(), parent.GetImageBuffer());
}

TEST_F(RoiImage, PitchesAndContextAreTheParents) {
    buffer = MakeImage(ZqPixelFormat_RGB8_Planar, 100, 50, 0, &allocator);
    IZqImage& view = *buffer->GetIZqImage()->GetROIImage(10, 20, 5, 6);
    EXPECT_EQ(view.GetImageLinePitch(), 100u);
    EXPECT_EQ(view.GetImagePlanePitch(), 5000u);
    EXPECT_EQ(view.GetUserContext(), allocator.context);
    EXPECT_EQ(Distance(*buffer->GetIZqImage(), view), 2010);
}

TEST_F(RoiImage, HorizontalRefusalsInTheirOrder) {
    IZqImage& mono8 = Parent(ZqPixelFormat_Mono8);
    EXPECT_EQ(Refusal(mono8, 1, 0, 640, 480), "size_t x = 1 must be equal or smaller than Max = 0");
    EXPECT_EQ(Refusal(mono8, 0, 0, 0, 1), "size_t Width = 0 must be equal or greater than Min = 1");
    EXPECT_EQ(Refusal(mono8, 0, 0, 641, 1), "size_t Width = 641 must be equal or smaller than Max = 640");
    EXPECT_EQ(Refusal(mono8, 0, 0, NEGATIVE, 1),
              "size_t Width = -9223372036854775808 must be equal or greater than Min = 1");
    EXPECT_EQ(Refusal(mono8, static_cast<size_t>(-1), 0, 1, 1),
              "size_t x = -1 must be equal or greater than Min = 0");
    EXPECT_EQ(Refusal(mono8, 632, 0, 10, 1), "size_t x = 632 must be equal or smaller than Max = 630");
    IZqImage& packed = Parent(ZqPixelFormat_Mono12p);
    EXPECT_EQ(
        Refusal(packed, 1, 0, 3, 1),
        "The difference between size_t Width = 3 and Min = 2 must be dividable without rest by Inc = 2");
    EXPECT_EQ(Refusal(packed, 1, 0, 4, 1),
              "The difference between size_t x = 1 and Min = 0 must be dividable without rest by Inc = 2");
    EXPECT_EQ(Refusal(packed, 637, 0, 4, 1), "size_t x = 637 must be equal or smaller than Max = 636");
    IZqImage& bits = Parent(ZqPixelFormat_Mono1p);
    EXPECT_EQ(Refusal(bits, 0, 0, 4, 1), "size_t Width = 4 must be equal or greater than Min = 8");
}

TEST_F(RoiImage, VerticalRefusals) {
    IZqImage& parent = Parent(ZqPixelFormat_Mono8);
    EXPECT_EQ(Refusal(parent, 0, 0, 1, 0), "size_t Height = 0 must be equal or greater than Min = 1");
    EXPECT_EQ(Refusal(parent, 0, 0, 1, 481), "size_t Height = 481 must be equal or smaller than Max = 480");
    EXPECT_EQ(Refusal(parent, 0, 0, 1, NEGATIVE),
              "size_t Height = -9223372036854775808 must be equal or greater than Min = 1");
    EXPECT_EQ(Refusal(parent, 0, NEGATIVE, 1, 1),
              "size_t y = -9223372036854775808 must be equal or greater than Min = 0");
    EXPECT_EQ(Refusal(parent, 0, 1, 1, 480), "size_t y = 1 must be equal or smaller than Max = 0");
    EXPECT_EQ(Refusal(parent, 0, 471, 1, 10), "size_t y = 471 must be equal or smaller than Max = 470");
}

TEST_F(RoiImage, HorizontalRefusalsChangeNothing) {
    IZqImage& parent = Parent(ZqPixelFormat_Mono12p);
    IZqImage& view = *parent.GetROIImage(2, 3, 4, 5);
    for (const auto& [x, width] :
         {std::pair<size_t, size_t>(0, 1), {0, 642}, {0, 7}, {NEGATIVE, 8}, {634, 8}, {3, 8}}) {
        Refusal(parent, x, 7, width, 9);
        EXPECT_EQ(view.GetImageWidth(), 4u);
        EXPECT_EQ(view.GetImageHeight(), 5u);
        EXPECT_EQ(Distance(parent, view), 3 * 960 + 3);
    }
}

TEST_F(RoiImage, VerticalRefusalsKeepTheNewXAndWidth) {
    IZqImage& parent = Parent(ZqPixelFormat_Mono8);
    for (const auto& [y, height] : {std::pair<size_t, size_t>(0, 0), {0, 481}, {NEGATIVE, 1}, {480, 1}}) {
        IZqImage& view = *parent.GetROIImage(1, 2, 3, 4);
        Refusal(parent, 10, y, 20, height);
        EXPECT_EQ(view.GetImageWidth(), 20u);
        EXPECT_EQ(view.GetImageHeight(), 4u);
        EXPECT_EQ(Distance(parent, view), 2 * 640 + 10);
    }
}

TEST_F(RoiImage, OffsetIsWholeBytesInPackedFormats) {
    IZqImage& mono12p = Parent(ZqPixelFormat_Mono12p);
    EXPECT_EQ(Distance(mono12p, *mono12p.GetROIImage(2, 0, 2, 1)), 3);
    IZqImage& mono10p = Parent(ZqPixelFormat_Mono10p);
    EXPECT_EQ(Distance(mono10p, *mono10p.GetROIImage(4, 0, 4, 1)), 5);
    IZqImage& mono1p = Parent(ZqPixelFormat_Mono1p);
    EXPECT_EQ(Distance(mono1p, *mono1p.GetROIImage(16, 1, 8, 1)), 80 + 2);
}

TEST_F(RoiImage, PhaseOfAMosaicFollowsTheOffset) {
    IZqImage& parent = Parent(ZqPixelFormat_BayerRG8);
    EXPECT_EQ(parent.GetROIImage(1, 0, 8, 8)->GetImagePixelFormat(), ZqPixelFormat_BayerGR8);
    IZqImage& view = *parent.GetROIImage(1, 1, 8, 8);
    EXPECT_EQ(view.GetImagePixelFormat(), ZqPixelFormat_BayerBG8);
    EXPECT_EQ(view.GetROIImage(1, 0, 4, 4)->GetImagePixelFormat(), ZqPixelFormat_BayerGB8);
}

TEST_F(RoiImage, PackedMosaicIsCutAtItsIncrement) {
    IZqImage& parent = Parent(ZqPixelFormat_BayerRG10p);
    EXPECT_EQ(Refusal(parent, 2, 0, 4, 1),
              "The difference between size_t x = 2 and Min = 0 must be dividable without rest by Inc = 4");
    EXPECT_EQ(parent.GetROIImage(4, 1, 4, 4)->GetImagePixelFormat(), ZqPixelFormat_BayerGB10p);
}

TEST_F(RoiImage, NestedViewIsReusedAndRetargeted) {
    IZqImage& parent = Parent(ZqPixelFormat_Mono8);
    IZqImage& outer = *parent.GetROIImage(10, 10, 100, 100);
    IZqImage* const inner = outer.GetROIImage(1, 2, 50, 50);
    EXPECT_EQ(Distance(parent, *inner), 12 * 640 + 11);
    EXPECT_EQ(outer.GetROIImage(0, 0, 10, 10), inner);
    EXPECT_EQ(Distance(parent, *inner), 10 * 640 + 10);
    parent.GetROIImage(20, 0, 30, 30);
    EXPECT_EQ(Distance(parent, *inner), 20);
    EXPECT_EQ(Refusal(outer, 0, 0, 31, 1), "size_t Width = 31 must be equal or smaller than Max = 30");
}

TEST_F(RoiImage, NestedViewThatCannotBeAllocatedIsReported) {
    IZqImage& view = *Parent(ZqPixelFormat_Mono8).GetROIImage(0, 0, 10, 10);
    const FailingAllocation failing(1);
    const Thrown thrown = Catch<GenICam::BadAllocException>([&] { view.GetROIImage(0, 0, 1, 1); });
    EXPECT_EQ(thrown.text, "std::bad_alloc");
    EXPECT_EQ(thrown.source, "ZqSDKCommon/ZqROIImage");
}

/// Regions in regions of random images, with the sums of their offsets.
class RandomRegions : public RoiImage {
protected:
    size_t Below(size_t limit) { return std::uniform_int_distribution<size_t>(0, limit - 1)(random); }
    size_t UpTo(size_t limit, size_t step) { return Below(limit / step + 1) * step; }

    IZqImage& RandomRoot() {
        const PixelFormatRow& row = PixelFormatTable[Below(PixelFormatTable.size())];
        info = GetIZqPixelFormatInfo(row.value);
        const size_t width = row.incrementX * (1 + Below(12));
        buffer = MakeImage(row.value, width, 1 + Below(12), 1 + Below(9), &allocator);
        FillWithPattern(*buffer->GetIZqImage());
        x = y = 0;
        return *buffer->GetIZqImage();
    }
    /// A region somewhere in the image, as large as may be or smaller.
    IZqImage& RandomRegion(IZqImage& image) {
        const size_t step = info->GetPixelIncrementX();
        const size_t width = step + UpTo(image.GetImageWidth() - step, step);
        const size_t height = 1 + Below(image.GetImageHeight());
        const size_t left = UpTo(image.GetImageWidth() - width, step);
        const size_t top = UpTo(image.GetImageHeight() - height, 1);
        x += left;
        y += top;
        return *image.GetROIImage(left, top, width, height);
    }

    std::mt19937 random{20261121};
    const IZqPixelFormatInfo* info = nullptr;
    size_t x = 0;
    size_t y = 0;
};

TEST_F(RandomRegions, AddTheirOffsetsUp) {
    for (int round = 0; round < 2000; ++round) {
        IZqImage& root = RandomRoot();
        IZqImage* view = &root;
        for (size_t depth = 1 + Below(4); depth > 0; --depth) {
            view = &RandomRegion(*view);
            const size_t bits = info->GetPlaneCount() == 1 ? info->GetEachPixelTotalBitCount()
                                                           : info->GetEachComponentTotalBitCount();
            ASSERT_EQ(x * bits % 8, 0u) << info->GetName().c_str();
            ASSERT_EQ(Distance(root, *view),
                      static_cast<ptrdiff_t>(y * root.GetImageLinePitch() + x * bits / 8));
            ASSERT_EQ(view->GetImagePixelFormat(), info->GetOffsettedPixelFormat(x, y));
            ASSERT_NE(view->GetImagePixelFormat(), ZqPixelFormat_Unknown);
        }
    }
}

using Pixel = std::vector<std::pair<EZqPixelComponent_t, uint64_t>>;

Pixel Values(IZqPixelComponentValue& value) {
    Pixel pixel;
    for (size_t i = 0; i < value.GetCount(); ++i)
        pixel.emplace_back(value.GetPixelComponent(i), value.GetValue(i));
    return pixel;
}

/// Whether pixels of the format stand where their place in the line says: not the 4:4:4 formats, whose groups
/// begin at the first pixel read from, and not the one that reads a byte of its neighbour.
bool StandsForItself(const std::string& name) {
    const bool oddities = name == "YCbCr411_8" || name == "YCbCr8" || name == "YUV8_UYV";
    return !oddities && name.find("_CbYCr") != name.size() - 6;
}

TEST_F(RandomRegions, ShowThePixelsOfTheirRoot) {
    for (int round = 0; round < 2000; ++round) {
        IZqImage& root = RandomRoot();
        IZqImage* view = &root;
        for (size_t depth = 1 + Below(4); depth > 0; --depth)
            view = &RandomRegion(*view);
        for (int sample = 0; sample < 20; ++sample) {
            const size_t column = Below(view->GetImageWidth());
            const size_t line = Below(view->GetImageHeight());
            const Pixel expected = Values(*root.GetIZqPixelComponentValue(x + column, y + line));
            IZqPixelComponentValue& value = *view->GetIZqPixelComponentValue(column, line);
            ASSERT_EQ(Values(value), expected) << info->GetName().c_str();
            // The same from the view's own address, pitch and format; memory ends with the root's.
            value.SetPixelComponent(view, column, line);
            if (StandsForItself(info->GetName().c_str())) {
                ASSERT_EQ(Values(value), expected) << info->GetName().c_str();
            }
        }
    }
}

} // namespace
} // namespace ZqTest
