#pragma once

#include "ZqApi_TL/InsideInterfaces.h"
#include "ZqApi_TL/ZqEvent.h"

namespace ZqApi {

/// Drops cached feature values that the camera declares stale, so that their next read goes to the camera.
class CZqEventFeatureInvalidate final : public CZqEvent {
public:
    CZqEventFeatureInvalidate(CZqGenTLLib* pGenTL, IZqDeviceInside* pDevice, const char* name);
    ~CZqEventFeatureInvalidate() override;

protected:
    void OnRcvEvent(void* pBuffer, size_t iSize) override;

private:
    IZqDeviceInside* const m_pIZqDeviceInside;
};

} // namespace ZqApi
