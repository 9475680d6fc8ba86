// Whether the simulated cameras are fast enough to measure others with.
//
//   bench_simulator [seconds of the last figure, 5 unless given]
//
// Four figures: how long listing 256 cameras takes, how much of a picture a core draws (of every test
// pattern, and of pictures of a folder, also reversed, binned and through a tone curve), how many of the
// smallest frames one camera delivers, and how many frames are lost when 16 cameras stream at 30 frames a
// second. Each has its results checked first, and the program ends with 1 when one is not reached.

#include "producer/sim/Painter.h"
#include "tests/unit/producer/Functions.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace GenTL;

namespace {

using Clock = std::chrono::steady_clock;

double Seconds(Clock::duration duration) {
    return std::chrono::duration<double>(duration).count();
}

void Require(bool holds, const std::string& what) {
    if (!holds)
        throw std::runtime_error(what);
}

void Check(GC_ERROR result, const char* what) {
    Require(result == GC_ERR_SUCCESS, std::string(what) + " gives " + std::to_string(result));
}

const Functions& gentl = Producer();
bool allReached = true;

void Report(const char* what, double figure, const char* unit, double bound, bool reached) {
    std::printf("%-58s %12.3f %-10s (%s %g)\n", what, figure, unit,
                reached ? "reached:" : "NOT REACHED:", bound);
    allReached = allReached && reached;
}

/// A library with so many cameras as ZQGENTL_SIM says, and all its interfaces open.
class Library {
public:
    explicit Library(const char* cameras) {
        setenv("ZQGENTL_SIM", cameras, 1);
        Check(gentl.GCInitLib(), "GCInitLib");
        Check(gentl.TLOpen(&m_system), "TLOpen");
        Check(gentl.TLUpdateInterfaceList(m_system, nullptr, 1000), "TLUpdateInterfaceList");
        uint32_t count = 0;
        Check(gentl.TLGetNumInterfaces(m_system, &count), "TLGetNumInterfaces");
        for (uint32_t i = 0; i < count; ++i)
            AddInterface(i);
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() { gentl.GCCloseLib(); }

    struct Listed {
        IF_HANDLE interface;
        std::string id;
    };
    std::vector<Listed> devices;

private:
    void AddInterface(uint32_t index) {
        char id[128];
        size_t size = sizeof id;
        Check(gentl.TLGetInterfaceID(m_system, index, id, &size), "TLGetInterfaceID");
        IF_HANDLE interface = nullptr;
        Check(gentl.TLOpenInterface(m_system, id, &interface), "TLOpenInterface");
        Check(gentl.IFUpdateDeviceList(interface, nullptr, 1000), "IFUpdateDeviceList");
        uint32_t count = 0;
        Check(gentl.IFGetNumDevices(interface, &count), "IFGetNumDevices");
        for (uint32_t i = 0; i < count; ++i) {
            size = sizeof id;
            Check(gentl.IFGetDeviceID(interface, i, id, &size), "IFGetDeviceID");
            devices.push_back({interface, id});
        }
    }

    TL_HANDLE m_system = nullptr;
};

void ListMany() {
    double best = 1e9;
    for (int round = 0; round < 5; ++round) {
        const auto begin = Clock::now();
        const Library library("U3V=86,GEV=85,CXP=85");
        best = std::min(best, Seconds(Clock::now() - begin));
        std::set<std::string> ids;
        for (const Library::Listed& device : library.devices)
            ids.insert(device.id);
        Require(ids.size() == 256, "not every camera is in the list");
    }
    Report("256 cameras listed", best * 1e3, "ms", 100, best < 0.1);
}

// More than the caches of a core hold.
constexpr uint32_t width = 4096;
constexpr uint32_t height = 3072;

struct Sensor {
    uint32_t width;
    uint32_t height;
};

/// Red, green and blue.
using Colour = std::array<uint32_t, 3>;

Colour Grey(uint32_t level) {
    return {level, level, level};
}

struct Pattern {
    zqgentl::TestPattern pattern;
    const char* name;
    Colour (*level)(uint32_t x, uint32_t y, uint32_t t, Sensor sensor);
};

/// What each pattern shows in eight bits, worked out pixel by pixel; noise only has to use every level.
const Pattern patterns[] = {
    {zqgentl::TestPattern::GreyDiagonalRampMoving, "GreyDiagonalRampMoving",
     [](uint32_t x, uint32_t y, uint32_t t, Sensor) { return Grey((x + y + t) & 255); }},
    {zqgentl::TestPattern::GreyHorizontalRampMoving, "GreyHorizontalRampMoving",
     [](uint32_t x, uint32_t, uint32_t t, Sensor) { return Grey((x + t) & 255); }},
    {zqgentl::TestPattern::GreyVerticalRampMoving, "GreyVerticalRampMoving",
     [](uint32_t, uint32_t y, uint32_t t, Sensor) { return Grey((y + t) & 255); }},
    {zqgentl::TestPattern::White, "White", [](uint32_t, uint32_t, uint32_t, Sensor) { return Grey(255); }},
    {zqgentl::TestPattern::HorizontalLineMoving, "HorizontalLineMoving",
     [](uint32_t, uint32_t y, uint32_t t, Sensor sensor) { return Grey(y == t % sensor.height ? 255 : 0); }},
    {zqgentl::TestPattern::VerticalLineMoving, "VerticalLineMoving",
     [](uint32_t x, uint32_t, uint32_t t, Sensor sensor) { return Grey(x == t % sensor.width ? 255 : 0); }},
    {zqgentl::TestPattern::ColorBarMoving, "ColorBarMoving",
     [](uint32_t x, uint32_t, uint32_t t, Sensor sensor) {
         // White, yellow, cyan, green, magenta, red, blue, black.
         const uint32_t bar = (x + t) % sensor.width * 8 / sensor.width;
         return Colour{(bar & 2) == 0 ? 255U : 0U, (bar & 4) == 0 ? 255U : 0U, (bar & 1) == 0 ? 255U : 0U};
     }},
    {zqgentl::TestPattern::ColorRampMoving, "ColorRampMoving",
     [](uint32_t x, uint32_t y, uint32_t t, Sensor) {
         return Colour{(x + t) & 255, (y + t) & 255, (x + y + t) & 255};
     }},
    {zqgentl::TestPattern::NoiseMoving, "NoiseMoving", nullptr},
    {zqgentl::TestPattern::FrameCounter, "FrameCounter",
     [](uint32_t x, uint32_t, uint32_t t, Sensor) {
         return Grey(x < 256 && ((t >> (x / 8)) & 1) != 0 ? 255 : 0);
     }},
};

/// How the camera looks at a scene. Of a pixel of the picture, the one of the scene that it shows.
struct View {
    const char* name;
    uint32_t binning;
    bool reverseX;
    bool reverseY;
    zqgentl::ToneSettings tone;

    [[nodiscard]] Sensor OfSensor() const { return {width * binning, height * binning}; }
    [[nodiscard]] uint32_t X(uint32_t x) const {
        return reverseX ? width * binning - 1 - x * binning : x * binning;
    }
    [[nodiscard]] uint32_t Y(uint32_t y) const {
        return reverseY ? height * binning - 1 - y * binning : y * binning;
    }
    /// Of pictures of a folder, which are resized to the region.
    [[nodiscard]] uint32_t XOf(uint32_t x, uint32_t of) const {
        return (reverseX ? width - 1 - x : x) * of / width;
    }
    [[nodiscard]] uint32_t YOf(uint32_t y, uint32_t of) const {
        return (reverseY ? height - 1 - y : y) * of / height;
    }
};

zqgentl::ToneSettings Tone(double gamma, bool lut) {
    zqgentl::ToneSettings tone;
    tone.gamma = gamma;
    tone.lutEnable = lut ? 1 : 0;
    for (size_t i = 0; i < tone.lut.size(); ++i)
        tone.lut[i] = static_cast<uint8_t>(255 - i);
    return tone;
}

const View straight{"", 1, false, false, Tone(1, false)};
const View views[] = {
    {", reversed in x", 1, true, false, Tone(1, false)},
    {", reversed in both", 1, true, true, Tone(1, false)},
    {", binned 2 x 2", 2, false, false, Tone(1, false)},
    {", binned and reversed", 2, true, true, Tone(1, false)},
    {", with a gamma", 1, false, false, Tone(0.5, false)},
    {", with a table", 1, false, false, Tone(1, true)},
};

/// Time that this thread has had a processor.
double ProcessorSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

zqgentl::Scene SceneOf(zqgentl::TestPattern pattern, const View& view) {
    zqgentl::Scene scene;
    scene.pattern = pattern;
    scene.region = {0, 0, width, height};
    scene.sensorWidth = width * view.binning;
    scene.sensorHeight = height * view.binning;
    scene.binningX = scene.binningY = view.binning;
    scene.reverseX = view.reverseX;
    scene.reverseY = view.reverseY;
    return scene;
}

/// Gigabytes that one thread draws in a second of its processor. `check` gets the picture and its number.
template <class CheckImage>
double DrawingSpeed(const zqgentl::Scene& scene, const View& view, CheckImage check) {
    const zqgentl::PixelFormat& mono8 =
        *zqgentl::FindPixelFormat(zqgentl::Technology::Usb3Vision, 0x01080001);
    const zqgentl::ToneCurve tone = MakeToneCurve(view.tone);
    zqgentl::Painter painter;
    std::vector<uint8_t> image(size_t{width} * height);
    double best = 0;
    uint32_t t = 3;
    for (int round = 0; round < 5; ++round) {
        constexpr int frames = 20;
        const double begin = ProcessorSeconds();
        for (int frame = 0; frame < frames; ++frame)
            painter.Draw(scene, mono8, tone, ++t, image.data(), image.size());
        const double gigabytes = frames * static_cast<double>(image.size()) / 1e9;
        best = std::max(best, gigabytes / (ProcessorSeconds() - begin));
        check(image, t);
    }
    return best;
}

/// Compares every pixel with what `level` says of the scene's.
template <class Level>
void CheckImage(const std::vector<uint8_t>& image, const View& view, const char* name, Level level) {
    const zqgentl::ToneCurve tone = MakeToneCurve(view.tone);
    uint32_t toned[256];
    for (uint32_t i = 0; i < 256; ++i)
        toned[i] = tone == nullptr ? i : (*tone)[i * 257] >> 8;
    bool right = true;
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t x = 0; x < width; ++x) {
            const Colour c = level(x, y);
            const uint32_t luma = (299 * toned[c[0]] + 587 * toned[c[1]] + 114 * toned[c[2]]) / 1000;
            right = right && image[size_t{y} * width + x] == luma;
        }
    }
    Require(right, std::string(name) + view.name);
}

void DrawPattern(const Pattern& pattern, const View& view) {
    const double speed = DrawingSpeed(
        SceneOf(pattern.pattern, view), view, [&](const std::vector<uint8_t>& image, uint32_t t) {
            if (pattern.level == nullptr) {
                const std::set<uint8_t> levels(image.begin(), image.begin() + width);
                Require(levels.size() > (view.tone.gamma == 1 ? 255 : 127), pattern.name);
                return;
            }
            CheckImage(image, view, pattern.name, [&](uint32_t x, uint32_t y) {
                return pattern.level(view.X(x), view.Y(y), t, view.OfSensor());
            });
        });
    const double bound = &view == &straight ? 2 : 1;
    Report((std::string("Mono8 drawn: ") + pattern.name + view.name).c_str(), speed, "GB/s", bound,
           speed > bound);
}

/// A folder with one picture, which goes with it.
class Folder {
public:
    enum class Kind { Grey, Colour };
    Folder(Kind kind, uint32_t pictureWidth, uint32_t pictureHeight)
        : m_grey(kind == Kind::Grey), m_width(pictureWidth), m_height(pictureHeight) {
        char path[] = "/tmp/bench-simulator-XXXXXX";
        Require(mkdtemp(path) != nullptr, "no folder can be made");
        m_path = path;
        std::ofstream file(m_path + "/picture.ppm", std::ios::binary);
        file << "P6 " << m_width << ' ' << m_height << " 255\n";
        for (uint32_t y = 0; y < m_height; ++y) {
            for (uint32_t x = 0; x < m_width; ++x) {
                for (uint32_t colour = 0; colour < 3; ++colour)
                    file.put(static_cast<char>(Value(x, y, colour)));
            }
        }
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { std::filesystem::remove_all(m_path); }

    [[nodiscard]] const std::string& Path() const { return m_path; }
    [[nodiscard]] uint32_t Width() const { return m_width; }
    [[nodiscard]] uint32_t Height() const { return m_height; }
    [[nodiscard]] Colour At(uint32_t x, uint32_t y) const {
        return {Value(x, y, 0), Value(x, y, 1), Value(x, y, 2)};
    }

private:
    [[nodiscard]] uint32_t Value(uint32_t x, uint32_t y, uint32_t colour) const {
        return (m_grey ? x * 3 + y * 7 : x * (3 + colour) + y * 7 + colour * 31) & 255;
    }

    bool m_grey;
    uint32_t m_width;
    uint32_t m_height;
    std::string m_path;
};

void DrawFolder(const Folder& folder, const char* name, const View& view, double bound) {
    zqgentl::Scene scene = SceneOf(zqgentl::TestPattern::Picture, view);
    scene.pictures = std::make_shared<zqgentl::PictureFolder>(folder.Path());
    const double speed = DrawingSpeed(scene, view, [&](const std::vector<uint8_t>& image, uint32_t) {
        CheckImage(image, view, name, [&](uint32_t x, uint32_t y) {
            return folder.At(view.XOf(x, folder.Width()), view.YOf(y, folder.Height()));
        });
    });
    Report((std::string("Mono8 drawn: ") + name + view.name).c_str(), speed, "GB/s", bound, speed > bound);
}

void DrawPictures() {
    for (const Pattern& pattern : patterns)
        DrawPattern(pattern, straight);
    for (const View& view : views) {
        for (const Pattern& pattern : patterns)
            DrawPattern(pattern, view);
    }
    const Folder small(Folder::Kind::Colour, 1000, 750);
    const Folder grey(Folder::Kind::Grey, width, height);
    const Folder colour(Folder::Kind::Colour, width, height);
    const auto drawAll = [&](const View& view) {
        DrawFolder(small, "picture of 1000 x 750", view, 1);
        DrawFolder(grey, "grey picture of the same size", view, 1);
        DrawFolder(colour, "colour picture of the same size", view, 0.2);
    };
    drawAll(straight);
    for (const View& view : views)
        drawAll(view);
}

/// An open camera that streams into buffers of its own.
class Camera {
public:
    Camera(const Library::Listed& listed, size_t buffers, uint32_t side) {
        Check(gentl.IFOpenDevice(listed.interface, listed.id.c_str(), DEVICE_ACCESS_CONTROL, &m_device),
              "IFOpenDevice");
        Check(gentl.DevGetPort(m_device, &m_remote), "DevGetPort");
        Check(gentl.DevOpenDataStream(m_device, "Stream0", &m_stream), "DevOpenDataStream");
        Check(gentl.GCRegisterEvent(m_stream, EVENT_NEW_BUFFER, &m_event), "GCRegisterEvent");
        m_bigEndian = listed.id.find("U3V") == std::string::npos;
        if (side != 0) {
            Write(0x410, side);
            Write(0x414, side);
            Write(0x520, 0); // as fast as it goes
        }
        size_t payload = 0;
        size_t size = sizeof payload;
        INFO_DATATYPE type = 0;
        Check(gentl.DSGetInfo(m_stream, STREAM_INFO_PAYLOAD_SIZE, &type, &payload, &size), "PAYLOAD_SIZE");
        for (size_t i = 0; i < buffers; ++i) {
            BUFFER_HANDLE buffer = nullptr;
            Check(gentl.DSAllocAndAnnounceBuffer(m_stream, payload, nullptr, &buffer),
                  "DSAllocAndAnnounceBuffer");
            Check(gentl.DSQueueBuffer(m_stream, buffer), "DSQueueBuffer");
        }
    }

    void Start() {
        Check(gentl.DSStartAcquisition(m_stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE),
              "DSStartAcquisition");
        Write(0x508, 1);
    }
    /// Fetches a frame and gives its buffer back.
    BUFFER_HANDLE Next() {
        EVENT_NEW_BUFFER_DATA data{};
        size_t size = sizeof data;
        Check(gentl.EventGetData(m_event, &data, &size, 5000), "EventGetData");
        return data.BufferHandle;
    }
    void Return(BUFFER_HANDLE buffer) { Check(gentl.DSQueueBuffer(m_stream, buffer), "DSQueueBuffer"); }
    [[nodiscard]] uint64_t FrameId(BUFFER_HANDLE buffer) {
        uint64_t id = 0;
        size_t size = sizeof id;
        INFO_DATATYPE type = 0;
        Check(gentl.DSGetBufferInfo(m_stream, buffer, BUFFER_INFO_FRAMEID, &type, &id, &size), "FRAMEID");
        return id;
    }

private:
    void Write(uint64_t address, uint32_t value) {
        uint8_t bytes[4];
        zqgentl::StoreBytes(bytes, value, 4,
                            m_bigEndian ? zqgentl::ByteOrder::Big : zqgentl::ByteOrder::Little);
        size_t size = sizeof bytes;
        Check(gentl.GCWritePort(m_remote, address, bytes, &size), "GCWritePort");
    }

    DEV_HANDLE m_device = nullptr;
    PORT_HANDLE m_remote = nullptr;
    DS_HANDLE m_stream = nullptr;
    EVENT_HANDLE m_event = nullptr;
    bool m_bigEndian = false;
};

void DeliverSmallest() {
    const Library library("U3V=1");
    Camera camera(library.devices[0], 64, 8);
    camera.Start();
    constexpr uint64_t checked = 20000;
    for (uint64_t frame = 0; frame < checked; ++frame) {
        const BUFFER_HANDLE buffer = camera.Next();
        Require(camera.FrameId(buffer) == frame, "a frame is missing");
        camera.Return(buffer);
    }
    double best = 0;
    for (int round = 0; round < 5; ++round) {
        constexpr int frames = 300000;
        const auto begin = Clock::now();
        for (int frame = 0; frame < frames; ++frame)
            camera.Return(camera.Next());
        best = std::max(best, frames / Seconds(Clock::now() - begin));
    }
    Require(camera.FrameId(camera.Next()) == checked + 5 * 300000, "a frame is missing");
    Report("64-byte frames from one camera", best, "frames/s", 500000, best >= 500000);
}

void StreamSixteen(int seconds) {
    const Library library("U3V=6,GEV=5,CXP=5");
    Require(library.devices.size() == 16, "there are not 16 cameras");
    const uint64_t wanted = uint64_t{30} * static_cast<uint64_t>(seconds);
    std::atomic<uint64_t> lost{0};
    std::vector<std::thread> threads;
    const auto begin = Clock::now();
    for (const Library::Listed& device : library.devices) {
        threads.emplace_back([&device, &lost, wanted] {
            Camera camera(device, 30, 0); // a second of them: threads of a busy machine may wait for long
            camera.Start();
            for (uint64_t id = 0; id + 1 < wanted;) {
                const BUFFER_HANDLE buffer = camera.Next();
                const uint64_t next = camera.FrameId(buffer);
                lost += next - id - (id == 0 && next == 0 ? 0 : 1);
                id = next;
                camera.Return(buffer);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    const double rate = static_cast<double>(wanted - 1) / Seconds(Clock::now() - begin);
    Require(rate > 25 && rate < 30.1, "the cameras keep another rate: " + std::to_string(rate));
    const std::string what = "frames lost of 16 x " + std::to_string(wanted) + " at 30 a second";
    Report(what.c_str(), static_cast<double>(lost), "frames", 0, lost == 0);
}

} // namespace

int main(int argc, char** argv) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    try {
        ListMany();
        DrawPictures();
        DeliverSmallest();
        StreamSixteen(argc > 1 ? std::atoi(argv[1]) : 5);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 2;
    }
    return allReached ? 0 : 1;
}
