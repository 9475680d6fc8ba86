#pragma once

/// The functions of a GenTL producer, in the order in which they are bound and cleared: expands `X(name)` for
/// each.
// clang-format off
#define ZQ_GENTL_FUNCTIONS(X)                                                                                \
    X(GCCloseLib) X(GCGetInfo) X(GCGetLastError) X(GCInitLib)                                                \
    X(TLClose) X(TLGetInfo) X(TLGetInterfaceID) X(TLGetInterfaceInfo) X(TLGetNumInterfaces)                  \
    X(TLOpen) X(TLOpenInterface) X(TLUpdateInterfaceList)                                                    \
    X(IFClose) X(IFGetInfo) X(IFGetDeviceID) X(IFGetDeviceInfo) X(IFGetNumDevices)                           \
    X(IFOpenDevice) X(IFUpdateDeviceList) X(IFGetParentTL)                                                   \
    X(DevClose) X(DevGetInfo) X(DevGetDataStreamID) X(DevGetNumDataStreams) X(DevGetPort)                    \
    X(DevOpenDataStream) X(DevGetParentIF)                                                                   \
    X(DSAllocAndAnnounceBuffer) X(DSAnnounceBuffer) X(DSClose) X(DSFlushQueue) X(DSGetBufferID)              \
    X(DSGetBufferInfo) X(DSGetInfo) X(DSQueueBuffer) X(DSRevokeBuffer) X(DSStartAcquisition)                 \
    X(DSStopAcquisition) X(DSGetBufferChunkData) X(DSGetParentDev) X(DSGetNumBufferParts)                    \
    X(DSGetBufferPartInfo)                                                                                   \
    X(GCGetPortInfo) X(GCGetPortURL) X(GCGetNumPortURLs) X(GCGetPortURLInfo) X(GCReadPort)                   \
    X(GCWritePort) X(GCWritePortStacked) X(GCReadPortStacked)                                                \
    X(EventFlush) X(EventGetData) X(EventGetDataInfo) X(EventGetInfo) X(EventKill)                           \
    X(GCRegisterEvent) X(GCUnregisterEvent)
// clang-format on
