#include "tests/support/scripted_producer/Plan.h"

#include <algorithm>

namespace Scripted {

namespace {

template <class Entry>
bool RemoveById(std::vector<std::shared_ptr<Entry>>& entries, const std::string& id) {
    const auto entry = FindById(entries, id);
    if (entry == nullptr)
        return false;
    entries.erase(std::remove(entries.begin(), entries.end(), entry), entries.end());
    return true;
}

} // namespace

void Plan::MakeUsual() {
    AddInterface("IF1", TLTypeU3VName);
    AddDevice("IF1", "DEV1", GenTL::DEVICE_ACCESS_STATUS_READWRITE, 1);
}

void Plan::AddInterface(const std::string& id, const std::string& tlType) {
    interfaces.push_back(std::make_shared<InterfacePlan>(InterfacePlan{++m_interfaceNumber, id, tlType, {}}));
}

bool Plan::RemoveInterface(const std::string& id) {
    return RemoveById(interfaces, id);
}

bool Plan::AddDevice(const std::string& interfaceId, const std::string& id, int32_t accessStatus,
                     uint32_t streams) {
    const auto parent = FindById(interfaces, interfaceId);
    if (parent == nullptr)
        return false;
    auto device = FindById(parent->devices, id);
    if (device == nullptr) {
        device = std::make_shared<DevicePlan>(DevicePlan{++m_deviceNumber, id, accessStatus, {}});
        parent->devices.push_back(device);
    }
    device->accessStatus = accessStatus;
    while (device->streamNumbers.size() < streams)
        device->streamNumbers.push_back(++m_streamNumber);
    device->streamNumbers.resize(streams);
    return true;
}

bool Plan::RemoveDevice(const std::string& interfaceId, const std::string& id) {
    const auto parent = FindById(interfaces, interfaceId);
    return parent != nullptr && RemoveById(parent->devices, id);
}

} // namespace Scripted
