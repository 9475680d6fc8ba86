#include "ZqSDKCommon/CLockBySemaphore.h"

#include <cerrno>

#include "ZqSDKCommon/Error.h"
#include "ZqSDKCommon/MutexLock.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqSDKCommon/CLockBySemaphore";

CZqLinuxErrorException InitialisationError(int line, int error, const char* functionName,
                                           const char* format) {
    return ConvertBadAlloc(UNIT, line, [&] {
        const std::string text = SystemErrorText(error);
        // The thread functions return their error; the report reads errno.
        errno = error;
        return CZqLinuxErrorExceptionReporter(UNIT, line, KindOf<CZqLinuxErrorException>())
            .Report(error, functionName, format, error, text);
    });
}

} // namespace

CLockBySemaphore::CLockBySemaphore(long max) : max(max), count(max) {
    if (const int error = pthread_mutex_init(&m_sem.mutex, nullptr))
        throw InitialisationError(__LINE__, error, "pthread_mutex_init",
                                  "0 != pthread_mutex_init(&m_sem.mutex) [Error=0x%x %s]");
    if (const int error = pthread_cond_init(&m_sem.condition, nullptr)) {
        pthread_mutex_destroy(&m_sem.mutex);
        throw InitialisationError(__LINE__, error, "pthread_cond_init",
                                  "0 != pthread_cond_init(&m_sem.condition) [Error=0x%x %s]");
    }
}

CLockBySemaphore::~CLockBySemaphore() {
    pthread_mutex_destroy(&m_sem.mutex);
    pthread_cond_destroy(&m_sem.condition);
}

void CLockBySemaphore::mLock(long n) {
    const MutexLock lock(m_sem.mutex);
    for (long round = 0; round < n; ++round) {
        while (max <= count) {
            const int error = pthread_cond_wait(&m_sem.condition, &m_sem.mutex);
            if (error != 0 && error != EINTR)
                break;
        }
    }
    // Kept: one unit, whatever n was.
    ++count;
}

void CLockBySemaphore::mUnlock(long n) {
    if (n < 1 || count < 1)
        return;
    do {
        {
            const MutexLock lock(m_sem.mutex);
            --count;
        }
        pthread_cond_signal(&m_sem.condition);
    } while (--n > 0 && count > 0);
}

} // namespace ZqApi
