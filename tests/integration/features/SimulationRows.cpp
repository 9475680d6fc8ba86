#include "Row.h"

#include <filesystem>
#include <fstream>
#include <thread>
#include <unistd.h>

using namespace GenTL;

namespace {

constexpr size_t frameSize = 16 * 8;

/// Six frames of an acquisition; how many of them are hit by a fault in every n-th.
size_t HitsInSix(const Written& v) {
    return v.whole == 0 ? 0 : static_cast<size_t>(6 / v.whole);
}

template <class Is>
void SeeEvery(Rig& rig, const Written& v, Is is) {
    size_t hits = 0;
    for (const Frame& frame : rig.Grab(6))
        hits += is(frame) ? 1 : 0;
    EXPECT_EQ(hits, HitsInSix(v));
}

/// A step above 0 hits every frame, so that none would come: that is its effect then.
void SeeDrop(Rig& rig, const Written& v) {
    if (v.whole == 1) {
        rig.Begin();
        EXPECT_TRUE(rig.Nothing(60));
    } else {
        EXPECT_EQ(rig.Grab(6)[5].id, 5U);
    }
}

std::chrono::milliseconds TimeOf(Rig& rig, size_t frames) {
    const auto before = std::chrono::steady_clock::now();
    static_cast<void>(rig.Grab(frames));
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - before);
}

void SeeLateTime(Rig& rig, const Written& v) {
    if (v.whole > 1000) {
        rig.Begin();
        EXPECT_TRUE(rig.Nothing(100));
        rig.End();
        return;
    }
    EXPECT_GE(TimeOf(rig, 6).count(), 6 * v.whole);
}

GC_ERROR Access(Rig& rig, uint64_t address, bool write) {
    uint8_t bytes[4] = {0, 0, 0, 8};
    if (rig.flavour.name == std::string("U3V"))
        std::swap(bytes[0], bytes[3]);
    size_t size = sizeof bytes;
    return write ? rig.gentl.GCWritePort(rig.remote, address, bytes, &size)
                 : rig.gentl.GCReadPort(rig.remote, address, bytes, &size);
}

/// The lowest register, the one behind it, and one that is not there.
template <bool Write>
void SeePortError(Rig& rig, const Written& v) {
    constexpr uint64_t height = 0x414;
    constexpr uint64_t first = 0;
    EXPECT_EQ(Access(rig, height, Write), GC_ERR_SUCCESS);
    const bool hit = v.whole >= 0 && v.whole < 4;
    EXPECT_EQ(Access(rig, first, Write), hit ? GC_ERR_IO : Write ? GC_ERR_ACCESS_DENIED : GC_ERR_SUCCESS);
    rig.Set(Write ? "SimulationWriteErrorAddress" : "SimulationReadErrorAddress", height);
    EXPECT_EQ(Access(rig, height, Write), GC_ERR_IO);
}

void HearErrors(Rig& rig) {
    rig.SmallAndFast();
    rig.Listen(Module::Camera, EVENT_REMOTE_DEVICE);
    rig.SwitchOn("Error");
}

size_t CountErrors(Rig& rig) {
    size_t count = 0;
    while (rig.NextEvent(0) == "9C43")
        ++count;
    return count;
}

/// A folder with one picture, all of one level, with a name as long as is asked for.
class PictureFolder {
public:
    explicit PictureFolder(size_t length) {
        std::string path = std::filesystem::temp_directory_path().string() + "/zqgentl-" +
                           std::to_string(getpid()) + "-" + std::to_string(length);
        m_root = path;
        while (path.size() < length)
            path += "/" + std::string(std::min<size_t>(200, length - path.size() - 1), 'p');
        m_path = path;
        std::filesystem::create_directories(m_path);
        std::ofstream(m_path + "/a.pgm", std::ios::binary) << "P5 1 1 255\n\x4D";
    }
    PictureFolder(const PictureFolder&) = delete;
    PictureFolder& operator=(const PictureFolder&) = delete;
    ~PictureFolder() { std::filesystem::remove_all(m_root); }

    [[nodiscard]] const std::string& Path() const noexcept { return m_path; }

private:
    std::string m_root;
    std::string m_path;
};

/// None, a short one and the longest that the register has room for.
std::vector<std::string> Folders() {
    static const PictureFolder brief(60), longest(1024);
    return {"", brief.Path(), longest.Path()};
}

void SeeFolder(Rig& rig, const Written& v) {
    EXPECT_EQ(rig.Text("SimulationImageFolder"), v.text);
    EXPECT_EQ(rig.One()[0], v.text.empty() ? 0 : 0x4D);
}

void SeeLossDelay(Rig& rig, const Written& v) {
    rig.Do("SimulationDeviceLost");
    if (v.whole > 1000) {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        EXPECT_FALSE(rig.Lost());
    } else {
        EXPECT_TRUE(v.whole == 0 ? rig.Lost() : Soon([&] { return rig.Lost(); }));
    }
}

void SeeReturnTime(Rig& rig, const Written& v) {
    rig.Do("SimulationDeviceLost");
    if (v.whole > 1000)
        EXPECT_EQ(rig.Reopen(), GC_ERR_IO);
    else
        EXPECT_TRUE(Soon([&] { return rig.Reopen() == GC_ERR_SUCCESS; }));
}

} // namespace

Rows SimulationRows() {
    return {
        {Module::Camera, "SimulationDeviceLost", Seen::Port, "the camera doesn't answer", Nothing,
         [](Rig& rig, const Written&) {
             EXPECT_TRUE(rig.Lost());
             EXPECT_EQ(Access(rig, 0, false), GC_ERR_IO);
         }},
        {Module::Camera, "SimulationInterfaceLost", Seen::Event,
         "the interface says so, and no camera answers",
         [](Rig& rig) { rig.Listen(Module::Interface, EVENT_ERROR); },
         [](Rig& rig, const Written&) {
             EXPECT_NE(rig.NextEvent(), "");
             EXPECT_EQ(Access(rig, 0, false), GC_ERR_IO);
         }},
        {Module::Camera, "SimulationLossDelay", Seen::Port, "when the camera is lost", Nothing, SeeLossDelay},
        {Module::Camera, "SimulationReturnTime", Seen::Port, "when the camera can be opened anew", Nothing,
         SeeReturnTime},
        {Module::Camera, "SimulationDropEvery", Seen::Frames, "frames are missing", SmallAndFast, SeeDrop},
        {Module::Camera, "SimulationIncompleteEvery", Seen::Frames, "frames are incomplete", SmallAndFast,
         [](Rig& rig, const Written& v) {
             SeeEvery(rig, v, [](const Frame& f) { return f.incomplete && f.bytes.size() == frameSize / 2; });
         }},
        {Module::Camera, "SimulationLateEvery", Seen::Frames, "frames are late",
         [](Rig& rig) {
             SmallAndFast(rig);
             rig.Set("SimulationLateTime", 50);
         },
         [](Rig& rig, const Written& v) { EXPECT_EQ(TimeOf(rig, 6).count() >= 300, v.whole == 1); }},
        {Module::Camera, "SimulationLateTime", Seen::Frames, "how late frames are",
         [](Rig& rig) {
             SmallAndFast(rig);
             rig.Set("SimulationLateEvery", 1);
         },
         SeeLateTime},
        {Module::Camera, "SimulationLargerEvery", Seen::Frames, "frames are larger than their buffers",
         SmallAndFast,
         [](Rig& rig, const Written& v) { SeeEvery(rig, v, [](const Frame& f) { return f.larger; }); }},
        {Module::Camera, "SimulationBadChunksEvery", Seen::Chunk, "chunks can't be found",
         [](Rig& rig) {
             SmallAndFast(rig);
             rig.EnableChunk("FrameID");
         },
         [](Rig& rig, const Written& v) {
             SeeEvery(rig, v, [](const Frame& f) { return f.chunkResult == GC_ERR_PARSING_CHUNK_DATA; });
         }},
        {Module::Camera, "SimulationErrorEvery", Seen::Event, "the event comes", HearErrors,
         [](Rig& rig, const Written& v) {
             rig.Set("AcquisitionMode", "MultiFrame");
             rig.Set("AcquisitionFrameCount", 6);
             static_cast<void>(rig.Grab(6));
             EXPECT_EQ(CountErrors(rig), HitsInSix(v));
         }},
        {Module::Camera, "SimulationErrorCode", Seen::Event, "what the event says", HearErrors,
         [](Rig& rig, const Written& v) {
             rig.Do("SimulationErrorEvent");
             EXPECT_EQ(rig.NextEvent(), "9C43");
             EXPECT_EQ(rig.Get("EventErrorCode"), v.whole);
         }},
        {Module::Camera, "SimulationErrorEvent", Seen::Event, "the event comes", HearErrors,
         [](Rig& rig, const Written&) { EXPECT_EQ(CountErrors(rig), 1U); }},
        {Module::Camera, "SimulationReadErrorAddress", Seen::Port, "the address can't be read", Nothing,
         SeePortError<false>},
        {Module::Camera, "SimulationWriteErrorAddress", Seen::Port, "the address can't be written", Nothing,
         SeePortError<true>},
        {Module::Camera, "SimulationPortErrorCode", Seen::Port, "what the failure returns",
         [](Rig& rig) { rig.Set("SimulationReadErrorAddress", 0); },
         [](Rig& rig, const Written& v) { EXPECT_EQ(Access(rig, 0, false), v.whole); }},
        {Module::Camera, "SimulationImageFolder", Seen::Image, "what the test pattern Picture shows",
         [](Rig& rig) {
             SmallAndFast(rig);
             rig.Set("TestPattern", "Picture");
         },
         SeeFolder, Folders},
        {Module::Camera, "SimulationLine0", Seen::Register, "level of the line", Nothing,
         [](Rig& rig, const Written& v) { EXPECT_EQ(rig.Get("LineStatusAll"), v.whole); }},
        {Module::Camera, "SimulationLine1", Seen::Register, "level of the line", Nothing,
         [](Rig& rig, const Written& v) { EXPECT_EQ(rig.Get("LineStatusAll"), v.whole << 1); }},
        {Module::Camera, "SimulationPortDelay", Seen::Port, "how long an access takes", Nothing,
         [](Rig& rig, const Written& v) {
             const auto before = std::chrono::steady_clock::now();
             EXPECT_EQ(Access(rig, 0, false), GC_ERR_SUCCESS);
             EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(v.whole));
         }},
    };
}
