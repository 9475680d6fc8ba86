#pragma once

#include "producer/gentl/DeviceModule.h"
#include "producer/gentl/Inventory.h"
#include "producer/gentl/ListState.h"
#include "producer/gentl/OpenChildren.h"

#include <memory>
#include <string>

namespace zqgentl {

class SystemModule;

/// An open interface with its one simulated device.
class InterfaceModule final : public Module, public std::enable_shared_from_this<InterfaceModule> {
public:
    static constexpr Kind kind = Kind::Interface;

    InterfaceModule(std::shared_ptr<SystemModule> parent, SimulatedDevice& device);

    [[nodiscard]] SystemModule& Parent() const noexcept { return *m_parent; }
    [[nodiscard]] const CameraModel& Model() const noexcept { return m_device.camera.Model(); }

    bool UpdateList() noexcept { return m_list.Update(); }
    [[nodiscard]] size_t ListedCount() const noexcept { return m_list.Count(); }
    [[nodiscard]] const SimulatedDevice& Listed(uint32_t index) const;
    [[nodiscard]] const SimulatedDevice& WithId(const std::string& id) const;
    [[nodiscard]] void* OpenDevice(const std::string& id, GenTL::DEVICE_ACCESS_FLAGS access);
    void Forget(const DeviceModule& child) { m_devices.Forget(child); }
    void Close();

    [[nodiscard]] const Port& ModulePort() const override { return m_port; }
    /// The device that the selector of the node map names; null while the list is empty.
    [[nodiscard]] const SimulatedDevice* Selected() const noexcept;

private:
    void RequireId(const std::string& id) const;

    std::shared_ptr<SystemModule> m_parent;
    SimulatedDevice& m_device;
    ListState m_list{1};
    OpenChildren<DeviceModule> m_devices;
    RegisterMap m_registers{ByteOrder::Little};
    Port m_port;
};

} // namespace zqgentl
