#pragma once

#include "producer/gentl/HandleRegistry.h"
#include "producer/gentl/Port.h"
#include "producer/sim/Camera.h"

#include <memory>

namespace zqgentl {

/// The port of the camera itself: what DevGetPort hands out. It ends with its device.
class RemotePort final : public Object, public Port {
public:
    static constexpr Kind kind = Kind::RemotePort;

    /// The owner of the camera lives as long as the port.
    RemotePort(std::shared_ptr<const Object> owner, const Camera& camera, bool writable);

    [[nodiscard]] void* Handle() const noexcept { return m_handle; }
    void SetHandle(void* handle) noexcept { m_handle = handle; }

    /// Both fail with GC_ERR_IO once the camera is lost.
    void Read(uint64_t address, void* data, size_t size) const override;
    void Write(uint64_t address, const void* data, size_t size) const override;

private:
    void RequireAlive() const;

    std::shared_ptr<const Object> m_owner;
    const Camera& m_camera;
    void* m_handle = nullptr;
};

} // namespace zqgentl
