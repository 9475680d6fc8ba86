#pragma once

#include "producer/gentl/Inventory.h"
#include "producer/gentl/OpenChildren.h"
#include "producer/gentl/RemotePort.h"
#include "producer/gentl/StreamModule.h"

#include <atomic>
#include <memory>
#include <string>

namespace zqgentl {

class InterfaceModule;

/// An open device: its local module and the port of the camera behind it.
class DeviceModule final : public Module,
                           public CameraListener,
                           public std::enable_shared_from_this<DeviceModule> {
public:
    static constexpr Kind kind = Kind::Device;
    /// The id of the module event that tells of a loss, as the description of the device module has it.

    DeviceModule(std::shared_ptr<InterfaceModule> parent, SimulatedDevice& device,
                 GenTL::DEVICE_ACCESS_FLAGS access);

    [[nodiscard]] InterfaceModule& Parent() const noexcept { return *m_parent; }
    [[nodiscard]] SimulatedDevice& Device() const noexcept { return m_device; }
    /// How long the camera's registers are waited for.
    [[nodiscard]] LinkSettings& Link() const noexcept { return m_remotePort->Link(); }
    [[nodiscard]] void* RemotePortHandle() const noexcept { return m_remotePort->Handle(); }

    [[nodiscard]] void* OpenStream(const std::string& id);
    void Forget(const StreamModule& child) { m_streams.Forget(child); }
    void Close();

    [[nodiscard]] const Port& ModulePort() const override { return m_port; }
    void OnCameraChanged() override;
    void OnCameraLost() override;
    void OnCameraEvent(const CameraEvent& event) override;
    void OnFeatureInvalidated(const char* feature) override;
    void OnFeatureChanged(const char* feature, const std::string& value) override;

    [[nodiscard]] int64_t EndianessMechanism() const noexcept { return m_endianessMechanism; }
    void SetEndianessMechanism(int64_t mechanism) noexcept { m_endianessMechanism = mechanism; }

protected:
    [[nodiscard]] std::shared_ptr<Event> MakeEvent(GenTL::EVENT_TYPE type) override;

private:
    std::shared_ptr<InterfaceModule> m_parent;
    SimulatedDevice& m_device;
    std::shared_ptr<RemotePort> m_remotePort;
    std::atomic<uint16_t> m_requestId{0};
    std::atomic<int64_t> m_endianessMechanism{1};
    OpenChildren<StreamModule> m_streams;
    ModuleEvents m_moduleEvents;
    RegisterMap m_registers{ByteOrder::Little};
    Port m_port;
};

} // namespace zqgentl
