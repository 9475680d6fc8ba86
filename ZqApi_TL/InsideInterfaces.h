#pragma once

#include <memory>

#include <ZqApi/DataStream.h>
#include <ZqApi/Device.h>
#include <ZqApi/Interface.h>
#include <ZqApi/Port.h>
#include <ZqApi/StreamBuffer.h>
#include <ZqApi/System.h>

#include "ZqSDKCommon/EventObject.h"

/// What the objects of the module tree use of each other, beyond the public interface. The order of the
/// operations is the order of their slots.

namespace ZqApi {

class IZqSystemInside : public IZqSystemReleasable {
public:
    virtual TL_HANDLE GetSystemHandle() = 0;
    virtual void AddRef() = 0;

protected:
    ~IZqSystemInside() = default;
};

class IZqInterfaceInside : public IZqInterface {
public:
    virtual IZqSystemInside* GetIZqSystemInside() = 0;
    virtual IF_HANDLE GetInterfaceHandle() = 0;
    virtual EZqInterfaceType_t GetZqInterfaceType() = 0;
    virtual void AddRef() = 0;
    virtual void Release() = 0;

protected:
    ~IZqInterfaceInside() = default;
};

class IZqDeviceInside : public IZqDeviceReleasable {
public:
    virtual IZqInterfaceInside* GetIZqInterfaceInside() = 0;
    virtual DEV_HANDLE GetDeviceHandle() = 0;
    /// The device-lost event for a multi-object wait; null once it is closing.
    virtual void* GetDeviceLostEventHandle() = 0;

    /// Shared, because a reader that waits on it may outlast the device's teardown.
    const std::shared_ptr<CEventObject>& GetDeviceLostEvent() const { return m_pDeviceLostEvent; }

    /// What every open stream holds a share of, so that a device can tell that one outlives it.
    const std::shared_ptr<const void>& GetStreamToken() const { return m_pStreamToken; }

protected:
    ~IZqDeviceInside() = default;
    std::shared_ptr<CEventObject> m_pDeviceLostEvent;
    std::shared_ptr<const void> m_pStreamToken;
};

class IZqDataStreamInside;

class IZqStreamBufferInside : public IZqStreamBufferReleasable {
public:
    virtual IZqDataStreamInside* GetIZqDataStreamInside() const = 0;
    virtual BUFFER_HANDLE GetBufferHandle() const = 0;
    virtual void AttachChunkBuffer() = 0;
    virtual void DetachChunkBuffer() = 0;
    virtual void PrepareChunkDecode() = 0;

protected:
    ~IZqStreamBufferInside() = default;
};

class IZqDataStreamInside : public IZqDataStreamReleasable {
public:
    virtual IZqDeviceInside* GetIZqDeviceInside() = 0;
    virtual DS_HANDLE GetDataStreamHandle() = 0;
    /// Takes a filled buffer from the producer; runs on the new-buffer event thread.
    virtual void OnNewBuffer(IZqStreamBufferInside* pBuffer) = 0;
    virtual IZqStreamBufferInside* RegisterStreamBuffer(void* pBuffer, size_t size, void* pContext,
                                                        size_t index) = 0;
    virtual void DeregisterStreamBuffer(IZqStreamBuffer* pBuffer) = 0;
    virtual void QueueBuffer(IZqStreamBuffer* pBuffer) = 0;
    virtual void* GetIsFilledStreamBufferEventHandle() = 0;

protected:
    ~IZqDataStreamInside() = default;
};

/// A port as the library itself uses it: also the register access of its node maps.
class IZqPortInside : public IZqPort, public GenApi::IPort {
public:
    virtual PORT_HANDLE GetPortHandle() const = 0;
    virtual void AttachChunkBuffer(uint8_t* pBuffer, int64_t length) = 0;
    virtual void DetachChunkBuffer() = 0;
    /// A second node map of the features under `rootName`, connected to this port.
    virtual void CreateSubTreeNodeMap(gcstring rootName, GenApi::CNodeMapRef& nodeMapRef,
                                      bool subTreeFlag) = 0;
    virtual void CreateNodeMapFactoryForChunkData(bool subTreeFlag) = 0;
    virtual void CreateSubTreeNodeMapForChunkData(GenApi::CNodeMapRef& nodeMapRef) = 0;
};

} // namespace ZqApi
