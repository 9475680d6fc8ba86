// Devices: in each way that they can be opened, and two at once.

#include "Devices.h"

#include "RemoteFeatures.h"

namespace contract {

namespace {

struct AccessMode {
    DEVICE_ACCESS_FLAGS flag;
    const char* name;
    DEVICE_ACCESS_STATUS status; // while it is open
};

constexpr AccessMode modes[] = {
    {DEVICE_ACCESS_READONLY, "READONLY", DEVICE_ACCESS_STATUS_OPEN_READONLY},
    {DEVICE_ACCESS_CONTROL, "CONTROL", DEVICE_ACCESS_STATUS_OPEN_READWRITE},
    {DEVICE_ACCESS_EXCLUSIVE, "EXCLUSIVE", DEVICE_ACCESS_STATUS_OPEN_READWRITE},
};

using StatusCall = std::function<GC_ERROR(INFO_DATATYPE*, void*, size_t*)>;

/// Checks the status where a producer knows it.
void CheckStatus(Context& context, const std::string& what, const StatusCall& call, int32_t expected) {
    const auto status = ValueOf<int32_t>(call, DEVICE_ACCESS_STATUS_UNKNOWN);
    if (status != DEVICE_ACCESS_STATUS_UNKNOWN)
        context.report.Equal(what, status, expected);
}

/// A register that can be written, with the value that it has: whether the device lets that through.
void CheckWriting(Context& context, const AccessMode& mode, PORT_HANDLE remote) {
    const RemoteFeatures features(context.gentl, remote);
    uint64_t width = 0;
    if (!features.Read("Width", width)) {
        context.report.Skip("writing a register: Width can't be found");
        return;
    }
    const bool written = features.Write("Width", static_cast<uint32_t>(width));
    const bool expected = mode.flag != DEVICE_ACCESS_READONLY;
    context.report.Holds("GCWritePort(a register), " + std::string(mode.name), written == expected,
                         expected ? "success" : "a refusal");
}

void CheckAccessMode(Context& context, IF_HANDLE interface, const std::string& id, const AccessMode& mode) {
    Report& report = context.report;
    const Functions& g = context.gentl;
    const std::string name = "(" + std::string(mode.name) + ")";
    DEV_HANDLE device = nullptr;
    const GC_ERROR opened = g.IFOpenDevice(interface, id.c_str(), mode.flag, &device);
    report.Result("IFOpenDevice" + name, opened, {GC_ERR_SUCCESS, GC_ERR_NOT_IMPLEMENTED});
    if (opened != GC_ERR_SUCCESS)
        return;
    const StatusCall fromAbove = [&](INFO_DATATYPE* type, void* data, size_t* size) {
        return g.IFGetDeviceInfo(interface, id.c_str(), DEVICE_INFO_ACCESS_STATUS, type, data, size);
    };
    const StatusCall own = [&](INFO_DATATYPE* type, void* data, size_t* size) {
        return g.DevGetInfo(device, DEVICE_INFO_ACCESS_STATUS, type, data, size);
    };
    CheckStatus(context, "IFGetDeviceInfo(ACCESS_STATUS) opened" + name, fromAbove, mode.status);
    CheckStatus(context, "DevGetInfo(ACCESS_STATUS) opened" + name, own, mode.status);
    for (const AccessMode& other : modes) {
        DEV_HANDLE second = nullptr;
        report.Result("IFOpenDevice(" + std::string(other.name) + ") of one opened" + name,
                      g.IFOpenDevice(interface, id.c_str(), other.flag, &second),
                      {GC_ERR_RESOURCE_IN_USE, GC_ERR_NOT_IMPLEMENTED});
    }
    PORT_HANDLE remote = nullptr;
    if (report.Success("DevGetPort" + name, g.DevGetPort(device, &remote)))
        CheckWriting(context, mode, remote);
    report.Success("DevClose" + name, g.DevClose(device));
    CheckStatus(context, "IFGetDeviceInfo(ACCESS_STATUS) closed" + name, fromAbove,
                DEVICE_ACCESS_STATUS_READWRITE);
}

/// An open device, down to its stream.
struct Chain {
    IF_HANDLE interface = nullptr;
    DEV_HANDLE device = nullptr;
    PORT_HANDLE remote = nullptr;
    DS_HANDLE stream = nullptr;
};

/// On an interface that is open already, if there is one.
bool Open(Context& context, TL_HANDLE system, const FoundDevice& found, IF_HANDLE interface, Chain& chain) {
    Report& report = context.report;
    const Functions& g = context.gentl;
    chain.interface = interface;
    if (interface == nullptr &&
        !report.Success("TLOpenInterface",
                        g.TLOpenInterface(system, found.interfaceId.c_str(), &chain.interface)))
        return false;
    g.IFUpdateDeviceList(chain.interface, nullptr, 1000);
    if (!report.Success("IFOpenDevice " + found.id, g.IFOpenDevice(chain.interface, found.id.c_str(),
                                                                   DEVICE_ACCESS_CONTROL, &chain.device)))
        return false;
    char id[512];
    size_t size = sizeof id;
    return report.Success("DevGetPort", g.DevGetPort(chain.device, &chain.remote)) &&
           report.Success("DevGetDataStreamID", g.DevGetDataStreamID(chain.device, 0, id, &size)) &&
           report.Success("DevOpenDataStream", g.DevOpenDataStream(chain.device, id, &chain.stream));
}

/// Everything of an open device answers, and with what is its own.
void CheckChain(Context& context, const FoundDevice& found, const Chain& chain) {
    Report& report = context.report;
    const Functions& g = context.gentl;
    report.Equal("DevGetInfo(ID)", TextOf([&](INFO_DATATYPE* type, void* data, size_t* size) {
                     return g.DevGetInfo(chain.device, DEVICE_INFO_ID, type, data, size);
                 }),
                 found.id);
    void* parent = nullptr;
    report.Success("DSGetParentDev", g.DSGetParentDev(chain.stream, &parent));
    report.Holds("DSGetParentDev", parent == chain.device, "the device of the stream");
    report.Success("DevGetParentIF", g.DevGetParentIF(chain.device, &parent));
    report.Holds("DevGetParentIF", parent == chain.interface, "the interface of the device");
    uint32_t urls = 0;
    report.Success("GCGetNumPortURLs", g.GCGetNumPortURLs(chain.remote, &urls));
}

void CheckTwo(Context& context, TL_HANDLE system, const std::vector<FoundDevice>& found) {
    Report& report = context.report;
    const Functions& g = context.gentl;
    Chain first, second;
    if (!Open(context, system, found[0], nullptr, first))
        return;
    const bool shared = found[0].interfaceId == found[1].interfaceId;
    if (!Open(context, system, found[1], shared ? first.interface : nullptr, second))
        return;
    report.Holds("handles of two devices",
                 first.device != second.device && first.remote != second.remote &&
                     first.stream != second.stream,
                 "different ones");
    CheckChain(context, found[0], first);
    CheckChain(context, found[1], second);
    BUFFER_HANDLE buffer = nullptr;
    report.Success("DSAllocAndAnnounceBuffer",
                   g.DSAllocAndAnnounceBuffer(first.stream, 64, nullptr, &buffer));
    report.Result("DSQueueBuffer(the other device's stream)", g.DSQueueBuffer(second.stream, buffer),
                  {GC_ERR_INVALID_HANDLE});
    report.Success("DevClose of one", g.DevClose(first.device));
    CheckChain(context, found[1], second);
    report.Success("DevClose of the other", g.DevClose(second.device));
}

} // namespace

std::vector<FoundDevice> FindDevices(Context& context, TL_HANDLE system) {
    const Functions& g = context.gentl;
    std::vector<FoundDevice> found;
    g.TLUpdateInterfaceList(system, nullptr, 1000);
    uint32_t interfaces = 0;
    g.TLGetNumInterfaces(system, &interfaces);
    for (uint32_t i = 0; i < interfaces; ++i) {
        const std::string interfaceId =
            TextOf([&](char* text, size_t* size) { return g.TLGetInterfaceID(system, i, text, size); });
        IF_HANDLE interface = nullptr;
        if (g.TLOpenInterface(system, interfaceId.c_str(), &interface) != GC_ERR_SUCCESS)
            continue;
        g.IFUpdateDeviceList(interface, nullptr, 1000);
        uint32_t devices = 0;
        g.IFGetNumDevices(interface, &devices);
        for (uint32_t k = 0; k < devices; ++k)
            found.push_back({interfaceId, TextOf([&](char* text, size_t* size) {
                                 return g.IFGetDeviceID(interface, k, text, size);
                             })});
        g.IFClose(interface);
    }
    return found;
}

void CheckAccessModes(Context& context, IF_HANDLE interface, const std::string& id) {
    for (const AccessMode& mode : modes)
        CheckAccessMode(context, interface, id, mode);
}

void CheckTwoDevices(Context& context) {
    Report& report = context.report;
    const Functions& g = context.gentl;
    report.Enter("two devices open");
    report.Success("GCInitLib", g.GCInitLib());
    TL_HANDLE system = nullptr;
    if (report.Success("TLOpen", g.TLOpen(&system))) {
        const std::vector<FoundDevice> found = FindDevices(context, system);
        if (found.size() >= 2)
            CheckTwo(context, system, found);
        else
            report.Skip("two devices at once: there are " + std::to_string(found.size()));
    }
    report.Success("GCCloseLib", g.GCCloseLib());
}

} // namespace contract
