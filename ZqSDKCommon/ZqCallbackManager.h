#pragma once

#include <atomic>
#include <cstdint>
#include <map>

#include <pthread.h>

#include <GenApi/Synch.h>
#include <ZqApi/Callback.h>

#include "ZqSDKCommon/ZqCallbackParam.h"

namespace ZqApi {

/// A registry of callbacks that can also run them.
class IZqCallbackManager : public IZqRegisterCallback {
public:
    virtual void RunCallback(IZqCallbackParamBase* pParam) noexcept = 0;

protected:
    ~IZqCallbackManager() = default;
};

/// One registration; its address is the handle. Never touches the callback itself.
class CZqCallbackEntry {
public:
    CZqCallbackEntry(IZqCallback* pCallback, uint64_t number) : m_pCallback(pCallback), m_Number(number) {}
    virtual ~CZqCallbackEntry() = default;

private:
    friend class CZqCallbackManager;

    IZqCallback* const m_pCallback;
    const uint64_t m_Number;
    // How many runs are inside Invoke: more than one when a callback runs the callbacks again.
    uint32_t m_Invocations = 0;
    bool m_bDeregistered = false;
};

/// The callbacks of one module. Any thread; the lock is recursive, so a callback may register and deregister
/// on its own module, itself included, while other threads wait.
class CZqCallbackManager final : public IZqCallbackManager {
public:
    CZqCallbackManager() = default;
    /// Gives every callback up that is still registered.
    ~CZqCallbackManager();
    CZqCallbackManager(const CZqCallbackManager&) = delete;
    CZqCallbackManager& operator=(const CZqCallbackManager&) = delete;

    /// A null callback gets a handle like any other and is never called.
    void* RegisterCallback(IZqCallback* pCallback) override;
    void DeregisterCallback(void* hCallback) override;
    /// Calls those that were registered when the run began, by ascending handle. An exception that escapes a
    /// callback ends the process. Allocates nothing.
    void RunCallback(IZqCallbackParamBase* pParam) noexcept override;

    /// True inside a callback that this manager runs, on the thread that runs it. What joins an event thread
    /// must not be done there: that thread may be waiting for this manager's lock.
    bool IsInsideRunCallback() const;

private:
    static void Invoke(CZqCallbackEntry* entry, IZqCallbackParamBase* pParam);
    static void Dispose(CZqCallbackEntry* entry) noexcept;

    GenApi::CLock m_Lock;
    std::map<void*, CZqCallbackEntry*> m_Entries;
    uint64_t m_LastNumber = 0;
    std::atomic<pthread_t> m_Runner{0};
};

} // namespace ZqApi
