#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include "ZqApi_TL/InsideInterfaces.h"
#include "ZqApi_TL/ZqEventError.h"
#include "ZqApi_TL/ZqEventModule.h"
#include "ZqApi_TL/ZqIFDeviceInfo.h"
#include "ZqApi_TL/ZqInterfaceInfo.h"
#include "ZqApi_TL/ZqPort.h"
#include "ZqGenTLCommon/ZqGenTLLib.h"
#include "ZqSDKCommon/ZqCallbackManager.h"

namespace ZqApi {

/// One opened interface with the devices that the producer sees on it. Any thread.
///
/// Its system and every device opened from it hold a reference, so an interface that vanished lives until its
/// last device is released. It owns the interface handle.
class CZqInterface final : public IZqInterfaceInside {
public:
    /// Takes the handle over unless it throws; the reference count starts at 0.
    CZqInterface(CZqGenTLLib* pCZqGenTL, IZqSystemInside* pIZqSystemInside, const gcstring& id,
                 IF_HANDLE hIF);
    ~CZqInterface();
    CZqInterface(const CZqInterface&) = delete;
    CZqInterface& operator=(const CZqInterface&) = delete;

    void* RegisterCallback(IZqCallback* pCallback) override;
    void DeregisterCallback(void* hCallback) override;
    IZqSystem* GetIZqSystem() override;
    IZqPort* GetIZqPort() override;
    const IZqInterfaceInfo* GetIZqInterfaceInfo() override;
    bool UpdateDeviceList() override;
    uint64_t GetUpdateDeviceListTimeout() override;
    void SetUpdateDeviceListTimeout(uint64_t timeoutMs) override;
    uint32_t GetDeviceCount() override;
    const IZqDeviceInfo* GetIZqDeviceInfo(size_t nIndex) override;
    bool IsDeviceAvailable(size_t nIndex, DEVICE_ACCESS_FLAGS eDeviceAccessFlags) override;
    IZqDeviceReleasable* CreateIZqDevice(size_t nIndex, DEVICE_ACCESS_FLAGS eDeviceAccessFlags) override;
    IZqDeviceReleasable* CreateIZqDevice(const gcstring& id, DEVICE_ACCESS_FLAGS eDeviceAccessFlags) override;
    IZqDeviceReleasable* CreateFirstIZqDevice(DEVICE_ACCESS_FLAGS eDeviceAccessFlags) override;
    IZqSystemInside* GetIZqSystemInside() override;
    IF_HANDLE GetInterfaceHandle() override;
    EZqInterfaceType_t GetZqInterfaceType() override;
    void AddRef() override;
    void Release() override;
    void StartEventAcquisitionThread() override;
    /// Kept: stops the error event, but starts the module event.
    void StopEventAcquisitionThread() override;

    /// True on one of the interface's event threads, where it must not be destroyed.
    bool IsOnEventThread() const;

    /// The kind of interface that a transport-layer type names, upper and lower case alike. Kept: the length
    /// of the text counts, so a prefix matches its name and an empty text is the first one, U3V.
    static EZqInterfaceType_t TypeOfTLType(const gcstring& tlType);

private:
    void Construct(const gcstring& id);
    bool UpdateList();
    gcstring DeviceIDAt(size_t nIndex);
    void CloseInterface();
    void DeleteInsideObjects();

    CZqGenTLLib* const m_pCZqGenTL;
    IZqSystemInside* const m_pIZqSystemInside;
    // The producer's table outlives the system for objects that are released too late.
    const std::shared_ptr<CZqGenTLLib> m_pKeptGenTL;
    IF_HANDLE m_hIF;
    CZqInterfaceInfo m_InterfaceInfo;
    // The standard forbids the list calls to run beside an update; readers of the list take only the lock
    // below.
    std::mutex m_UpdateMutex;
    GenApi::CLock m_ListLock;
    std::vector<std::unique_ptr<CZqIFDeviceInfo>> m_Devices;
    std::atomic<uint64_t> m_DeviceListTimeoutMs{250};
    std::unique_ptr<CZqPort> m_pCZqPort;
    CZqCallbackManager m_CallbackManager;
    std::unique_ptr<CZqEventErrorIF> m_pErrorEvent;
    std::unique_ptr<CZqEventModule> m_pModuleEvent;
    std::atomic<int64_t> m_RefCount{0};
    bool m_bFirstUpdate = true;
};

} // namespace ZqApi
