#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "ZqApi_TL/InsideInterfaces.h"
#include "ZqApi_TL/ZqDeviceInfo.h"
#include "ZqApi_TL/ZqEventError.h"
#include "ZqApi_TL/ZqEventFeatureChange.h"
#include "ZqApi_TL/ZqEventFeatureInvalidate.h"
#include "ZqApi_TL/ZqEventModule.h"
#include "ZqApi_TL/ZqEventRemoteDevice.h"
#include "ZqApi_TL/ZqPort.h"
#include "ZqGenTLCommon/ZqGenTLLib.h"
#include "ZqSDKCommon/ZqCallbackManager.h"

namespace ZqApi {

/// One opened device: both its ports, its event threads, its streams' identifiers, and start and stop of the
/// camera.
///
/// Owns the device handle and holds a reference on its interface. Information and ports from any thread;
/// acquisition start and stop from one controlling thread.
class CZqDevice final : public IZqDeviceInside {
public:
    /// Takes the handle over unless it throws. The event threads exist afterwards, stopped.
    CZqDevice(CZqGenTLLib* pCZqGenTL, IZqInterfaceInside* pIZqInterfaceInside, const char* deviceID,
              DEVICE_ACCESS_FLAGS accessFlags, DEV_HANDLE hDevice);
    ~CZqDevice();
    CZqDevice(const CZqDevice&) = delete;
    CZqDevice& operator=(const CZqDevice&) = delete;

    void* RegisterCallback(IZqCallback* pCallback) override;
    void DeregisterCallback(void* hCallback) override;
    IZqInterface* GetIZqInterface() override;
    IZqPort* GetLocalIZqPort() override;
    IZqDeviceInfo* GetIZqDeviceInfo() const override;
    IZqPort* GetRemoteIZqPort() override;
    size_t GetDataStreamCount() const override;
    IZqDataStreamReleasable* CreateIZqDataStream(size_t nIndex, IZqAllocator* pAllocator) override;
    void AcquisitionStart() override;
    void AcquisitionStop() override;
    bool IsDeviceLost() override;
    IZqInterfaceInside* GetIZqInterfaceInside() override;
    DEV_HANDLE GetDeviceHandle() override;
    void* GetDeviceLostEventHandle() override;
    void Release() override;
    void StartEventAcquisitionThread() override;
    void StopEventAcquisitionThread() override;

private:
    void Construct();
    void UpdateDataStreamList();
    void CreateRemotePort();
    void CreateEvents();
    void SelectEndianessMechanism();
    void RegisterDeviceLostEvent();
    void RequestDeviceLostNotification(INodeMap* pLocalNodeMap);
    void ProbeCamera();
    void OnDeviceLost(GenApi::INode* pNode);
    void StartCamera();
    void StopCamera();
    void SetTLParamsLocked(int64_t value);
    GenApi::CCommandPtr FindCommand(const char* name);
    bool IsOnEventThread() const;
    void DeleteInsideObjects();

    CZqGenTLLib* const m_pCZqGenTL;
    IZqInterfaceInside* const m_pIZqInterfaceInside;
    const std::shared_ptr<CZqGenTLLib> m_pKeptGenTL;
    const gcstring m_DeviceID;
    const DEVICE_ACCESS_FLAGS m_AccessFlags;
    DEV_HANDLE m_hDevice;
    mutable CZqDeviceInfo m_DeviceInfo;
    std::vector<gcstring> m_DataStreamIDs;
    std::unique_ptr<CZqPort> m_pLocalPort;
    std::unique_ptr<CZqPort> m_pRemotePort;
    std::unique_ptr<CZqEventRemoteDevice> m_pRemoteDeviceEvent;
    std::unique_ptr<CZqEventFeatureChange> m_pFeatureChangeEvent;
    std::unique_ptr<CZqEventFeatureInvalidate> m_pFeatureInvalidateEvent;
    std::unique_ptr<CZqEventModule> m_pModuleEvent;
    GenApi::CIntegerPtr m_pTLParamsLocked;
    GenApi::CCommandPtr m_pAcquisitionStart;
    GenApi::CCommandPtr m_pAcquisitionStop;
    CZqCallbackManager m_CallbackManager;
    std::unique_ptr<CZqEventErrorDEV> m_pErrorEvent;
    bool m_bAcquisitionStarted = false;
    GenApi::CallbackHandleType m_hDeviceLostCallback = 0;
    bool m_bHoldsInterface = false;
};

} // namespace ZqApi
