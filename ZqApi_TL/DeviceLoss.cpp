#include <cstdint>

#include "ZqApi_TL/ZqDevice.h"

// How a device notices that its camera is gone: the producer's event, and a probe when it is opened.

namespace ZqApi {
namespace {

/// Sets an enumeration to one of its entries; false when either is missing.
bool SelectEntry(INodeMap* pNodeMap, const char* enumeration, const char* entry) {
    GenApi::CEnumerationPtr pEnumeration = pNodeMap->GetNode(enumeration);
    if (!pEnumeration.IsValid())
        return false;
    GenApi::CEnumEntryPtr pEntry = pEnumeration->GetEntryByName(entry);
    if (!pEntry.IsValid())
        return false;
    pEnumeration->SetIntValue(pEntry->GetValue());
    return true;
}

} // namespace

void CZqDevice::SelectStandardEndianess() {
    // The standard wants the producer told, before the camera's registers are used, that register values are
    // taken in the byte order of the description. Only GigE Vision producers have the feature.
    try {
        GenApi::CEnumerationPtr pMechanism = m_pLocalPort->GetINodeMap()->GetNode("DeviceEndianessMechanism");
        if (pMechanism.IsValid() && pMechanism->ToString() != "Standard")
            pMechanism->FromString("Standard");
    } catch (const GenICam::GenericException&) {
        // Best effort: most producers need nothing.
    }
}

void CZqDevice::RequestDeviceLostNotification(INodeMap* pLocalNodeMap) {
    try {
        if (SelectEntry(pLocalNodeMap, "EventSelector", "DeviceLost"))
            SelectEntry(pLocalNodeMap, "EventNotification", "On");
    } catch (const GenICam::GenericException&) {
        // A producer may send the event without being asked.
    }
}

void CZqDevice::RegisterDeviceLostEvent() {
    INodeMap* pLocalNodeMap = nullptr;
    try {
        pLocalNodeMap = m_pLocalPort->GetINodeMap();
    } catch (const GenICam::BadAllocException&) {
        throw;
    } catch (const GenICam::GenericException&) {
        // Without a local node map there is no such event, and the camera still works.
    }
    if (pLocalNodeMap != nullptr) {
        RequestDeviceLostNotification(pLocalNodeMap);
        try {
            GenApi::INode* const pNode = pLocalNodeMap->GetNode("EventDeviceLost");
            if (pNode != nullptr)
                m_hDeviceLostCallback =
                    GenApi::Register(pNode, *this, &CZqDevice::OnDeviceLost, GenApi::cbPostInsideLock);
        } catch (const GenICam::GenericException&) {
            OnDeviceLost(nullptr);
        }
    }
    ProbeCamera();
}

void CZqDevice::ProbeCamera() {
    GenApi::CPortPtr pPort = m_pRemotePort->GetINodeMap()->GetNode("Device");
    if (!pPort.IsValid())
        return;
    try {
        uint8_t bytes[4];
        pPort->Read(bytes, 0, sizeof(bytes));
    } catch (const GenICam::GenericException&) {
        OnDeviceLost(nullptr);
    }
}

void CZqDevice::OnDeviceLost(GenApi::INode* pNode) {
    // Feature access invalidates nodes too; only the producer's event, on its own thread, means a loss.
    const bool reported = pNode == nullptr || (m_pModuleEvent && m_pModuleEvent->IsOwnThread());
    if (reported)
        m_pDeviceLostEvent->SetEvent();
}

} // namespace ZqApi
