#include "tools/zq/Camera.h"

#include "tools/zq/Failure.h"
#include "tools/zq/Feature.h"

#include <algorithm>

namespace ZqTool {

namespace {

using namespace ZqApi;

bool Answers(const ListedDevice& device, const std::string& name) {
    if (device.id == name)
        return true;
    const IZqDeviceInfo& info = *device.iface->GetIZqDeviceInfo(device.index);
    const auto same = [&](auto getter) {
        try {
            return name == (info.*getter)().c_str();
        } catch (const CZqGenTLErrorException&) {
            return false; // the producer has no such text, so nobody can ask for it
        }
    };
    return same(&IZqDeviceInfo::GetSerialNumber) || same(&IZqDeviceInfo::GetUserDefinedName);
}

/// The camera of that name, or without one the first that can be opened.
const ListedDevice& Choose(const std::vector<ListedDevice>& devices, const std::string& name) {
    const auto found = std::find_if(devices.begin(), devices.end(), [&](const ListedDevice& device) {
        return name.empty() ? device.iface->IsDeviceAvailable(device.index, DEVICE_ACCESS_CONTROL)
                            : Answers(device, name);
    });
    if (found != devices.end())
        return *found;
    throw Failure(name.empty() ? "looking for a camera" : "looking for " + name,
                  devices.empty() ? "the producers report no camera"
                                  : (name.empty() ? "every camera is in use" : "no camera has that name"),
                  "check what there is with: zq list", NothingFound);
}

} // namespace

Camera::Camera(const Library& library, const CameraChoice& choice, const Console& console)
    : m_producers(OpenProducers(library, console)) {
    const auto devices = ListDevices(m_producers);
    const ListedDevice& chosen = Choose(devices, choice.name);
    m_id = chosen.id;
    m_device.reset(Doing("opening " + m_id,
                         [&] { return chosen.iface->CreateIZqDevice(m_id.c_str(), DEVICE_ACCESS_CONTROL); }));
    m_features =
        Doing("reading the features of " + m_id, [&] { return m_device->GetRemoteIZqPort()->GetINodeMap(); });
    for (const auto& setting : choice.settings) {
        const size_t equals = setting.find('=');
        SetFeature(*m_features, setting.substr(0, equals), setting.substr(equals + 1), m_id);
    }
}

} // namespace ZqTool
