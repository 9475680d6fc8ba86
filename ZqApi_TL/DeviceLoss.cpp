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

void CZqDevice::SelectEndianessMechanism() {
    // A GigE Vision producer has to know, before the camera's registers are used, in which byte order their
    // values are taken: descriptions of schema 1.0 were written for the order of the transport, later ones
    // name it themselves.
    try {
        GenApi::CEnumerationPtr pMechanism = m_pLocalPort->GetINodeMap()->GetNode("DeviceEndianessMechanism");
        GenApi::CDeviceInfoPtr pDescription = m_pRemotePort->GetINodeMap();
        if (!pMechanism.IsValid() || !pDescription.IsValid())
            return;
        GenApi::Version_t schema{};
        pDescription->GetSchemaVersion(schema);
        const gcstring mechanism = schema.Major == 1 && schema.Minor == 0 ? "Legacy" : "Standard";
        if (pMechanism->ToString() != mechanism)
            pMechanism->FromString(mechanism);
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
