#pragma once

#include "ZqApi_TL/ZqEvent.h"

namespace ZqApi {

/// Carries filled buffers from the producer to their data stream, at real-time priority where the system
/// allows it.
///
/// The producer names a buffer by the pointer that was announced with it, so there is no table to look in.
class CZqEventNewBuffer final : public CZqEvent {
public:
    CZqEventNewBuffer(CZqGenTLLib* pGenTL, EVENTSRC_HANDLE hDataStream, const char* name);
    ~CZqEventNewBuffer() override;

protected:
    void OnRcvEvent(void* pBuffer, size_t iSize) override;
};

} // namespace ZqApi
