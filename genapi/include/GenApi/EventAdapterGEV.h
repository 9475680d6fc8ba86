#pragma once

#include <GenApi/EventAdapter.h>

namespace GENAPI_NAMESPACE {

/// Delivers GigE Vision event packets.
class GENAPI_API CEventAdapterGEV : public CEventAdapter {
public:
    explicit CEventAdapterGEV(INodeMap* pNodeMap = nullptr);
    ~CEventAdapterGEV() override;

    /// Not implemented: RuntimeException.
    void DeliverMessage(const uint8_t msg[], uint32_t numBytes) override;
};

} // namespace GENAPI_NAMESPACE
