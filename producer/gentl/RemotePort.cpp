#include "producer/gentl/RemotePort.h"

namespace zqgentl {

RemotePort::RemotePort(std::shared_ptr<const Object> owner, const Camera& camera, bool writable)
    : Port({camera.Model().deviceId, camera.Model().modelName, camera.Model().tlType, "Device", cameraVersion,
            "Device", camera.Model().byteOrder == ByteOrder::Big, writable},
           camera.Registers(), *camera.Model().cameraDescription),
      m_owner(std::move(owner)), m_camera(camera) {}

void RemotePort::RequireAlive() const {
    if (m_camera.Lost())
        throw Failure(GenTL::GC_ERR_IO, "the camera is lost");
}

void RemotePort::Read(uint64_t address, void* data, size_t size) const {
    RequireAlive();
    m_camera.PassPort(address, size, Camera::Access::Read, m_link.Patience());
    Port::Read(address, data, size);
}

void RemotePort::Write(uint64_t address, const void* data, size_t size) const {
    RequireAlive();
    if (!Facts().writable)
        throw Failure(GenTL::GC_ERR_ACCESS_DENIED, "the device is opened read only");
    m_camera.PassPort(address, size, Camera::Access::Write, m_link.Patience());
    Port::Write(address, data, size);
}

} // namespace zqgentl
