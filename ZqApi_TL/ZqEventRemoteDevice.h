#pragma once

#include <memory>

#include <GenApi/EventAdapterGeneric.h>

#include "ZqApi_TL/InsideInterfaces.h"
#include "ZqApi_TL/ZqEvent.h"

namespace ZqApi {

/// Brings the events that the camera itself sends into its node map, by the adapter of its transport.
///
/// A producer may hand out the transport's whole packet or, as GenTL has it, just the event's item with its
/// ID beside it; which of them it was is told by the bytes.
class CZqEventRemoteDevice final : public CZqEvent {
public:
    /// Builds the remote node map if need be; its failure leaves.
    CZqEventRemoteDevice(CZqGenTLLib* pGenTL, IZqDeviceInside* pDevice, const char* name);
    ~CZqEventRemoteDevice() override;

protected:
    void OnRcvEvent(void* pBuffer, size_t iSize) override;

private:
    /// False when the producer has no ID for the block: then only the adapter can make something of it.
    bool DeliverItem(const void* pBuffer, size_t iSize);

    IZqDeviceInside* const m_pIZqDeviceInside;
    std::unique_ptr<GenApi::CEventAdapter> m_pCEventAdapter;
    GenApi::CEventAdapterGeneric m_ItemAdapter;
};

} // namespace ZqApi
