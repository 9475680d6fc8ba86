#pragma once

#include <GenApi/EventAdapter.h>

namespace GENAPI_NAMESPACE {

/// Delivers GigE Vision event packets.
class GENAPI_API CEventAdapterGEV : public CEventAdapter {
public:
    explicit CEventAdapterGEV(INodeMap* pNodeMap = nullptr);
    ~CEventAdapterGEV() override;

    /// Takes a whole EVENT or EVENTDATA packet with all its items, or one bare item, which begins with the
    /// word in front of the event ID; which of the two is seen from the bytes. The port's address 0 is the
    /// first byte of the item. Bytes behind the packet are ignored. InvalidArgumentException when it is
    /// neither; nothing has been delivered then.
    void DeliverMessage(const uint8_t msg[], uint32_t numBytes) override;
};

} // namespace GENAPI_NAMESPACE
