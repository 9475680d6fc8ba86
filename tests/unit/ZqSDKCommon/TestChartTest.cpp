#include <algorithm>
#include <fstream>
#include <random>
#include <sstream>

#include "ZqApi_TL/PixelFormatTable.h"
#include "ZqSDKCommon/TestChart.h"
#include "ZqSDKCommon/ZqImageBuffer.h"
#include "tests/support/AllocationFailure.h"
#include "tests/support/ImageBuffers.h"
#include "tests/unit/ZqApi_TL/ModuleTree.h"

namespace ZqTest {
namespace {

constexpr auto TEST_CHART = ZqMemoryInitialization_TestChart;

class Chart : public testing::Test {
protected:
    IZqImage& Draw(EZqPixelFormatNamingConvention_t format, size_t width, size_t height) {
        buffer->CreateBuffer(width, height, format, ZqMemoryInitialization_FFFill);
        buffer->CreateBuffer(width, height, format, TEST_CHART);
        return *buffer->GetIZqImage();
    }
    /// The sample at a pixel of a monochrome picture.
    uint64_t At(size_t x, size_t y) {
        return buffer->GetIZqImage()->GetIZqPixelComponentValue(x, y)->GetValue(0);
    }
    /// "68 82 115": the bytes of a pixel.
    std::string BytesAt(size_t x, size_t y, size_t count) {
        IZqImage& image = *buffer->GetIZqImage();
        const uint8_t* byte = BytesOf(image) + y * image.GetImageLinePitch() + x * count;
        std::string text;
        for (size_t i = 0; i < count; ++i)
            text += (i == 0 ? "" : " ") + std::to_string(byte[i]);
        return text;
    }
    /// "131x10 255x20 ...": a line's samples, equal ones counted.
    std::string Line(size_t y) {
        std::string text;
        const size_t width = buffer->GetIZqImage()->GetImageWidth();
        for (size_t x = 0, end = 0; x < width; x = end) {
            while (end < width && At(end, y) == At(x, y))
                ++end;
            text += (x == 0 ? "" : " ") + std::to_string(At(x, y)) + "x" + std::to_string(end - x);
        }
        return text;
    }

    Library library;
    ImageBuffer buffer = MakeImageBuffer();
};

TEST_F(Chart, GreyStepsAndRamps) {
    Draw(ZqPixelFormat_Mono8, 240, 100);
    const std::string steps = "131x10 255x20 234x20 212x20 190x20 167x20 143x20 120x20 94x20 67x20 37x20 "
                              "0x20 131x10";
    EXPECT_EQ(Line(0), "131x240");
    EXPECT_EQ(Line(9), "131x240");
    EXPECT_EQ(Line(10), steps);
    EXPECT_EQ(Line(29), steps);
    EXPECT_EQ(At(9, 30), 131u);
    EXPECT_EQ(At(10, 30), 0u);
    EXPECT_EQ(At(120, 30), 110u * 255 / 219);
    EXPECT_EQ(At(229, 30), 255u);
    EXPECT_EQ(At(230, 30), 131u);
    EXPECT_EQ(At(10, 50), 255u);
    EXPECT_EQ(At(229, 69), 0u);
    EXPECT_EQ(Line(70), "131x10 0x20 37x20 67x20 94x20 120x20 143x20 167x20 190x20 212x20 234x20 255x20 "
                        "131x10");
    EXPECT_EQ(Line(90), "131x240");
    EXPECT_EQ(Line(99), "131x240");
}

TEST_F(Chart, DeeperGreyKeepsTheStepsAsTheyAre) {
    Draw(ZqPixelFormat_Mono12, 240, 100);
    EXPECT_EQ(At(0, 0), 2096u);
    EXPECT_EQ(At(10, 10), 255u);
    EXPECT_EQ(At(229, 10), 0u);
    EXPECT_EQ(At(229, 30), 4095u);
    EXPECT_EQ(At(10, 50), 4095u);
    Draw(ZqPixelFormat_Mono16, 240, 100);
    EXPECT_EQ(At(0, 99), 33536u);
    EXPECT_EQ(At(229, 30), 65535u);
}

TEST_F(Chart, ColourPatches) {
    Draw(ZqPixelFormat_BGR8, 770, 450);
    EXPECT_EQ(BytesAt(30, 30, 3), "68 82 115");
    EXPECT_EQ(BytesAt(139, 119, 3), "68 82 115");
    EXPECT_EQ(BytesAt(29, 30, 3), "0 0 0");
    EXPECT_EQ(BytesAt(30, 29, 3), "0 0 0");
    EXPECT_EQ(BytesAt(140, 30, 3), "0 0 0");
    EXPECT_EQ(BytesAt(150, 30, 3), "130 150 194");
    EXPECT_EQ(BytesAt(30, 120, 3), "0 0 0");
    EXPECT_EQ(BytesAt(30, 130, 3), "44 126 214");
    EXPECT_EQ(BytesAt(739, 419, 3), "52 52 52");
    EXPECT_EQ(BytesAt(740, 419, 3), "0 0 0");
    EXPECT_EQ(BytesAt(769, 449, 3), "0 0 0");
}

TEST_F(Chart, AlphaIsLeftAsItWasInThePatches) {
    Draw(ZqPixelFormat_BGRa8, 770, 450);
    EXPECT_EQ(BytesAt(30, 30, 4), "68 82 115 255");
    EXPECT_EQ(BytesAt(29, 30, 4), "0 0 0 0");
}

TEST_F(Chart, TooNarrowForContent) {
    Draw(ZqPixelFormat_Mono8, 11, 20);
    for (size_t y = 0; y < 20; ++y)
        EXPECT_EQ(Line(y), "131x11");
    IZqImage& image = Draw(ZqPixelFormat_BGR8, 6, 45);
    for (size_t y = 0; y < 45; ++y)
        for (size_t x = 0; x < 6; ++x)
            EXPECT_EQ(BytesAt(x, y, 3), "0 0 0") << x << "," << y;
    EXPECT_EQ(image.GetImageLinePitch(), 20u);
}

TEST_F(Chart, FormatsWithoutOneAreCleared) {
    for (const auto format : {ZqPixelFormat_Mono10p, ZqPixelFormat_BayerRG8, ZqPixelFormat_RGB16,
                              ZqPixelFormat_YUV422_8, ZqPixelFormat_RGB8_Planar, ZqPixelFormat_BGR10p}) {
        IZqImage& image = Draw(format, 48, 20);
        const uint8_t* const bytes = BytesOf(image);
        const size_t capacity = dynamic_cast<CZqImageBuffer&>(*buffer).GetCapacity();
        EXPECT_TRUE(std::all_of(bytes, bytes + capacity, [](uint8_t byte) { return byte == 0; }));
    }
}

TEST_F(Chart, OtherInitialisationsDrawNothing) {
    auto& inside = dynamic_cast<CZqImageBuffer&>(*buffer);
    buffer->CreateBuffer(48, 20, ZqPixelFormat_BGR16, ZqMemoryInitialization_FFFill);
    for (const int other : {0, 1, 2, 4, -1}) {
        const auto initialization = static_cast<_EZqMemoryInitialization_t>(other);
        EXPECT_FALSE(inside.MakeChartMono8(&inside, initialization));
        EXPECT_FALSE(inside.MakeChartMono16(&inside, initialization));
        EXPECT_FALSE(inside.MakeChartBGR8(&inside, initialization));
        EXPECT_FALSE(inside.MakeChartBGR16(&inside, initialization));
    }
    const uint8_t* const bytes = BytesOf(inside);
    EXPECT_TRUE(std::all_of(bytes, bytes + inside.GetCapacity(), [](uint8_t byte) { return byte == 255; }));
    EXPECT_TRUE(inside.MakeChartBGR16(&inside, TEST_CHART));
}

TEST_F(Chart, EightBitRoutineKnowsBothOrders) {
    auto& inside = dynamic_cast<CZqImageBuffer&>(*buffer);
    for (const auto& [format, bytes] : {std::pair(ZqPixelFormat_RGB8, "115 82 68"),
                                        {ZqPixelFormat_RGBa8, "115 82 68 255"},
                                        {ZqPixelFormat_BGR8, "68 82 115"},
                                        {ZqPixelFormat_BGRa8, "68 82 115 255"}}) {
        buffer->CreateBuffer(77, 45, format, ZqMemoryInitialization_FFFill);
        EXPECT_TRUE(inside.MakeChartBGR8(&inside, TEST_CHART));
        EXPECT_EQ(BytesAt(3, 3, GetIZqPixelFormatInfo(format)->GetEachPixelTotalComponentCount()), bytes);
    }
}

TEST_F(Chart, MemoryForTheTablesMayBeMissing) {
    for (const auto format : {ZqPixelFormat_Mono8, ZqPixelFormat_Mono12, ZqPixelFormat_BGR8,
                              ZqPixelFormat_BGRa16, ZqPixelFormat_RGB8}) {
        IZqImage& image = Draw(format, 79, 47);
        std::fill_n(BytesOf(image), SizeOf(image), uint8_t{0xFF});
        const FailingAllocation failing(1);
        const Thrown thrown =
            Catch<GenICam::BadAllocException>([&] { buffer->CreateBuffer(79, 47, format, TEST_CHART); });
        EXPECT_EQ(thrown.text, "std::bad_alloc");
        EXPECT_EQ(thrown.source, "ZqSDKCommon/ZqImageBuffer");
        EXPECT_EQ(BytesOf(image)[0], 0xFF);
    }
}

/// The files were written by charts/expected.py, which draws pixel by pixel from the charts' description.
class ChartFile : public Chart, public testing::WithParamInterface<const char*> {
protected:
    static std::string Hexadecimal(const uint8_t* bytes, size_t count) {
        constexpr char digits[] = "0123456789abcdef";
        std::string text;
        for (size_t i = 0; i < count; ++i)
            text += {digits[bytes[i] >> 4], digits[bytes[i] & 15]};
        return text;
    }
};

TEST_P(ChartFile, IsTheImageByteByByte) {
    std::ifstream file(std::string(CHART_FILES "/") + GetParam() + ".txt");
    ASSERT_TRUE(file) << GetParam();
    std::string name = GetParam();
    size_t width = 0;
    size_t height = 0;
    ASSERT_EQ(std::sscanf(name.c_str() + name.find('_'), "_%zux%zu", &width, &height), 2);
    name.erase(name.find('_'));
    const auto row = std::find_if(PixelFormatTable.begin(), PixelFormatTable.end(),
                                  [&](const PixelFormatRow& each) { return each.name == name; });
    ASSERT_NE(row, PixelFormatTable.end()) << name;
    IZqImage& image = Draw(row->value, width, height);
    size_t line = 0;
    size_t count = 0;
    for (std::string expected; file >> count >> expected;)
        for (; count > 0; --count, ++line)
            ASSERT_EQ(
                Hexadecimal(BytesOf(image) + line * image.GetImageLinePitch(), image.GetImageLinePitch()),
                expected)
                << "line " << line;
    EXPECT_EQ(line, height);
}

INSTANTIATE_TEST_SUITE_P(
    Pictures, ChartFile,
    testing::Values("BGR10_23x12", "BGR10_6x5", "BGR10_79x47", "BGR12_23x12", "BGR12_6x5", "BGR12_79x47",
                    "BGR14_23x12", "BGR14_6x5", "BGR14_79x47", "BGR16_23x12", "BGR16_6x5", "BGR16_79x47",
                    "BGR8_23x12", "BGR8_6x5", "BGR8_79x47", "BGRa10_23x12", "BGRa10_6x5", "BGRa10_79x47",
                    "BGRa12_23x12", "BGRa12_6x5", "BGRa12_79x47", "BGRa14_23x12", "BGRa14_6x5",
                    "BGRa14_79x47", "BGRa16_23x12", "BGRa16_6x5", "BGRa16_79x47", "BGRa8_23x12", "BGRa8_6x5",
                    "BGRa8_79x47", "Mono10_11x9", "Mono10_31x13", "Mono10_48x20", "Mono12_11x9",
                    "Mono12_31x13", "Mono12_48x20", "Mono14_11x9", "Mono14_31x13", "Mono14_48x20",
                    "Mono16_11x9", "Mono16_31x13", "Mono16_48x20", "Mono8_11x9", "Mono8_31x13", "Mono8_48x20",
                    "RGB8_23x12", "RGB8_6x5", "RGB8_79x47", "RGBa8_23x12", "RGBa8_6x5", "RGBa8_79x47"),
    [](const auto& info) { return std::string(info.param); });

/// Memory between two guards.
class GuardingAllocator final : public IZqAllocator {
public:
    void Allocate(void** ppBuffer, size_t size, void**) override {
        m_Memory.assign(GUARD + size + GUARD, 0xA5);
        *ppBuffer = m_Memory.data() + GUARD;
    }
    void Deallocate(void*, size_t, void*) override {}
    void OnDeregister() override {}

    bool AreGuardsWhole() const {
        const auto isGuard = [](uint8_t byte) { return byte == 0xA5; };
        return std::all_of(m_Memory.begin(), m_Memory.begin() + GUARD, isGuard) &&
               std::all_of(m_Memory.end() - GUARD, m_Memory.end(), isGuard);
    }

private:
    static constexpr ptrdiff_t GUARD = 256;
    std::vector<uint8_t> m_Memory;
};

/// Draws into less memory than the image takes: up to there it is the whole picture, and nothing is behind.
void ExpectCutChart(EZqPixelFormatNamingConvention_t format,
                    bool (*draw)(IZqImage&, size_t, _EZqMemoryInitialization_t)) {
    const ImageBuffer buffer = MakeImageBuffer();
    buffer->CreateBuffer(23, 12, format, ZqMemoryInitialization_FFFill);
    IZqImage& image = *buffer->GetIZqImage();
    uint8_t* const bytes = BytesOf(image);
    const size_t size = SizeOf(image);
    draw(image, size, TEST_CHART);
    const std::vector<uint8_t> whole(bytes, bytes + size);
    for (size_t capacity = 0; capacity < size; ++capacity) {
        std::fill_n(bytes, size, uint8_t{0xFF});
        ASSERT_TRUE(draw(image, capacity, TEST_CHART));
        // A sample that does not fit as a whole is left out.
        const size_t drawn = capacity - std::min<size_t>(capacity, 1);
        ASSERT_TRUE(std::equal(bytes, bytes + drawn, whole.begin())) << capacity;
        ASSERT_TRUE(std::all_of(bytes + capacity, bytes + size, [](uint8_t byte) { return byte == 0xFF; }))
            << capacity;
    }
}

TEST_F(Chart, StopsAtTheEndOfTheMemory) {
    ExpectCutChart(ZqPixelFormat_Mono8, MakeChartMono<uint8_t>);
    ExpectCutChart(ZqPixelFormat_Mono14, MakeChartMono<uint16_t>);
    ExpectCutChart(ZqPixelFormat_BGR8, [](IZqImage& image, size_t capacity, auto initialization) {
        return MakeChartBGR<uint8_t>(image, capacity, initialization, false);
    });
    ExpectCutChart(ZqPixelFormat_BGRa16, [](IZqImage& image, size_t capacity, auto initialization) {
        return MakeChartBGR<uint16_t>(image, capacity, initialization, false);
    });
}

#ifdef ZQAPI_SLOWED_DOWN
constexpr size_t SMALL_STEP = 9;
constexpr int LARGE_SIZES = 4;
#else
constexpr size_t SMALL_STEP = 1;
constexpr int LARGE_SIZES = 150;
#endif

class ChartBounds : public testing::Test {
protected:
    void Draw(const PixelFormatRow& row, size_t width, size_t height) {
        GuardingAllocator allocator;
        const ImageBuffer buffer = MakeImageBuffer(&allocator);
        buffer->CreateBuffer(width, height, row.value, TEST_CHART);
        EXPECT_TRUE(allocator.AreGuardsWhole()) << row.name << " " << width << "x" << height;
        // And in memory that is somewhat larger than the picture.
        buffer->CreateBuffer(std::max<size_t>(width, 2) - 1, height, row.value, TEST_CHART);
        EXPECT_TRUE(allocator.AreGuardsWhole()) << row.name << " " << width - 1 << "x" << height;
    }

    Library library;
};

TEST_F(ChartBounds, NothingIsWrittenOutsideSmallImages) {
    for (const PixelFormatRow& row : PixelFormatTable)
        for (size_t width = 1; width <= 100; width += SMALL_STEP)
            for (size_t height = 1; height <= 60; height += SMALL_STEP)
                Draw(row, width, height);
}

TEST_F(ChartBounds, NothingIsWrittenOutsideLargeImages) {
    std::mt19937 random(20261121);
    for (int round = 0; round < LARGE_SIZES; ++round)
        for (const auto format :
             {ZqPixelFormat_Mono8, ZqPixelFormat_Mono14, ZqPixelFormat_BGR8, ZqPixelFormat_BGRa8,
              ZqPixelFormat_BGR10, ZqPixelFormat_BGRa16, ZqPixelFormat_RGB8, ZqPixelFormat_RGBa8}) {
            const auto row = std::find_if(PixelFormatTable.begin(), PixelFormatTable.end(),
                                          [&](const PixelFormatRow& each) { return each.value == format; });
            Draw(*row, round == 0 ? 800 : 1 + random() % 800, round == 0 ? 600 : 1 + random() % 600);
        }
}

} // namespace
} // namespace ZqTest
