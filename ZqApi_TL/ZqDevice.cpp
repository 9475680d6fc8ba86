#include "ZqApi_TL/ZqDevice.h"

#include <cassert>

#include "ZqApi_TL/NodeLookup.h"
#include "ZqApi_TL/OptionalEvent.h"
#include "ZqApi_TL/Teardown.h"
#include "ZqApi_TL/ZqDataStream.h"
#include "ZqApi_TL/ZqInterface.h"
#include "ZqGenTLCommon/InfoQuery.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqDevice";

/// The pointer, for nodes that the library can't do without.
template <class T>
T& Dereferenced(int line, T& pointer) {
    if (!pointer.IsValid())
        throw ReportError<GenICam::LogicalErrorException>(UNIT, line, "NULL pointer dereferenced");
    return pointer;
}

} // namespace

CZqDevice::CZqDevice(CZqGenTLLib* pCZqGenTL, IZqInterfaceInside* pIZqInterfaceInside, const char* deviceID,
                     DEVICE_ACCESS_FLAGS accessFlags, DEV_HANDLE hDevice)
    : m_pCZqGenTL(pCZqGenTL), m_pIZqInterfaceInside(pIZqInterfaceInside),
      m_pKeptGenTL((ZQ_ASSERT(UNIT, m_pCZqGenTL != NULL), pCZqGenTL->shared_from_this())),
      m_DeviceID(deviceID), m_AccessFlags(accessFlags), m_hDevice(hDevice), m_DeviceInfo(pCZqGenTL, hDevice) {
    ZQ_ASSERT(UNIT, m_pIZqInterfaceInside != NULL);
    try {
        Construct();
    } catch (...) {
        // The creator still holds the handle and closes it.
        Teardown().Run([this] { DeleteInsideObjects(); });
        throw;
    }
}

void CZqDevice::Construct() {
    m_pDeviceLostEvent = std::make_shared<CEventObject>(nullptr, true, false, nullptr);
    m_pStreamToken = std::make_shared<char>();
    UpdateDataStreamList();
    m_pLocalPort =
        std::make_unique<CZqPort>(m_pCZqGenTL, m_hDevice, GenApi::RW, gcstring("LocalDevice_") + m_DeviceID);
    CreateRemotePort();
    CreateEvents();
    m_pRemotePort->GetINodeMap();
    SelectEndianessMechanism();
    RegisterDeviceLostEvent();
    m_pIZqInterfaceInside->AddRef();
    m_bHoldsInterface = true;
}

void CZqDevice::UpdateDataStreamList() {
    if (m_pCZqGenTL->DevGetNumDataStreams == nullptr || m_pCZqGenTL->DevGetDataStreamID == nullptr)
        return;
    m_DataStreamIDs.clear();
    uint32_t count = 0;
    const GC_ERROR result = CallProducer(m_pCZqGenTL->DevGetNumDataStreams, m_hDevice, &count);
    if (result != GC_ERR_SUCCESS)
        throw ProducerError(m_pCZqGenTL, UNIT, __LINE__, result, "DevGetNumDataStreams",
                            "%d = DevGetNumDataStreams(0x%p, 0x%p)", result, m_hDevice, &count);
    // Kept: the second call is logged without blanks around the equals sign.
    const QuerySite site{m_pCZqGenTL, UNIT, __LINE__, "DevGetDataStreamID",
                         "%d = DevGetDataStreamID(0x%p, %u, 0x%p, 0x%p)"};
    for (uint32_t index = 0; index < count; ++index)
        m_DataStreamIDs.push_back(QueryIdentifier(site, "%d=DevGetDataStreamID(0x%p, %u, 0x%p, 0x%p)",
                                                  m_pCZqGenTL->DevGetDataStreamID, m_hDevice, index));
}

void CZqDevice::CreateRemotePort() {
    PORT_HANDLE hRemotePort = nullptr;
    const GC_ERROR result =
        RequireHandle(CallProducer(m_pCZqGenTL->DevGetPort, m_hDevice, &hRemotePort), hRemotePort);
    if (result != GC_ERR_SUCCESS)
        throw ProducerError(m_pCZqGenTL, UNIT, __LINE__, result, "DevGetPort", "%d = DevGetPort(0x%p, 0x%p)",
                            result, m_hDevice, &hRemotePort);
    const bool writable = m_AccessFlags == DEVICE_ACCESS_CONTROL || m_AccessFlags == DEVICE_ACCESS_EXCLUSIVE;
    m_pRemotePort = std::make_unique<CZqPort>(m_pCZqGenTL, hRemotePort, writable ? GenApi::RW : GenApi::RO,
                                              gcstring("RemoteDevice_") + m_DeviceID);
}

void CZqDevice::CreateEvents() {
    m_pErrorEvent = MakeEventIfImplemented<CZqEventErrorDEV>(
        m_pCZqGenTL, m_hDevice, static_cast<IZqDevice*>(this), &m_CallbackManager,
        ZqCallbackType_GenTLEventErrorDEV, "ZqApi_TL_EventError_DEV");
    m_pFeatureInvalidateEvent = MakeEventIfImplemented<CZqEventFeatureInvalidate>(
        m_pCZqGenTL, this, "ZqApi_TL_EventFeatureInvalidate");
    m_pFeatureChangeEvent =
        MakeEventIfImplemented<CZqEventFeatureChange>(m_pCZqGenTL, this, "ZqApi_TL_EventFeatureChange");
    m_pRemoteDeviceEvent =
        MakeEventIfImplemented<CZqEventRemoteDevice>(m_pCZqGenTL, this, "ZqApi_TL_EventRemoteDevice");
    m_pModuleEvent =
        MakeEventIfPossible<CZqEventModule>(m_pCZqGenTL, m_pLocalPort.get(), "ZqApi_TL_EventModule");
}

CZqDevice::~CZqDevice() {
    // An application that releases a device before its streams breaks the contract; say so where it is
    // tested.
    assert(m_pStreamToken.use_count() == 1 && "a stream of the device is still open");
    Teardown().Run([this] { DeleteInsideObjects(); });
    if (m_hDevice != nullptr)
        CallProducer(m_pCZqGenTL->DevClose, m_hDevice);
    m_hDevice = nullptr;
    if (m_bHoldsInterface)
        m_pIZqInterfaceInside->Release();
}

void* CZqDevice::RegisterCallback(IZqCallback* pCallback) {
    return m_CallbackManager.RegisterCallback(pCallback);
}

void CZqDevice::DeregisterCallback(void* hCallback) {
    m_CallbackManager.DeregisterCallback(hCallback);
}

IZqInterface* CZqDevice::GetIZqInterface() {
    return m_pIZqInterfaceInside;
}

IZqPort* CZqDevice::GetLocalIZqPort() {
    return m_pLocalPort.get();
}

IZqDeviceInfo* CZqDevice::GetIZqDeviceInfo() const {
    return &m_DeviceInfo;
}

IZqPort* CZqDevice::GetRemoteIZqPort() {
    return m_pRemotePort.get();
}

size_t CZqDevice::GetDataStreamCount() const {
    return m_DataStreamIDs.size();
}

IZqDataStreamReleasable* CZqDevice::CreateIZqDataStream(size_t nIndex, IZqAllocator* pAllocator) {
    CheckIndex(UNIT, __LINE__, "nIndex", nIndex, m_DataStreamIDs.size());
    DS_HANDLE hDataStream = nullptr;
    const gcstring& id = m_DataStreamIDs[nIndex];
    const GC_ERROR result = RequireHandle(
        CallProducer(m_pCZqGenTL->DevOpenDataStream, m_hDevice, id.c_str(), &hDataStream), hDataStream);
    if (result != GC_ERR_SUCCESS)
        throw ProducerError(m_pCZqGenTL, UNIT, __LINE__, result, "DevOpenDataStream",
                            "%d = DevOpenDataStream(0x%p, 0x%p, 0x%p)", result, m_hDevice, id.c_str(),
                            &hDataStream);
    try {
        return ConvertBadAlloc(UNIT, __LINE__,
                               [&] { return new CZqDataStream(m_pCZqGenTL, this, hDataStream, pAllocator); });
    } catch (...) {
        CallProducer(m_pCZqGenTL->DSClose, hDataStream);
        throw;
    }
}

void CZqDevice::SetTLParamsLocked(int64_t value) {
    if (!m_pTLParamsLocked.IsValid())
        m_pTLParamsLocked = m_pRemotePort->GetINodeMap()->GetNode("TLParamsLocked");
    Dereferenced(__LINE__, m_pTLParamsLocked)->SetValue(value);
}

GenApi::CCommandPtr CZqDevice::FindCommand(const char* name) {
    GenApi::CCommandPtr pCommand = FindNode(UNIT, __LINE__, m_pRemotePort->GetINodeMap(), name);
    if (!pCommand.IsValid())
        throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "Node %s not found.", name);
    return pCommand;
}

void CZqDevice::AcquisitionStart() {
    ConvertBadAlloc(UNIT, __LINE__, [this] { StartCamera(); });
}

void CZqDevice::StartCamera() {
    SetTLParamsLocked(1);
    try {
        if (!m_pAcquisitionStart.IsValid())
            m_pAcquisitionStart = FindCommand("AcquisitionStart");
        m_pAcquisitionStart->Execute();
    } catch (...) {
        // A camera that did not start must not stay locked: nobody would unlock it.
        Teardown().Run([this] { SetTLParamsLocked(0); });
        throw;
    }
    m_bAcquisitionStarted = true;
}

void CZqDevice::AcquisitionStop() {
    ConvertBadAlloc(UNIT, __LINE__, [this] { StopCamera(); });
}

void CZqDevice::StopCamera() {
    if (!m_bAcquisitionStarted)
        return;
    m_bAcquisitionStarted = false;
    if (!m_pAcquisitionStop.IsValid())
        m_pAcquisitionStop = FindCommand("AcquisitionStop");
    m_pAcquisitionStop->Execute();
    SetTLParamsLocked(0);
}

bool CZqDevice::IsDeviceLost() {
    return WaitForSingleObject(m_pDeviceLostEvent.get(), 0) == WAIT_OBJECT_0;
}

IZqInterfaceInside* CZqDevice::GetIZqInterfaceInside() {
    return m_pIZqInterfaceInside;
}

DEV_HANDLE CZqDevice::GetDeviceHandle() {
    return m_hDevice;
}

void* CZqDevice::GetDeviceLostEventHandle() {
    return m_pDeviceLostEvent->IsClosing() ? nullptr : m_pDeviceLostEvent.get();
}

bool CZqDevice::IsOnEventThread() const {
    const CWorker* const threads[] = {m_pErrorEvent.get(), m_pFeatureInvalidateEvent.get(),
                                      m_pFeatureChangeEvent.get(), m_pRemoteDeviceEvent.get(),
                                      m_pModuleEvent.get()};
    for (const CWorker* const thread : threads)
        if (thread != nullptr && thread->IsOwnThread())
            return true;
    // Its interface goes with it when it has vanished from the list.
    const auto* const pInterface = dynamic_cast<const CZqInterface*>(m_pIZqInterfaceInside);
    return pInterface != nullptr && pInterface->IsOnEventThread();
}

void CZqDevice::Release() {
    if (IsOnEventThread())
        throw ReportError<GenICam::LogicalErrorException>(
            UNIT, __LINE__, "A device can't be released on an event thread of its own or of its interface.");
    delete this;
}

void CZqDevice::StartEventAcquisitionThread() {
    if (m_pErrorEvent)
        m_pErrorEvent->Start();
    if (m_pFeatureInvalidateEvent)
        m_pFeatureInvalidateEvent->Start();
    if (m_pFeatureChangeEvent)
        m_pFeatureChangeEvent->Start();
    if (m_pRemoteDeviceEvent)
        m_pRemoteDeviceEvent->Start();
    if (m_pModuleEvent)
        m_pModuleEvent->Start();
}

void CZqDevice::StopEventAcquisitionThread() {
    Teardown steps;
    CZqEvent* const events[] = {m_pErrorEvent.get(), m_pFeatureInvalidateEvent.get(),
                                m_pFeatureChangeEvent.get(), m_pRemoteDeviceEvent.get(),
                                m_pModuleEvent.get()};
    for (CZqEvent* const event : events)
        if (event != nullptr)
            steps.Run([event] { event->Stop(); });
    steps.RethrowFirst();
}

void CZqDevice::DeleteInsideObjects() {
    Teardown steps;
    if (m_hDevice != nullptr)
        steps.Run([this] { AcquisitionStop(); });
    steps.Run([this] { StopEventAcquisitionThread(); });
    if (m_hDevice == nullptr)
        return;
    if (m_hDeviceLostCallback != 0)
        steps.Run([this] { GenApi::Deregister(m_hDeviceLostCallback); });
    m_hDeviceLostCallback = 0;
    m_pModuleEvent.reset();
    m_pErrorEvent.reset();
    m_pRemoteDeviceEvent.reset();
    m_pFeatureChangeEvent.reset();
    m_pFeatureInvalidateEvent.reset();
    m_pRemotePort.reset();
    m_pLocalPort.reset();
    if (m_pDeviceLostEvent)
        m_pDeviceLostEvent->SetEvent();
}

} // namespace ZqApi
