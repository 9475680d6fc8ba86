#include "tools/zq/Grab.h"

#include "tools/zq/Failure.h"
#include "tools/zq/Producers.h"
#include "tools/zq/Progress.h"
#include "tools/zq/Tally.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>

namespace ZqTool {

namespace {

using namespace ZqApi;

constexpr size_t usualBufferCount = 6;
constexpr uint32_t sliceMs = 100; ///< how soon an interrupt is noticed

bool Answers(const ListedDevice& device, const std::string& name) {
    if (device.id == name)
        return true;
    const IZqDeviceInfo& info = *device.iface->GetIZqDeviceInfo(device.index);
    const auto same = [&](auto getter) {
        try {
            return name == (info.*getter)().c_str();
        } catch (const CZqGenTLErrorException&) {
            return false; // the producer has no such text, so nobody can ask for it
        }
    };
    return same(&IZqDeviceInfo::GetSerialNumber) || same(&IZqDeviceInfo::GetUserDefinedName);
}

/// The camera of that name, or without one the first that can be opened.
const ListedDevice& Choose(const std::vector<ListedDevice>& devices, const std::string& name) {
    const auto found = std::find_if(devices.begin(), devices.end(), [&](const ListedDevice& device) {
        return name.empty() ? device.iface->IsDeviceAvailable(device.index, DEVICE_ACCESS_CONTROL)
                            : Answers(device, name);
    });
    if (found != devices.end())
        return *found;
    throw Failure(name.empty() ? "looking for a camera" : "looking for " + name,
                  devices.empty() ? "the producers report no camera"
                                  : (name.empty() ? "every camera is in use" : "no camera has that name"),
                  "check what there is with: zq list", NothingFound);
}

/// Some producers start only with more buffers than the library's usual six. One that does not tell its
/// minimum has none.
void ChooseBufferCount(IZqDataStream& stream) {
    size_t minimum = 0;
    try {
        minimum = stream.GetIZqDataStreamInfo()->GetBufAnnounceMin();
    } catch (const CZqGenTLErrorException&) {
        return;
    }
    stream.SetStreamBufferCount(std::max(usualBufferCount, minimum));
}

/// An acquisition that runs: the stream first, then the camera; stopped the other way round.
class Acquisition {
public:
    Acquisition(IZqDevice& device, IZqDataStream& stream) : m_device(device), m_stream(stream) {
        m_stream.StartAcquisition(GENTL_INFINITE, ACQ_START_FLAGS_DEFAULT);
        try {
            m_device.AcquisitionStart();
        } catch (...) {
            Drop([this] { m_stream.StopAcquisition(ACQ_STOP_FLAGS_DEFAULT); });
            throw;
        }
    }
    Acquisition(const Acquisition&) = delete;
    Acquisition& operator=(const Acquisition&) = delete;
    ~Acquisition() {
        if (m_running) {
            Drop([this] { m_device.AcquisitionStop(); });
            Drop([this] { m_stream.StopAcquisition(ACQ_STOP_FLAGS_DEFAULT); });
        }
    }

    void Stop() {
        m_device.AcquisitionStop();
        m_stream.StopAcquisition(ACQ_STOP_FLAGS_DEFAULT);
        m_running = false;
    }

private:
    template <class Step>
    static void Drop(Step step) {
        try {
            step();
        } catch (const GenICam::GenericException&) {
        }
    }

    IZqDevice& m_device;
    IZqDataStream& m_stream;
    bool m_running = true;
};

class Grabber {
public:
    Grabber(const GrabOptions& options, std::string device, IZqDataStream& stream, const Console& console)
        : m_options(options), m_device(std::move(device)), m_stream(stream),
          m_progress(console, options.frames) {}

    void Run() {
        while (m_tally.Frames() < m_options.frames) {
            const Held<IZqStreamBufferReleasable> buffer(Next());
            Take(*buffer);
            m_progress.Show(m_tally.Frames(), m_tally.FramesPerSecond());
        }
    }

    [[nodiscard]] const Tally& Result() const { return m_tally; }

private:
    [[nodiscard]] std::string Frame() const {
        return "frame " + std::to_string(m_tally.Frames() + 1) + " of " + std::to_string(m_options.frames) +
               " from " + m_device;
    }

    IZqStreamBufferReleasable* Next() {
        const auto deadline =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(m_options.timeoutMs);
        do {
            if (interrupted)
                throw Failure("grabbing " + Frame(), "interrupted by a signal", "run the command again");
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
            const auto slice = static_cast<uint32_t>(std::clamp<int64_t>(left.count(), 0, sliceMs));
            auto* buffer = Doing("waiting for " + Frame(), [&] {
                return m_stream.RetrieveBuffer(slice, ZqTimeoutHandling_ReturnNull);
            });
            if (buffer != nullptr)
                return buffer;
        } while (std::chrono::steady_clock::now() < deadline);
        throw Failure(
            "waiting for " + Frame(),
            "-1011 GC_ERR_TIMEOUT: none came within " + std::to_string(m_options.timeoutMs) + " ms",
            "check the camera's trigger mode, see that no other program receives this stream, or give more "
            "time with --timeout",
            TimedOut);
    }

    void Take(IZqStreamBuffer& buffer) {
        const IZqStreamBufferInfo& info = *buffer.GetIZqStreamBufferInfo();
        Doing("reading " + Frame(), [&] {
            const bool complete = !info.IsIncomplete();
            m_tally.Count(complete, info.GetSizeFilled(), FrameId(info));
            if (complete && !m_options.folder.empty())
                WriteImage(*buffer.GetIZqImage(), m_options.folder, m_tally.Frames(), m_options.format);
        });
    }

    static std::optional<uint64_t> FrameId(const IZqStreamBufferInfo& info) {
        try {
            return info.GetFrameID();
        } catch (const CZqGenTLErrorException&) {
            return std::nullopt;
        }
    }

    const GrabOptions& m_options;
    std::string m_device;
    IZqDataStream& m_stream;
    Progress m_progress;
    Tally m_tally;
};

void MakeFolder(const std::string& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        throw Failure("making the folder " + folder, error.message(), "choose another folder with -o");
}

} // namespace

int Grab(const Library& library, const GrabOptions& options, const Console& console) {
    const auto producers = OpenProducers(library, console);
    const auto devices = ListDevices(producers);
    const ListedDevice& chosen = Choose(devices, options.device);
    if (!options.folder.empty())
        MakeFolder(options.folder);

    const Held<IZqDeviceReleasable> device(Doing("opening " + chosen.id, [&] {
        return chosen.iface->CreateIZqDevice(chosen.id.c_str(), DEVICE_ACCESS_CONTROL);
    }));
    const Held<IZqDataStreamReleasable> stream(Doing(
        "opening the data stream of " + chosen.id, [&] { return device->CreateIZqDataStream(0, nullptr); }));
    Doing("setting up the data stream of " + chosen.id, [&] { ChooseBufferCount(*stream); });

    const auto acquisition = Doing("starting the acquisition of " + chosen.id,
                                   [&] { return std::make_unique<Acquisition>(*device, *stream); });
    Tally result;
    {
        Grabber grabber(options, chosen.id, *stream, console);
        grabber.Run();
        result = grabber.Result();
    }
    Doing("stopping the acquisition of " + chosen.id, [&] { acquisition->Stop(); });
    result.Print(chosen.id, console.out);
    return Done;
}

} // namespace ZqTool
