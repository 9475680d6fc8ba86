#include "tools/zq/List.h"

#include "tools/zq/Failure.h"
#include "tools/zq/Producers.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iomanip>
#include <iterator>
#include <ostream>

namespace ZqTool {

namespace {

using namespace ZqApi;
using Json = nlohmann::ordered_json;

struct AccessName {
    DEVICE_ACCESS_STATUS status;
    const char* name;
};

constexpr AccessName accessNames[] = {
    {DEVICE_ACCESS_STATUS_UNKNOWN, "unknown"},
    {DEVICE_ACCESS_STATUS_READWRITE, "read-write"},
    {DEVICE_ACCESS_STATUS_READONLY, "read-only"},
    {DEVICE_ACCESS_STATUS_NOACCESS, "no access"},
    {DEVICE_ACCESS_STATUS_BUSY, "busy"},
    {DEVICE_ACCESS_STATUS_OPEN_READWRITE, "open"},
    {DEVICE_ACCESS_STATUS_OPEN_READONLY, "open read-only"},
};

std::string NameOf(DEVICE_ACCESS_STATUS status) {
    const auto* found = std::find_if(std::begin(accessNames), std::end(accessNames),
                                     [status](const AccessName& each) { return each.status == status; });
    return found == std::end(accessNames) ? std::to_string(status) : found->name;
}

/// What the getter says, or null where the producer does not say it.
template <class Getter>
Json Ask(Getter getter) {
    try {
        return Json(std::string(getter().c_str()));
    } catch (const CZqGenTLErrorException&) {
        return nullptr;
    }
}

Json Describe(const IZqDeviceInfo& info) {
    return {{"id", Ask([&] { return info.GetID(); })},
            {"vendor", Ask([&] { return info.GetVendor(); })},
            {"model", Ask([&] { return info.GetModel(); })},
            {"serial", Ask([&] { return info.GetSerialNumber(); })},
            {"user_name", Ask([&] { return info.GetUserDefinedName(); })},
            {"version", Ask([&] { return info.GetVersion(); })},
            {"access", Ask([&] { return NameOf(info.GetAccessStatus()); })}};
}

Json Describe(IZqInterface& iface, const std::vector<ListedDevice>& devices) {
    const IZqInterfaceInfo& info = *iface.GetIZqInterfaceInfo();
    Json list = Json::array();
    for (const auto& device : devices)
        if (device.iface == &iface)
            list.push_back(Describe(*iface.GetIZqDeviceInfo(device.index)));
    return {{"id", Ask([&] { return info.GetID(); })},
            {"type", Ask([&] { return info.GetTLType(); })},
            {"name", Ask([&] { return info.GetDisplayName(); })},
            {"devices", list}};
}

Json Describe(const Producer& producer, const std::vector<ListedDevice>& devices) {
    const IZqSystemInfo& info = *producer.system->GetIZqSystemInfo();
    Json list = Json::array();
    for (size_t i = 0; i < producer.system->GetInterfaceCount(); ++i)
        list.push_back(Describe(*producer.system->GetIZqInterface(i), devices));
    return {{"vendor", producer.vendor},
            {"file", producer.file},
            {"path", Ask([&] { return info.GetPathName(); })},
            {"version", Ask([&] { return info.GetVersion(); })},
            {"interfaces", list}};
}

std::string Text(const Json& value) {
    return value.is_null() || value.get<std::string>().empty() ? "-" : value.get<std::string>();
}

void PrintText(const Json& producers, std::ostream& out) {
    for (const auto& producer : producers) {
        out << Text(producer["file"]) << " " << Text(producer["version"]) << "\n";
        for (const auto& iface : producer["interfaces"]) {
            out << "  " << Text(iface["type"]) << "  " << Text(iface["id"]) << "  " << Text(iface["name"])
                << "\n";
            for (const auto& device : iface["devices"])
                out << "    " << std::left << std::setw(24) << Text(device["id"]) << "  "
                    << Text(device["vendor"]) << " " << Text(device["model"]) << ", serial "
                    << Text(device["serial"]) << ", name " << Text(device["user_name"]) << ", "
                    << Text(device["access"]) << "\n";
        }
    }
}

} // namespace

int List(const Library& library, bool asJson, const Console& console) {
    const auto producers = OpenProducers(library, console);
    const auto devices = ListDevices(producers);
    Json described = Json::array();
    for (const auto& producer : producers)
        described.push_back(Describe(producer, devices));
    if (asJson)
        console.out << Json{{"producers", described}}.dump(2, ' ', false, Json::error_handler_t::replace)
                    << "\n";
    else
        PrintText(described, console.out);
    if (devices.empty())
        throw Failure("listing cameras", "the producers report no camera",
                      "check the camera's cable and power", NothingFound);
    return Done;
}

} // namespace ZqTool
