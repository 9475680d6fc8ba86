#include "ZqApi_TL/ZqEventFeatureChange.h"

#include "ZqApi_TL/EventItem.h"
#include "ZqApi_TL/NodeLookup.h"
#include "ZqApi_TL/Teardown.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqEventFeatureChange";

} // namespace

CZqEventFeatureChange::CZqEventFeatureChange(CZqGenTLLib* pGenTL, IZqDeviceInside* pDevice, const char* name)
    : CZqEvent(pGenTL, pDevice->GetDeviceHandle(), EVENT_FEATURE_CHANGE, name), m_pIZqDeviceInside(pDevice) {}

CZqEventFeatureChange::~CZqEventFeatureChange() {
    Teardown().Run([this] { Stop(); });
}

void CZqEventFeatureChange::OnRcvEvent(void* pBuffer, size_t iSize) {
    ZQ_ASSERT(UNIT, m_pIZqDeviceInside != NULL);
    const EventBlock block{m_pCZqGenTL, UNIT, GetEventHandle(), pBuffer, iSize};
    const gcstring feature = ReadEventItem(block, EVENT_DATA_ID).Text();
    const gcstring value = ReadEventItem(block, EVENT_DATA_VALUE).Text();
    INodeMap* const pNodeMap = m_pIZqDeviceInside->GetRemoteIZqPort()->GetINodeMap();
    GenApi::CValuePtr pValue = FindNode(UNIT, __LINE__, pNodeMap, feature);
    if (pValue.IsValid())
        pValue->FromString(value, true);
}

} // namespace ZqApi
