#include "ZqSDKCommon/ZqCallbackManager.h"

#include <memory>

#include "ZqSDKCommon/Error.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqSDKCommon/ZqCallbackManager";

} // namespace

CZqCallbackManager::~CZqCallbackManager() {
    while (!m_Entries.empty()) {
        CZqCallbackEntry* const entry = m_Entries.begin()->second;
        m_Entries.erase(m_Entries.begin());
        Dispose(entry);
    }
}

void* CZqCallbackManager::RegisterCallback(IZqCallback* pCallback) {
    return ConvertBadAlloc(UNIT, __LINE__, [&]() -> void* {
        const GenApi::AutoLock lock(m_Lock);
        auto entry = std::make_unique<CZqCallbackEntry>(pCallback, m_LastNumber + 1);
        m_Entries.emplace(entry.get(), entry.get());
        ++m_LastNumber;
        return entry.release();
    });
}

void CZqCallbackManager::DeregisterCallback(void* hCallback) {
    const GenApi::AutoLock lock(m_Lock);
    const auto found = m_Entries.find(hCallback);
    if (found == m_Entries.end())
        throw ReportError<GenICam::InvalidArgumentException>(UNIT, __LINE__, "hCallback is invalid.");
    CZqCallbackEntry* const entry = found->second;
    m_Entries.erase(found);
    entry->m_bDeregistered = true;
    // Inside its own Invoke the object is still in use; the run gives it up.
    if (entry->m_Invocations == 0)
        Dispose(entry);
}

void CZqCallbackManager::RunCallback(IZqCallbackParamBase* pParam) noexcept {
    const GenApi::AutoLock lock(m_Lock);
    const pthread_t outer = m_Runner.exchange(pthread_self());
    // Neither an iterator nor a count survives what a callback may do to the registry; a handle's place does.
    const uint64_t lastNumber = m_LastNumber;
    for (auto at = m_Entries.begin(); at != m_Entries.end();) {
        void* const handle = at->first;
        if (at->second->m_pCallback != nullptr && at->second->m_Number <= lastNumber)
            Invoke(at->second, pParam);
        at = m_Entries.upper_bound(handle);
    }
    m_Runner.store(outer);
}

bool CZqCallbackManager::IsInsideRunCallback() const {
    return pthread_equal(m_Runner.load(), pthread_self()) != 0;
}

void CZqCallbackManager::Invoke(CZqCallbackEntry* entry, IZqCallbackParamBase* pParam) {
    ++entry->m_Invocations;
    entry->m_pCallback->Invoke(pParam);
    --entry->m_Invocations;
    if (entry->m_bDeregistered && entry->m_Invocations == 0)
        Dispose(entry);
}

void CZqCallbackManager::Dispose(CZqCallbackEntry* entry) noexcept {
    if (entry->m_pCallback != nullptr)
        entry->m_pCallback->Destroy();
    delete entry;
}

} // namespace ZqApi
