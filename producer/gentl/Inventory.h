#pragma once

#include "producer/gentl/Reply.h"
#include "producer/sim/Camera.h"

#include <array>
#include <atomic>
#include <memory>

namespace zqgentl {

/// A camera and what a consumer may be told of it without opening it.
struct SimulatedDevice {
    explicit SimulatedDevice(const CameraModel& model) : camera(model) {}

    [[nodiscard]] GenTL::DEVICE_ACCESS_STATUS AccessStatus() const noexcept {
        return camera.Lost() ? GenTL::DEVICE_ACCESS_STATUS_NOACCESS : openStatus.load();
    }

    Camera camera;
    std::atomic<GenTL::DEVICE_ACCESS_STATUS> openStatus{GenTL::DEVICE_ACCESS_STATUS_READWRITE};
};

/// The simulated hardware of one GCInitLib: one interface and one device per camera model.
class Inventory {
public:
    static constexpr size_t size = std::size(cameraModels);

    Inventory() {
        for (size_t i = 0; i < size; ++i)
            m_devices[i] = std::make_unique<SimulatedDevice>(cameraModels[i]);
    }

    [[nodiscard]] SimulatedDevice& At(size_t index) const { return *m_devices[index]; }

private:
    std::array<std::unique_ptr<SimulatedDevice>, size> m_devices;
};

/// Addresses that the description of GigE Vision modules shows; from a range reserved for documentation.
constexpr int64_t simulatedMacAddress = 0x020000000001;
constexpr int64_t simulatedInterfaceIp = 0xC0000201;
constexpr int64_t simulatedDeviceIp = 0xC0000202;
constexpr int64_t simulatedSubnetMask = 0xFFFFFF00;

void AnswerDeviceInfo(const SimulatedDevice& device, GenTL::DEVICE_INFO_CMD command,
                      const InfoTarget& target);
void AnswerInterfaceInfo(const CameraModel& model, GenTL::INTERFACE_INFO_CMD command,
                         const InfoTarget& target);
[[nodiscard]] std::string DeviceDisplayName(const CameraModel& model);

} // namespace zqgentl
