#include "genapi/src/adapters/EventItems.h"

#include <GenApi/EventAdapterGEV.h>
#include <GenApi/EventAdapterU3V.h>

#include <exception>

namespace GENAPI_NAMESPACE {

namespace {

// The whole row is checked before the first item of it is delivered. A callback that throws keeps nobody from
// the items behind.
template <class Deliver>
void DeliverItems(const inside::ItemRow& row, Deliver&& deliver) {
    for (inside::ItemRow rest = row; rest.size > 0;)
        inside::TakeItem(rest);
    std::exception_ptr failure;
    for (inside::ItemRow rest = row; rest.size > 0;) {
        const inside::Item item = inside::TakeItem(rest);
        try {
            deliver(item);
        } catch (...) {
            if (!failure)
                failure = std::current_exception();
        }
    }
    if (failure)
        std::rethrow_exception(failure);
}

void RequireBytes(const uint8_t msg[]) {
    if (!msg)
        throw INVALID_ARGUMENT_EXCEPTION("An event packet can't be read: null pointer.");
}

} // namespace

CEventAdapterGEV::CEventAdapterGEV(INodeMap* pNodeMap) : CEventAdapter(pNodeMap) {}
CEventAdapterGEV::~CEventAdapterGEV() = default;
void CEventAdapterGEV::DeliverMessage(const uint8_t msg[], uint32_t numBytes) {
    RequireBytes(msg);
    DeliverItems(inside::FindGevItems(msg, numBytes), [this](const inside::Item& item) {
        DeliverEvent(item.bytes, static_cast<uint32_t>(item.size), item.id);
    });
}

CEventAdapterU3V::CEventAdapterU3V(INodeMap* pNodeMap) : CEventAdapter(pNodeMap) {}
CEventAdapterU3V::~CEventAdapterU3V() = default;
void CEventAdapterU3V::DeliverMessage(const uint8_t msg[], uint32_t numBytes) {
    RequireBytes(msg);
    DeliverItems(inside::FindU3vItems(msg, numBytes), [this](const inside::Item& item) {
        DeliverEvent(item.bytes, static_cast<uint32_t>(item.size), item.id);
    });
}

} // namespace GENAPI_NAMESPACE
