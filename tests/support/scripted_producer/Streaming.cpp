#include "tests/support/scripted_producer/Streaming.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Scripted {

using namespace GenTL;

namespace {

constexpr size_t largestBuffer = size_t{1} << 30;

/// Removes the event of a buffer that awaits delivery, or of all buffers of the stream.
void DropEvents(Producer& producer, StreamModule& stream) {
    const auto event = FindEvent(producer, stream, EVENT_NEW_BUFFER);
    if (event == nullptr)
        return;
    auto& queue = event->queue;
    queue.erase(std::remove_if(queue.begin(), queue.end(),
                               [](const EventEntry& entry) { return entry.buffer != nullptr; }),
                queue.end());
}

void EmptyOutput(Producer& producer, StreamModule& stream) {
    DropEvents(producer, stream);
    for (BufferModule* buffer : stream.announced)
        buffer->awaitsDelivery = false;
}

void EmptyInput(StreamModule& stream) {
    for (BufferModule* buffer : stream.input)
        buffer->isQueued = false;
    stream.input.clear();
}

void ToInput(StreamModule& stream, BufferModule& buffer) {
    buffer.isQueued = true;
    buffer.filled = 0;
    buffer.newData = false;
    stream.input.push_back(&buffer);
}

template <class T>
std::vector<uint8_t> BytesOf(const T& value) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(&value);
    return {bytes, bytes + sizeof value};
}

/// Moves a buffer to the output queue; without a registered event it waits there unseen.
void ToOutput(Producer& producer, StreamModule& stream, BufferModule& buffer) {
    buffer.isQueued = false;
    const auto event = FindEvent(producer, stream, EVENT_NEW_BUFFER);
    if (event == nullptr)
        return;
    buffer.awaitsDelivery = true;
    EventEntry entry;
    entry.block = BytesOf(EVENT_NEW_BUFFER_DATA{buffer.handle, buffer.userPointer});
    entry.id = BytesOf(buffer.handle);
    entry.value = BytesOf(buffer.userPointer);
    entry.idType = entry.valueType = INFO_DATATYPE_PTR;
    entry.buffer = &buffer;
    event->queue.push_back(std::move(entry));
    ++event->fired;
    producer.eventCame.notify_all();
}

/// Frames of a stream that runs by itself: each filled with the low byte of its frame id.
void DeliverAutomatically(Producer& producer, StreamModule& stream) {
    const uint32_t payload = producer.RemoteNumber(stream, PayloadSize);
    while (stream.grabbing && stream.autoFramesLeft > 0 && !stream.input.empty()) {
        --stream.autoFramesLeft;
        const std::vector<uint8_t> data(payload, static_cast<uint8_t>(stream.started));
        Deliver(producer, stream, ZqspFrame{data.data(), data.size(), nullptr, 0});
    }
}

} // namespace

std::shared_ptr<EventModule> FindEvent(const Producer& producer, const Module& source, int32_t type) {
    return producer.modules.FindIf<EventModule>(
        [&](const EventModule& each) { return each.parent == &source && each.type == type; });
}

GC_ERROR Announce(Producer& producer, StreamModule& stream, void* memory, size_t size, void* userPointer,
                  const Out& out) {
    const bool twice =
        memory != nullptr && std::any_of(stream.announced.begin(), stream.announced.end(),
                                         [&](const BufferModule* each) { return each->base == memory; });
    if (twice)
        return GC_ERR_RESOURCE_IN_USE;
    if (size > largestBuffer)
        return GC_ERR_OUT_OF_MEMORY;
    const auto buffer =
        producer.modules.Open<BufferModule>("BUF" + std::to_string(++producer.bufferNumber), &stream);
    if (memory == nullptr)
        buffer->owned.resize(std::max<size_t>(size, 1));
    buffer->base = memory == nullptr ? buffer->owned.data() : static_cast<uint8_t*>(memory);
    buffer->size = size;
    buffer->userPointer = userPointer;
    stream.announced.push_back(buffer.get());
    return out.Set(buffer->handle);
}

GC_ERROR Revoke(Producer& producer, StreamModule& stream, BufferModule& buffer, void** memory,
                void** userPointer) {
    if (buffer.isQueued || buffer.awaitsDelivery)
        return GC_ERR_BUSY;
    if (memory != nullptr)
        *memory = buffer.owned.empty() ? buffer.base : nullptr;
    if (userPointer != nullptr)
        *userPointer = buffer.userPointer;
    auto& all = stream.announced;
    all.erase(std::remove(all.begin(), all.end(), &buffer), all.end());
    producer.modules.Close(buffer.handle);
    producer.eventCame.notify_all();
    return GC_ERR_SUCCESS;
}

GC_ERROR Queue(Producer& producer, StreamModule& stream, BufferModule& buffer) {
    if (buffer.isQueued || buffer.awaitsDelivery)
        return GC_ERR_RESOURCE_IN_USE;
    ToInput(stream, buffer);
    DeliverAutomatically(producer, stream);
    return GC_ERR_SUCCESS;
}

GC_ERROR Flush(Producer& producer, StreamModule& stream, ACQ_QUEUE_TYPE operation) {
    const auto queueAll = [&](auto condition) {
        for (BufferModule* buffer : stream.announced)
            if (!buffer->isQueued && condition(*buffer))
                ToInput(stream, *buffer);
    };
    switch (operation) {
    case ACQ_QUEUE_INPUT_TO_OUTPUT:
        for (BufferModule* buffer : std::exchange(stream.input, {}))
            ToOutput(producer, stream, *buffer);
        return GC_ERR_SUCCESS;
    case ACQ_QUEUE_OUTPUT_DISCARD:
        EmptyOutput(producer, stream);
        return GC_ERR_SUCCESS;
    case ACQ_QUEUE_ALL_TO_INPUT:
        EmptyOutput(producer, stream);
        queueAll([](const BufferModule&) { return true; });
        return GC_ERR_SUCCESS;
    case ACQ_QUEUE_UNQUEUED_TO_INPUT:
        queueAll([](const BufferModule& buffer) { return !buffer.awaitsDelivery; });
        return GC_ERR_SUCCESS;
    case ACQ_QUEUE_ALL_DISCARD:
        EmptyInput(stream);
        EmptyOutput(producer, stream);
        return GC_ERR_SUCCESS;
    default:
        return GC_ERR_INVALID_PARAMETER;
    }
}

GC_ERROR Start(Producer& producer, StreamModule& stream, uint64_t frames) {
    if (frames == 0)
        return GC_ERR_INVALID_PARAMETER;
    if (stream.stopOwed)
        return GC_ERR_RESOURCE_IN_USE;
    if (stream.announced.empty())
        return GC_ERR_INVALID_BUFFER;
    stream.grabbing = stream.stopOwed = true;
    stream.framesLeft = frames;
    stream.delivered = 0;
    stream.autoFramesLeft = producer.autoStream;
    DeliverAutomatically(producer, stream);
    return GC_ERR_SUCCESS;
}

GC_ERROR Stop(StreamModule& stream) {
    if (!stream.stopOwed)
        return GC_ERR_RESOURCE_IN_USE;
    stream.grabbing = stream.stopOwed = false;
    return GC_ERR_SUCCESS;
}

bool Deliver(Producer& producer, StreamModule& stream, const ZqspFrame& frame) {
    ++stream.started;
    if (stream.input.empty()) {
        ++stream.underrun;
        return false;
    }
    BufferModule& buffer = *stream.input.front();
    stream.input.pop_front();
    buffer.filled = std::min(frame.dataSize, buffer.size);
    buffer.incomplete = buffer.largerThanBuffer = frame.dataSize > buffer.size;
    buffer.newData = true;
    buffer.frameId = stream.started;
    if (buffer.filled > 0)
        std::memcpy(buffer.base, frame.data, buffer.filled);
    buffer.infos.clear();
    for (size_t i = 0; i < frame.infoCount; ++i) {
        const ZqspBufferInfo& info = frame.infos[i];
        const auto* bytes = static_cast<const uint8_t*>(info.value);
        buffer.infos[info.command] = {info.result, info.type, {bytes, bytes + info.valueSize}};
    }
    ++stream.delivered;
    if (stream.framesLeft != GENTL_INFINITE && stream.framesLeft > 0 && --stream.framesLeft == 0)
        stream.grabbing = false;
    ToOutput(producer, stream, buffer);
    return true;
}

} // namespace Scripted
