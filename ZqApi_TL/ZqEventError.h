#pragma once

#include <cstring>

#include "ZqApi_TL/EventItem.h"
#include "ZqApi_TL/StreamCallbackScope.h"
#include "ZqApi_TL/Teardown.h"
#include "ZqApi_TL/ZqEvent.h"
#include "ZqSDKCommon/Error.h"
#include "ZqSDKCommon/ZqCallbackManager.h"

namespace ZqApi {

/// Turns a module's error events into callbacks on that module's callback manager.
///
/// `TModule` is the module's public interface and `TParam` the error parameter that names it. Neither the
/// module nor the manager is owned.
template <class TModule, class TParam>
class CZqEventError final : public CZqEvent {
public:
    CZqEventError(CZqGenTLLib* pGenTL, EVENTSRC_HANDLE hEventSrc, TModule* pModule,
                  IZqCallbackManager* pCallbackManager, EZqCallbackType_t type, const char* name)
        : CZqEvent(pGenTL, hEventSrc, EVENT_ERROR, name), m_pCallbackManager(pCallbackManager),
          m_pModule(pModule), m_CallbackType(type) {
        ZQ_ASSERT(UNIT, m_pModule != NULL);
        ZQ_ASSERT(UNIT, m_pCallbackManager != NULL);
    }

    ~CZqEventError() override {
        Teardown().Run([this] { Stop(); });
    }

protected:
    void OnRcvEvent(void* pBuffer, size_t iSize) override {
        if (GetEventHandle() == nullptr)
            return;
        const EventBlock block{m_pCZqGenTL, UNIT, GetEventHandle(), pBuffer, iSize};
        const EventItem id = ReadEventItem(block, EVENT_DATA_ID);
        const EventItem value = ReadEventItem(block, EVENT_DATA_VALUE);
        GC_ERROR error = GC_ERR_SUCCESS;
        if (id.size < sizeof(error))
            return;
        std::memcpy(&error, id.bytes.get(), sizeof(error));
        const StreamCallbackScope scope(StreamCallbackScope::StreamOf(m_pModule));
        CZqCallbackParamGenTLError<TModule, TParam> param(m_CallbackType, m_pModule, error, value.Text());
        m_pCallbackManager->RunCallback(&param);
    }

private:
    static constexpr const char* UNIT = "ZqApi_TL/ZqEventError";

    IZqCallbackManager* const m_pCallbackManager;
    TModule* const m_pModule;
    const EZqCallbackType_t m_CallbackType;
};

using CZqEventErrorTL = CZqEventError<IZqSystem, IZqCallbackParamGenTLEventErrorTL>;
using CZqEventErrorIF = CZqEventError<IZqInterface, IZqCallbackParamGenTLEventErrorIF>;
using CZqEventErrorDEV = CZqEventError<IZqDevice, IZqCallbackParamGenTLEventErrorDEV>;
using CZqEventErrorDS = CZqEventError<IZqDataStream, IZqCallbackParamGenTLEventErrorDS>;
using CZqEventErrorSB = CZqEventError<IZqStreamBuffer, IZqCallbackParamGenTLEventErrorSB>;

} // namespace ZqApi
