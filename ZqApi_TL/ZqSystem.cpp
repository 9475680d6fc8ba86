#include "ZqApi_TL/ZqSystem.h"

#include <algorithm>

#include "ZqApi_TL/OptionalEvent.h"
#include "ZqApi_TL/Teardown.h"
#include "ZqGenTLCommon/InfoQuery.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqSystem";

} // namespace

CZqSystem::CZqSystem(EZqSystemVendor_t vendor, const char* szFileName, EZqInterfaceType_t filter)
    : m_FileName((ZQ_ASSERT(UNIT, szFileName != NULL), szFileName)), m_InterfaceFilter(filter),
      m_Vendor(vendor) {
    try {
        ConvertBadAlloc(UNIT, __LINE__, [this] { Open(); });
    } catch (...) {
        // The first failure leaves; what was built before it is closed, interfaces first.
        Teardown teardown;
        teardown.Run([this] { DeleteInterfaceObjects(); });
        teardown.Run([this] { DeleteInsideObjects(); });
        throw;
    }
}

void CZqSystem::Open() {
    m_pCZqGenTL = std::make_shared<CZqGenTLLib>(m_FileName);
    const GC_ERROR result = RequireHandle(CallProducer(m_pCZqGenTL->TLOpen, &m_hTL), m_hTL);
    if (result != GC_ERR_SUCCESS) {
        m_hTL = nullptr;
        throw ProducerError(m_pCZqGenTL.get(), UNIT, __LINE__, result, "TLOpen", "%d = TLOpen(0x%p)", result,
                            &m_hTL);
    }
    m_SystemInfo.Set(m_pCZqGenTL.get(), m_hTL);
    m_pCZqPort = std::make_unique<CZqPort>(m_pCZqGenTL.get(), m_hTL, GenApi::RW,
                                           gcstring("System_") + m_SystemInfo.GetID());
    m_pErrorEvent = MakeEventIfImplemented<CZqEventErrorTL>(
        m_pCZqGenTL.get(), m_hTL, static_cast<IZqSystem*>(this), &m_CallbackManager,
        ZqCallbackType_GenTLEventErrorTL, "ZqApi_TL_EventError_TL");
    CreateInterfaceObjects();
}

CZqSystem::~CZqSystem() {
    Teardown teardown;
    teardown.Run([this] { DeleteInterfaceObjects(); });
    teardown.Run([this] { DeleteInsideObjects(); });
}

void* CZqSystem::RegisterCallback(IZqCallback* pCallback) {
    return m_CallbackManager.RegisterCallback(pCallback);
}

void CZqSystem::DeregisterCallback(void* hCallback) {
    m_CallbackManager.DeregisterCallback(hCallback);
}

EZqSystemVendor_t CZqSystem::GetZqSystemVendor() {
    return m_Vendor;
}

IZqPort* CZqSystem::GetIZqPort() {
    return m_pCZqPort.get();
}

const IZqSystemInfo* CZqSystem::GetIZqSystemInfo() {
    return &m_SystemInfo;
}

bool CZqSystem::UpdateInterfaceList() {
    RefuseOnEventThread(__LINE__);
    return ConvertBadAlloc(UNIT, __LINE__, [this] { return CreateInterfaceObjects(); });
}

uint32_t CZqSystem::GetInterfaceCount() {
    const GenApi::AutoLock lock(m_ListLock);
    return static_cast<uint32_t>(m_Interfaces.size());
}

IZqInterface* CZqSystem::GetIZqInterface(size_t index) {
    const GenApi::AutoLock lock(m_ListLock);
    CheckIndex(UNIT, __LINE__, "GetInterface", index, m_Interfaces.size());
    return m_Interfaces[index];
}

std::unique_ptr<CZqInterface, CZqSystem::ReleaseInterface> CZqSystem::InterfaceAt(size_t index) {
    const GenApi::AutoLock lock(m_ListLock);
    CheckIndex(UNIT, __LINE__, "GetInterface", index, m_Interfaces.size());
    m_Interfaces[index]->AddRef();
    return std::unique_ptr<CZqInterface, ReleaseInterface>(m_Interfaces[index]);
}

IZqDeviceReleasable* CZqSystem::CreateFirstIZqDevice(DEVICE_ACCESS_FLAGS eDeviceAccessFlags) {
    for (size_t index = 0; index < GetInterfaceCount(); ++index) {
        try {
            return InterfaceAt(index)->CreateFirstIZqDevice(eDeviceAccessFlags);
        } catch (const GenICam::GenericException&) {
            // The next interface may have one.
        }
    }
    throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "There is no available device.");
}

TL_HANDLE CZqSystem::GetSystemHandle() {
    return m_hTL;
}

void CZqSystem::AddRef() {
    m_RefCount.fetch_add(1, std::memory_order_seq_cst);
}

void CZqSystem::RefuseOnEventThread(int line) {
    // It would destroy the thread that is running, under the callback that asks for it.
    const GenApi::AutoLock lock(m_ListLock);
    const bool own =
        (m_pErrorEvent && m_pErrorEvent->IsOwnThread()) ||
        std::any_of(m_Interfaces.begin(), m_Interfaces.end(),
                    [](const CZqInterface* pInterface) { return pInterface->IsOnEventThread(); });
    if (own)
        throw ReportError<GenICam::LogicalErrorException>(
            UNIT, line,
            "A system can't be released or updated on an event thread of its own or of its interfaces.");
}

void CZqSystem::Release() {
    RefuseOnEventThread(__LINE__);
    if (m_RefCount.fetch_sub(1, std::memory_order_seq_cst) == 1)
        delete this;
}

void CZqSystem::StartEventAcquisitionThread() {
    if (m_pErrorEvent)
        m_pErrorEvent->Start();
}

void CZqSystem::StopEventAcquisitionThread() {
    if (m_pErrorEvent)
        m_pErrorEvent->Stop();
}

bool CZqSystem::GetInterfaceIDList(gcstring_vector& ids) {
    // A byte, because a producer may leave it unwritten or write another truth than 1.
    uint8_t changed = 0;
    GC_ERROR result = CallProducer(m_pCZqGenTL->TLUpdateInterfaceList, m_hTL,
                                   reinterpret_cast<bool8_t*>(&changed), m_InterfaceListTimeoutMs);
    if (result != GC_ERR_SUCCESS)
        throw ProducerError(m_pCZqGenTL.get(), UNIT, __LINE__, result, "TLUpdateInterfaceList",
                            "%d = TLUpdateInterfaceList(0x%p, 0x%p, %I64u)", result, m_hTL, &changed,
                            m_InterfaceListTimeoutMs);
    uint32_t count = 0;
    result = CallProducer(m_pCZqGenTL->TLGetNumInterfaces, m_hTL, &count);
    if (result != GC_ERR_SUCCESS)
        throw ProducerError(m_pCZqGenTL.get(), UNIT, __LINE__, result, "TLGetNumInterfaces",
                            "%d = TLGetNumInterfaces(0x%p, 0x%p)", result, m_hTL, &count);
    const QuerySite site{m_pCZqGenTL.get(), UNIT, __LINE__, "TLGetInterfaceID",
                         "%d = TLGetInterfaceID(0x%p, %u, 0x%p, 0x%p)"};
    for (uint32_t index = 0; index < count; ++index)
        ids.push_back(QueryIdentifier(site, site.format, m_pCZqGenTL->TLGetInterfaceID, m_hTL, index));
    return changed != 0;
}

EZqInterfaceType_t CZqSystem::GetInterfaceType(const gcstring& id) {
    const gcstring tlType =
        QueryText({m_pCZqGenTL.get(), UNIT, __LINE__, "TLGetInterfaceInfo",
                   "%d = TLGetInterfaceInfo(0x%p, 0x%p, %d, 0x%p, 0x%p, 0x%p)"},
                  m_pCZqGenTL->TLGetInterfaceInfo, INTERFACE_INFO_TLTYPE, m_hTL, id.c_str());
    return CZqInterface::TypeOfTLType(tlType);
}

bool CZqSystem::CreateInterfaceObjects() {
    std::vector<CZqInterface*> former;
    Teardown rebuild;
    {
        const std::lock_guard<std::mutex> update(m_UpdateMutex);
        gcstring_vector ids;
        const bool changed = GetInterfaceIDList(ids);
        if (m_Vendor != ZqSystemVendor_Default && m_bFirstUpdate)
            m_bFirstUpdate = false;
        else if (!changed)
            return false;

        const GenApi::AutoLock lock(m_ListLock);
        // Room first: once an interface is taken out of a list no allocation may lose it.
        std::vector<CZqInterface*> fresh;
        fresh.reserve(ids.size());
        former.swap(m_Interfaces);
        m_Interfaces.swap(fresh);
        rebuild.Run([&] { RebuildInterfaceList(ids, former); });
    }
    // Outside the lock: releasing joins an event thread whose callback may be asking for the list.
    for (CZqInterface* const pInterface : former)
        pInterface->Release();
    rebuild.RethrowFirst();
    return true;
}

void CZqSystem::RebuildInterfaceList(const gcstring_vector& ids, std::vector<CZqInterface*>& former) {
    for (size_t index = 0; index < ids.size(); ++index) {
        const gcstring& id = ids[index];
        const auto kept = std::find_if(former.begin(), former.end(), [&id](CZqInterface* pInterface) {
            return pInterface->GetIZqInterfaceInfo()->GetID() == id;
        });
        if (kept != former.end()) {
            m_Interfaces.push_back(*kept);
            former.erase(kept);
            continue;
        }
        if ((GetInterfaceType(id) & m_InterfaceFilter) == 0 || m_pCZqGenTL->TLOpenInterface == nullptr)
            continue;
        m_Interfaces.push_back(OpenInterface(id));
    }
}

CZqInterface* CZqSystem::OpenInterface(const gcstring& id) {
    IF_HANDLE hIF = nullptr;
    const GC_ERROR result =
        RequireHandle(CallProducer(m_pCZqGenTL->TLOpenInterface, m_hTL, id.c_str(), &hIF), hIF);
    if (result != GC_ERR_SUCCESS)
        throw ProducerError(m_pCZqGenTL.get(), UNIT, __LINE__, result, "TLOpenInterface",
                            "%d = TLOpenInterface(0x%p, %s, 0x%p)", result, m_hTL, id.c_str(), &hIF);
    try {
        auto* const pInterface = new CZqInterface(m_pCZqGenTL.get(), this, id, hIF);
        pInterface->AddRef();
        return pInterface;
    } catch (...) {
        CallProducer(m_pCZqGenTL->IFClose, hIF);
        throw;
    }
}

void CZqSystem::DeleteInterfaceObjects() {
    std::vector<CZqInterface*> doomed;
    {
        const GenApi::AutoLock lock(m_ListLock);
        doomed.swap(m_Interfaces);
    }
    for (CZqInterface* const pInterface : doomed)
        pInterface->Release();
}

void CZqSystem::DeleteInsideObjects() {
    Teardown teardown;
    teardown.Run([this] { StopEventAcquisitionThread(); });
    m_pErrorEvent.reset();
    m_pCZqPort.reset();
    m_SystemInfo.Set(nullptr, nullptr);
    Teardown close;
    close.Run([this] {
        if (m_hTL == nullptr)
            return;
        const TL_HANDLE hTL = m_hTL;
        const GC_ERROR result = CallProducer(m_pCZqGenTL->TLClose, hTL);
        m_hTL = nullptr;
        if (result != GC_ERR_SUCCESS)
            throw ProducerError(m_pCZqGenTL.get(), UNIT, __LINE__, result, "TLClose", "%d = TLClose(0x%p)",
                                result, hTL);
    });
    // Modules that outlive their system keep the loader's table, emptied: their calls then answer "not
    // implemented".
    if (m_pCZqGenTL)
        m_pCZqGenTL->UnloadLib();
    m_pCZqGenTL.reset();
    close.RethrowFirst();
}

} // namespace ZqApi
