#include <GenApi/Synch.h>

namespace GENAPI_NAMESPACE {

CLock::CLock() = default;
CLock::~CLock() = default;
bool CLock::TryLock() {
    return m_mutex.try_lock();
}
void CLock::Lock() {
    m_mutex.lock();
}
void CLock::Unlock() {
    m_mutex.unlock();
}

} // namespace GENAPI_NAMESPACE
