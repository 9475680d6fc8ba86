#include <GenApi/EventAdapterGEV.h>
#include <GenApi/EventAdapterU3V.h>

namespace GENAPI_NAMESPACE {

CEventAdapterGEV::CEventAdapterGEV(INodeMap* pNodeMap) : CEventAdapter(pNodeMap) {}
CEventAdapterGEV::~CEventAdapterGEV() = default;
void CEventAdapterGEV::DeliverMessage(const uint8_t[], uint32_t) {
    throw RUNTIME_EXCEPTION("CEventAdapterGEV::DeliverMessage is not implemented");
}

CEventAdapterU3V::CEventAdapterU3V(INodeMap* pNodeMap) : CEventAdapter(pNodeMap) {}
CEventAdapterU3V::~CEventAdapterU3V() = default;
void CEventAdapterU3V::DeliverMessage(const uint8_t[], uint32_t) {
    throw RUNTIME_EXCEPTION("CEventAdapterU3V::DeliverMessage is not implemented");
}

} // namespace GENAPI_NAMESPACE
