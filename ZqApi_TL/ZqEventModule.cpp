#include "ZqApi_TL/ZqEventModule.h"

#include "ZqApi_TL/EventItem.h"
#include "ZqApi_TL/Teardown.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqEventModule";

} // namespace

CZqEventModule::CZqEventModule(CZqGenTLLib* pGenTL, IZqPortInside* pPort, const char* name)
    : CZqEvent(pGenTL, pPort->GetPortHandle(), EVENT_MODULE, name), m_pIZqPortInside(pPort) {
    m_EventAdapter.AttachNodeMap(m_pIZqPortInside->GetINodeMap());
}

CZqEventModule::~CZqEventModule() {
    Teardown teardown;
    teardown.Run([this] { Stop(); });
    teardown.Run([this] { m_EventAdapter.DetachNodeMap(); });
    teardown.Run([this] { UnregisterEvent(); });
}

void CZqEventModule::OnRcvEvent(void* pBuffer, size_t iSize) {
    if (m_pCZqGenTL->EventGetDataInfo == nullptr)
        return;
    const EventBlock block{m_pCZqGenTL, UNIT, GetEventHandle(), pBuffer, iSize};
    const EventItem id = TryReadEventItem(block, EVENT_DATA_ID);
    const EventItem value = TryReadEventItem(block, EVENT_DATA_VALUE);
    const gcstring identifier = id.Text();
    if (!id.IsPresent() || identifier.empty())
        return;
    // An event without a payload still invalidates its nodes; the adapter wants an address all the same.
    const uint8_t nothing = 0;
    const uint8_t* const bytes = value.IsPresent() ? value.bytes.get() : &nothing;
    m_EventAdapter.DeliverMessage(bytes, static_cast<uint32_t>(value.size), identifier);
}

} // namespace ZqApi
