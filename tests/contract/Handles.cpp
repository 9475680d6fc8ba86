// Every function that takes a handle, with what is none, with live ones of the wrong kind, and with closed
// ones.

#include "Devices.h"

namespace contract {

namespace {

enum Kind : unsigned {
    System = 1,
    Interface = 2,
    Device = 4,
    Remote = 8,
    Stream = 16,
    Buffer = 32,
    Event = 64
};

/// Every module may have a port, and events of its own.
constexpr unsigned modules = System | Interface | Device | Remote | Stream | Buffer;

struct Handle {
    Kind kind;
    const char* name;
    void* handle;
};

/// One of each kind, from the system down.
struct Handles {
    TL_HANDLE system = nullptr;
    IF_HANDLE interface = nullptr;
    DEV_HANDLE device = nullptr;
    PORT_HANDLE remote = nullptr;
    DS_HANDLE stream = nullptr;
    BUFFER_HANDLE buffer = nullptr;
    EVENT_HANDLE event = nullptr;

    [[nodiscard]] std::vector<Handle> All() const {
        return {{System, "system", system}, {Interface, "interface", interface}, {Device, "device", device},
                {Remote, "remote", remote}, {Stream, "stream", stream},          {Buffer, "buffer", buffer},
                {Event, "event", event}};
    }
};

struct HandleCall {
    const char* name;
    unsigned accepted; ///< kinds of handle
    std::function<GC_ERROR(void*)> call;
};

/// Where answers go; anew for each call.
struct Room {
    char bytes[256] = {};
    size_t size = sizeof bytes;
    INFO_DATATYPE type = 0;
    void* out = nullptr;
    uint32_t count = 0;
    size_t entries = 1;
    PORT_REGISTER_STACK_ENTRY entry{};
};

std::vector<HandleCall> ModuleCalls(const Functions& g, Room& r) {
    return {
        {"TLClose", System, [&](void* h) { return g.TLClose(h); }},
        {"TLGetInfo", System, [&](void* h) { return g.TLGetInfo(h, 0, &r.type, r.bytes, &r.size); }},
        {"TLUpdateInterfaceList", System, [&](void* h) { return g.TLUpdateInterfaceList(h, nullptr, 0); }},
        {"TLGetNumInterfaces", System, [&](void* h) { return g.TLGetNumInterfaces(h, &r.count); }},
        {"TLGetInterfaceID", System, [&](void* h) { return g.TLGetInterfaceID(h, 0, r.bytes, &r.size); }},
        {"TLGetInterfaceInfo", System,
         [&](void* h) { return g.TLGetInterfaceInfo(h, "x", 0, &r.type, r.bytes, &r.size); }},
        {"TLOpenInterface", System, [&](void* h) { return g.TLOpenInterface(h, "x", &r.out); }},
        {"IFClose", Interface, [&](void* h) { return g.IFClose(h); }},
        {"IFGetInfo", Interface, [&](void* h) { return g.IFGetInfo(h, 0, &r.type, r.bytes, &r.size); }},
        {"IFGetParentTL", Interface, [&](void* h) { return g.IFGetParentTL(h, &r.out); }},
        {"IFUpdateDeviceList", Interface, [&](void* h) { return g.IFUpdateDeviceList(h, nullptr, 0); }},
        {"IFGetNumDevices", Interface, [&](void* h) { return g.IFGetNumDevices(h, &r.count); }},
        {"IFGetDeviceID", Interface, [&](void* h) { return g.IFGetDeviceID(h, 0, r.bytes, &r.size); }},
        {"IFGetDeviceInfo", Interface,
         [&](void* h) { return g.IFGetDeviceInfo(h, "x", 0, &r.type, r.bytes, &r.size); }},
        {"IFOpenDevice", Interface,
         [&](void* h) { return g.IFOpenDevice(h, "x", DEVICE_ACCESS_CONTROL, &r.out); }},
        {"DevClose", Device, [&](void* h) { return g.DevClose(h); }},
        {"DevGetInfo", Device, [&](void* h) { return g.DevGetInfo(h, 0, &r.type, r.bytes, &r.size); }},
        {"DevGetParentIF", Device, [&](void* h) { return g.DevGetParentIF(h, &r.out); }},
        {"DevGetPort", Device, [&](void* h) { return g.DevGetPort(h, &r.out); }},
        {"DevGetNumDataStreams", Device, [&](void* h) { return g.DevGetNumDataStreams(h, &r.count); }},
        {"DevGetDataStreamID", Device, [&](void* h) { return g.DevGetDataStreamID(h, 0, r.bytes, &r.size); }},
        {"DevOpenDataStream", Device, [&](void* h) { return g.DevOpenDataStream(h, "x", &r.out); }},
    };
}

std::vector<HandleCall> StreamCalls(const Functions& g, const Handles& open, Room& r) {
    return {
        {"DSClose", Stream, [&](void* h) { return g.DSClose(h); }},
        {"DSGetInfo", Stream, [&](void* h) { return g.DSGetInfo(h, 0, &r.type, r.bytes, &r.size); }},
        {"DSGetParentDev", Stream, [&](void* h) { return g.DSGetParentDev(h, &r.out); }},
        {"DSAnnounceBuffer", Stream,
         [&](void* h) { return g.DSAnnounceBuffer(h, r.bytes, 64, nullptr, &r.out); }},
        {"DSAllocAndAnnounceBuffer", Stream,
         [&](void* h) { return g.DSAllocAndAnnounceBuffer(h, 64, nullptr, &r.out); }},
        {"DSRevokeBuffer", Stream,
         [&](void* h) { return g.DSRevokeBuffer(h, open.buffer, nullptr, nullptr); }},
        {"DSQueueBuffer", Stream, [&](void* h) { return g.DSQueueBuffer(h, open.buffer); }},
        {"DSFlushQueue", Stream, [&](void* h) { return g.DSFlushQueue(h, ACQ_QUEUE_ALL_DISCARD); }},
        {"DSGetBufferID", Stream, [&](void* h) { return g.DSGetBufferID(h, 0, &r.out); }},
        {"DSStartAcquisition", Stream, [&](void* h) { return g.DSStartAcquisition(h, 0, 1); }},
        {"DSStopAcquisition", Stream, [&](void* h) { return g.DSStopAcquisition(h, 0); }},
        {"DSGetBufferInfo", Stream,
         [&](void* h) { return g.DSGetBufferInfo(h, open.buffer, 0, &r.type, r.bytes, &r.size); }},
        {"DSGetBufferChunkData", Stream,
         [&](void* h) { return g.DSGetBufferChunkData(h, open.buffer, nullptr, &r.entries); }},
        {"DSGetNumBufferParts", Stream,
         [&](void* h) { return g.DSGetNumBufferParts(h, open.buffer, &r.count); }},
        {"DSGetBufferPartInfo", Stream,
         [&](void* h) { return g.DSGetBufferPartInfo(h, open.buffer, 0, 0, &r.type, r.bytes, &r.size); }},
        {"DSRevokeBuffer buffer", Buffer,
         [&](void* h) { return g.DSRevokeBuffer(open.stream, h, nullptr, nullptr); }},
        {"DSQueueBuffer buffer", Buffer, [&](void* h) { return g.DSQueueBuffer(open.stream, h); }},
        {"DSGetBufferInfo buffer", Buffer,
         [&](void* h) { return g.DSGetBufferInfo(open.stream, h, 0, &r.type, r.bytes, &r.size); }},
        {"DSGetBufferChunkData buffer", Buffer,
         [&](void* h) { return g.DSGetBufferChunkData(open.stream, h, nullptr, &r.entries); }},
        {"DSGetNumBufferParts buffer", Buffer,
         [&](void* h) { return g.DSGetNumBufferParts(open.stream, h, &r.count); }},
        {"DSGetBufferPartInfo buffer", Buffer,
         [&](void* h) { return g.DSGetBufferPartInfo(open.stream, h, 0, 0, &r.type, r.bytes, &r.size); }},
    };
}

std::vector<HandleCall> PortAndEventCalls(const Functions& g, Room& r) {
    return {
        {"GCGetPortInfo", modules, [&](void* h) { return g.GCGetPortInfo(h, 0, &r.type, r.bytes, &r.size); }},
        {"GCGetNumPortURLs", modules, [&](void* h) { return g.GCGetNumPortURLs(h, &r.count); }},
        {"GCGetPortURLInfo", modules,
         [&](void* h) { return g.GCGetPortURLInfo(h, 0, 0, &r.type, r.bytes, &r.size); }},
        {"GCGetPortURL", modules, [&](void* h) { return g.GCGetPortURL(h, r.bytes, &r.size); }},
        {"GCReadPort", modules, [&](void* h) { return g.GCReadPort(h, 0, r.bytes, &r.size); }},
        {"GCWritePort", modules, [&](void* h) { return g.GCWritePort(h, 0, r.bytes, &r.size); }},
        {"GCReadPortStacked", modules, [&](void* h) { return g.GCReadPortStacked(h, &r.entry, &r.entries); }},
        {"GCWritePortStacked", modules,
         [&](void* h) { return g.GCWritePortStacked(h, &r.entry, &r.entries); }},
        {"GCRegisterEvent", modules, [&](void* h) { return g.GCRegisterEvent(h, EVENT_ERROR, &r.out); }},
        {"GCUnregisterEvent", modules, [&](void* h) { return g.GCUnregisterEvent(h, EVENT_ERROR); }},
        {"EventGetData", Event, [&](void* h) { return g.EventGetData(h, r.bytes, &r.size, 0); }},
        {"EventGetDataInfo", Event,
         [&](void* h) { return g.EventGetDataInfo(h, r.bytes, 16, 0, &r.type, nullptr, &r.size); }},
        {"EventGetInfo", Event, [&](void* h) { return g.EventGetInfo(h, 0, &r.type, r.bytes, &r.size); }},
        {"EventFlush", Event, [&](void* h) { return g.EventFlush(h); }},
        {"EventKill", Event, [&](void* h) { return g.EventKill(h); }},
    };
}

/// What no producer ever gave out: null, all ones, and the address of something.
std::vector<Handle> Made() {
    static int something = 0;
    constexpr Kind none{};
    return {{none, "null", nullptr},
            {none, "all ones", reinterpret_cast<void*>(~uintptr_t{0})},
            {none, "an address", &something}};
}

/// Calls every function with each of the handles that are of another kind than its own, and has it refuse
/// them.
void Sweep(Context& context, const Handles& open, const std::string& how,
           const std::vector<Handle>& handles) {
    const Functions& g = context.gentl;
    Room room;
    for (const auto& calls : {ModuleCalls(g, room), StreamCalls(g, open, room), PortAndEventCalls(g, room)}) {
        for (const HandleCall& row : calls) {
            for (const Handle& handle : handles) {
                if ((row.accepted & handle.kind) != 0)
                    continue;
                room = Room();
                room.entry = {0, room.bytes, 8};
                context.report.Result(std::string(row.name) + "(" + how + handle.name + ")",
                                      row.call(handle.handle), {GC_ERR_INVALID_HANDLE});
            }
        }
    }
}

bool OpenAll(Context& context, Handles& h) {
    Report& report = context.report;
    const Functions& g = context.gentl;
    if (!report.Success("TLOpen", g.TLOpen(&h.system)))
        return false;
    const std::vector<FoundDevice> found = FindDevices(context, h.system);
    if (found.empty()) {
        report.Skip("handles of devices and streams: there is no device");
        return false;
    }
    char id[512];
    size_t size = sizeof id;
    return report.Success("TLOpenInterface",
                          g.TLOpenInterface(h.system, found[0].interfaceId.c_str(), &h.interface)) &&
           report.Success("IFUpdateDeviceList", g.IFUpdateDeviceList(h.interface, nullptr, 1000)) &&
           report.Success("IFOpenDevice", g.IFOpenDevice(h.interface, found[0].id.c_str(),
                                                         DEVICE_ACCESS_CONTROL, &h.device)) &&
           report.Success("DevGetPort", g.DevGetPort(h.device, &h.remote)) &&
           report.Success("DevGetDataStreamID", g.DevGetDataStreamID(h.device, 0, id, &size)) &&
           report.Success("DevOpenDataStream", g.DevOpenDataStream(h.device, id, &h.stream)) &&
           report.Success("DSAllocAndAnnounceBuffer",
                          g.DSAllocAndAnnounceBuffer(h.stream, 64, nullptr, &h.buffer)) &&
           report.Success("GCRegisterEvent", g.GCRegisterEvent(h.stream, EVENT_NEW_BUFFER, &h.event));
}

/// What the sweep has tried to close, revoke or start is as it was.
void CheckAlive(Context& context, const Handles& h) {
    Report& report = context.report;
    const Functions& g = context.gentl;
    uint32_t count = 0;
    report.Success("TLGetNumInterfaces", g.TLGetNumInterfaces(h.system, &count));
    report.Success("IFGetNumDevices", g.IFGetNumDevices(h.interface, &count));
    report.Success("DevGetNumDataStreams", g.DevGetNumDataStreams(h.device, &count));
    report.Success("GCGetNumPortURLs", g.GCGetNumPortURLs(h.remote, &count));
    report.Success("EventFlush", g.EventFlush(h.event));
    report.Success("DSQueueBuffer", g.DSQueueBuffer(h.stream, h.buffer));
    report.Success("DSFlushQueue", g.DSFlushQueue(h.stream, ACQ_QUEUE_ALL_DISCARD));
}

} // namespace

void CheckHandles(Context& context) {
    Report& report = context.report;
    const Functions& g = context.gentl;
    report.Enter("nothing open");
    report.Success("GCInitLib", g.GCInitLib());
    Handles handles;
    Sweep(context, handles, "", Made());
    report.Enter("one module of each kind open");
    if (OpenAll(context, handles)) {
        Sweep(context, handles, "", Made());
        Sweep(context, handles, "a live ", handles.All());
        CheckAlive(context, handles);
        report.Enter("all of them closed");
        report.Success("TLClose", g.TLClose(handles.system));
        std::vector<Handle> closed = handles.All();
        for (Handle& handle : closed)
            handle.kind = Kind{};
        Sweep(context, handles, "a closed ", closed);
    }
    report.Success("GCCloseLib", g.GCCloseLib());
}

} // namespace contract
