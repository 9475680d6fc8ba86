#include "ZqApi_TL/ZqEventNewBuffer.h"

#include <cstring>

#include "ZqApi_TL/InsideInterfaces.h"
#include "ZqApi_TL/Teardown.h"
#include "ZqSDKCommon/Error.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqEventNewBuffer";
constexpr int PRIORITY = 90;

} // namespace

CZqEventNewBuffer::CZqEventNewBuffer(CZqGenTLLib* pGenTL, EVENTSRC_HANDLE hDataStream, const char* name)
    : CZqEvent(pGenTL, hDataStream, EVENT_NEW_BUFFER, name) {
    ZQ_ASSERT(UNIT, m_pCZqGenTL != NULL);
    SetPriority(PRIORITY);
}

CZqEventNewBuffer::~CZqEventNewBuffer() {
    Teardown().Run([this] { Stop(); });
}

void CZqEventNewBuffer::OnRcvEvent(void* pBuffer, size_t iSize) {
    ZQ_ASSERT(UNIT, sizeof(EVENT_NEW_BUFFER_DATA) <= iSize);
    EVENT_NEW_BUFFER_DATA record;
    std::memcpy(&record, pBuffer, sizeof(record));
    if (record.pUserPointer == nullptr)
        return;
    auto* const pStreamBuffer = static_cast<IZqStreamBufferInside*>(record.pUserPointer);
    pStreamBuffer->GetIZqDataStreamInside()->OnNewBuffer(pStreamBuffer);
}

} // namespace ZqApi
