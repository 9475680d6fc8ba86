#include <atomic>
#include <functional>
#include <thread>

#include "ZqApi_TL/PixelComponentList.h"
#include "ZqApi_TL/PixelFormatTable.h"
#include "tests/support/ImageBuffers.h"
#include "tests/support/PixelLayout.h"
#include "tests/unit/ZqApi_TL/ModuleTree.h"

namespace ZqTest {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqPixelComponent";
constexpr size_t NEGATIVE = size_t{1} << 63;

/// "R10=5 G10=0 B10=1023"
std::string Text(IZqPixelComponentValue& value) {
    std::string text;
    for (size_t i = 0; i < value.GetCount(); ++i) {
        const gcstring name = GetIZqPixelComponentInfo(value.GetPixelComponent(i))->GetName();
        text += std::string(i == 0 ? "" : " ") + name.c_str() + "=" + std::to_string(value.GetValue(i));
    }
    return text;
}

std::string Text(const LaidOutPixel& pixel, const uint8_t* memory, size_t size) {
    std::string text;
    for (const LaidOutComponent& component : pixel)
        text += (text.empty() ? "" : " ") + component.name + "=" +
                std::to_string(ValueOf(component, memory, size));
    return text;
}

/// Pixels as a test gives them, in memory of exactly their size.
class GivenImage final : public IZqImage {
public:
    GivenImage(EZqPixelFormatNamingConvention_t format, size_t width, size_t height,
               std::vector<uint8_t> bytes)
        : m_Format(format), m_Width(width), m_Height(height), m_Bytes(std::move(bytes)) {}

    size_t GetImageWidth() override { return m_OnWidth ? m_OnWidth() : m_Width; }
    size_t GetImageHeight() override { return m_OnHeight ? m_OnHeight() : m_Height; }
    size_t GetImageLinePitch() override { return m_Bytes.size() / m_Height; }
    size_t GetImagePlanePitch() override { return m_Bytes.size(); }
    EZqPixelFormatNamingConvention_t GetImagePixelFormat() override { return m_Format; }
    void* GetImageBuffer() override {
        if (m_HasNoMemory)
            return nullptr;
        return m_Bytes.data();
    }
    void* GetUserContext() override { return nullptr; }
    IZqImage* GetROIImage(size_t, size_t, size_t, size_t) override { return nullptr; }
    IZqPixelComponentValue* GetIZqPixelComponentValue(size_t, size_t) override { return nullptr; }

    std::function<size_t()> m_OnWidth;
    std::function<size_t()> m_OnHeight;
    bool m_HasNoMemory = false;

private:
    const EZqPixelFormatNamingConvention_t m_Format;
    const size_t m_Width;
    const size_t m_Height;
    std::vector<uint8_t> m_Bytes;
};

class PixelComponentReader : public testing::Test {
protected:
    PixelComponentReader() {
        buffer->CreateBuffer(4, 2, ZqPixelFormat_Mono8, ZqMemoryInitialization_ZeroFill);
        BytesOf(*buffer->GetIZqImage())[0] = 200;
        value = buffer->GetIZqImage()->GetIZqPixelComponentValue(0, 0);
    }
    /// The pixel at (x, 0) of one line of bytes.
    std::string Read(EZqPixelFormatNamingConvention_t format, size_t width, std::vector<uint8_t> bytes,
                     size_t x) {
        GivenImage image(format, width, 1, std::move(bytes));
        value->SetPixelComponent(&image, x, 0);
        return Text(*value);
    }
    std::string Refusal(const std::function<void()>& read) {
        const Thrown thrown = Catch<GenICam::OutOfRangeException>(read);
        EXPECT_EQ(thrown.source, UNIT);
        return thrown.text;
    }

    Library library;
    ImageBuffer buffer = MakeImageBuffer();
    IZqPixelComponentValue* value = nullptr;
};

TEST_F(PixelComponentReader, MonochromePixelIsOneEntry) {
    EXPECT_EQ(value->GetCount(), 1u);
    EXPECT_EQ(value->GetPixelComponent(0), ZqPixelComponent_Mono8);
    EXPECT_EQ(value->GetValue(0), 200u);
}

TEST_F(PixelComponentReader, ListChangesWithTheNextPixelOfTheImage) {
    EXPECT_EQ(buffer->GetIZqImage()->GetIZqPixelComponentValue(1, 1), value);
    EXPECT_EQ(Text(*value), "Mono8=0");
}

TEST_F(PixelComponentReader, PackedPixelsBeginWithTheirLowBits) {
    EXPECT_EQ(Read(ZqPixelFormat_Mono12p, 2, {0x21, 0x43, 0x65}, 0), "Mono12=801");  // 0x321
    EXPECT_EQ(Read(ZqPixelFormat_Mono12p, 2, {0x21, 0x43, 0x65}, 1), "Mono12=1620"); // 0x654
    EXPECT_EQ(Read(ZqPixelFormat_Mono1p, 8, {0x82}, 1), "Mono1=1");
    EXPECT_EQ(Read(ZqPixelFormat_Mono1p, 8, {0x82}, 2), "Mono1=0");
    EXPECT_EQ(Read(ZqPixelFormat_Mono14p, 4, {0, 0xC0, 0xFF, 0x0F, 0, 0, 0}, 1), "Mono14=16383");
}

TEST_F(PixelComponentReader, GigEVisionPairsShareTheirMiddleByte) {
    EXPECT_EQ(Read(ZqPixelFormat_GVSP_Mono12Packed, 2, {0xAB, 0xCD, 0xEF}, 0), "Mono12=2748"); // 0xABC
    EXPECT_EQ(Read(ZqPixelFormat_GVSP_Mono12Packed, 2, {0xAB, 0xCD, 0xEF}, 1), "Mono12=3837"); // 0xEFD
    EXPECT_EQ(Read(ZqPixelFormat_GVSP_Mono10Packed, 2, {0xFF, 0x10, 0x00}, 0), "Mono10=1021");
    EXPECT_EQ(Read(ZqPixelFormat_GVSP_Mono10Packed, 2, {0x00, 0x12, 0xFF}, 1), "Mono10=1022");
}

TEST_F(PixelComponentReader, MosaicPixelIsNamedByItsPlace) {
    const ImageBuffer mosaic = MakeImage(ZqPixelFormat_BayerRG8, 4, 4);
    const auto at = [&](size_t x, size_t y) {
        return mosaic->GetIZqImage()->GetIZqPixelComponentValue(x, y)->GetPixelComponent(0);
    };
    EXPECT_EQ(at(0, 0), ZqPixelComponent_R8);
    EXPECT_EQ(at(1, 0), ZqPixelComponent_Gr8);
    EXPECT_EQ(at(2, 3), ZqPixelComponent_Gb8);
    EXPECT_EQ(at(1, 1), ZqPixelComponent_B8);
    mosaic->SetSize(4, 4, ZqPixelFormat_BayerGB16, 0);
    EXPECT_EQ(at(0, 0), ZqPixelComponent_Gb16);
}

TEST_F(PixelComponentReader, AlphaIsSkipped) {
    EXPECT_EQ(Read(ZqPixelFormat_BGRa8, 2, {1, 2, 3, 4, 5, 6, 7, 8}, 1), "B8=5 G8=6 R8=7");
    EXPECT_EQ(Read(ZqPixelFormat_RGBa8, 2, {1, 2, 3, 4, 5, 6, 7, 8}, 0), "R8=1 G8=2 B8=3");
}

TEST_F(PixelComponentReader, LowestFieldOfAWordIsTheFirstColour) {
    EXPECT_EQ(Read(ZqPixelFormat_RGB10p32, 1, {0x01, 0x08, 0x30, 0xC0}, 0), "R10=1 G10=2 B10=3");
    EXPECT_EQ(Read(ZqPixelFormat_CBGR10p32, 1, {0x01, 0x08, 0x30, 0xC0}, 0), "B10=1 G10=2 R10=3");
}

TEST_F(PixelComponentReader, UnpackedSamplesAreTakenWhole) {
    EXPECT_EQ(Read(ZqPixelFormat_Mono10, 1, {0x34, 0xF2}, 0), "Mono10=62004");
    EXPECT_EQ(Read(ZqPixelFormat_BGR12, 1, {1, 0x10, 2, 0, 3, 0xF0}, 0), "B12=4097 G12=2 R12=61443");
}

TEST_F(PixelComponentReader, FourFourFourStepsSixteenBytesForFourPixels) {
    std::vector<uint8_t> line(24);
    for (size_t i = 0; i < line.size(); ++i)
        line[i] = static_cast<uint8_t>(10 + i);
    for (const size_t x : {0, 1, 2, 3})
        EXPECT_EQ(Read(ZqPixelFormat_YCbCr8, 8, line, x), "Y8=10 Cb8=11 Cr8=12") << x;
    for (const size_t x : {4, 5, 6, 7})
        EXPECT_EQ(Read(ZqPixelFormat_YUV8_UYV, 8, line, x), "U8=26 Y8=27 V8=28") << x;
}

TEST_F(PixelComponentReader, BytesBehindTheImageAreZero) {
    const std::vector<uint8_t> fifteen(15, 0xFF);
    EXPECT_EQ(Read(ZqPixelFormat_YCbCr8, 5, fifteen, 4), "Y8=0 Cb8=0 Cr8=0");
    EXPECT_EQ(Read(ZqPixelFormat_YCbCr8, 6, std::vector<uint8_t>(18, 0xFF), 4), "Y8=255 Cb8=255 Cr8=0");
    EXPECT_EQ(Read(ZqPixelFormat_YCbCr411_8, 4, std::vector<uint8_t>(6, 0xFF), 3), "Y8=0 Cb8=255 Cr8=255");
    EXPECT_EQ(Read(ZqPixelFormat_BGR12p, 1, std::vector<uint8_t>(5, 0xFF), 0), "B12=4095 G12=4095 R12=4095");
}

TEST_F(PixelComponentReader, PaddingOfTheLastLineBelongsToTheImage) {
    EXPECT_EQ(Read(ZqPixelFormat_YCbCr8, 5, std::vector<uint8_t>(18, 0xFF), 4), "Y8=255 Cb8=255 Cr8=0");
    EXPECT_EQ(Read(ZqPixelFormat_YCbCr411_8, 4, std::vector<uint8_t>(7, 0xFF), 3), "Y8=255 Cb8=255 Cr8=255");
}

TEST_F(PixelComponentReader, ImageWithoutMemoryReadsAsZero) {
    GivenImage image(ZqPixelFormat_RGB8, 1, 1, {1, 2, 3});
    image.m_HasNoMemory = true;
    value->SetPixelComponent(&image, 0, 0);
    EXPECT_EQ(Text(*value), "R8=0 G8=0 B8=0");
}

TEST_F(PixelComponentReader, PositionsOutsideTheImageAreRefused) {
    IZqImage& image = *buffer->GetIZqImage();
    const auto at = [&](size_t x, size_t y) {
        return Refusal([&, x, y] { image.GetIZqPixelComponentValue(x, y); });
    };
    EXPECT_EQ(at(4, 0), "size_t x = 4 must be smaller than Max = 4");
    EXPECT_EQ(at(NEGATIVE, 9), "size_t x = -9223372036854775808 must be equal or greater than Min = 0");
    EXPECT_EQ(at(3, 2), "size_t y = 2 must be smaller than Max = 2");
    EXPECT_EQ(at(3, static_cast<size_t>(-1)), "size_t y = -1 must be equal or greater than Min = 0");
    EXPECT_EQ(Text(*value), "Mono8=200");
}

TEST_F(PixelComponentReader, IndexOutsideTheListIsRefused) {
    EXPECT_EQ(Refusal([this] { value->GetValue(1); }), "nIndex = 1 must be smaller than Max = 1");
    EXPECT_EQ(Refusal([this] { value->GetPixelComponent(1); }), "nIndex = 1 must be smaller than Max = 1");
    EXPECT_EQ(Refusal([this] { value->GetValue(NEGATIVE); }),
              "nIndex = -9223372036854775808 must be equal or greater than Min = 0");
    EXPECT_EQ(Refusal([this] { value->GetPixelComponent(static_cast<size_t>(-1)); }),
              "nIndex = -1 must be equal or greater than Min = 0");
}

TEST_F(PixelComponentReader, NothingIsListedBeforeTheFirstPixel) {
    // The reader is only handed out with a pixel; what a refused first one leaves is what it began with.
    const ImageBuffer other = MakeImage(ZqPixelFormat_Mono8, 1, 1);
    GivenImage image(ZqPixelFormat_Mono8, 1, 1, {9});
    IZqPixelComponentValue& fresh = *other->GetIZqImage()->GetIZqPixelComponentValue(0, 0);
    size_t asked = 0;
    image.m_OnWidth = [&] { return ++asked == 1 ? size_t{1} : size_t{0}; };
    EXPECT_EQ(Refusal([&] { fresh.SetPixelComponent(&image, 0, 0); }), "x = 0 must be smaller than Max = 0");
    EXPECT_EQ(fresh.GetCount(), 0u);
    EXPECT_EQ(Refusal([&] { fresh.GetValue(0); }), "nIndex = 0 must be smaller than Max = 0");
}

TEST_F(PixelComponentReader, ImageThatShrinksMeanwhileIsRefusedByTheSecondCheck) {
    GivenImage image(ZqPixelFormat_Mono8, 1, 1, {9});
    size_t asked = 0;
    image.m_OnHeight = [&] { return ++asked == 1 ? size_t{1} : size_t{0}; };
    EXPECT_EQ(Refusal([&] { value->SetPixelComponent(&image, 0, 0); }), "y = 0 must be smaller than Max = 0");
    EXPECT_EQ(value->GetCount(), 0u);
}

TEST_F(PixelComponentReader, UnknownFormatKeepsTheList) {
    GivenImage image(static_cast<EZqPixelFormatNamingConvention_t>(0x12345678), 1, 1, {9});
    EXPECT_EQ(Catch<GenICam::RuntimeException>([&] { value->SetPixelComponent(&image, 0, 0); }).text,
              "Unknown pixelformat 0x12345678");
    EXPECT_EQ(Text(*value), "Mono8=200");
}

TEST_F(PixelComponentReader, EmptyBufferHasNoPixel) {
    const ImageBuffer empty = MakeImageBuffer();
    EXPECT_EQ(Refusal([&] { dynamic_cast<IZqImage&>(*empty).GetIZqPixelComponentValue(0, 0); }),
              "size_t x = 0 must be smaller than Max = 0");
}

TEST_F(PixelComponentReader, MissingImageStopsTheProcess) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(value->SetPixelComponent(nullptr, 0, 0), "pIZqImage");
}

TEST_F(PixelComponentReader, RegionCoordinatesAreNotCheckedAgainstTheRegion) {
    IZqImage& region = *buffer->GetIZqImage()->GetROIImage(1, 0, 1, 1);
    EXPECT_EQ(Text(*region.GetIZqPixelComponentValue(static_cast<size_t>(-1), 0)), "Mono8=200");
    EXPECT_EQ(Text(*region.GetIZqPixelComponentValue(2, 1)), "Mono8=0");
    EXPECT_EQ(Refusal([&] { region.GetIZqPixelComponentValue(3, 0); }),
              "size_t x = 4 must be smaller than Max = 4");
}

TEST_F(PixelComponentReader, RegionsMemoryEndsWithItsRoots) {
    // More memory than the picture takes, so that bytes behind it show.
    buffer->CreateBuffer(100, 1, ZqPixelFormat_Mono8, ZqMemoryInitialization_FFFill);
    buffer->SetSize(6, 2, ZqPixelFormat_YCbCr8, 1);
    IZqImage& region = *buffer->GetIZqImage()->GetROIImage(1, 0, 5, 2);
    value->SetPixelComponent(&region, 4, 0);
    EXPECT_EQ(Text(*value), "Y8=255 Cb8=255 Cr8=255");
    // Its group of bytes begins one byte behind the last line.
    value->SetPixelComponent(&region, 4, 1);
    EXPECT_EQ(Text(*value), "Y8=0 Cb8=0 Cr8=0");
}

// Every pixel of every format in memory of exactly the image's size, pitches tight and padded, odd sizes too.
TEST(PixelComponentFormats, EveryPixelIsWhereItsFormatsNameSays) {
    const Library library;
    RecordingAllocator allocator;
    for (const PixelFormatRow& row : PixelFormatTable)
        for (const size_t width : {1, 2, 3, 4, 5, 7, 8, 9, 13, 16, 21})
            for (const size_t alignment : {1, 0, 7, 32}) {
                const ImageBuffer buffer = MakeImage(row.value, width, 3, alignment, &allocator);
                IZqImage& image = *buffer->GetIZqImage();
                FillWithPattern(image);
                for (size_t i = 0; i < 3 * width; ++i) {
                    const size_t x = i % width;
                    const size_t y = i / width;
                    const LaidOutPixel pixel =
                        LayOutPixel(row.name, x, y, {image.GetImageLinePitch(), image.GetImagePlanePitch()});
                    ASSERT_EQ(Text(*image.GetIZqPixelComponentValue(x, y)),
                              Text(pixel, BytesOf(image), SizeOf(image)))
                        << row.name << " " << x << "," << y << " of " << width << " aligned " << alignment;
                }
            }
}

// Few of the reads fall into the few nanoseconds of a replacement.
#ifdef ZQAPI_SLOWED_DOWN
constexpr int READS = 1000000;
#else
constexpr int READS = 50000000;
#endif

TEST(PixelComponentThreads, EntryAndCountAreOfOneList) {
    PixelComponentList list;
    std::atomic<bool> ended{false};
    std::atomic<int> writing{0};
    // Lists of one and of three entries, of which every part says which list it belongs to.
    const auto write = [&](size_t count, EZqPixelComponent_t component) {
        PixelComponents pixel;
        while (pixel.count < count)
            pixel.Append(component, count);
        list.Replace(pixel);
        for (++writing; !ended;) {
            list.Replace(pixel);
            for (int pause = 0; pause < 20 && !ended; ++pause)
                list.GetCount();
        }
    };
    std::thread one(write, 1, ZqPixelComponent_Mono8);
    std::thread three(write, 3, ZqPixelComponent_R8);
    while (writing < 2)
        std::this_thread::yield();
    size_t torn = 0;
    for (int i = 0; i < READS; ++i) {
        SPIXE_COMPONENT_INFO entry;
        const size_t count = list.GetEntry(0, entry);
        const bool isOne = count == 1 && entry.component == ZqPixelComponent_Mono8;
        const bool isThree = count == 3 && entry.component == ZqPixelComponent_R8;
        torn += (isOne || isThree) && entry.value == count ? 0 : 1;
    }
    ended = true;
    one.join();
    three.join();
    EXPECT_EQ(torn, 0u);
}

TEST(PixelComponentThreads, ReadersOfOneImageDisturbNobody) {
    const Library library;
    const ImageBuffer buffer = MakeImageBuffer();
    buffer->CreateBuffer(8, 8, ZqPixelFormat_RGB8, ZqMemoryInitialization_FFFill);
    const auto read = [&] {
        for (size_t i = 0; i < 5000; ++i) {
            IZqPixelComponentValue& value =
                *buffer->GetIZqImage()->GetIZqPixelComponentValue(i % 8, i / 8 % 8);
            EXPECT_EQ(value.GetCount(), 3u);
            EXPECT_EQ(value.GetValue(i % 3), 255u);
        }
    };
    std::thread other(read);
    read();
    other.join();
}

} // namespace
} // namespace ZqTest
