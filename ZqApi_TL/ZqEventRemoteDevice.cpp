#include "ZqApi_TL/ZqEventRemoteDevice.h"

#include <cstring>

#include "ZqApi_TL/EventItem.h"
#include "ZqApi_TL/Teardown.h"
#include "ZqApi_TL/TransportAdapters.h"
#include "ZqSDKCommon/Error.h"

namespace ZqApi {
namespace {

// Camera events must not wait behind acquisition work.
constexpr int PRIORITY = 90;

constexpr const char* UNIT = "ZqApi_TL/ZqEventRemoteDevice";

/// Whether the bytes begin like a whole event packet of GigE Vision or USB3 Vision.
bool IsTransportPacket(const uint8_t* bytes, size_t size) {
    constexpr size_t GVCP_HEADER = 8;
    if (size >= GVCP_HEADER && bytes[0] == 0x42 && bytes[2] == 0x00 && (bytes[3] == 0xC0 || bytes[3] == 0xC2))
        return size - GVCP_HEADER >= static_cast<size_t>(bytes[4] << 8 | bytes[5]);
    constexpr uint8_t U3V_EVENT_PREFIX[] = {0x55, 0x33, 0x56, 0x45};
    return size >= sizeof U3V_EVENT_PREFIX &&
           std::memcmp(bytes, U3V_EVENT_PREFIX, sizeof U3V_EVENT_PREFIX) == 0;
}

/// Digits, with or without 0x.
bool IsHexadecimal(const gcstring& text) {
    const char* digits = text.c_str();
    if (digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X'))
        digits += 2;
    return digits[0] != '\0' && digits[std::strspn(digits, "0123456789abcdefABCDEF")] == '\0';
}

bool IsTransportPacket(const EventItem& value) {
    return value.IsPresent() && IsTransportPacket(value.bytes.get(), value.size);
}

} // namespace

CZqEventRemoteDevice::CZqEventRemoteDevice(CZqGenTLLib* pGenTL, IZqDeviceInside* pDevice, const char* name)
    : CZqEvent(pGenTL, pDevice->GetDeviceHandle(), EVENT_REMOTE_DEVICE, name), m_pIZqDeviceInside(pDevice),
      m_pCEventAdapter(ConvertBadAlloc(UNIT, __LINE__,
                                       [pDevice] {
                                           return MakeEventAdapter(
                                               pDevice->GetIZqDeviceInfo()->GetTLType(),
                                               pDevice->GetRemoteIZqPort()->GetINodeMap());
                                       })),
      m_ItemAdapter(pDevice->GetRemoteIZqPort()->GetINodeMap()) {
    SetPriority(PRIORITY);
}

CZqEventRemoteDevice::~CZqEventRemoteDevice() {
    Teardown teardown;
    teardown.Run([this] { Stop(); });
    teardown.Run([this] { UnregisterEvent(); });
    m_pCEventAdapter.reset();
}

void CZqEventRemoteDevice::OnRcvEvent(void* pBuffer, size_t iSize) {
    const auto* const bytes = static_cast<const uint8_t*>(pBuffer);
    if (!IsTransportPacket(bytes, iSize) && DeliverItem(pBuffer, iSize))
        return;
    m_pCEventAdapter->DeliverMessage(bytes, static_cast<uint32_t>(iSize));
}

bool CZqEventRemoteDevice::DeliverItem(const void* pBuffer, size_t iSize) {
    const EventBlock block{m_pCZqGenTL, UNIT, GetEventHandle(), pBuffer, iSize};
    const EventItem id = TryReadEventItem(block, EVENT_DATA_ID);
    const EventItem value = TryReadEventItem(block, EVENT_DATA_VALUE);
    if (IsTransportPacket(value)) {
        m_pCEventAdapter->DeliverMessage(value.bytes.get(), static_cast<uint32_t>(value.size));
        return true;
    }
    // An event without a payload still invalidates its nodes; the adapter wants an address all the same.
    const uint8_t nothing = 0;
    const uint8_t* const item = value.IsPresent() ? value.bytes.get() : &nothing;
    const auto itemSize = static_cast<uint32_t>(value.size);
    uint64_t number = 0;
    if (id.ReadNumber(number)) {
        m_ItemAdapter.DeliverMessage(item, itemSize, number);
    } else if (const gcstring text = id.Text(); IsHexadecimal(text)) {
        m_ItemAdapter.DeliverMessage(item, itemSize, text);
    } else {
        const EventItem numericId = TryReadEventItem(block, EVENT_DATA_NUMID);
        if (!numericId.ReadNumber(number))
            return false;
        m_ItemAdapter.DeliverMessage(item, itemSize, number);
    }
    return true;
}

} // namespace ZqApi
