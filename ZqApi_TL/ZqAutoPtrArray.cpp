#include <array>
#include <stdexcept>

#include <ZqApi/PtrArray.h>

#include "ZqApi_TL/InsideInterfaces.h"
#include "ZqApi_TL/Remaining.h"
#include "ZqApi_TL/Teardown.h"
#include "ZqSDKCommon/Error.h"
#include "ZqSDKCommon/EventObject.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqAutoPtrArray";

/// The events of all streams of a retrieval, which few enough streams get without an allocation.
class FilledEvents {
public:
    explicit FilledEvents(size_t count) {
        if (count > m_Few.size())
            ConvertBadAlloc(UNIT, __LINE__, [&] { m_Many.resize(count); });
    }
    CEventObject** Get() { return m_Many.empty() ? m_Few.data() : m_Many.data(); }
    CEventObject*& operator[](size_t index) { return Get()[index]; }

private:
    std::array<CEventObject*, 8> m_Few{};
    std::vector<CEventObject*> m_Many;
};

} // namespace

template <class T, class UT>
CZqAutoPtrArray<T, UT>::CZqAutoPtrArray()
    : m_pEntries(ConvertBadAlloc(UNIT, __LINE__, [] { return new std::vector<T*>; })) {}

template <class T, class UT>
CZqAutoPtrArray<T, UT>::~CZqAutoPtrArray() {
    Teardown steps;
    for (T* const p : *m_pEntries)
        if (p != nullptr)
            steps.Run([p] { p->Release(); });
    delete m_pEntries;
}

template <class T, class UT>
size_t CZqAutoPtrArray<T, UT>::Register(T* p) {
    try {
        m_pEntries->push_back(p);
    } catch (const std::length_error& failure) {
        throw ReportError<GenICam::InvalidArgumentException>(UNIT, __LINE__, "%s", failure.what());
    } catch (const std::bad_alloc& failure) {
        throw ReportError<GenICam::BadAllocException>(UNIT, __LINE__, "%s", failure.what());
    } catch (const std::exception& failure) {
        throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "%s", failure.what());
    }
    return m_pEntries->size() - 1;
}

template <class T, class UT>
T* CZqAutoPtrArray<T, UT>::Deregister(size_t nIndex) {
    CheckIndex(UNIT, __LINE__, "nIndex", static_cast<int64_t>(nIndex), static_cast<int64_t>(GetSize()));
    T* const p = (*m_pEntries)[nIndex];
    m_pEntries->erase(m_pEntries->begin() + static_cast<std::ptrdiff_t>(nIndex));
    return p;
}

template <class T, class UT>
size_t CZqAutoPtrArray<T, UT>::GetSize() const {
    return m_pEntries->size();
}

template <class T, class UT>
UT* CZqAutoPtrArray<T, UT>::operator[](size_t nIndex) const {
    CheckIndex(UNIT, __LINE__, "nIndex", static_cast<int64_t>(nIndex), static_cast<int64_t>(GetSize()));
    UT* const pUT = (*m_pEntries)[nIndex];
    ZQ_ASSERT(UNIT, (pUT) != NULL);
    return pUT;
}

template <class T, class UT>
void CZqAutoPtrArray<T, UT>::ReleaseAll() {
    while (GetSize() != 0) {
        T* const p = Deregister(0);
        if (p == nullptr)
            continue;
        try {
            p->Release();
        } catch (...) {
            // Refused, inside one of its callbacks say: it is still there and still belongs to the array. The
            // room for it is there as well.
            m_pEntries->insert(m_pEntries->begin(), p);
            throw;
        }
    }
}

template class CZqAutoPtrArray<IZqSystemReleasable, IZqSystem>;
template class CZqAutoPtrArray<IZqDeviceReleasable, IZqDevice>;
template class CZqAutoPtrArray<IZqDataStreamReleasable, IZqDataStream>;

void CIZqSystemPtrArray::Release() {
    ReleaseAll();
}

IZqDeviceReleasable* CIZqSystemPtrArray::CreateFirstIZqDevice(DEVICE_ACCESS_FLAGS eDeviceAccessFlags) {
    for (size_t index = 0; index < GetSize(); ++index) {
        IZqSystem& system = *(*this)[index];
        try {
            return system.CreateFirstIZqDevice(eDeviceAccessFlags);
        } catch (const std::exception&) {
            // Another system may have one.
        }
    }
    throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "There is no available device.");
}

void CIZqDevicePtrArray::Release() {
    ReleaseAll();
}

void CIZqDevicePtrArray::AcquisitionStart() {
    for (size_t index = 0; index < GetSize(); ++index)
        (*this)[index]->AcquisitionStart();
}

void CIZqDevicePtrArray::AcquisitionStop() {
    for (size_t index = 0; index < GetSize(); ++index)
        (*this)[index]->AcquisitionStop();
}

void CIZqDataStreamPtrArray::Release() {
    ReleaseAll();
}

void CIZqDataStreamPtrArray::StartAcquisition(uint64_t count, ACQ_START_FLAGS flags) {
    for (size_t index = 0; index < GetSize(); ++index)
        (*this)[index]->StartAcquisition(count, flags);
}

void CIZqDataStreamPtrArray::StopAcquisition(ACQ_STOP_FLAGS flags) {
    for (size_t index = 0; index < GetSize(); ++index)
        (*this)[index]->StopAcquisition(flags);
}

bool CIZqDataStreamPtrArray::IsGrabbingAll() {
    for (size_t index = 0; index < GetSize(); ++index)
        if (!(*this)[index]->IsGrabbing())
            return false;
    return true;
}

bool CIZqDataStreamPtrArray::IsGrabbingAny() {
    for (size_t index = 0; index < GetSize(); ++index)
        if ((*this)[index]->IsGrabbing())
            return true;
    return false;
}

IZqStreamBufferReleasable* CIZqDataStreamPtrArray::RetrieveBuffer(uint32_t timeoutMs,
                                                                  EZqTimeoutHandling_t handling) {
    FilledEvents events(GetSize());
    for (size_t index = 0; index < GetSize(); ++index) {
        auto* const pIZqDataStreamInside = dynamic_cast<IZqDataStreamInside*>((*this)[index]);
        ZQ_ASSERT(UNIT, (pIZqDataStreamInside) != NULL);
        events[index] =
            static_cast<CEventObject*>(pIZqDataStreamInside->GetIsFilledStreamBufferEventHandle());
    }
    const Remaining remaining(timeoutMs);
    for (;;) {
        const WaitResult result = WaitMultiple(GetSize(), events.Get(), false, remaining.Milliseconds());
        if (result.kind == WaitResult::Signalled)
            return (*this)[result.index]->RetrieveBuffer(0, handling);
        // A clock set forward ends a wait before its time.
        if (result.kind == WaitResult::TimedOut && remaining.Milliseconds() != 0)
            continue;
        if (handling != ZqTimeoutHandling_ThrowException)
            return nullptr;
        throw ReportError<GenICam::TimeoutException>(
            UNIT, __LINE__,
            "A timeout occurred during the processing of CIZqDataStreamPtrArray::RetrieveBuffer(%u, %u)",
            timeoutMs, 1u);
    }
}

} // namespace ZqApi
