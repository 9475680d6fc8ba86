// Every short way of drawing against the long one, pixel by pixel.

#include "producer/sim/LinePacker.h"
#include "producer/sim/Painter.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace zqgentl;

namespace {

constexpr uint32_t width = 1200; // more than a ramp's period, and than a piece of noise
constexpr uint32_t height = 5;

const PixelFormat& Format(const char* name) {
    size_t count = 0;
    const PixelFormat* formats = PixelFormats(count);
    return *std::find_if(formats, formats + count,
                         [&](const PixelFormat& format) { return std::string(format.name) == name; });
}

std::vector<uint8_t> Draw(const Scene& scene, const char* format, const ToneCurve& tone = nullptr) {
    std::vector<uint8_t> image(Format(format).ImageSize(scene.region.width, scene.region.height));
    Painter().Draw(scene, Format(format), tone, 7, image.data(), image.size());
    return image;
}

Scene SceneOf(TestPattern pattern, uint32_t binning, bool reverseX, bool reverseY) {
    Scene scene;
    scene.pattern = pattern;
    scene.region = {8, 2, width, height};
    scene.sensorWidth = 6000;
    scene.sensorHeight = 100;
    scene.binningX = binning;
    scene.binningY = binning;
    scene.reverseX = reverseX;
    scene.reverseY = reverseY;
    return scene;
}

ToneCurve Inverted() {
    ToneSettings settings;
    settings.gamma = 0.7;
    settings.lutEnable = 1;
    for (size_t i = 0; i < settings.lut.size(); ++i)
        settings.lut[i] = static_cast<uint8_t>(255 - i);
    return MakeToneCurve(settings);
}

/// Looks at each line, and takes every value through the curve and every colour to grey by itself.
std::vector<uint8_t> WorkOut(const Scene& scene, const ToneCurve& tone) {
    std::vector<uint8_t> image;
    std::vector<uint16_t> room(3 * size_t{width});
    const auto toned = [&](uint32_t value) { return tone == nullptr ? value : (*tone)[value * 257] >> 8; };
    for (uint32_t row = 0; row < height; ++row) {
        const ColourLine line = LookAt(scene, 7, row, 8, room.data());
        for (uint32_t x = 0; x < width; ++x)
            image.push_back(static_cast<uint8_t>(
                (299 * toned(line.red[x]) + 587 * toned(line.green[x]) + 114 * toned(line.blue[x])) / 1000));
    }
    return image;
}

/// A folder with one picture of so many colours; of one that is grey all colours are alike.
class Folder {
public:
    Folder(uint32_t pictureWidth, uint32_t pictureHeight, bool grey)
        : m_width(pictureWidth), m_height(pictureHeight), m_grey(grey) {
        char path[] = "/tmp/drawing-XXXXXX";
        EXPECT_NE(mkdtemp(path), nullptr);
        m_path = path;
        std::ofstream file(m_path / "picture.ppm", std::ios::binary);
        file << "P6 " << m_width << ' ' << m_height << " 255\n";
        for (uint32_t y = 0; y < m_height; ++y) {
            for (uint32_t x = 0; x < m_width; ++x) {
                for (uint32_t colour = 0; colour < 3; ++colour)
                    file.put(static_cast<char>(At(x, y, colour)));
            }
        }
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { std::filesystem::remove_all(m_path); }

    [[nodiscard]] Pictures Read() const { return std::make_shared<PictureFolder>(m_path.string()); }
    [[nodiscard]] uint8_t At(uint32_t x, uint32_t y, uint32_t colour) const {
        return static_cast<uint8_t>(m_grey ? 5 * x + 3 * y : (5 + colour) * x + 3 * y + 40 * colour);
    }
    /// What a pixel of a picture of another size shows: the nearest one.
    [[nodiscard]] uint8_t Nearest(const Scene& scene, uint32_t x, uint32_t y, uint32_t colour) const {
        const Region& region = scene.region;
        const uint32_t column = scene.reverseX ? region.width - 1 - x : x;
        const uint32_t row = scene.reverseY ? region.height - 1 - y : y;
        return At(column * m_width / region.width, row * m_height / region.height, colour);
    }

private:
    uint32_t m_width;
    uint32_t m_height;
    bool m_grey;
    std::filesystem::path m_path;
};

/// Its picture in 64 x 48 pixels.
Scene SceneOf(const Folder& folder) {
    Scene scene;
    scene.pattern = TestPattern::Picture;
    scene.region = {0, 0, 64, 48};
    scene.sensorWidth = 64;
    scene.sensorHeight = 48;
    scene.pictures = folder.Read();
    return scene;
}

void ExpectNearest(const Folder& folder, const Scene& scene) {
    const std::vector<uint8_t> image = Draw(scene, "RGB8");
    bool right = true;
    for (uint32_t y = 0; y < scene.region.height; ++y) {
        for (uint32_t x = 0; x < scene.region.width; ++x) {
            for (uint32_t colour = 0; colour < 3; ++colour)
                right = right && image[3 * (size_t{y} * scene.region.width + x) + colour] ==
                                     folder.Nearest(scene, x, y, colour);
        }
    }
    EXPECT_TRUE(right);
}

} // namespace

TEST(Drawing, OfEveryPatternIsThatOfItsPixels) {
    const ToneCurve tone = Inverted();
    for (int64_t pattern = 0; pattern < testPatternCount; ++pattern) {
        for (const uint32_t binning : {1, 2, 3, 4}) {
            for (const int reverse : {0, 1, 2, 3}) {
                SCOPED_TRACE(std::to_string(pattern) + " binned " + std::to_string(binning) + " reversed " +
                             std::to_string(reverse));
                const Scene scene = SceneOf(static_cast<TestPattern>(pattern), binning, (reverse & 1) != 0,
                                            (reverse & 2) != 0);
                EXPECT_EQ(Draw(scene, "Mono8"), WorkOut(scene, nullptr));
                EXPECT_EQ(Draw(scene, "Mono8", tone), WorkOut(scene, tone));
            }
        }
    }
}

TEST(Drawing, OfAFolderShowsTheNearestPixels) {
    for (const bool grey : {false, true}) {
        for (const auto& [pictureWidth, pictureHeight] :
             {std::pair{40U, 30U}, {64U, 48U}, {100U, 7U}, {1U, 1U}}) {
            const Folder folder(pictureWidth, pictureHeight, grey);
            Scene scene = SceneOf(folder);
            for (const int reverse : {0, 1, 2, 3}) {
                SCOPED_TRACE(std::to_string(pictureWidth) + (grey ? " grey " : " colour ") +
                             std::to_string(reverse));
                scene.reverseX = (reverse & 1) != 0;
                scene.reverseY = (reverse & 2) != 0;
                ExpectNearest(folder, scene);
            }
        }
    }
}

TEST(Drawing, OfAGreyPictureHasEveryColour) {
    const Folder folder(64, 48, true);
    const Scene scene = SceneOf(folder);
    const std::vector<uint8_t> mono = Draw(scene, "Mono8");
    EXPECT_EQ(mono[64 + 2], folder.At(2, 1, 0));
    EXPECT_EQ(Draw(scene, "BayerRG8"), mono);
    const std::vector<uint8_t> planar = Draw(scene, "RGB8_Planar");
    for (size_t plane = 0; plane < 3; ++plane)
        EXPECT_TRUE(std::equal(mono.begin(), mono.end(),
                               planar.begin() + static_cast<ptrdiff_t>(plane * mono.size())));
}

TEST(Drawing, OfAMosaicKeepsItsTwoLines) {
    const Folder folder(64, 12, false); // every line four times
    const Scene scene = SceneOf(folder);
    const std::vector<uint8_t> image = Draw(scene, "BayerRG8");
    for (uint32_t y = 0; y < 48; ++y) {
        for (uint32_t x = 0; x < 64; ++x) {
            const uint32_t colour = x % 2 + y % 2; // red, green, green, blue
            EXPECT_EQ(image[y * 64 + x], folder.Nearest(scene, x, y, colour)) << x << ' ' << y;
        }
    }
}
