// The C functions of device and data stream. Each only finds its objects and says what is asked of them.

#include "producer/gentl/Entry.h"

using namespace zqgentl;

namespace GenTL {

GC_API DevClose(DEV_HANDLE device) {
    return Guard("DevClose", [&] { CloseModule<DeviceModule>(device); });
}

GC_API DevGetInfo(DEV_HANDLE device, DEVICE_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                  size_t* size) {
    return Guard("DevGetInfo", [&] {
        AnswerDeviceInfo(Get<DeviceModule>(device)->Device(), command, {type, buffer, size});
    });
}

GC_API DevGetParentIF(DEV_HANDLE device, IF_HANDLE* interface) {
    return Guard("DevGetParentIF", [&] {
        const auto module = Get<DeviceModule>(device);
        Required(interface, "the interface handle") = module->Parent().Handle();
    });
}

GC_API DevGetPort(DEV_HANDLE device, PORT_HANDLE* port) {
    return Guard("DevGetPort", [&] {
        const auto module = Get<DeviceModule>(device);
        Required(port, "the port handle") = module->RemotePortHandle();
    });
}

GC_API DevGetNumDataStreams(DEV_HANDLE device, uint32_t* count) {
    return Guard("DevGetNumDataStreams", [&] {
        const auto module = Get<DeviceModule>(device);
        Required(count, "the count") = 1;
    });
}

GC_API DevGetDataStreamID(DEV_HANDLE device, uint32_t index, char* text, size_t* size) {
    return Guard("DevGetDataStreamID", [&] {
        const auto module = Get<DeviceModule>(device);
        if (index != 0)
            throw Failure(GC_ERR_INVALID_INDEX, "data stream " + std::to_string(index) + " of 1");
        ReplyText(StreamModule::id, text, size);
    });
}

GC_API DevOpenDataStream(DEV_HANDLE device, const char* id, DS_HANDLE* stream) {
    return Guard("DevOpenDataStream", [&] {
        const auto module = Get<DeviceModule>(device);
        DS_HANDLE& out = Required(stream, "the stream handle");
        out = module->OpenStream(&Required(id, "the stream ID"));
    });
}

GC_API DSClose(DS_HANDLE stream) {
    return Guard("DSClose", [&] { CloseModule<StreamModule>(stream); });
}

GC_API DSGetInfo(DS_HANDLE stream, STREAM_INFO_CMD command, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return Guard("DSGetInfo", [&] { Get<StreamModule>(stream)->AnswerInfo(command, {type, buffer, size}); });
}

GC_API DSGetParentDev(DS_HANDLE stream, DEV_HANDLE* device) {
    return Guard("DSGetParentDev", [&] {
        const auto module = Get<StreamModule>(stream);
        Required(device, "the device handle") = module->Parent().Handle();
    });
}

GC_API DSAnnounceBuffer(DS_HANDLE stream, void* memory, size_t size, void* userPointer,
                        BUFFER_HANDLE* buffer) {
    return Guard("DSAnnounceBuffer", [&] {
        const auto module = Get<StreamModule>(stream);
        BUFFER_HANDLE& out = Required(buffer, "the buffer handle");
        out = module->Announce(&Required(static_cast<uint8_t*>(memory), "the memory"), size, userPointer);
    });
}

GC_API DSAllocAndAnnounceBuffer(DS_HANDLE stream, size_t size, void* userPointer, BUFFER_HANDLE* buffer) {
    return Guard("DSAllocAndAnnounceBuffer", [&] {
        const auto module = Get<StreamModule>(stream);
        BUFFER_HANDLE& out = Required(buffer, "the buffer handle");
        out = module->Announce(nullptr, size, userPointer);
    });
}

GC_API DSRevokeBuffer(DS_HANDLE stream, BUFFER_HANDLE buffer, void** memory, void** userPointer) {
    return Guard("DSRevokeBuffer", [&] {
        const auto module = Get<StreamModule>(stream);
        CheckOptional(memory, "the memory");
        CheckOptional(userPointer, "the user pointer");
        module->Revoke(*Get<BufferModule>(buffer), memory, userPointer);
    });
}

GC_API DSQueueBuffer(DS_HANDLE stream, BUFFER_HANDLE buffer) {
    return Guard("DSQueueBuffer", [&] {
        const auto module = Get<StreamModule>(stream);
        module->LiveEngine().Queue(*Get<BufferModule>(buffer));
    });
}

GC_API DSFlushQueue(DS_HANDLE stream, ACQ_QUEUE_TYPE operation) {
    return Guard("DSFlushQueue", [&] { Get<StreamModule>(stream)->LiveEngine().Flush(operation); });
}

GC_API DSGetBufferID(DS_HANDLE stream, uint32_t index, BUFFER_HANDLE* buffer) {
    return Guard("DSGetBufferID", [&] {
        const auto module = Get<StreamModule>(stream);
        BUFFER_HANDLE& out = Required(buffer, "the buffer handle");
        out = module->Engine().BufferAt(index)->Handle();
    });
}

GC_API DSStartAcquisition(DS_HANDLE stream, ACQ_START_FLAGS flags, uint64_t frames) {
    return Guard("DSStartAcquisition", [&] {
        const auto module = Get<StreamModule>(stream);
        if (flags != ACQ_START_FLAGS_DEFAULT)
            throw Failure(GC_ERR_NOT_IMPLEMENTED, "there are no start flags " + std::to_string(flags));
        module->LiveEngine().Start(frames);
    });
}

GC_API DSStopAcquisition(DS_HANDLE stream, ACQ_STOP_FLAGS flags) {
    return Guard("DSStopAcquisition", [&] {
        const auto module = Get<StreamModule>(stream);
        if (flags != ACQ_STOP_FLAGS_DEFAULT && flags != ACQ_STOP_FLAGS_KILL)
            throw Failure(GC_ERR_NOT_IMPLEMENTED, "there are no stop flags " + std::to_string(flags));
        module->LiveEngine().Stop(flags);
    });
}

GC_API DSGetBufferInfo(DS_HANDLE stream, BUFFER_HANDLE buffer, BUFFER_INFO_CMD command, INFO_DATATYPE* type,
                       void* answer, size_t* size) {
    return Guard("DSGetBufferInfo", [&] {
        const auto module = Get<StreamModule>(stream);
        const auto announced = Get<BufferModule>(buffer);
        module->Engine().RequireAnnounced(*announced);
        announced->AnswerInfo(command, {type, answer, size});
    });
}

GC_API DSGetBufferChunkData(DS_HANDLE stream, BUFFER_HANDLE buffer, SINGLE_CHUNK_DATA* entries,
                            size_t* count) {
    return Guard("DSGetBufferChunkData", [&] {
        const auto module = Get<StreamModule>(stream);
        const auto announced = Get<BufferModule>(buffer);
        module->Engine().RequireAnnounced(*announced);
        announced->AnswerChunks(entries, count);
    });
}

GC_API DSGetNumBufferParts(DS_HANDLE stream, BUFFER_HANDLE buffer, uint32_t* count) {
    return Guard("DSGetNumBufferParts", [&] {
        const auto module = Get<StreamModule>(stream);
        const auto announced = Get<BufferModule>(buffer);
        module->Engine().RequireAnnounced(*announced);
        Required(count, "the count") = static_cast<uint32_t>(announced->PartCount());
    });
}

GC_API DSGetBufferPartInfo(DS_HANDLE stream, BUFFER_HANDLE buffer, uint32_t index,
                           BUFFER_PART_INFO_CMD command, INFO_DATATYPE* type, void* answer, size_t* size) {
    return Guard("DSGetBufferPartInfo", [&] {
        const auto module = Get<StreamModule>(stream);
        const auto announced = Get<BufferModule>(buffer);
        module->Engine().RequireAnnounced(*announced);
        announced->AnswerPartInfo(index, command, {type, answer, size});
    });
}

} // namespace GenTL
