// IFGetDeviceInfo to DevOpenDataStream: devices seen by an interface, and opened ones.
#define GENTL_PRODUCER
#include "tests/support/scripted_producer/Producer.h"

namespace Scripted {

using namespace GenTL;

namespace {

/// An open device says so in its access status.
int32_t AccessStatus(const DevicePlan& plan, const DeviceModule* open) {
    if (open == nullptr)
        return plan.accessStatus;
    return open->readOnly ? DEVICE_ACCESS_STATUS_OPEN_READONLY : DEVICE_ACCESS_STATUS_OPEN_READWRITE;
}

GC_ERROR DeviceInfo(const DevicePlan& plan, const std::string& tlType, const DeviceModule* open,
                    DEVICE_INFO_CMD command, const Out& out) {
    switch (command) {
    case DEVICE_INFO_ID:
    case DEVICE_INFO_DISPLAYNAME:
    case DEVICE_INFO_SERIAL_NUMBER:
        return out.WriteText(plan.id);
    case DEVICE_INFO_VENDOR:
    case DEVICE_INFO_MODEL:
        return out.WriteText("Scripted");
    case DEVICE_INFO_TLTYPE:
        return out.WriteText(tlType);
    case DEVICE_INFO_ACCESS_STATUS:
        return out.WriteNumber(INFO_DATATYPE_INT32, AccessStatus(plan, open));
    case DEVICE_INFO_USER_DEFINED_NAME:
        return out.WriteText("");
    case DEVICE_INFO_VERSION:
        return out.WriteText("1.0");
    case DEVICE_INFO_TIMESTAMP_FREQUENCY:
        return out.WriteNumber<uint64_t>(INFO_DATATYPE_UINT64, 1000000000);
    default:
        return GC_ERR_NOT_IMPLEMENTED;
    }
}

std::shared_ptr<DeviceModule> FindOpen(Producer& producer, const std::shared_ptr<DevicePlan>& plan) {
    return producer.modules.FindIf<DeviceModule>([&](const DeviceModule& each) { return each.plan == plan; });
}

GC_ERROR CheckAccess(const DevicePlan& plan, DEVICE_ACCESS_FLAGS flags) {
    if (flags < DEVICE_ACCESS_READONLY || flags > DEVICE_ACCESS_EXCLUSIVE)
        return GC_ERR_INVALID_PARAMETER;
    if (plan.accessStatus == DEVICE_ACCESS_STATUS_READWRITE)
        return GC_ERR_SUCCESS;
    const bool readable =
        plan.accessStatus == DEVICE_ACCESS_STATUS_READONLY && flags == DEVICE_ACCESS_READONLY;
    return readable ? GC_ERR_SUCCESS : GC_ERR_ACCESS_DENIED;
}

GC_ERROR OpenDevice(Producer& producer, InterfaceModule& parent, const char* id, DEVICE_ACCESS_FLAGS flags,
                    const Out& out) {
    const auto plan = id == nullptr ? nullptr : FindById(parent.plan->devices, id);
    if (plan == nullptr)
        return GC_ERR_INVALID_ID;
    if (FindOpen(producer, plan) != nullptr)
        return GC_ERR_RESOURCE_IN_USE;
    const GC_ERROR access = CheckAccess(*plan, flags);
    if (access != GC_ERR_SUCCESS)
        return access;
    const std::string number = std::to_string(plan->number);
    const auto device = producer.modules.Open<DeviceModule>("DEV" + number, &parent);
    device->plan = plan;
    device->tlType = parent.plan->tlType;
    device->readOnly = flags == DEVICE_ACCESS_READONLY;
    device->remotePort = producer.modules.Open<RemotePortModule>("REMOTE" + number, device.get())->handle;
    return out.Set(device->handle);
}

std::string StreamId(const DevicePlan& plan, size_t index) {
    return plan.id + "_Stream" + std::to_string(index);
}

GC_ERROR OpenStream(Producer& producer, DeviceModule& device, const char* id, const Out& out) {
    const auto& numbers = device.plan->streamNumbers;
    for (size_t index = 0; id != nullptr && index < numbers.size(); ++index) {
        if (StreamId(*device.plan, index) != id)
            continue;
        const std::string symbol = "DS" + std::to_string(numbers[index]);
        if (producer.modules.FindIf<StreamModule>(
                [&](const StreamModule& each) { return each.symbol == symbol; }))
            return GC_ERR_RESOURCE_IN_USE;
        const auto stream = producer.modules.Open<StreamModule>(symbol, &device);
        stream->id = id;
        stream->tlType = device.tlType;
        return out.Set(stream->handle);
    }
    return GC_ERR_INVALID_ID;
}

} // namespace

} // namespace Scripted

using namespace Scripted;

namespace GenTL {

GC_ERROR IFGetDeviceInfo(IF_HANDLE iface, const char* id, DEVICE_INFO_CMD command, INFO_DATATYPE* type,
                         void* buffer, size_t* size) {
    return Run(Call("IFGetDeviceInfo").Handle(iface).Id(id).Command(command).Into(type, buffer, size),
               With<InterfaceModule>(
                   iface, [=](Producer& producer, InterfaceModule& module, const Out& out) -> GC_ERROR {
                       const auto plan = id == nullptr ? nullptr : FindById(module.plan->devices, id);
                       if (plan == nullptr)
                           return GC_ERR_INVALID_ID;
                       return DeviceInfo(*plan, module.plan->tlType, FindOpen(producer, plan).get(), command,
                                         out);
                   }));
}

GC_ERROR IFOpenDevice(IF_HANDLE iface, const char* id, DEVICE_ACCESS_FLAGS flags, DEV_HANDLE* device) {
    return Run(Call("IFOpenDevice").Handle(iface).Id(id).Command(flags).Into(device),
               With<InterfaceModule>(iface, [=](Producer& producer, InterfaceModule& module, const Out& out) {
                   return OpenDevice(producer, module, id, flags, out);
               }));
}

GC_ERROR DevClose(DEV_HANDLE device) {
    return Run(Call("DevClose").Handle(device),
               With<DeviceModule>(device, [=](Producer& producer, DeviceModule&, const Out&) {
                   producer.modules.Close(device);
                   producer.eventCame.notify_all();
                   return GC_ERR_SUCCESS;
               }));
}

GC_ERROR DevGetInfo(DEV_HANDLE device, DEVICE_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                    size_t* size) {
    return Run(Call("DevGetInfo").Handle(device).Command(command).Into(type, buffer, size),
               With<DeviceModule>(device, [=](Producer&, DeviceModule& module, const Out& out) {
                   return DeviceInfo(*module.plan, module.tlType, &module, command, out);
               }));
}

GC_ERROR DevGetParentIF(DEV_HANDLE device, IF_HANDLE* iface) {
    return Run(Call("DevGetParentIF").Handle(device).Into(iface),
               With<DeviceModule>(device, [](Producer&, DeviceModule& module, const Out& out) {
                   return out.Set(module.parent->handle);
               }));
}

GC_ERROR DevGetPort(DEV_HANDLE device, PORT_HANDLE* port) {
    return Run(Call("DevGetPort").Handle(device).Into(port),
               With<DeviceModule>(device, [](Producer&, DeviceModule& module, const Out& out) {
                   return out.Set(module.remotePort);
               }));
}

GC_ERROR DevGetNumDataStreams(DEV_HANDLE device, uint32_t* count) {
    return Run(Call("DevGetNumDataStreams").Handle(device).Into(count),
               With<DeviceModule>(device, [](Producer&, DeviceModule& module, const Out& out) {
                   return out.Set(static_cast<uint32_t>(module.plan->streamNumbers.size()));
               }));
}

GC_ERROR DevGetDataStreamID(DEV_HANDLE device, uint32_t index, char* text, size_t* size) {
    return Run(Call("DevGetDataStreamID").Handle(device).Index(index).Into(nullptr, text, size),
               With<DeviceModule>(device, [=](Producer&, DeviceModule& module, const Out& out) -> GC_ERROR {
                   if (index >= module.plan->streamNumbers.size())
                       return GC_ERR_INVALID_INDEX;
                   return out.WriteText(StreamId(*module.plan, index));
               }));
}

GC_ERROR DevOpenDataStream(DEV_HANDLE device, const char* id, DS_HANDLE* stream) {
    return Run(Call("DevOpenDataStream").Handle(device).Id(id).Into(stream),
               With<DeviceModule>(device, [=](Producer& producer, DeviceModule& module, const Out& out) {
                   return OpenStream(producer, module, id, out);
               }));
}

} // namespace GenTL
