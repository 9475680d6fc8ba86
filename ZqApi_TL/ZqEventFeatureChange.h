#pragma once

#include "ZqApi_TL/InsideInterfaces.h"
#include "ZqApi_TL/ZqEvent.h"

namespace ZqApi {

/// Sets features of the remote node map to the values that the producer announces.
class CZqEventFeatureChange final : public CZqEvent {
public:
    CZqEventFeatureChange(CZqGenTLLib* pGenTL, IZqDeviceInside* pDevice, const char* name);
    ~CZqEventFeatureChange() override;

protected:
    void OnRcvEvent(void* pBuffer, size_t iSize) override;

private:
    IZqDeviceInside* const m_pIZqDeviceInside;
};

} // namespace ZqApi
