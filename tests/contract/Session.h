#pragma once

#include "Context.h"
#include "RemoteFeatures.h"

#include <algorithm>

namespace contract {

constexpr uint64_t patienceMs = 5000;
constexpr size_t frameCount = 3;

/// A stream that is about to deliver frames, with everything that one needs for it.
class Session {
public:
    Session(Context& context, DS_HANDLE stream, PORT_HANDLE remote)
        : context(context), g(context.gentl), report(context.report), stream(stream),
          features(context.gentl, remote) {}

    [[nodiscard]] size_t PayloadSize() const {
        const auto defined = ValueOf<size_t>(StreamInfo(STREAM_INFO_PAYLOAD_SIZE));
        uint64_t payload = defined;
        if (defined == 0)
            features.Read("PayloadSize", payload);
        return static_cast<size_t>(payload);
    }

    [[nodiscard]] InfoCall StreamInfo(int32_t command) const {
        return [this, command](INFO_DATATYPE* type, void* data, size_t* size) {
            return g.DSGetInfo(stream, command, type, data, size);
        };
    }
    [[nodiscard]] InfoCall BufferInfo(BUFFER_HANDLE buffer, int32_t command) const {
        return [this, buffer, command](INFO_DATATYPE* type, void* data, size_t* size) {
            return g.DSGetBufferInfo(stream, buffer, command, type, data, size);
        };
    }
    [[nodiscard]] bool Flagged(BUFFER_HANDLE buffer, int32_t command) const {
        return ValueOf<uint8_t>(BufferInfo(buffer, command)) != 0;
    }
    /// Announces buffers, each with its own place in `buffers` as user pointer.
    bool Announce() {
        const size_t payload = PayloadSize();
        for (BUFFER_HANDLE& buffer : buffers) {
            if (payload == 0 ||
                g.DSAllocAndAnnounceBuffer(stream, payload, &buffer, &buffer) != GC_ERR_SUCCESS)
                return false;
        }
        return true;
    }
    /// Takes all of them back, wherever they are.
    void Revoke() {
        report.Success("DSFlushQueue(ALL_DISCARD)", g.DSFlushQueue(stream, ACQ_QUEUE_ALL_DISCARD));
        for (BUFFER_HANDLE& buffer : buffers) {
            if (buffer != nullptr)
                report.Success("DSRevokeBuffer", g.DSRevokeBuffer(stream, buffer, nullptr, nullptr));
            buffer = nullptr;
        }
    }
    bool Start(uint64_t frames) {
        report.Success("DSStartAcquisition", g.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, frames));
        features.Write("TLParamsLocked", 1);
        return features.Write("AcquisitionStart", 1);
    }
    void Stop() {
        features.Write("AcquisitionStop", 1);
        report.Success("DSStopAcquisition", g.DSStopAcquisition(stream, ACQ_STOP_FLAGS_DEFAULT));
        features.Write("TLParamsLocked", 0);
    }
    EVENT_NEW_BUFFER_DATA Next(GC_ERROR& result, uint64_t ms = patienceMs) {
        EVENT_NEW_BUFFER_DATA data{};
        size_t size = sizeof data;
        result = g.EventGetData(event, &data, &size, ms);
        report.Holds("EventGetData size", result != GC_ERR_SUCCESS || size == sizeof data, "16 bytes");
        return data;
    }

    Context& context;
    const Functions& g;
    Report& report;
    DS_HANDLE stream;
    RemoteFeatures features;
    EVENT_HANDLE event = nullptr;
    BUFFER_HANDLE buffers[frameCount] = {};
};

/// What a filled buffer says of its chunks and parts, or that it has none.
void CheckChunks(Session& s, BUFFER_HANDLE buffer);
void CheckParts(Session& s, BUFFER_HANDLE buffer);
/// Frames with chunks and frames with parts, as far as the camera can be made to send some. No buffer is
/// announced before or after.
void CheckPayloads(Session& s);

} // namespace contract
