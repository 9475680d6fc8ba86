#pragma once

#include <memory>

#include "ZqApi_TL/InsideInterfaces.h"
#include "ZqApi_TL/ZqEvent.h"

namespace ZqApi {

/// Brings the events that the camera itself sends into its node map, by the adapter of its transport.
///
/// Not there yet: producers that deliver the bare item instead of the transport's packet.
class CZqEventRemoteDevice final : public CZqEvent {
public:
    /// Builds the remote node map if need be; its failure leaves.
    CZqEventRemoteDevice(CZqGenTLLib* pGenTL, IZqDeviceInside* pDevice, const char* name);
    ~CZqEventRemoteDevice() override;

protected:
    void OnRcvEvent(void* pBuffer, size_t iSize) override;

private:
    IZqDeviceInside* const m_pIZqDeviceInside;
    std::unique_ptr<GenApi::CEventAdapter> m_pCEventAdapter;
};

} // namespace ZqApi
