// The library itself: before and after GCInitLib, its information, and the last error.

#include "Context.h"

#include <thread>

namespace contract {

namespace {

constexpr auto String = INFO_DATATYPE_STRING;
constexpr auto Uint32 = INFO_DATATYPE_UINT32;

const std::vector<InfoRow> systemRows = {
    {TL_INFO_ID, "ID", String, Need::Mandatory},
    {TL_INFO_VENDOR, "VENDOR", String, Need::Mandatory},
    {TL_INFO_MODEL, "MODEL", String, Need::Mandatory},
    {TL_INFO_VERSION, "VERSION", String, Need::Mandatory},
    {TL_INFO_TLTYPE, "TLTYPE", String, Need::Mandatory},
    {TL_INFO_NAME, "NAME", String, Need::Mandatory},
    {TL_INFO_PATHNAME, "PATHNAME", String, Need::Mandatory},
    {TL_INFO_DISPLAYNAME, "DISPLAYNAME", String, Need::Mandatory},
    {TL_INFO_CHAR_ENCODING, "CHAR_ENCODING", INFO_DATATYPE_INT32, Need::Mandatory},
    {TL_INFO_GENTL_VER_MAJOR, "GENTL_VER_MAJOR", Uint32, Need::Mandatory},
    {TL_INFO_GENTL_VER_MINOR, "GENTL_VER_MINOR", Uint32, Need::Mandatory},
};

std::function<InfoCall(int32_t)> LibraryInfo(Context& context) {
    return [&](int32_t command) -> InfoCall {
        return [&context, command](INFO_DATATYPE* type, void* data, size_t* size) {
            return context.gentl.GCGetInfo(command, type, data, size);
        };
    };
}

struct LastError {
    GC_ERROR result = 0;
    GC_ERROR code = 77;
    std::string text;
};

LastError AskLastError(Context& context) {
    LastError error;
    char text[4096] = "";
    size_t size = sizeof text;
    error.result = context.gentl.GCGetLastError(&error.code, text, &size);
    error.text = text;
    return error;
}

void CheckLastError(Context& context) {
    Report& report = context.report;
    const Functions& gentl = context.gentl;
    report.Enter("thread without an error");
    std::thread([&] {
        const LastError none = AskLastError(context);
        report.Success("GCGetLastError", none.result);
        report.Result("GCGetLastError code", none.code, {GC_ERR_SUCCESS});
        report.Equal("GCGetLastError text", none.text, std::string("No Error"));
        gentl.TLClose(nullptr);
        report.Enter("thread with an error");
        report.Result("GCGetLastError code", AskLastError(context).code, {GC_ERR_INVALID_HANDLE});
        report.Holds("GCGetLastError text", !AskLastError(context).text.empty(), "some text");
        size_t size = 0;
        INFO_DATATYPE type = 0;
        gentl.GCGetInfo(TL_INFO_ID, &type, nullptr, &size);
        report.Result("GCGetLastError after a success", AskLastError(context).code, {GC_ERR_INVALID_HANDLE});
        GC_ERROR code = 0;
        size = 0;
        report.Success("GCGetLastError size", gentl.GCGetLastError(&code, nullptr, &size));
        std::vector<char> text(size);
        size = text.size() - 1;
        report.Result("GCGetLastError too little room", gentl.GCGetLastError(&code, text.data(), &size),
                      {GC_ERR_BUFFER_TOO_SMALL});
        report.Result("GCGetLastError no size", gentl.GCGetLastError(&code, text.data(), nullptr),
                      {GC_ERR_INVALID_PARAMETER});
        report.Result("GCGetLastError after its own failure", AskLastError(context).code,
                      {GC_ERR_INVALID_HANDLE});
    }).join();
    report.Enter("another thread meanwhile");
    std::thread([&] {
        report.Result("GCGetLastError code", AskLastError(context).code, {GC_ERR_SUCCESS});
    }).join();
}

} // namespace

void CheckUninitialised(Context& context) {
    const Functions& g = context.gentl;
    char text[64];
    size_t size = sizeof text;
    INFO_DATATYPE type = 0;
    void* handle = nullptr;
    uint32_t count = 0;
    GC_ERROR code = 0;
    const std::pair<const char*, std::function<GC_ERROR()>> calls[] = {
        {"GCCloseLib", [&] { return g.GCCloseLib(); }},
        {"GCGetInfo", [&] { return g.GCGetInfo(0, &type, text, &size); }},
        {"GCGetLastError", [&] { return g.GCGetLastError(&code, text, &size); }},
        {"TLOpen", [&] { return g.TLOpen(&handle); }},
        {"TLClose", [&] { return g.TLClose(nullptr); }},
        {"TLGetInfo", [&] { return g.TLGetInfo(nullptr, 0, &type, text, &size); }},
        {"TLUpdateInterfaceList", [&] { return g.TLUpdateInterfaceList(nullptr, nullptr, 0); }},
        {"TLGetNumInterfaces", [&] { return g.TLGetNumInterfaces(nullptr, &count); }},
        {"TLGetInterfaceID", [&] { return g.TLGetInterfaceID(nullptr, 0, text, &size); }},
        {"TLGetInterfaceInfo", [&] { return g.TLGetInterfaceInfo(nullptr, "x", 0, &type, text, &size); }},
        {"TLOpenInterface", [&] { return g.TLOpenInterface(nullptr, "x", &handle); }},
        {"IFClose", [&] { return g.IFClose(nullptr); }},
        {"IFGetInfo", [&] { return g.IFGetInfo(nullptr, 0, &type, text, &size); }},
        {"IFGetParentTL", [&] { return g.IFGetParentTL(nullptr, &handle); }},
        {"IFUpdateDeviceList", [&] { return g.IFUpdateDeviceList(nullptr, nullptr, 0); }},
        {"IFGetNumDevices", [&] { return g.IFGetNumDevices(nullptr, &count); }},
        {"IFGetDeviceID", [&] { return g.IFGetDeviceID(nullptr, 0, text, &size); }},
        {"IFGetDeviceInfo", [&] { return g.IFGetDeviceInfo(nullptr, "x", 0, &type, text, &size); }},
        {"IFOpenDevice", [&] { return g.IFOpenDevice(nullptr, "x", 3, &handle); }},
        {"DevClose", [&] { return g.DevClose(nullptr); }},
        {"DevGetInfo", [&] { return g.DevGetInfo(nullptr, 0, &type, text, &size); }},
        {"DevGetParentIF", [&] { return g.DevGetParentIF(nullptr, &handle); }},
        {"DevGetPort", [&] { return g.DevGetPort(nullptr, &handle); }},
        {"DevGetNumDataStreams", [&] { return g.DevGetNumDataStreams(nullptr, &count); }},
        {"DevGetDataStreamID", [&] { return g.DevGetDataStreamID(nullptr, 0, text, &size); }},
        {"DevOpenDataStream", [&] { return g.DevOpenDataStream(nullptr, "x", &handle); }},
        {"DSClose", [&] { return g.DSClose(nullptr); }},
        {"DSGetInfo", [&] { return g.DSGetInfo(nullptr, 0, &type, text, &size); }},
        {"DSGetParentDev", [&] { return g.DSGetParentDev(nullptr, &handle); }},
        {"DSAnnounceBuffer", [&] { return g.DSAnnounceBuffer(nullptr, text, 64, nullptr, &handle); }},
        {"DSAllocAndAnnounceBuffer",
         [&] { return g.DSAllocAndAnnounceBuffer(nullptr, 64, nullptr, &handle); }},
        {"DSRevokeBuffer", [&] { return g.DSRevokeBuffer(nullptr, nullptr, nullptr, nullptr); }},
        {"DSQueueBuffer", [&] { return g.DSQueueBuffer(nullptr, nullptr); }},
        {"DSFlushQueue", [&] { return g.DSFlushQueue(nullptr, 0); }},
        {"DSGetBufferID", [&] { return g.DSGetBufferID(nullptr, 0, &handle); }},
        {"DSStartAcquisition", [&] { return g.DSStartAcquisition(nullptr, 0, 1); }},
        {"DSStopAcquisition", [&] { return g.DSStopAcquisition(nullptr, 0); }},
        {"DSGetBufferInfo", [&] { return g.DSGetBufferInfo(nullptr, nullptr, 0, &type, text, &size); }},
        {"DSGetBufferChunkData", [&] { return g.DSGetBufferChunkData(nullptr, nullptr, nullptr, &size); }},
        {"DSGetNumBufferParts", [&] { return g.DSGetNumBufferParts(nullptr, nullptr, &count); }},
        {"DSGetBufferPartInfo",
         [&] { return g.DSGetBufferPartInfo(nullptr, nullptr, 0, 0, &type, text, &size); }},
        {"GCGetPortInfo", [&] { return g.GCGetPortInfo(nullptr, 0, &type, text, &size); }},
        {"GCGetNumPortURLs", [&] { return g.GCGetNumPortURLs(nullptr, &count); }},
        {"GCGetPortURLInfo", [&] { return g.GCGetPortURLInfo(nullptr, 0, 0, &type, text, &size); }},
        {"GCGetPortURL", [&] { return g.GCGetPortURL(nullptr, text, &size); }},
        {"GCReadPort", [&] { return g.GCReadPort(nullptr, 0, text, &size); }},
        {"GCWritePort", [&] { return g.GCWritePort(nullptr, 0, text, &size); }},
        {"GCReadPortStacked", [&] { return g.GCReadPortStacked(nullptr, nullptr, &size); }},
        {"GCWritePortStacked", [&] { return g.GCWritePortStacked(nullptr, nullptr, &size); }},
        {"GCRegisterEvent", [&] { return g.GCRegisterEvent(nullptr, 0, &handle); }},
        {"GCUnregisterEvent", [&] { return g.GCUnregisterEvent(nullptr, 0); }},
        {"EventGetData", [&] { return g.EventGetData(nullptr, text, &size, 0); }},
        {"EventGetDataInfo", [&] { return g.EventGetDataInfo(nullptr, text, 8, 0, &type, text, &size); }},
        {"EventGetInfo", [&] { return g.EventGetInfo(nullptr, 0, &type, text, &size); }},
        {"EventFlush", [&] { return g.EventFlush(nullptr); }},
        {"EventKill", [&] { return g.EventKill(nullptr); }},
    };
    for (const auto& [name, call] : calls)
        context.report.Result(name, call(), {GC_ERR_NOT_INITIALIZED});
}

void CheckLibrary(Context& context) {
    Report& report = context.report;
    const Functions& gentl = context.gentl;
    report.Result("GCInitLib again", gentl.GCInitLib(), {GC_ERR_RESOURCE_IN_USE});
    CheckInfos(context, "GCGetInfo", systemRows, LibraryInfo(context));
    const std::string path = TextOf(LibraryInfo(context)(TL_INFO_PATHNAME));
    const std::string name = TextOf(LibraryInfo(context)(TL_INFO_NAME));
    report.Holds("GCGetInfo(PATHNAME)", !path.empty() && path[0] == '/', "a full path", path);
    report.Equal("GCGetInfo(NAME)", name, path.substr(path.find_last_of('/') + 1));
    CheckLastError(context);
    report.Enter("initialised");
    report.Result("TLOpen(null)", gentl.TLOpen(nullptr), {GC_ERR_INVALID_PARAMETER});
    TL_HANDLE system = nullptr;
    if (!report.Success("TLOpen", gentl.TLOpen(&system)))
        return;
    report.Enter("system open");
    TL_HANDLE second = nullptr;
    report.Result("TLOpen again", gentl.TLOpen(&second), {GC_ERR_RESOURCE_IN_USE});
    const auto systemInfo = [&](int32_t command) -> InfoCall {
        return [&context, system, command](INFO_DATATYPE* type, void* data, size_t* size) {
            return context.gentl.TLGetInfo(system, command, type, data, size);
        };
    };
    CheckInfos(context, "TLGetInfo", systemRows, systemInfo);
    for (const InfoRow& row : systemRows) {
        if (row.type == INFO_DATATYPE_STRING)
            report.Equal(std::string("TLGetInfo(") + row.name + ") as GCGetInfo",
                         TextOf(systemInfo(row.command)), TextOf(LibraryInfo(context)(row.command)));
    }
    CheckSystem(context, system);
    report.Enter("system closed");
    report.Success("TLClose", gentl.TLClose(system));
    report.Result("TLClose again", gentl.TLClose(system), {GC_ERR_INVALID_HANDLE});
    uint32_t count = 0;
    report.Result("TLGetNumInterfaces", gentl.TLGetNumInterfaces(system, &count), {GC_ERR_INVALID_HANDLE});
    report.Success("TLOpen anew", gentl.TLOpen(&system));
    report.Success("TLClose anew", gentl.TLClose(system));
}

} // namespace contract
