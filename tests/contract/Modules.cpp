// System, interface and device: lists, information, opening and closing.

#include "Context.h"

#include <set>

namespace contract {

namespace {

constexpr auto String = INFO_DATATYPE_STRING;

const std::vector<InfoRow> interfaceRows = {
    {INTERFACE_INFO_ID, "ID", String, Need::Mandatory},
    {INTERFACE_INFO_DISPLAYNAME, "DISPLAYNAME", String, Need::Mandatory},
    {INTERFACE_INFO_TLTYPE, "TLTYPE", String, Need::Mandatory},
};

const std::vector<InfoRow> deviceRows = {
    {DEVICE_INFO_ID, "ID", String, Need::Mandatory},
    {DEVICE_INFO_VENDOR, "VENDOR", String, Need::Mandatory},
    {DEVICE_INFO_MODEL, "MODEL", String, Need::Mandatory},
    {DEVICE_INFO_TLTYPE, "TLTYPE", String, Need::Mandatory},
    {DEVICE_INFO_DISPLAYNAME, "DISPLAYNAME", String, Need::Mandatory},
    {DEVICE_INFO_ACCESS_STATUS, "ACCESS_STATUS", INFO_DATATYPE_INT32, Need::Optional},
    {DEVICE_INFO_USER_DEFINED_NAME, "USER_DEFINED_NAME", String, Need::Optional},
    {DEVICE_INFO_SERIAL_NUMBER, "SERIAL_NUMBER", String, Need::Optional},
    {DEVICE_INFO_VERSION, "VERSION", String, Need::Optional},
    {DEVICE_INFO_TIMESTAMP_FREQUENCY, "TIMESTAMP_FREQUENCY", INFO_DATATYPE_UINT64, Need::Optional},
};

using CountCall = std::function<GC_ERROR(uint32_t*)>;
using IdCall = std::function<GC_ERROR(uint32_t, char*, size_t*)>;

/// A list of IDs: count and each of them. Returns the IDs.
std::vector<std::string> CheckList(Context& context, const std::string& what, const CountCall& countOf,
                                   const IdCall& idOf) {
    Report& report = context.report;
    report.Result(what + " count(null)", countOf(nullptr), {GC_ERR_INVALID_PARAMETER});
    uint32_t count = 0;
    std::vector<std::string> ids;
    if (!report.Success(what + " count", countOf(&count)))
        return ids;
    for (uint32_t i = 0; i < count; ++i) {
        const TextCall call = [&](char* text, size_t* size) { return idOf(i, text, size); };
        CheckText(context, what + " ID", call);
        ids.push_back(TextOf(call));
    }
    report.Holds(what + " IDs", std::set<std::string>(ids.begin(), ids.end()).size() == ids.size(),
                 "different ones");
    size_t size = 0;
    report.Result(what + " ID(index beyond)", idOf(count, nullptr, &size), {GC_ERR_INVALID_INDEX});
    report.Result(what + " ID(last index)", idOf(~uint32_t{0}, nullptr, &size), {GC_ERR_INVALID_INDEX});
    return ids;
}

/// A list's update: before it, during it, and again.
void CheckUpdate(Context& context, const std::string& function,
                 const std::function<GC_ERROR(bool8_t*, uint64_t)>& update) {
    Report& report = context.report;
    report.Success(function + "(no answer wanted)", update(nullptr, 1000));
    bool8_t changed = static_cast<bool8_t>(1);
    report.Success(function, update(&changed, 1000));
    report.Holds(function + " changed", changed == 0, "false the second time");
    report.Success(function + "(endless)", update(&changed, GENTL_INFINITE));
}

std::function<InfoCall(int32_t)> InterfaceInfo(Context& context, TL_HANDLE system, const std::string& id) {
    return [&context, system, id](int32_t command) -> InfoCall {
        return [&context, system, id, command](INFO_DATATYPE* type, void* data, size_t* size) {
            return context.gentl.TLGetInterfaceInfo(system, id.c_str(), command, type, data, size);
        };
    };
}

std::function<InfoCall(int32_t)> DeviceInfo(Context& context, IF_HANDLE interface, const std::string& id) {
    return [&context, interface, id](int32_t command) -> InfoCall {
        return [&context, interface, id, command](INFO_DATATYPE* type, void* data, size_t* size) {
            return context.gentl.IFGetDeviceInfo(interface, id.c_str(), command, type, data, size);
        };
    };
}

/// Every text that two ways to the same information give.
void CheckAgree(Context& context, const std::string& function, const std::vector<InfoRow>& rows,
                const std::function<InfoCall(int32_t)>& one, const std::function<InfoCall(int32_t)>& other) {
    for (const InfoRow& row : rows) {
        if (row.type == String)
            context.report.Equal(function + "(" + row.name + ") open and closed", TextOf(one(row.command)),
                                 TextOf(other(row.command)));
    }
}

/// Opening by ID: what is refused. `open` is called with an ID and a place for the handle.
using OpenCall = std::function<GC_ERROR(const char*, void**)>;
void CheckOpenRefusals(Context& context, const std::string& function, const std::string& id,
                       const OpenCall& open) {
    void* handle = nullptr;
    Report& report = context.report;
    report.Result(function + "(no ID)", open(nullptr, &handle), {GC_ERR_INVALID_PARAMETER});
    report.Result(function + "(empty ID)", open("", &handle), {GC_ERR_INVALID_ID});
    report.Result(function + "(unknown ID)", open("no such thing", &handle), {GC_ERR_INVALID_ID});
    report.Result(function + "(no place)", open(id.c_str(), nullptr), {GC_ERR_INVALID_PARAMETER});
}

int32_t AccessStatus(const std::function<InfoCall(int32_t)>& infoOf) {
    return ValueOf<int32_t>(infoOf(DEVICE_INFO_ACCESS_STATUS), DEVICE_ACCESS_STATUS_UNKNOWN);
}

} // namespace

void CheckSystem(Context& context, TL_HANDLE system) {
    Report& report = context.report;
    const Functions& g = context.gentl;
    uint32_t count = 7;
    report.Success("TLGetNumInterfaces before an update", g.TLGetNumInterfaces(system, &count));
    report.Equal("TLGetNumInterfaces before an update", count, 0U);
    CheckUpdate(context, "TLUpdateInterfaceList",
                [&](bool8_t* changed, uint64_t ms) { return g.TLUpdateInterfaceList(system, changed, ms); });
    const std::vector<std::string> ids = CheckList(
        context, "interface", [&](uint32_t* n) { return g.TLGetNumInterfaces(system, n); },
        [&](uint32_t i, char* text, size_t* size) { return g.TLGetInterfaceID(system, i, text, size); });
    CheckPort(context, "system", system, "TLSystem");
    CheckEventTypes(context, "system", system,
                    {EVENT_NEW_BUFFER, EVENT_FEATURE_INVALIDATE, EVENT_FEATURE_CHANGE, EVENT_REMOTE_DEVICE});
    CheckEvent(context, "system", system, EVENT_ERROR);
    CheckEvent(context, "system", system, EVENT_MODULE);
    report.Result("TLGetInterfaceInfo(no ID)",
                  InterfaceInfo(context, system, "x")(0)(nullptr, nullptr, nullptr),
                  {GC_ERR_INVALID_PARAMETER, GC_ERR_INVALID_ID});
    INFO_DATATYPE type = 0;
    size_t size = 0;
    report.Result("TLGetInterfaceInfo(unknown ID)",
                  g.TLGetInterfaceInfo(system, "no such thing", 0, &type, nullptr, &size),
                  {GC_ERR_INVALID_ID});
    for (const std::string& id : ids) {
        report.Enter("interface " + id + " closed");
        CheckInfos(context, "TLGetInterfaceInfo", interfaceRows, InterfaceInfo(context, system, id));
        CheckInterface(context, system, id);
    }
}

void CheckInterface(Context& context, TL_HANDLE system, const std::string& id) {
    Report& report = context.report;
    const Functions& g = context.gentl;
    CheckOpenRefusals(context, "TLOpenInterface", id,
                      [&](const char* name, void** out) { return g.TLOpenInterface(system, name, out); });
    IF_HANDLE interface = nullptr;
    if (!report.Success("TLOpenInterface", g.TLOpenInterface(system, id.c_str(), &interface)))
        return;
    report.Enter("interface " + id);
    IF_HANDLE second = nullptr;
    report.Result("TLOpenInterface again", g.TLOpenInterface(system, id.c_str(), &second),
                  {GC_ERR_RESOURCE_IN_USE});
    const auto infoOf = [&](int32_t command) -> InfoCall {
        return [&context, interface, command](INFO_DATATYPE* type, void* data, size_t* size) {
            return context.gentl.IFGetInfo(interface, command, type, data, size);
        };
    };
    CheckInfos(context, "IFGetInfo", interfaceRows, infoOf);
    CheckAgree(context, "IFGetInfo", interfaceRows, infoOf, InterfaceInfo(context, system, id));
    void* parent = nullptr;
    report.Success("IFGetParentTL", g.IFGetParentTL(interface, &parent));
    report.Holds("IFGetParentTL", parent == system, "the system's handle");
    report.Result("IFGetParentTL(null)", g.IFGetParentTL(interface, nullptr), {GC_ERR_INVALID_PARAMETER});
    report.Result("DevClose(an interface)", g.DevClose(interface), {GC_ERR_INVALID_HANDLE});
    CheckUpdate(context, "IFUpdateDeviceList",
                [&](bool8_t* changed, uint64_t ms) { return g.IFUpdateDeviceList(interface, changed, ms); });
    const std::vector<std::string> ids = CheckList(
        context, "device", [&](uint32_t* n) { return g.IFGetNumDevices(interface, n); },
        [&](uint32_t i, char* text, size_t* size) { return g.IFGetDeviceID(interface, i, text, size); });
    CheckPort(context, "interface", interface, "TLInterface");
    CheckEventTypes(context, "interface", interface,
                    {EVENT_NEW_BUFFER, EVENT_FEATURE_INVALIDATE, EVENT_FEATURE_CHANGE, EVENT_REMOTE_DEVICE});
    CheckEvent(context, "interface", interface, EVENT_ERROR);
    CheckEvent(context, "interface", interface, EVENT_MODULE);
    INFO_DATATYPE type = 0;
    size_t size = 0;
    report.Result("IFGetDeviceInfo(unknown ID)",
                  g.IFGetDeviceInfo(interface, "no such thing", 0, &type, nullptr, &size),
                  {GC_ERR_INVALID_ID});
    for (const std::string& device : ids)
        CheckDevice(context, interface, device);
    report.Enter("interface " + id + " closed");
    report.Success("IFClose", g.IFClose(interface));
    report.Result("IFClose again", g.IFClose(interface), {GC_ERR_INVALID_HANDLE});
}

void CheckDevice(Context& context, IF_HANDLE interface, const std::string& id) {
    Report& report = context.report;
    const Functions& g = context.gentl;
    report.Enter("device " + id + " closed");
    const auto closedInfo = DeviceInfo(context, interface, id);
    CheckInfos(context, "IFGetDeviceInfo", deviceRows, closedInfo);
    CheckOpenRefusals(context, "IFOpenDevice", id, [&](const char* name, void** out) {
        return g.IFOpenDevice(interface, name, DEVICE_ACCESS_EXCLUSIVE, out);
    });
    CheckAccessModes(context, interface, id);
    DEV_HANDLE device = nullptr;
    report.Result("IFOpenDevice(access 0)", g.IFOpenDevice(interface, id.c_str(), 0, &device),
                  {GC_ERR_INVALID_PARAMETER});
    report.Result("IFOpenDevice(access 77)", g.IFOpenDevice(interface, id.c_str(), 77, &device),
                  {GC_ERR_INVALID_PARAMETER});
    if (!report.Success("IFOpenDevice",
                        g.IFOpenDevice(interface, id.c_str(), DEVICE_ACCESS_EXCLUSIVE, &device)))
        return;
    report.Enter("device " + id);
    DEV_HANDLE second = nullptr;
    report.Result("IFOpenDevice again",
                  g.IFOpenDevice(interface, id.c_str(), DEVICE_ACCESS_EXCLUSIVE, &second),
                  {GC_ERR_RESOURCE_IN_USE});
    const auto infoOf = [&](int32_t command) -> InfoCall {
        return [&context, device, command](INFO_DATATYPE* type, void* data, size_t* size) {
            return context.gentl.DevGetInfo(device, command, type, data, size);
        };
    };
    CheckInfos(context, "DevGetInfo", deviceRows, infoOf);
    CheckAgree(context, "DevGetInfo", deviceRows, infoOf, closedInfo);
    const int32_t status = AccessStatus(closedInfo);
    report.Holds("IFGetDeviceInfo(ACCESS_STATUS)",
                 status == DEVICE_ACCESS_STATUS_OPEN_READWRITE || status == DEVICE_ACCESS_STATUS_UNKNOWN,
                 "OPEN_READWRITE", std::to_string(status));
    void* parent = nullptr;
    report.Success("DevGetParentIF", g.DevGetParentIF(device, &parent));
    report.Holds("DevGetParentIF", parent == interface, "the interface's handle");
    report.Result("DevGetParentIF(null)", g.DevGetParentIF(device, nullptr), {GC_ERR_INVALID_PARAMETER});
    report.Result("DevGetPort(null)", g.DevGetPort(device, nullptr), {GC_ERR_INVALID_PARAMETER});
    PORT_HANDLE remote = nullptr;
    report.Success("DevGetPort", g.DevGetPort(device, &remote));
    CheckPort(context, "device", device, "TLDevice");
    CheckPort(context, "remote device", remote, "Device");
    report.Result("DevClose(remote port)", g.DevClose(remote), {GC_ERR_INVALID_HANDLE});
    EVENT_HANDLE event = nullptr;
    report.Result("GCRegisterEvent(remote port)", g.GCRegisterEvent(remote, EVENT_ERROR, &event),
                  {GC_ERR_INVALID_HANDLE});
    CheckEventTypes(context, "device", device, {EVENT_NEW_BUFFER});
    for (const EVENT_TYPE type :
         {EVENT_ERROR, EVENT_MODULE, EVENT_FEATURE_INVALIDATE, EVENT_FEATURE_CHANGE, EVENT_REMOTE_DEVICE})
        CheckEvent(context, "device", device, type);
    const std::vector<std::string> streams = CheckList(
        context, "data stream", [&](uint32_t* n) { return g.DevGetNumDataStreams(device, n); },
        [&](uint32_t i, char* text, size_t* size) { return g.DevGetDataStreamID(device, i, text, size); });
    for (const std::string& stream : streams)
        CheckStream(context, device, remote, stream);
    report.Enter("device " + id + " closed again");
    report.Success("DevClose", g.DevClose(device));
    report.Result("DevClose again", g.DevClose(device), {GC_ERR_INVALID_HANDLE});
    char byte = 0;
    size_t size = 1;
    report.Result("GCReadPort(remote port)", g.GCReadPort(remote, 0, &byte, &size), {GC_ERR_INVALID_HANDLE});
    const int32_t after = AccessStatus(closedInfo);
    report.Holds("IFGetDeviceInfo(ACCESS_STATUS)",
                 after == DEVICE_ACCESS_STATUS_READWRITE || after == DEVICE_ACCESS_STATUS_UNKNOWN,
                 "READWRITE", std::to_string(after));
}

} // namespace contract
