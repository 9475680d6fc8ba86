#pragma once

#include "producer/gentl/DeviceModule.h"
#include "producer/gentl/Inventory.h"
#include "producer/gentl/ListState.h"
#include "producer/gentl/ModuleEvents.h"
#include "producer/gentl/OpenChildren.h"
#include "producer/gentl/UpdateTimes.h"

#include <atomic>
#include <memory>
#include <string>

namespace zqgentl {

class SystemModule;

/// An open interface with its simulated devices.
class InterfaceModule final : public Module,
                              public InterfaceListener,
                              public std::enable_shared_from_this<InterfaceModule> {
public:
    static constexpr Kind kind = Kind::Interface;

    InterfaceModule(std::shared_ptr<SystemModule> parent, SimulatedInterface& bus);

    [[nodiscard]] SystemModule& Parent() const noexcept { return *m_parent; }
    [[nodiscard]] const BusModel& Model() const noexcept { return m_bus.Model(); }

    /// GC_ERR_TIMEOUT, and the old list, when the search takes longer.
    bool UpdateList(uint64_t timeoutMs) {
        m_times.Search(timeoutMs);
        return m_list.Update(m_bus.PresentDevices());
    }
    [[nodiscard]] UpdateTimes& Times() noexcept { return m_times; }
    [[nodiscard]] const UpdateTimes& Times() const noexcept { return m_times; }
    [[nodiscard]] size_t ListedCount() const { return m_list.Count(); }
    [[nodiscard]] const SimulatedDevice& Listed(uint32_t index) const;
    [[nodiscard]] const SimulatedDevice& WithId(const std::string& id) const;
    [[nodiscard]] void* OpenDevice(const std::string& id, GenTL::DEVICE_ACCESS_FLAGS access);
    void Forget(const DeviceModule& child) { m_devices.Forget(child); }
    void Close();

    [[nodiscard]] const Port& ModulePort() const override { return m_port; }
    /// The device that the selector of the node map names; null while the list is empty.
    [[nodiscard]] const SimulatedDevice* Selected() const;
    [[nodiscard]] size_t Selector() const noexcept { return m_selector; }
    void Select(int64_t index);
    void OnInterfaceLost() override;
    void OnDeviceListChanged() override;

    /// The keys of an action command that goes to every camera of the interface.
    struct ActionKeys {
        std::atomic<int64_t> device{0};
        std::atomic<int64_t> group{0};
        std::atomic<int64_t> mask{0};
        std::atomic<int64_t> scheduled{0}; ///< whether the time counts
        std::atomic<int64_t> timeNs{0};
        std::atomic<int64_t> destination{broadcastAddress};
    };
    [[nodiscard]] ActionKeys& Action() noexcept { return m_action; }
    [[nodiscard]] const ActionKeys& Action() const noexcept { return m_action; }
    void SendAction();

    /// What GevDeviceForceIP gives the selected device.
    struct ForcedAddress {
        std::atomic<int64_t> ip{0};
        std::atomic<int64_t> mask{simulatedSubnetMask};
        std::atomic<int64_t> gateway{0};
    };
    [[nodiscard]] ForcedAddress& Forced() noexcept { return m_forced; }
    [[nodiscard]] const ForcedAddress& Forced() const noexcept { return m_forced; }
    /// GC_ERR_ACCESS_DENIED while the device is open.
    void ForceAddress();

private:
    [[nodiscard]] SimulatedDevice& Find(const std::string& id) const;

    std::shared_ptr<SystemModule> m_parent;
    SimulatedInterface& m_bus;
    ListState m_list;
    UpdateTimes m_times;
    std::atomic<size_t> m_selector{0};
    ActionKeys m_action;
    ForcedAddress m_forced;
    ModuleEvents m_moduleEvents;
    OpenChildren<DeviceModule> m_devices;
    RegisterMap m_registers{ByteOrder::Little};
    Port m_port;
};

} // namespace zqgentl
