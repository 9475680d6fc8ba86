#pragma once

#include <GenApi/EventAdapter.h>

namespace GENAPI_NAMESPACE {

/// Delivers events whose ID is known from elsewhere.
class GENAPI_API CEventAdapterGeneric : public CEventAdapter {
public:
    explicit CEventAdapterGeneric(INodeMap* pNodeMap = nullptr);
    ~CEventAdapterGeneric() override;

    /// There is no ID in the bytes that this adapter could read: InvalidArgumentException.
    void DeliverMessage(const uint8_t msg[], uint32_t numBytes) override;
    /// `eventID` is hexadecimal digits, with or without 0x; else InvalidArgumentException.
    void DeliverMessage(const uint8_t msg[], uint32_t numBytes, const GENICAM_NAMESPACE::gcstring& eventID);
    void DeliverMessage(const uint8_t msg[], uint32_t numBytes, uint64_t eventID);
};

} // namespace GENAPI_NAMESPACE
