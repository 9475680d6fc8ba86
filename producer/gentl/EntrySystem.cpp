// The C functions of library, system and interface. Each only finds its objects and says what is asked of
// them.

#include "producer/gentl/Entry.h"

using namespace zqgentl;

namespace GenTL {

GC_API GCInitLib() {
    return GuardAlways("GCInitLib", [] { Library::Init(); });
}

GC_API GCCloseLib() {
    return GuardAlways("GCCloseLib", [] { Library::Close(); });
}

GC_API GCGetInfo(TL_INFO_CMD command, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return Guard("GCGetInfo", [&] { SystemModule::AnswerInfo(command, {type, buffer, size}); });
}

GC_API GCGetLastError(GC_ERROR* code, char* text, size_t* size) {
    // A failure of this function must not replace the error that it was asked for.
    try {
        Library::RequireInitialised();
        GC_ERROR& codeOut = Required(code, "the error code");
        ReplyText(LastErrorText(), text, size);
        codeOut = LastErrorCode();
        return GC_ERR_SUCCESS;
    } catch (const Failure& failure) {
        return failure.Code();
    } catch (...) {
        return GC_ERR_ERROR;
    }
}

GC_API TLOpen(TL_HANDLE* system) {
    return Guard("TLOpen", [&] {
        TL_HANDLE& out = Required(system, "the system handle");
        out = Library::OpenSystem();
    });
}

GC_API TLClose(TL_HANDLE system) {
    return Guard("TLClose", [&] { Library::CloseSystem(system); });
}

GC_API TLGetInfo(TL_HANDLE system, TL_INFO_CMD command, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return Guard("TLGetInfo", [&] { Get<SystemModule>(system)->AnswerInfo(command, {type, buffer, size}); });
}

GC_API TLUpdateInterfaceList(TL_HANDLE system, bool8_t* changed, uint64_t timeoutMs) {
    return Guard("TLUpdateInterfaceList", [&] {
        const auto module = Get<SystemModule>(system);
        CheckOptional(changed, "the answer");
        const bool isChanged = module->UpdateList(timeoutMs);
        if (changed != nullptr)
            *changed = isChanged;
    });
}

GC_API TLGetNumInterfaces(TL_HANDLE system, uint32_t* count) {
    return Guard("TLGetNumInterfaces", [&] {
        const size_t listed = Get<SystemModule>(system)->ListedCount();
        Required(count, "the count") = static_cast<uint32_t>(listed);
    });
}

GC_API TLGetInterfaceID(TL_HANDLE system, uint32_t index, char* text, size_t* size) {
    return Guard("TLGetInterfaceID",
                 [&] { ReplyText(Get<SystemModule>(system)->Listed(index).interfaceId, text, size); });
}

GC_API TLGetInterfaceInfo(TL_HANDLE system, const char* id, INTERFACE_INFO_CMD command, INFO_DATATYPE* type,
                          void* buffer, size_t* size) {
    return Guard("TLGetInterfaceInfo", [&] {
        const auto module = Get<SystemModule>(system);
        AnswerInterfaceInfo(module->WithId(&Required(id, "the interface ID")), command, {type, buffer, size});
    });
}

GC_API TLOpenInterface(TL_HANDLE system, const char* id, IF_HANDLE* interface) {
    return Guard("TLOpenInterface", [&] {
        const auto module = Get<SystemModule>(system);
        IF_HANDLE& out = Required(interface, "the interface handle");
        out = module->OpenInterface(&Required(id, "the interface ID"));
    });
}

GC_API IFClose(IF_HANDLE interface) {
    return Guard("IFClose", [&] { CloseModule<InterfaceModule>(interface); });
}

GC_API IFGetInfo(IF_HANDLE interface, INTERFACE_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                 size_t* size) {
    return Guard("IFGetInfo", [&] {
        AnswerInterfaceInfo(Get<InterfaceModule>(interface)->Model(), command, {type, buffer, size});
    });
}

GC_API IFGetParentTL(IF_HANDLE interface, TL_HANDLE* system) {
    return Guard("IFGetParentTL", [&] {
        const auto module = Get<InterfaceModule>(interface);
        Required(system, "the system handle") = module->Parent().Handle();
    });
}

GC_API IFUpdateDeviceList(IF_HANDLE interface, bool8_t* changed, uint64_t timeoutMs) {
    return Guard("IFUpdateDeviceList", [&] {
        const auto module = Get<InterfaceModule>(interface);
        CheckOptional(changed, "the answer");
        const bool isChanged = module->UpdateList(timeoutMs);
        if (changed != nullptr)
            *changed = isChanged;
    });
}

GC_API IFGetNumDevices(IF_HANDLE interface, uint32_t* count) {
    return Guard("IFGetNumDevices", [&] {
        const size_t listed = Get<InterfaceModule>(interface)->ListedCount();
        Required(count, "the count") = static_cast<uint32_t>(listed);
    });
}

GC_API IFGetDeviceID(IF_HANDLE interface, uint32_t index, char* text, size_t* size) {
    return Guard("IFGetDeviceID", [&] {
        ReplyText(Get<InterfaceModule>(interface)->Listed(index).camera.Model().deviceId, text, size);
    });
}

GC_API IFGetDeviceInfo(IF_HANDLE interface, const char* id, DEVICE_INFO_CMD command, INFO_DATATYPE* type,
                       void* buffer, size_t* size) {
    return Guard("IFGetDeviceInfo", [&] {
        const auto module = Get<InterfaceModule>(interface);
        AnswerDeviceInfo(module->WithId(&Required(id, "the device ID")), command, {type, buffer, size});
    });
}

GC_API IFOpenDevice(IF_HANDLE interface, const char* id, DEVICE_ACCESS_FLAGS access, DEV_HANDLE* device) {
    return Guard("IFOpenDevice", [&] {
        const auto module = Get<InterfaceModule>(interface);
        DEV_HANDLE& out = Required(device, "the device handle");
        out = module->OpenDevice(&Required(id, "the device ID"), access);
    });
}

} // namespace GenTL
