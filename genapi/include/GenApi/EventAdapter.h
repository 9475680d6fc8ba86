#pragma once

#include <GenApi/INodeMap.h>

namespace GENAPI_NAMESPACE {

/// Brings the events of a device into a node map. Port nodes with the event's ID receive its bytes as their
/// register space, which stays until the next event of that ID; other nodes with the ID become stale. The
/// callbacks of all nodes concerned run before a delivery returns, on the delivering thread. The map must
/// outlive the attachment. One thread at a time per adapter.
class GENAPI_API CEventAdapter {
public:
    explicit CEventAdapter(INodeMap* pNodeMap = nullptr);
    virtual ~CEventAdapter();
    CEventAdapter(const CEventAdapter&) = delete;
    CEventAdapter& operator=(const CEventAdapter&) = delete;

    /// InvalidArgumentException for null or for a map of another implementation.
    virtual void AttachNodeMap(INodeMap* pNodeMap);
    virtual void DetachNodeMap();
    /// Delivers a packet of the transport, which carries its own IDs.
    virtual void DeliverMessage(const uint8_t msg[], uint32_t numBytes) = 0;

protected:
    /// Delivers `numBytes` bytes of one event. Zero bytes: nothing is attached, nodes become stale all the
    /// same. InvalidArgumentException for null bytes; does nothing while no map is attached.
    void DeliverEvent(const uint8_t* pData, uint32_t numBytes, uint64_t eventID);

    INodeMap* m_pNodeMap;
};

} // namespace GENAPI_NAMESPACE
