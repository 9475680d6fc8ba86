#include "tools/zq/Grab.h"

#include "tools/zq/Acquisition.h"
#include "tools/zq/Chunks.h"
#include "tools/zq/Failure.h"
#include "tools/zq/FrameWriter.h"
#include "tools/zq/Progress.h"
#include "tools/zq/Tally.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>

namespace ZqTool {

namespace {

using namespace ZqApi;

constexpr uint32_t sliceMs = 100; ///< how soon an interrupt is noticed

class Grabber {
public:
    Grabber(const GrabOptions& options, std::string device, IZqDataStream& stream, const Console& console)
        : m_options(options), m_device(std::move(device)), m_stream(stream),
          m_progress(console, options.frames) {
        if (!options.folder.empty())
            m_writer = std::make_unique<FrameWriter>(
                [this](const Frame& frame) { WriteNumberedFile(frame, m_options.folder, m_options.files); });
    }

    void Run() {
        while (m_tally.Frames() < m_options.frames) {
            const Held<IZqStreamBufferReleasable> buffer(Next());
            Take(*buffer);
            m_progress.Show(m_tally.Frames(), m_tally.FramesPerSecond());
        }
    }

    /// Waits until all files are written; returns how often frames have had to wait for them.
    uint64_t Finish() {
        if (!m_writer)
            return 0;
        m_writer->Finish();
        return m_writer->Waits();
    }

    [[nodiscard]] const Tally& Result() const { return m_tally; }

private:
    [[nodiscard]] std::string FrameName() const {
        return "frame " + std::to_string(m_tally.Frames() + 1) + " of " + std::to_string(m_options.frames) +
               " from " + m_device;
    }

    IZqStreamBufferReleasable* Next() {
        const auto deadline =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(m_options.timeoutMs);
        do {
            if (interrupted)
                throw Failure("grabbing " + FrameName(), "interrupted by a signal", "run the command again");
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
            const auto slice = static_cast<uint32_t>(std::clamp<int64_t>(left.count(), 0, sliceMs));
            auto* buffer = Doing("waiting for " + FrameName(), [&] {
                return m_stream.RetrieveBuffer(slice, ZqTimeoutHandling_ReturnNull);
            });
            if (buffer != nullptr)
                return buffer;
        } while (std::chrono::steady_clock::now() < deadline);
        throw Failure(
            "waiting for " + FrameName(),
            "-1011 GC_ERR_TIMEOUT: none came within " + std::to_string(m_options.timeoutMs) + " ms",
            "check the camera's trigger mode, see that no other program receives this stream, or give more "
            "time with --timeout",
            TimedOut);
    }

    void Take(IZqStreamBuffer& buffer) {
        const IZqStreamBufferInfo& info = *buffer.GetIZqStreamBufferInfo();
        Doing("reading " + FrameName(), [&] {
            const bool complete = !info.IsIncomplete();
            m_tally.Count(complete, info.GetSizeFilled(), FrameId(info));
            if (complete && m_writer)
                Keep(buffer, info);
        });
    }

    /// Copies the frame for the writer, so that its buffer can be filled again.
    void Keep(IZqStreamBuffer& buffer, const IZqStreamBufferInfo& info) {
        IZqImage& image = *buffer.GetIZqImage();
        const auto* base = static_cast<const uint8_t*>(info.GetBaseAddress());
        const auto* begin = static_cast<const uint8_t*>(image.GetImageBuffer());
        const size_t size = info.GetBufferSize();
        Frame* frame = m_writer->Take();
        frame->number = m_tally.Frames();
        frame->CopyFrom(image, begin < base || begin > base + size ? 0 : size - (begin - base));
        frame->chunks = m_options.chunks ? m_chunks.Values(buffer) : std::string();
        m_writer->Put(frame);
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
    ChunkReader m_chunks;
    std::unique_ptr<FrameWriter> m_writer;
};

void MakeFolder(const std::string& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        throw Failure("making the folder " + folder, error.message(), "choose another folder with -o");
}

/// The acquisition stops before its files are complete: the camera is not kept waiting for them.
uint64_t Run(const GrabOptions& options, const Camera& camera, const Console& console, Tally& result) {
    Acquisition acquisition(camera);
    Grabber grabber(options, camera.Id(), acquisition.Stream(), console);
    grabber.Run();
    acquisition.Stop();
    result = grabber.Result();
    return grabber.Finish();
}

} // namespace

int Grab(const Library& library, const GrabOptions& options, const Console& console) {
    const Camera camera(library, options.camera, console);
    if (!options.folder.empty())
        MakeFolder(options.folder);
    std::optional<ChunkMode> chunks;
    if (options.chunks)
        chunks.emplace(camera);
    Tally result;
    const uint64_t waits = Run(options, camera, console, result);
    if (chunks)
        chunks->PutBack();
    result.Print(camera.Id(), console.out);
    if (waits > 0)
        console.err << "zq: " << camera.Id() << ": waits for files to be written: " << waits
                    << "; the disk or the file format is slower than the camera\n";
    return Done;
}

} // namespace ZqTool
