// GCRegisterEvent to EventKill.
#define GENTL_PRODUCER
#include "tests/support/scripted_producer/Streaming.h"

#include <algorithm>
#include <chrono>

namespace Scripted {

using namespace GenTL;

namespace {

constexpr size_t eventSizeMax = 1024;
constexpr size_t deliveredKept = 64;

bool Supports(const Module& source, int32_t type) {
    switch (type) {
    case EVENT_ERROR:
    case EVENT_MODULE:
        return dynamic_cast<const RemotePortModule*>(&source) == nullptr &&
               dynamic_cast<const EventModule*>(&source) == nullptr;
    case EVENT_NEW_BUFFER:
        return dynamic_cast<const StreamModule*>(&source) != nullptr;
    case EVENT_FEATURE_INVALIDATE:
    case EVENT_FEATURE_CHANGE:
    case EVENT_REMOTE_DEVICE:
        return dynamic_cast<const DeviceModule*>(&source) != nullptr;
    default:
        return false;
    }
}

GC_ERROR Register(Producer& producer, Module& source, int32_t type, const Out& out) {
    if (!Supports(source, type))
        return GC_ERR_NOT_IMPLEMENTED;
    if (FindEvent(producer, source, type) != nullptr)
        return GC_ERR_RESOURCE_IN_USE;
    const auto event =
        producer.modules.Open<EventModule>(source.symbol + "/" + std::to_string(type), &source);
    event->type = type;
    return out.Set(event->handle);
}

void LeaveOutput(EventModule& event) {
    for (const auto& entry : event.queue)
        if (entry.buffer != nullptr)
            entry.buffer->awaitsDelivery = false;
    event.queue.clear();
}

GC_ERROR Unregister(Producer& producer, const Module& source, int32_t type) {
    const auto event = FindEvent(producer, source, type);
    if (event == nullptr)
        return GC_ERR_NOT_INITIALIZED;
    LeaveOutput(*event);
    producer.modules.Close(event->handle);
    producer.eventCame.notify_all();
    return GC_ERR_SUCCESS;
}

/// Gives the oldest event away; the event stays queued when its block does not fit.
GC_ERROR Take(EventModule& event, const Out& out) {
    const GC_ERROR result =
        out.Write(INFO_DATATYPE_BUFFER, event.queue.front().block.data(), event.queue.front().block.size());
    if (result != GC_ERR_SUCCESS)
        return result;
    if (event.queue.front().buffer != nullptr)
        event.queue.front().buffer->awaitsDelivery = false;
    event.delivered.push_front(std::move(event.queue.front()));
    event.queue.pop_front();
    if (event.delivered.size() > deliveredKept)
        event.delivered.pop_back();
    return GC_ERR_SUCCESS;
}

GC_ERROR WaitAndTake(Producer& producer, const void* handle, uint64_t timeoutMs, const Out& out, Lock& lock) {
    const auto event = producer.modules.Find<EventModule>(handle);
    if (event == nullptr)
        return GC_ERR_INVALID_HANDLE;
    const auto ready = [&] { return event->unregistered || event->kills > 0 || !event->queue.empty(); };
    ++event->waiting;
    bool came = true;
    if (timeoutMs == GENTL_INFINITE)
        producer.eventCame.wait(lock, ready);
    else
        came = producer.eventCame.wait_for(lock, std::chrono::milliseconds(timeoutMs), ready);
    --event->waiting;
    if (!came)
        return GC_ERR_TIMEOUT;
    if (event->unregistered)
        return GC_ERR_ABORT;
    if (event->kills > 0) {
        --event->kills;
        return GC_ERR_ABORT;
    }
    return Take(*event, out);
}

GC_ERROR DataInfo(const EventModule& event, const void* block, size_t size, EVENT_DATA_INFO_CMD command,
                  const Out& out) {
    const auto* bytes = static_cast<const uint8_t*>(block);
    const auto entry =
        std::find_if(event.delivered.begin(), event.delivered.end(), [&](const EventEntry& each) {
            return each.block.size() == size && std::equal(each.block.begin(), each.block.end(), bytes);
        });
    if (bytes == nullptr || entry == event.delivered.end())
        return GC_ERR_INVALID_PARAMETER;
    const auto write = [&](const auto& item, int32_t type) -> GC_ERROR {
        return item ? out.Write(type, item->data(), item->size()) : GC_ERR_NOT_AVAILABLE;
    };
    switch (command) {
    case EVENT_DATA_ID:
        return write(entry->id, entry->idType);
    case EVENT_DATA_VALUE:
        return write(entry->value, entry->valueType);
    case EVENT_DATA_NUMID:
        return entry->numId ? out.WriteNumber(INFO_DATATYPE_UINT64, *entry->numId) : GC_ERR_NOT_AVAILABLE;
    default:
        return GC_ERR_NOT_IMPLEMENTED;
    }
}

GC_ERROR EventInfo(const EventModule& event, EVENT_INFO_CMD command, const Out& out) {
    switch (command) {
    case EVENT_EVENT_TYPE:
        return out.WriteNumber(INFO_DATATYPE_INT32, event.type);
    case EVENT_NUM_IN_QUEUE:
        return out.WriteNumber<size_t>(INFO_DATATYPE_SIZET, event.queue.size());
    case EVENT_NUM_FIRED:
        return out.WriteNumber(INFO_DATATYPE_UINT64, event.fired);
    case EVENT_SIZE_MAX:
        return out.WriteNumber<size_t>(INFO_DATATYPE_SIZET, event.type == EVENT_NEW_BUFFER
                                                                ? sizeof(EVENT_NEW_BUFFER_DATA)
                                                                : eventSizeMax);
    case EVENT_INFO_DATA_SIZE_MAX:
        return out.WriteNumber<size_t>(INFO_DATATYPE_SIZET, eventSizeMax);
    default:
        return GC_ERR_NOT_IMPLEMENTED;
    }
}

/// An event function's call carries the type of its event, so that rules can ask for it.
Call EventCall(const char* function, const void* handle) {
    Call call(function);
    call.Handle(handle);
    Producer& producer = Producer::Get();
    const Lock lock(producer.mutex);
    if (const auto event = producer.modules.Find<EventModule>(handle))
        call.event = event->type;
    return call;
}

} // namespace

} // namespace Scripted

using namespace Scripted;

namespace GenTL {

GC_ERROR GCRegisterEvent(EVENTSRC_HANDLE source, EVENT_TYPE type, EVENT_HANDLE* event) {
    return Run(Call("GCRegisterEvent").Handle(source).Event(type).Into(event),
               With<Module>(source, [=](Producer& producer, Module& module, const Out& out) {
                   return Register(producer, module, type, out);
               }));
}

GC_ERROR GCUnregisterEvent(EVENTSRC_HANDLE source, EVENT_TYPE type) {
    return Run(Call("GCUnregisterEvent").Handle(source).Event(type),
               With<Module>(source, [=](Producer& producer, Module& module, const Out&) {
                   return Unregister(producer, module, type);
               }));
}

GC_ERROR EventGetData(EVENT_HANDLE event, void* buffer, size_t* size, uint64_t timeout) {
    return Run(EventCall("EventGetData", event).Into(nullptr, buffer, size).Number(timeout),
               [=](Producer& producer, const Out& out, Lock& lock) {
                   return WaitAndTake(producer, event, timeout, out, lock);
               });
}

GC_ERROR EventGetDataInfo(EVENT_HANDLE event, const void* block, size_t blockSize,
                          EVENT_DATA_INFO_CMD command, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return Run(
        EventCall("EventGetDataInfo", event).Number(blockSize).Command(command).Into(type, buffer, size),
        With<EventModule>(event, [=](Producer&, EventModule& module, const Out& out) {
            return DataInfo(module, block, blockSize, command, out);
        }));
}

GC_ERROR EventGetInfo(EVENT_HANDLE event, EVENT_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                      size_t* size) {
    return Run(EventCall("EventGetInfo", event).Command(command).Into(type, buffer, size),
               With<EventModule>(event, [=](Producer&, EventModule& module, const Out& out) {
                   return EventInfo(module, command, out);
               }));
}

GC_ERROR EventFlush(EVENT_HANDLE event) {
    return Run(EventCall("EventFlush", event),
               With<EventModule>(event, [](Producer&, EventModule& module, const Out&) {
                   LeaveOutput(module);
                   return GC_ERR_SUCCESS;
               }));
}

GC_ERROR EventKill(EVENT_HANDLE event) {
    return Run(EventCall("EventKill", event),
               With<EventModule>(event, [](Producer& producer, EventModule& module, const Out&) {
                   ++module.kills;
                   producer.eventCame.notify_all();
                   return GC_ERR_SUCCESS;
               }));
}

} // namespace GenTL
