#pragma once

#include <GenApi/EventAdapter.h>

namespace GENAPI_NAMESPACE {

/// Delivers USB3 Vision event packets.
class GENAPI_API CEventAdapterU3V : public CEventAdapter {
public:
    explicit CEventAdapterU3V(INodeMap* pNodeMap = nullptr);
    ~CEventAdapterU3V() override;

    /// Not implemented: RuntimeException.
    void DeliverMessage(const uint8_t msg[], uint32_t numBytes) override;
};

} // namespace GENAPI_NAMESPACE
