#pragma once

#include "producer/gentl/Reply.h"
#include "producer/sim/Absence.h"
#include "producer/sim/Camera.h"
#include "producer/sim/Population.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace zqgentl {

/// Addresses that the description of GigE Vision modules shows; from a range reserved for benchmarks of
/// networks.
constexpr int64_t simulatedMacAddress = 0x020000000001;
constexpr int64_t simulatedInterfaceIp = 0xC6120001;
constexpr int64_t simulatedSubnetMask = 0xFFFE0000;
constexpr int64_t broadcastAddress = 0xFFFFFFFF;

/// Where a camera is in its network. Any thread may use it.
struct NetworkAddress {
    explicit NetworkAddress(const CameraModel& model)
        : mac(simulatedMacAddress + model.number), ownIp(simulatedInterfaceIp + model.number), ip(ownIp) {}

    /// Another address; with 0 the one that it had from the start.
    void Force(int64_t newIp, int64_t newMask, int64_t newGateway) {
        ip = newIp == 0 ? ownIp : newIp;
        mask = newIp == 0 ? simulatedSubnetMask : newMask;
        gateway = newIp == 0 ? 0 : newGateway;
    }
    /// Whether it hears what is sent there: to itself, to its subnet or to everybody.
    [[nodiscard]] bool Hears(int64_t destination) const {
        return destination == ip || destination == broadcastAddress ||
               destination == (ip | (mask ^ broadcastAddress));
    }

    const int64_t mac;
    const int64_t ownIp;
    std::atomic<int64_t> ip;
    std::atomic<int64_t> mask{simulatedSubnetMask};
    std::atomic<int64_t> gateway{0};
};

/// A camera and what a consumer may be told of it without opening it.
struct SimulatedDevice {
    explicit SimulatedDevice(const CameraModel& model) : camera(model), network(model) {}

    [[nodiscard]] GenTL::DEVICE_ACCESS_STATUS AccessStatus() const noexcept {
        return camera.Lost() || camera.Away() ? GenTL::DEVICE_ACCESS_STATUS_NOACCESS : openStatus.load();
    }

    Camera camera;
    NetworkAddress network;
    std::atomic<GenTL::DEVICE_ACCESS_STATUS> openStatus{GenTL::DEVICE_ACCESS_STATUS_READWRITE};
};

/// Who wants to know when an interface is gone.
class InterfaceListener {
public:
    virtual void OnInterfaceLost() = 0;
    virtual void OnDeviceListChanged() = 0;

protected:
    ~InterfaceListener() = default;
};

/// Who wants to know when an interface goes or comes back. Called with a lock that SetSystemListener takes.
class SystemListener {
public:
    virtual void OnInterfaceListChanged() = 0;

protected:
    ~SystemListener() = default;
};

/// An interface with its cameras.
class SimulatedInterface : public CameraBus {
public:
    SimulatedInterface(const BusModel& model, uint32_t cameras);

    [[nodiscard]] const BusModel& Model() const noexcept { return m_model; }
    [[nodiscard]] size_t DeviceCount() const noexcept { return m_devices.size(); }
    [[nodiscard]] SimulatedDevice& DeviceAt(size_t index) const { return *m_devices[index]; }
    /// The cameras that are there, by their index.
    [[nodiscard]] std::vector<size_t> PresentDevices() const;

    /// The interface is gone, and every camera on it lost.
    void Lose(std::chrono::milliseconds absence) override;
    void OnCameraAway(std::chrono::milliseconds absence) override;
    [[nodiscard]] bool Away() const noexcept { return m_absence.Away(); }
    void Release();
    void SetListener(InterfaceListener* listener);
    void SetSystemListener(SystemListener* listener);

private:
    template <class Call>
    void Tell(Call call);
    void TellDeviceList();
    void TellInterfaceList();

    const BusModel& m_model;
    std::vector<std::unique_ptr<SimulatedDevice>> m_devices;
    Absence m_absence;
    std::mutex m_listenerLock;
    InterfaceListener* m_listener = nullptr;
    SystemListener* m_systemListener = nullptr;
    Agenda m_agenda; // last: its thread uses the rest
};

/// The simulated hardware of one GCInitLib.
class Inventory {
public:
    explicit Inventory(const Population& population);

    [[nodiscard]] size_t Count() const noexcept { return m_interfaces.size(); }
    [[nodiscard]] SimulatedInterface& At(size_t index) const { return *m_interfaces[index]; }
    [[nodiscard]] std::vector<size_t> PresentInterfaces() const;

private:
    std::vector<std::unique_ptr<SimulatedInterface>> m_interfaces;
};

void AnswerDeviceInfo(const SimulatedDevice& device, GenTL::DEVICE_INFO_CMD command,
                      const InfoTarget& target);
void AnswerInterfaceInfo(const BusModel& model, GenTL::INTERFACE_INFO_CMD command, const InfoTarget& target);
[[nodiscard]] std::string DeviceDisplayName(const CameraModel& model);

} // namespace zqgentl
