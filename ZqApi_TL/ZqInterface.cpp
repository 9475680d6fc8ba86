#include "ZqApi_TL/ZqInterface.h"

#include "ZqApi_TL/OptionalEvent.h"
#include "ZqApi_TL/Teardown.h"
#include "ZqApi_TL/ZqDevice.h"
#include "ZqGenTLCommon/InfoQuery.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqInterface";

constexpr uint64_t U3V_DEVICE_LIST_TIMEOUT_MS = 500;

// In the order in which a text is compared with them: an empty text takes the first.
constexpr struct {
    char name[4];
    EZqInterfaceType_t type;
} TL_TYPES[] = {{"u3v", ZqInterfaceType_U3V}, {"gev", ZqInterfaceType_GEV}, {"cxp", ZqInterfaceType_CXP}};

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool IsPrefix(const gcstring& text, const char (&name)[4]) {
    if (text.length() > 3)
        return false;
    for (size_t i = 0; i < text.length(); ++i)
        if (Lower(text.c_str()[i]) != name[i])
            return false;
    return true;
}

} // namespace

EZqInterfaceType_t CZqInterface::TypeOfTLType(const gcstring& tlType) {
    for (const auto& row : TL_TYPES)
        if (IsPrefix(tlType, row.name))
            return row.type;
    return ZqInterfaceType_Unknown;
}

CZqInterface::CZqInterface(CZqGenTLLib* pCZqGenTL, IZqSystemInside* pIZqSystemInside, const gcstring& id,
                           IF_HANDLE hIF)
    : m_pCZqGenTL(pCZqGenTL), m_pIZqSystemInside(pIZqSystemInside),
      m_pKeptGenTL((ZQ_ASSERT(UNIT, m_pCZqGenTL != NULL), pCZqGenTL->shared_from_this())), m_hIF(hIF),
      m_InterfaceInfo(pCZqGenTL, hIF) {
    ZQ_ASSERT(UNIT, m_pIZqSystemInside != NULL);
    try {
        ConvertBadAlloc(UNIT, __LINE__, [&] { Construct(id); });
    } catch (...) {
        // The creator still holds the handle and closes it.
        m_hIF = nullptr;
        Teardown().Run([this] { DeleteInsideObjects(); });
        throw;
    }
}

void CZqInterface::Construct(const gcstring& id) {
    if (GetZqInterfaceType() == ZqInterfaceType_U3V &&
        m_pIZqSystemInside->GetZqSystemVendor() == ZqSystemVendor_Default)
        m_DeviceListTimeoutMs = U3V_DEVICE_LIST_TIMEOUT_MS;
    m_pCZqPort = std::make_unique<CZqPort>(m_pCZqGenTL, m_hIF, GenApi::RW, gcstring("Interface_") + id);
    m_pErrorEvent = MakeEventIfImplemented<CZqEventErrorIF>(
        m_pCZqGenTL, m_hIF, static_cast<IZqInterface*>(this), &m_CallbackManager,
        ZqCallbackType_GenTLEventErrorIF, "ZqApi_TL_EventError_IF");
    m_pModuleEvent =
        MakeEventIfPossible<CZqEventModule>(m_pCZqGenTL, m_pCZqPort.get(), "ZqApi_TL_EventModule");
    UpdateDeviceList();
}

CZqInterface::~CZqInterface() {
    Teardown().Run([this] { DeleteInsideObjects(); });
}

void* CZqInterface::RegisterCallback(IZqCallback* pCallback) {
    return m_CallbackManager.RegisterCallback(pCallback);
}

void CZqInterface::DeregisterCallback(void* hCallback) {
    m_CallbackManager.DeregisterCallback(hCallback);
}

IZqSystem* CZqInterface::GetIZqSystem() {
    return m_pIZqSystemInside;
}

IZqPort* CZqInterface::GetIZqPort() {
    return m_pCZqPort.get();
}

const IZqInterfaceInfo* CZqInterface::GetIZqInterfaceInfo() {
    return &m_InterfaceInfo;
}

uint64_t CZqInterface::GetUpdateDeviceListTimeout() {
    return m_DeviceListTimeoutMs;
}

void CZqInterface::SetUpdateDeviceListTimeout(uint64_t timeoutMs) {
    m_DeviceListTimeoutMs = timeoutMs;
}

bool CZqInterface::UpdateDeviceList() {
    return ConvertBadAlloc(UNIT, __LINE__, [this] { return UpdateList(); });
}

bool CZqInterface::UpdateList() {
    const std::lock_guard<std::mutex> update(m_UpdateMutex);
    const uint64_t timeoutMs = m_DeviceListTimeoutMs;
    uint8_t changed = 0;
    GC_ERROR result =
        CallProducer(m_pCZqGenTL->IFUpdateDeviceList, m_hIF, reinterpret_cast<bool8_t*>(&changed), timeoutMs);
    if (result != GC_ERR_SUCCESS)
        throw ProducerError(m_pCZqGenTL, UNIT, __LINE__, result, "IFUpdateDeviceList",
                            "%d = IFUpdateDeviceList(0x%p, 0x%p, %I64u)", result, m_hIF, &changed, timeoutMs);
    if (m_pIZqSystemInside->GetZqSystemVendor() != ZqSystemVendor_Default && m_bFirstUpdate)
        m_bFirstUpdate = false;
    else if (changed == 0)
        return false;

    const GenApi::AutoLock lock(m_ListLock);
    m_Devices.clear();
    uint32_t count = 0;
    result = CallProducer(m_pCZqGenTL->IFGetNumDevices, m_hIF, &count);
    if (result != GC_ERR_SUCCESS)
        throw ProducerError(m_pCZqGenTL, UNIT, __LINE__, result, "IFGetNumDevices",
                            "%d = IFGetNumDevices(0x%p, 0x%p)", result, m_hIF, &count);
    // Kept: a failing identifier query is reported under the name of the count query.
    const QuerySite site{m_pCZqGenTL, UNIT, __LINE__, "IFGetNumDevices",
                         "%d = IFGetNumDevices(0x%p, %u, 0x%p, 0x%p)"};
    for (uint32_t index = 0; index < count; ++index) {
        const gcstring id = QueryIdentifier(site, site.format, m_pCZqGenTL->IFGetDeviceID, m_hIF, index);
        m_Devices.push_back(std::make_unique<CZqIFDeviceInfo>(m_pCZqGenTL, m_hIF, id));
    }
    return true;
}

uint32_t CZqInterface::GetDeviceCount() {
    const GenApi::AutoLock lock(m_ListLock);
    return static_cast<uint32_t>(m_Devices.size());
}

const IZqDeviceInfo* CZqInterface::GetIZqDeviceInfo(size_t nIndex) {
    const GenApi::AutoLock lock(m_ListLock);
    CheckIndex(UNIT, __LINE__, "nIndex", nIndex, m_Devices.size());
    return m_Devices[nIndex].get();
}

gcstring CZqInterface::DeviceIDAt(size_t nIndex) {
    const GenApi::AutoLock lock(m_ListLock);
    return ConvertBadAlloc(UNIT, __LINE__, [&] { return GetIZqDeviceInfo(nIndex)->GetID(); });
}

bool CZqInterface::IsDeviceAvailable(size_t nIndex, DEVICE_ACCESS_FLAGS eDeviceAccessFlags) {
    CheckMin(UNIT, __LINE__, "eDeviceAccessFlags", eDeviceAccessFlags, DEVICE_ACCESS_READONLY);
    CheckMax(UNIT, __LINE__, "eDeviceAccessFlags", eDeviceAccessFlags, DEVICE_ACCESS_EXCLUSIVE);
    // A record of its own: the list's may go with the next update while the producer is being asked.
    switch (CZqIFDeviceInfo(m_pCZqGenTL, m_hIF, DeviceIDAt(nIndex)).GetAccessStatus()) {
    case DEVICE_ACCESS_STATUS_READWRITE:
        return true;
    case DEVICE_ACCESS_STATUS_READONLY:
        return eDeviceAccessFlags == DEVICE_ACCESS_READONLY;
    default:
        return false;
    }
}

IZqDeviceReleasable* CZqInterface::CreateIZqDevice(size_t nIndex, DEVICE_ACCESS_FLAGS eDeviceAccessFlags) {
    // Opened outside the lock: it takes seconds on a real camera, and callbacks may ask for the list
    // meanwhile.
    return CreateIZqDevice(DeviceIDAt(nIndex), eDeviceAccessFlags);
}

IZqDeviceReleasable* CZqInterface::CreateIZqDevice(const gcstring& id,
                                                   DEVICE_ACCESS_FLAGS eDeviceAccessFlags) {
    DEV_HANDLE hDevice = nullptr;
    const GC_ERROR result = RequireHandle(
        CallProducer(m_pCZqGenTL->IFOpenDevice, m_hIF, id.c_str(), eDeviceAccessFlags, &hDevice), hDevice);
    if (result != GC_ERR_SUCCESS)
        throw ProducerError(m_pCZqGenTL, UNIT, __LINE__, result, "IFOpenDevice",
                            "%d = IFOpenDevice(0x%p, 0x%p, 0x%u, 0x%p)", result, m_hIF, id.c_str(),
                            eDeviceAccessFlags, &hDevice);
    CZqDevice* pDevice = nullptr;
    try {
        pDevice = ConvertBadAlloc(UNIT, __LINE__, [&] {
            return new CZqDevice(m_pCZqGenTL, this, id.c_str(), eDeviceAccessFlags, hDevice);
        });
    } catch (...) {
        CallProducer(m_pCZqGenTL->DevClose, hDevice);
        throw;
    }
    try {
        pDevice->StartEventAcquisitionThread();
    } catch (...) {
        pDevice->Release();
        throw;
    }
    return pDevice;
}

IZqDeviceReleasable* CZqInterface::CreateFirstIZqDevice(DEVICE_ACCESS_FLAGS eDeviceAccessFlags) {
    for (size_t index = 0; index < GetDeviceCount(); ++index) {
        try {
            if (IsDeviceAvailable(index, eDeviceAccessFlags))
                return CreateIZqDevice(index, eDeviceAccessFlags);
        } catch (const GenICam::GenericException&) {
            // The next device may let itself be opened.
        }
    }
    throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "There is no available device.");
}

IZqSystemInside* CZqInterface::GetIZqSystemInside() {
    return m_pIZqSystemInside;
}

IF_HANDLE CZqInterface::GetInterfaceHandle() {
    return m_hIF;
}

EZqInterfaceType_t CZqInterface::GetZqInterfaceType() {
    return TypeOfTLType(m_InterfaceInfo.GetTLType());
}

void CZqInterface::AddRef() {
    m_RefCount.fetch_add(1, std::memory_order_seq_cst);
}

void CZqInterface::Release() {
    if (m_RefCount.fetch_sub(1, std::memory_order_seq_cst) == 1)
        delete this;
}

bool CZqInterface::IsOnEventThread() const {
    return (m_pErrorEvent && m_pErrorEvent->IsOwnThread()) ||
           (m_pModuleEvent && m_pModuleEvent->IsOwnThread());
}

void CZqInterface::StartEventAcquisitionThread() {
    if (m_pErrorEvent)
        m_pErrorEvent->Start();
    if (m_pModuleEvent)
        m_pModuleEvent->Start();
}

void CZqInterface::StopEventAcquisitionThread() {
    Teardown steps;
    if (m_pErrorEvent)
        steps.Run([this] { m_pErrorEvent->Stop(); });
    if (m_pModuleEvent)
        steps.Run([this] { m_pModuleEvent->Start(); });
    steps.RethrowFirst();
}

void CZqInterface::CloseInterface() {
    if (m_hIF == nullptr)
        return;
    const GC_ERROR result = CallProducer(m_pCZqGenTL->IFClose, m_hIF);
    if (result != GC_ERR_SUCCESS)
        throw ProducerError(m_pCZqGenTL, UNIT, __LINE__, result, "IFClose", "%d = IFClose(0x%p)", result,
                            m_hIF);
    m_hIF = nullptr;
}

void CZqInterface::DeleteInsideObjects() {
    if (m_hIF != nullptr) {
        const GenApi::AutoLock lock(m_ListLock);
        m_Devices.clear();
    }
    Teardown stop;
    stop.Run([this] { StopEventAcquisitionThread(); });
    m_pModuleEvent.reset();
    m_pErrorEvent.reset();
    m_pCZqPort.reset();
    CloseInterface();
}

} // namespace ZqApi
