// DSClose to DSGetBufferPartInfo: data streams and buffers.
#define GENTL_PRODUCER
#include "tests/support/scripted_producer/Streaming.h"

#include <utility>

namespace Scripted {

using namespace GenTL;

namespace {

/// Behaviour of a function that takes a stream and one of its buffers.
template <class Action>
Behaviour WithBuffer(const void* streamHandle, const void* bufferHandle, Action action) {
    return With<StreamModule>(streamHandle,
                              [=](Producer& producer, StreamModule& stream, const Out& out) -> GC_ERROR {
                                  const auto buffer = producer.modules.Find<BufferModule>(bufferHandle);
                                  if (buffer == nullptr || buffer->parent != &stream)
                                      return GC_ERR_INVALID_HANDLE;
                                  return action(producer, stream, *buffer, out);
                              });
}

} // namespace

} // namespace Scripted

using namespace Scripted;

namespace GenTL {

GC_ERROR DSClose(DS_HANDLE stream) {
    return Run(Call("DSClose").Handle(stream),
               With<StreamModule>(stream, [=](Producer& producer, StreamModule&, const Out&) {
                   producer.modules.Close(stream);
                   producer.eventCame.notify_all();
                   return GC_ERR_SUCCESS;
               }));
}

GC_ERROR DSGetInfo(DS_HANDLE stream, STREAM_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                   size_t* size) {
    return Run(Call("DSGetInfo").Handle(stream).Command(command).Into(type, buffer, size),
               With<StreamModule>(stream, [=](Producer& producer, StreamModule& module, const Out& out) {
                   return StreamInfo(producer, module, command, out);
               }));
}

GC_ERROR DSGetParentDev(DS_HANDLE stream, DEV_HANDLE* device) {
    return Run(Call("DSGetParentDev").Handle(stream).Into(device),
               With<StreamModule>(stream, [](Producer&, StreamModule& module, const Out& out) {
                   return out.Set(module.parent->handle);
               }));
}

GC_ERROR DSAnnounceBuffer(DS_HANDLE stream, void* memory, size_t size, void* userPointer,
                          BUFFER_HANDLE* buffer) {
    return Run(
        Call("DSAnnounceBuffer").Handle(stream).Number(size).Into(buffer),
        With<StreamModule>(stream, [=](Producer& producer, StreamModule& module, const Out& out) -> GC_ERROR {
            if (memory == nullptr)
                return GC_ERR_INVALID_PARAMETER;
            return Announce(producer, module, memory, size, userPointer, out);
        }));
}

GC_ERROR DSAllocAndAnnounceBuffer(DS_HANDLE stream, size_t size, void* userPointer, BUFFER_HANDLE* buffer) {
    return Run(Call("DSAllocAndAnnounceBuffer").Handle(stream).Number(size).Into(buffer),
               With<StreamModule>(stream, [=](Producer& producer, StreamModule& module, const Out& out) {
                   return Announce(producer, module, nullptr, size, userPointer, out);
               }));
}

GC_ERROR DSRevokeBuffer(DS_HANDLE stream, BUFFER_HANDLE buffer, void** memory, void** userPointer) {
    return Run(Call("DSRevokeBuffer").Handle(stream).Handle(buffer),
               WithBuffer(stream, buffer,
                          [=](Producer& producer, StreamModule& module, BufferModule& revoked, const Out&) {
                              return Revoke(producer, module, revoked, memory, userPointer);
                          }));
}

GC_ERROR DSQueueBuffer(DS_HANDLE stream, BUFFER_HANDLE buffer) {
    return Run(Call("DSQueueBuffer").Handle(stream).Handle(buffer),
               WithBuffer(stream, buffer,
                          [](Producer& producer, StreamModule& module, BufferModule& queued, const Out&) {
                              return Queue(producer, module, queued);
                          }));
}

GC_ERROR DSFlushQueue(DS_HANDLE stream, ACQ_QUEUE_TYPE operation) {
    return Run(Call("DSFlushQueue").Handle(stream).Command(operation),
               With<StreamModule>(stream, [=](Producer& producer, StreamModule& module, const Out&) {
                   return Flush(producer, module, operation);
               }));
}

GC_ERROR DSGetBufferID(DS_HANDLE stream, uint32_t index, BUFFER_HANDLE* buffer) {
    return Run(Call("DSGetBufferID").Handle(stream).Index(index).Into(buffer),
               With<StreamModule>(stream, [=](Producer&, StreamModule& module, const Out& out) -> GC_ERROR {
                   if (index >= module.announced.size())
                       return GC_ERR_INVALID_INDEX;
                   return out.Set(module.announced[index]->handle);
               }));
}

GC_ERROR DSStartAcquisition(DS_HANDLE stream, ACQ_START_FLAGS flags, uint64_t frames) {
    return Run(Call("DSStartAcquisition").Handle(stream).Command(flags).Number(frames),
               With<StreamModule>(stream, [=](Producer& producer, StreamModule& module, const Out&) {
                   return Start(producer, module, frames);
               }));
}

GC_ERROR DSStopAcquisition(DS_HANDLE stream, ACQ_STOP_FLAGS flags) {
    return Run(
        Call("DSStopAcquisition").Handle(stream).Command(flags),
        With<StreamModule>(stream, [](Producer&, StreamModule& module, const Out&) { return Stop(module); }));
}

GC_ERROR DSGetBufferInfo(DS_HANDLE stream, BUFFER_HANDLE buffer, BUFFER_INFO_CMD command, INFO_DATATYPE* type,
                         void* value, size_t* size) {
    return Run(Call("DSGetBufferInfo").Handle(stream).Handle(buffer).Command(command).Into(type, value, size),
               WithBuffer(stream, buffer,
                          [=](Producer& producer, StreamModule& module, BufferModule& asked, const Out& out) {
                              return BufferInfo(producer, module, asked, command, out);
                          }));
}

GC_ERROR DSGetBufferChunkData(DS_HANDLE stream, BUFFER_HANDLE buffer, SINGLE_CHUNK_DATA* chunks,
                              size_t* count) {
    return Run(Call("DSGetBufferChunkData")
                   .Handle(stream)
                   .Handle(buffer)
                   .Into(nullptr, chunks, count, sizeof(SINGLE_CHUNK_DATA)),
               WithBuffer(stream, buffer, [](Producer&, StreamModule&, BufferModule&, const Out&) {
                   return GC_ERR_NO_DATA;
               }));
}

GC_ERROR DSGetNumBufferParts(DS_HANDLE stream, BUFFER_HANDLE buffer, uint32_t* count) {
    return Run(Call("DSGetNumBufferParts").Handle(stream).Handle(buffer).Into(count),
               WithBuffer(stream, buffer, [](Producer&, StreamModule&, BufferModule&, const Out&) {
                   return GC_ERR_NO_DATA;
               }));
}

GC_ERROR DSGetBufferPartInfo(DS_HANDLE stream, BUFFER_HANDLE buffer, uint32_t part,
                             BUFFER_PART_INFO_CMD command, INFO_DATATYPE* type, void* value, size_t* size) {
    return Run(Call("DSGetBufferPartInfo")
                   .Handle(stream)
                   .Handle(buffer)
                   .Index(part)
                   .Command(command)
                   .Into(type, value, size),
               WithBuffer(stream, buffer, [](Producer&, StreamModule&, BufferModule&, const Out&) {
                   return GC_ERR_NO_DATA;
               }));
}

} // namespace GenTL
