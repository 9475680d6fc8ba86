#pragma once

#include "producer/gentl/HandleRegistry.h"
#include "producer/gentl/Port.h"
#include "producer/sim/Camera.h"

#include <atomic>
#include <chrono>
#include <memory>

namespace zqgentl {

/// How long an access to the camera waits for its answer, each time it is tried. Any thread may use it.
struct LinkSettings {
    std::atomic<double> timeoutUs{1e7};
    std::atomic<int64_t> retries{3};

    [[nodiscard]] std::chrono::microseconds Patience() const {
        return std::chrono::microseconds(static_cast<int64_t>(timeoutUs * static_cast<double>(retries + 1)));
    }
};
constexpr double linkTimeoutMinUs = 1e3;
constexpr double linkTimeoutMaxUs = 6e7;
constexpr int64_t linkRetriesMax = 10;

/// The port of the camera itself: what DevGetPort hands out. It ends with its device.
class RemotePort final : public Object, public Port {
public:
    static constexpr Kind kind = Kind::RemotePort;

    /// The owner of the camera lives as long as the port.
    RemotePort(std::shared_ptr<const Object> owner, const Camera& camera, bool writable);

    [[nodiscard]] void* Handle() const noexcept { return m_handle; }
    void SetHandle(void* handle) noexcept { m_handle = handle; }

    [[nodiscard]] LinkSettings& Link() noexcept { return m_link; }

    /// Both fail with GC_ERR_IO once the camera is lost.
    void Read(uint64_t address, void* data, size_t size) const override;
    void Write(uint64_t address, const void* data, size_t size) const override;

private:
    void RequireAlive() const;

    std::shared_ptr<const Object> m_owner;
    const Camera& m_camera;
    LinkSettings m_link;
    void* m_handle = nullptr;
};

} // namespace zqgentl
