#include "ZqApi_TL/ZqEventRemoteDevice.h"

#include "ZqApi_TL/Teardown.h"

namespace ZqApi {
namespace {

// Camera events must not wait behind acquisition work.
constexpr int PRIORITY = 90;

std::unique_ptr<GenApi::CEventAdapter> MakeEventAdapter(const gcstring& tlType, INodeMap* pNodeMap) {
    if (tlType == TLTypeU3VName)
        return std::make_unique<GenApi::CEventAdapterU3V>(pNodeMap);
    if (tlType == TLTypeGEVName)
        return std::make_unique<GenApi::CEventAdapterGEV>(pNodeMap);
    return std::make_unique<GenApi::CEventAdapterGeneric>(pNodeMap);
}

} // namespace

CZqEventRemoteDevice::CZqEventRemoteDevice(CZqGenTLLib* pGenTL, IZqDeviceInside* pDevice, const char* name)
    : CZqEvent(pGenTL, pDevice->GetDeviceHandle(), EVENT_REMOTE_DEVICE, name), m_pIZqDeviceInside(pDevice),
      m_pCEventAdapter(MakeEventAdapter(pDevice->GetIZqDeviceInfo()->GetTLType(),
                                        pDevice->GetRemoteIZqPort()->GetINodeMap())) {
    SetPriority(PRIORITY);
}

CZqEventRemoteDevice::~CZqEventRemoteDevice() {
    Teardown teardown;
    teardown.Run([this] { Stop(); });
    teardown.Run([this] { UnregisterEvent(); });
    m_pCEventAdapter.reset();
}

void CZqEventRemoteDevice::OnRcvEvent(void* pBuffer, size_t iSize) {
    m_pCEventAdapter->DeliverMessage(static_cast<const uint8_t*>(pBuffer), static_cast<uint32_t>(iSize));
}

} // namespace ZqApi
