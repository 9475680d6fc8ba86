#include "genapi/src/document/Lexical.h"
#include "genapi/src/map/NodeMapImpl.h"
#include "genapi/src/nodes/NodeBase.h"

#include <GenApi/EventAdapterGeneric.h>

namespace GENAPI_NAMESPACE {

CEventAdapter::CEventAdapter(INodeMap* pNodeMap) : m_pNodeMap(nullptr) {
    if (pNodeMap)
        CEventAdapter::AttachNodeMap(pNodeMap);
}
CEventAdapter::~CEventAdapter() = default;

void CEventAdapter::AttachNodeMap(INodeMap* pNodeMap) {
    if (!dynamic_cast<inside::NodeMapImpl*>(pNodeMap))
        throw INVALID_ARGUMENT_EXCEPTION("An event adapter needs a node map of this library.");
    m_pNodeMap = pNodeMap;
}
void CEventAdapter::DetachNodeMap() {
    m_pNodeMap = nullptr;
}

void CEventAdapter::DeliverEvent(const uint8_t* pData, uint32_t numBytes, uint64_t eventID) {
    if (!pData)
        throw INVALID_ARGUMENT_EXCEPTION("An event without bytes can't be delivered: null pointer.");
    if (auto* map = dynamic_cast<inside::NodeMapImpl*>(m_pNodeMap))
        map->DeliverEvent(pData, numBytes, eventID);
}

CEventAdapterGeneric::CEventAdapterGeneric(INodeMap* pNodeMap) : CEventAdapter(pNodeMap) {}
CEventAdapterGeneric::~CEventAdapterGeneric() = default;

void CEventAdapterGeneric::DeliverMessage(const uint8_t[], uint32_t) {
    throw INVALID_ARGUMENT_EXCEPTION("The generic event adapter needs the event's ID beside its bytes.");
}

void CEventAdapterGeneric::DeliverMessage(const uint8_t msg[], uint32_t numBytes,
                                          const GENICAM_NAMESPACE::gcstring& eventID) {
    const auto id = inside::ParseHexDigits(std::string_view(eventID.c_str(), eventID.size()));
    if (!id)
        throw INVALID_ARGUMENT_EXCEPTION("The event ID '%s' is no hexadecimal number.", eventID.c_str());
    DeliverEvent(msg, numBytes, *id);
}

void CEventAdapterGeneric::DeliverMessage(const uint8_t msg[], uint32_t numBytes, uint64_t eventID) {
    DeliverEvent(msg, numBytes, eventID);
}

} // namespace GENAPI_NAMESPACE
