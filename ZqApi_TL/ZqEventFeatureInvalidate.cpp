#include "ZqApi_TL/ZqEventFeatureInvalidate.h"

#include "ZqApi_TL/EventItem.h"
#include "ZqApi_TL/NodeLookup.h"
#include "ZqApi_TL/Teardown.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqEventFeatureInvalidate";

} // namespace

CZqEventFeatureInvalidate::CZqEventFeatureInvalidate(CZqGenTLLib* pGenTL, IZqDeviceInside* pDevice,
                                                     const char* name)
    : CZqEvent(pGenTL, pDevice->GetDeviceHandle(), EVENT_FEATURE_INVALIDATE, name),
      m_pIZqDeviceInside(pDevice) {}

CZqEventFeatureInvalidate::~CZqEventFeatureInvalidate() {
    Teardown().Run([this] { Stop(); });
}

void CZqEventFeatureInvalidate::OnRcvEvent(void* pBuffer, size_t iSize) {
    ZQ_ASSERT(UNIT, m_pIZqDeviceInside != NULL);
    const EventBlock block{m_pCZqGenTL, UNIT, GetEventHandle(), pBuffer, iSize};
    const gcstring feature = ReadEventItem(block, EVENT_DATA_ID).Text();
    INodeMap* const pNodeMap = m_pIZqDeviceInside->GetRemoteIZqPort()->GetINodeMap();
    FindNode(UNIT, __LINE__, pNodeMap, feature)->InvalidateNode();
}

} // namespace ZqApi
