// GCInitLib to IFOpenDevice: the library, its systems and their interfaces.
#define GENTL_PRODUCER
#include "tests/support/scripted_producer/Producer.h"

namespace Scripted {

using namespace GenTL;

namespace {

GC_ERROR SystemInfo(TL_INFO_CMD command, const Out& out) {
    switch (command) {
    case TL_INFO_ID:
        return out.WriteText("SCRIPTED");
    case TL_INFO_VENDOR:
    case TL_INFO_MODEL:
    case TL_INFO_NAME:
    case TL_INFO_DISPLAYNAME:
        return out.WriteText("Scripted");
    case TL_INFO_VERSION:
        return out.WriteText("1.0");
    case TL_INFO_TLTYPE:
        return out.WriteText(TLTypeMixedName);
    case TL_INFO_PATHNAME:
        return out.WriteText("/scripted");
    case TL_INFO_CHAR_ENCODING:
        return out.WriteNumber<int32_t>(INFO_DATATYPE_INT32, TL_CHAR_ENCODING_UTF8);
    case TL_INFO_GENTL_VER_MAJOR:
        return out.WriteNumber<uint32_t>(INFO_DATATYPE_UINT32, 1);
    case TL_INFO_GENTL_VER_MINOR:
        return out.WriteNumber<uint32_t>(INFO_DATATYPE_UINT32, 5);
    default:
        return GC_ERR_NOT_IMPLEMENTED;
    }
}

GC_ERROR InterfaceInfo(const InterfacePlan& plan, INTERFACE_INFO_CMD command, const Out& out) {
    switch (command) {
    case INTERFACE_INFO_ID:
    case INTERFACE_INFO_DISPLAYNAME:
        return out.WriteText(plan.id);
    case INTERFACE_INFO_TLTYPE:
        return out.WriteText(plan.tlType);
    default:
        return GC_ERR_NOT_IMPLEMENTED;
    }
}

GC_ERROR Init(Producer& producer) {
    if (producer.initialised != 0 && !producer.severalSystems)
        return GC_ERR_RESOURCE_IN_USE;
    ++producer.initialised;
    return GC_ERR_SUCCESS;
}

GC_ERROR OpenSystem(Producer& producer, const Out& out) {
    const auto open = producer.modules.FindIf<SystemModule>([](const SystemModule&) { return true; });
    if (open != nullptr && !producer.severalSystems)
        return GC_ERR_RESOURCE_IN_USE;
    const auto symbol = "TL" + std::to_string(++producer.systemNumber);
    return out.Set(producer.modules.Open<SystemModule>(symbol, nullptr)->handle);
}

/// Takes the plan's list over as the one that the module shows; "changed" is optional to the caller.
template <class OpenModule, class Entries>
GC_ERROR UpdateList(OpenModule& module, const Entries& entries, const Out& out) {
    const bool changed = !module.updated || module.listed != entries;
    module.updated = true;
    module.listed = entries;
    if (out.data != nullptr)
        out.Set<uint8_t>(changed ? 1 : 0);
    return GC_ERR_SUCCESS;
}

template <class Entries>
GC_ERROR EntryId(const Entries& entries, uint32_t index, const Out& out) {
    return index < entries.size() ? out.WriteText(entries[index]->id) : GC_ERR_INVALID_INDEX;
}

GC_ERROR OpenInterface(Producer& producer, SystemModule& system, const char* id, const Out& out) {
    const auto plan = id == nullptr ? nullptr : FindById(producer.plan.interfaces, id);
    if (plan == nullptr)
        return GC_ERR_INVALID_ID;
    const auto open = producer.modules.FindIf<InterfaceModule>(
        [&](const InterfaceModule& each) { return each.plan == plan && each.parent == &system; });
    if (open != nullptr)
        return GC_ERR_RESOURCE_IN_USE;
    const auto opened = producer.modules.Open<InterfaceModule>("IF" + std::to_string(plan->number), &system);
    opened->plan = plan;
    return out.Set(opened->handle);
}

template <class T>
Behaviour Close(const void* handle) {
    return With<T>(handle, [handle](Producer& producer, T&, const Out&) {
        producer.modules.Close(handle);
        producer.eventCame.notify_all();
        return GC_ERR_SUCCESS;
    });
}

} // namespace

} // namespace Scripted

using namespace Scripted;

namespace GenTL {

GC_ERROR GCInitLib() {
    {
        Producer& producer = Producer::Get();
        const Lock lock(producer.mutex);
        if (producer.initialised == 0 && !producer.keepScript)
            producer.Reset();
        producer.opener = std::this_thread::get_id();
    }
    return Run(Call("GCInitLib"), [](Producer& producer, const Out&, Lock&) { return Init(producer); });
}

GC_ERROR GCCloseLib() {
    return Run(Call("GCCloseLib"), [](Producer& producer, const Out&, Lock&) -> GC_ERROR {
        if (--producer.initialised == 0)
            producer.modules.CloseAll();
        producer.eventCame.notify_all();
        return GC_ERR_SUCCESS;
    });
}

GC_ERROR GCGetInfo(TL_INFO_CMD command, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return Run(Call("GCGetInfo").Command(command).Into(type, buffer, size),
               [=](Producer&, const Out& out, Lock&) { return SystemInfo(command, out); });
}

GC_ERROR GCGetLastError(GC_ERROR* code, char* text, size_t* size) {
    return Run(Call("GCGetLastError").Into(code, text, size),
               [](Producer& producer, const Out& out, Lock&) { return producer.GetLastError(out); });
}

GC_ERROR TLOpen(TL_HANDLE* system) {
    return Run(Call("TLOpen").Into(system),
               [](Producer& producer, const Out& out, Lock&) { return OpenSystem(producer, out); });
}

GC_ERROR TLClose(TL_HANDLE system) {
    return Run(Call("TLClose").Handle(system), Close<SystemModule>(system));
}

GC_ERROR TLGetInfo(TL_HANDLE system, TL_INFO_CMD command, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return Run(Call("TLGetInfo").Handle(system).Command(command).Into(type, buffer, size),
               With<SystemModule>(system, [=](Producer&, SystemModule&, const Out& out) {
                   return SystemInfo(command, out);
               }));
}

GC_ERROR TLUpdateInterfaceList(TL_HANDLE system, bool8_t* changed, uint64_t timeout) {
    return Run(Call("TLUpdateInterfaceList").Handle(system).Number(timeout).Into(changed),
               With<SystemModule>(system, [](Producer& producer, SystemModule& module, const Out& out) {
                   return UpdateList(module, producer.plan.interfaces, out);
               }));
}

GC_ERROR TLGetNumInterfaces(TL_HANDLE system, uint32_t* count) {
    return Run(Call("TLGetNumInterfaces").Handle(system).Into(count),
               With<SystemModule>(system, [](Producer&, SystemModule& module, const Out& out) {
                   return out.Set(static_cast<uint32_t>(module.listed.size()));
               }));
}

GC_ERROR TLGetInterfaceID(TL_HANDLE system, uint32_t index, char* text, size_t* size) {
    return Run(Call("TLGetInterfaceID").Handle(system).Index(index).Into(nullptr, text, size),
               With<SystemModule>(system, [=](Producer&, SystemModule& module, const Out& out) {
                   return EntryId(module.listed, index, out);
               }));
}

GC_ERROR TLGetInterfaceInfo(TL_HANDLE system, const char* id, INTERFACE_INFO_CMD command, INFO_DATATYPE* type,
                            void* buffer, size_t* size) {
    return Run(Call("TLGetInterfaceInfo").Handle(system).Id(id).Command(command).Into(type, buffer, size),
               With<SystemModule>(system, [=](Producer& producer, SystemModule&, const Out& out) -> GC_ERROR {
                   const auto plan = id == nullptr ? nullptr : FindById(producer.plan.interfaces, id);
                   return plan == nullptr ? GC_ERR_INVALID_ID : InterfaceInfo(*plan, command, out);
               }));
}

GC_ERROR TLOpenInterface(TL_HANDLE system, const char* id, IF_HANDLE* opened) {
    return Run(Call("TLOpenInterface").Handle(system).Id(id).Into(opened),
               With<SystemModule>(system, [=](Producer& producer, SystemModule& module, const Out& out) {
                   return OpenInterface(producer, module, id, out);
               }));
}

GC_ERROR IFClose(IF_HANDLE iface) {
    return Run(Call("IFClose").Handle(iface), Close<InterfaceModule>(iface));
}

GC_ERROR IFGetInfo(IF_HANDLE iface, INTERFACE_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                   size_t* size) {
    return Run(Call("IFGetInfo").Handle(iface).Command(command).Into(type, buffer, size),
               With<InterfaceModule>(iface, [=](Producer&, InterfaceModule& module, const Out& out) {
                   return InterfaceInfo(*module.plan, command, out);
               }));
}

GC_ERROR IFGetParentTL(IF_HANDLE iface, TL_HANDLE* system) {
    return Run(Call("IFGetParentTL").Handle(iface).Into(system),
               With<InterfaceModule>(iface, [](Producer&, InterfaceModule& module, const Out& out) {
                   return out.Set(module.parent->handle);
               }));
}

GC_ERROR IFUpdateDeviceList(IF_HANDLE iface, bool8_t* changed, uint64_t timeout) {
    return Run(Call("IFUpdateDeviceList").Handle(iface).Number(timeout).Into(changed),
               With<InterfaceModule>(iface, [](Producer&, InterfaceModule& module, const Out& out) {
                   return UpdateList(module, module.plan->devices, out);
               }));
}

GC_ERROR IFGetNumDevices(IF_HANDLE iface, uint32_t* count) {
    return Run(Call("IFGetNumDevices").Handle(iface).Into(count),
               With<InterfaceModule>(iface, [](Producer&, InterfaceModule& module, const Out& out) {
                   return out.Set(static_cast<uint32_t>(module.listed.size()));
               }));
}

GC_ERROR IFGetDeviceID(IF_HANDLE iface, uint32_t index, char* text, size_t* size) {
    return Run(Call("IFGetDeviceID").Handle(iface).Index(index).Into(nullptr, text, size),
               With<InterfaceModule>(iface, [=](Producer&, InterfaceModule& module, const Out& out) {
                   return EntryId(module.listed, index, out);
               }));
}

} // namespace GenTL
