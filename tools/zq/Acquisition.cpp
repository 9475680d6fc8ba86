#include "tools/zq/Acquisition.h"

#include "tools/zq/Failure.h"

#include <algorithm>

namespace ZqTool {

namespace {

using namespace ZqApi;

constexpr size_t usualBufferCount = 6;

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

template <class Step>
void Drop(Step step) {
    try {
        step();
    } catch (const GenICam::GenericException&) {
    }
}

} // namespace

Acquisition::Acquisition(const Camera& camera) : m_camera(camera) {
    m_stream.reset(Doing("opening the data stream of " + camera.Id(),
                         [&] { return camera.Device().CreateIZqDataStream(0, nullptr); }));
    Doing("setting up the data stream of " + camera.Id(), [&] { ChooseBufferCount(*m_stream); });
    Doing("starting the acquisition of " + camera.Id(), [&] {
        m_stream->StartAcquisition(GENTL_INFINITE, ACQ_START_FLAGS_DEFAULT);
        try {
            camera.Device().AcquisitionStart();
        } catch (...) {
            Drop([this] { m_stream->StopAcquisition(ACQ_STOP_FLAGS_DEFAULT); });
            throw;
        }
    });
    m_running = true;
}

Acquisition::~Acquisition() {
    if (m_running) {
        Drop([this] { m_camera.Device().AcquisitionStop(); });
        Drop([this] { m_stream->StopAcquisition(ACQ_STOP_FLAGS_DEFAULT); });
    }
}

void Acquisition::Stop() {
    Doing("stopping the acquisition of " + m_camera.Id(), [this] {
        m_camera.Device().AcquisitionStop();
        m_stream->StopAcquisition(ACQ_STOP_FLAGS_DEFAULT);
    });
    m_running = false;
}

} // namespace ZqTool
