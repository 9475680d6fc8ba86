#pragma once

#include <ZqApi/Callback.h>

namespace ZqApi {

/// The objects behind the callback parameters; built on the event thread's stack for one run of the
/// callbacks.

template <class TParam>
class CZqCallbackParamBase : public TParam {
public:
    EZqCallbackType_t GetCallbackType() const override { return m_CallbackType; }
    virtual ~CZqCallbackParamBase() = default;

protected:
    explicit CZqCallbackParamBase(EZqCallbackType_t type) : m_CallbackType(type) {}

private:
    const EZqCallbackType_t m_CallbackType;
};

/// Holds the module and answers the one getter of `TParam` that asks for it.
template <class TModule, class TParam>
class CZqCallbackParamModule;

#define ZQ_CALLBACK_PARAM_MODULE(TModule, GetTModule)                                                        \
    template <class TParam>                                                                                  \
    class CZqCallbackParamModule<TModule, TParam> : public CZqCallbackParamBase<TParam> {                    \
    public:                                                                                                  \
        TModule* GetTModule() const override { return m_pModule; }                                           \
                                                                                                             \
    protected:                                                                                               \
        CZqCallbackParamModule(EZqCallbackType_t type, TModule* pModule)                                     \
            : CZqCallbackParamBase<TParam>(type), m_pModule(pModule) {}                                      \
                                                                                                             \
    private:                                                                                                 \
        TModule* const m_pModule;                                                                            \
    }

ZQ_CALLBACK_PARAM_MODULE(IZqSystem, GetIZqSystem);
ZQ_CALLBACK_PARAM_MODULE(IZqInterface, GetIZqInterface);
ZQ_CALLBACK_PARAM_MODULE(IZqDevice, GetIZqDevice);
ZQ_CALLBACK_PARAM_MODULE(IZqDataStream, GetIZqDataStream);
ZQ_CALLBACK_PARAM_MODULE(IZqStreamBuffer, GetIZqStreamBuffer);
#undef ZQ_CALLBACK_PARAM_MODULE

/// A module's error event.
template <class TModule, class TParam>
class CZqCallbackParamGenTLError final : public CZqCallbackParamModule<TModule, TParam> {
public:
    CZqCallbackParamGenTLError(EZqCallbackType_t type, TModule* pModule, GC_ERROR error,
                               const gcstring& description)
        : CZqCallbackParamModule<TModule, TParam>(type, pModule), m_Error(error), m_Description(description) {
    }

    GC_ERROR GetGCError() const override { return m_Error; }
    const gcstring& GetDescription() const override { return m_Description; }

private:
    const GC_ERROR m_Error;
    const gcstring m_Description;
};

/// A delivered buffer.
class CZqCallbackParamNewBuffer final
    : public CZqCallbackParamModule<IZqDataStream, IZqCallbackParamGenTLEventNewBuffer> {
public:
    explicit CZqCallbackParamNewBuffer(IZqDataStream* pDataStream)
        : CZqCallbackParamModule(ZqCallbackType_GenTLEventNewBuffer, pDataStream) {}
};

} // namespace ZqApi
