#pragma once

#include <cstdint>
#include <utility>

#include <ZqApi/Types.h>

namespace ZqApi {

class IZqSystem;
class IZqInterface;
class IZqDevice;
class IZqDataStream;
class IZqStreamBuffer;

/// What happened, and with it which interface the parameter of a callback has.
enum EZqCallbackType_t : int32_t {
    ZqCallbackType_GenTLEventErrorTL = 0,  ///< IZqCallbackParamGenTLEventErrorTL
    ZqCallbackType_GenTLEventErrorIF = 1,  ///< IZqCallbackParamGenTLEventErrorIF
    ZqCallbackType_GenTLEventErrorDEV = 2, ///< IZqCallbackParamGenTLEventErrorDEV
    ZqCallbackType_GenTLEventErrorDS = 3,  ///< IZqCallbackParamGenTLEventErrorDS
    ZqCallbackType_GenTLEventErrorSB = 4,  ///< IZqCallbackParamGenTLEventErrorSB
    ZqCallbackType_GenTLEventNewBuffer = 5 ///< IZqCallbackParamGenTLEventNewBuffer
};

/// What a callback is called with. Valid during the call only.
class IZqCallbackParamBase {
public:
    /// Says to which of the interfaces below the parameter may be cast (static_cast).
    virtual EZqCallbackType_t GetCallbackType() const = 0;

protected:
    ~IZqCallbackParamBase() = default;
};

/// A module's producer reported an error of its own accord.
class IZqCallbackParamGenTLEventError : public IZqCallbackParamBase {
public:
    /// The producer's code, GC_ERR_...
    virtual GC_ERROR GetGCError() const = 0;
    /// The producer's text, possibly empty; copy it to keep it.
    virtual const gcstring& GetDescription() const = 0;

protected:
    ~IZqCallbackParamGenTLEventError() = default;
};

/// An error of a system.
class IZqCallbackParamGenTLEventErrorTL : public IZqCallbackParamGenTLEventError {
public:
    /// The system that the error is of; never null, owned as before.
    virtual IZqSystem* GetIZqSystem() const = 0;

protected:
    ~IZqCallbackParamGenTLEventErrorTL() = default;
};

/// An error of an interface.
class IZqCallbackParamGenTLEventErrorIF : public IZqCallbackParamGenTLEventError {
public:
    /// The interface that the error is of; never null, owned as before.
    virtual IZqInterface* GetIZqInterface() const = 0;

protected:
    ~IZqCallbackParamGenTLEventErrorIF() = default;
};

/// An error of a device.
class IZqCallbackParamGenTLEventErrorDEV : public IZqCallbackParamGenTLEventError {
public:
    /// The device that the error is of; never null, owned as before.
    virtual IZqDevice* GetIZqDevice() const = 0;

protected:
    ~IZqCallbackParamGenTLEventErrorDEV() = default;
};

/// An error of a data stream.
class IZqCallbackParamGenTLEventErrorDS : public IZqCallbackParamGenTLEventError {
public:
    /// The data stream that the error is of; never null, owned as before.
    virtual IZqDataStream* GetIZqDataStream() const = 0;

protected:
    ~IZqCallbackParamGenTLEventErrorDS() = default;
};

/// An error of a stream buffer.
class IZqCallbackParamGenTLEventErrorSB : public IZqCallbackParamGenTLEventError {
public:
    /// The stream buffer that the error is of; never null, owned as before.
    virtual IZqStreamBuffer* GetIZqStreamBuffer() const = 0;

protected:
    ~IZqCallbackParamGenTLEventErrorSB() = default;
};

/// A buffer was delivered; fetch it with RetrieveBuffer(0, ZqTimeoutHandling_ReturnNull), which may find that
/// another thread was faster.
class IZqCallbackParamGenTLEventNewBuffer : public IZqCallbackParamBase {
public:
    /// The data stream that has the buffer; never null, owned as before.
    virtual IZqDataStream* GetIZqDataStream() const = 0;

protected:
    ~IZqCallbackParamGenTLEventNewBuffer() = default;
};

/// A callback object, implemented by the application (or made by MakeCallback).
///
/// From registration on it belongs to the module, which calls Destroy once per registration when it is
/// deregistered or the module goes.
class IZqCallback {
public:
    /// Called on one of the module's event threads for every event; callbacks of one module never run at the
    /// same time. Must not let an exception out, nor end its thread (pthread_exit): either ends
    /// the process. May register and deregister on its
    /// module, itself included, but not stop or release it.
    virtual void Invoke(IZqCallbackParamBase* pParam) = 0;
    /// The module gives the object up; must not throw.
    virtual void Destroy() = 0;

protected:
    ~IZqCallback() = default;
};

/// What callbacks are registered on: every module. Any thread.
class IZqRegisterCallback {
public:
    /// Registers an object (again, if it already is: it then runs once per registration) and returns the
    /// handle that deregisters it. The order of several callbacks is not defined. One registered from inside
    /// a callback runs from the next event on. Throws GenICam::BadAllocException.
    virtual void* RegisterCallback(IZqCallback* pCallback) = 0;
    /// Ends a registration and calls the object's Destroy, after its Invoke has returned when called from
    /// inside it. Waits for callbacks of the module that run on another thread. Throws
    /// GenICam::InvalidArgumentException "hCallback is invalid." for a handle that is not registered.
    virtual void DeregisterCallback(void* hCallback) = 0;

protected:
    ~IZqRegisterCallback() = default;
};

/// The object behind MakeCallback: owns a copy of the function and deletes itself when given up.
template <class Function>
class CZqFunctionCallback final : public IZqCallback {
public:
    explicit CZqFunctionCallback(Function function) : m_Function(std::move(function)) {}
    void Invoke(IZqCallbackParamBase* pParam) override { m_Function(pParam); }
    void Destroy() override { delete this; }

private:
    ~CZqFunctionCallback() = default;

    Function m_Function;
};

/// Makes a callback object from anything callable with an `IZqCallbackParamBase*`. Register it at once, and
/// once only: until then nobody owns it, and it dies with its first registration.
template <class Function>
IZqCallback* MakeCallback(Function function) {
    return new CZqFunctionCallback<Function>(std::move(function));
}

} // namespace ZqApi
