#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include "ZqApi_TL/InsideInterfaces.h"
#include "ZqApi_TL/ZqEventError.h"
#include "ZqApi_TL/ZqInterface.h"
#include "ZqApi_TL/ZqPort.h"
#include "ZqApi_TL/ZqSystemInfo.h"
#include "ZqGenTLCommon/ZqGenTLLib.h"
#include "ZqSDKCommon/ZqCallbackManager.h"

namespace ZqApi {

/// One loaded producer: the loader, the open transport layer and the interfaces that pass the filter. Any
/// thread.
class CZqSystem final : public IZqSystemInside {
public:
    /// Loads the producer, opens its transport layer and wraps the interfaces; the reference count starts at
    /// 0.
    CZqSystem(EZqSystemVendor_t vendor, const char* szFileName, EZqInterfaceType_t filter);
    ~CZqSystem();
    CZqSystem(const CZqSystem&) = delete;
    CZqSystem& operator=(const CZqSystem&) = delete;

    void* RegisterCallback(IZqCallback* pCallback) override;
    void DeregisterCallback(void* hCallback) override;
    EZqSystemVendor_t GetZqSystemVendor() override;
    IZqPort* GetIZqPort() override;
    const IZqSystemInfo* GetIZqSystemInfo() override;
    bool UpdateInterfaceList() override;
    uint32_t GetInterfaceCount() override;
    IZqInterface* GetIZqInterface(size_t index) override;
    IZqDeviceReleasable* CreateFirstIZqDevice(DEVICE_ACCESS_FLAGS eDeviceAccessFlags) override;
    TL_HANDLE GetSystemHandle() override;
    void AddRef() override;
    void Release() override;
    void StartEventAcquisitionThread() override;
    void StopEventAcquisitionThread() override;

private:
    void Open();
    void RefuseOnEventThread(int line);
    bool GetInterfaceIDList(gcstring_vector& ids);
    EZqInterfaceType_t GetInterfaceType(const gcstring& id);
    bool CreateInterfaceObjects();
    void RebuildInterfaceList(const gcstring_vector& ids, std::vector<CZqInterface*>& former);
    CZqInterface* OpenInterface(const gcstring& id);
    struct ReleaseInterface {
        void operator()(CZqInterface* pInterface) const { pInterface->Release(); }
    };
    /// Keeps the interface alive beside a concurrent update.
    std::unique_ptr<CZqInterface, ReleaseInterface> InterfaceAt(size_t index);
    void DeleteInterfaceObjects();
    void DeleteInsideObjects();

    const gcstring m_FileName;
    TL_HANDLE m_hTL = nullptr;
    const EZqInterfaceType_t m_InterfaceFilter;
    const uint64_t m_InterfaceListTimeoutMs = 250;
    // The standard forbids the list calls to run beside an update; readers of the list take only the lock
    // below.
    std::mutex m_UpdateMutex;
    GenApi::CLock m_ListLock;
    std::vector<CZqInterface*> m_Interfaces;
    std::unique_ptr<CZqPort> m_pCZqPort;
    std::shared_ptr<CZqGenTLLib> m_pCZqGenTL;
    const EZqSystemVendor_t m_Vendor;
    CZqCallbackManager m_CallbackManager;
    std::unique_ptr<CZqEventErrorTL> m_pErrorEvent;
    CZqSystemInfo m_SystemInfo;
    std::atomic<int64_t> m_RefCount{0};
    bool m_bFirstUpdate = true;
};

} // namespace ZqApi
