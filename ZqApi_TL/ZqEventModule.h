#pragma once

#include <ZqApi/Types.h>

#include "ZqApi_TL/InsideInterfaces.h"
#include "ZqApi_TL/ZqEvent.h"

namespace ZqApi {

/// Brings a module's own events (a lost device, say) into that module's node map.
///
/// The event nodes are updated and their node callbacks run on this event's thread, inside the node map's
/// lock.
class CZqEventModule final : public CZqEvent {
public:
    /// Attaches to the port's node map, building it if need be; the port outlives the event.
    CZqEventModule(CZqGenTLLib* pGenTL, IZqPortInside* pPort, const char* name);
    ~CZqEventModule() override;

protected:
    void OnRcvEvent(void* pBuffer, size_t iSize) override;

private:
    IZqPortInside* const m_pIZqPortInside;
    GenApi::CEventAdapterGeneric m_EventAdapter;
};

} // namespace ZqApi
