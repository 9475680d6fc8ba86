#pragma once

#include <GenApi/EventAdapter.h>

namespace GENAPI_NAMESPACE {

/// Delivers USB3 Vision event packets.
class GENAPI_API CEventAdapterU3V : public CEventAdapter {
public:
    explicit CEventAdapterU3V(INodeMap* pNodeMap = nullptr);
    ~CEventAdapterU3V() override;

    /// Takes a whole event packet with all its items, or one bare item, which begins with the word in front
    /// of the event ID; which of the two is seen from the bytes. The port's address 0 is the first byte of
    /// the item. Bytes behind the packet are ignored. InvalidArgumentException when it is neither; nothing
    /// has been delivered then.
    void DeliverMessage(const uint8_t msg[], uint32_t numBytes) override;
};

} // namespace GENAPI_NAMESPACE
