#pragma once

#include "gentl/GenTL.h"

/// Every function of the interface, in the order of its header.
#define ZQ_FOR_EACH_FUNCTION(X)                                                                              \
    X(GCInitLib)                                                                                             \
    X(GCCloseLib)                                                                                            \
    X(GCGetInfo)                                                                                             \
    X(GCGetLastError)                                                                                        \
    X(TLOpen)                                                                                                \
    X(TLClose)                                                                                               \
    X(TLGetInfo)                                                                                             \
    X(TLUpdateInterfaceList)                                                                                 \
    X(TLGetNumInterfaces)                                                                                    \
    X(TLGetInterfaceID)                                                                                      \
    X(TLGetInterfaceInfo)                                                                                    \
    X(TLOpenInterface)                                                                                       \
    X(IFClose)                                                                                               \
    X(IFGetInfo)                                                                                             \
    X(IFGetParentTL)                                                                                         \
    X(IFUpdateDeviceList)                                                                                    \
    X(IFGetNumDevices)                                                                                       \
    X(IFGetDeviceID)                                                                                         \
    X(IFGetDeviceInfo)                                                                                       \
    X(IFOpenDevice)                                                                                          \
    X(DevClose)                                                                                              \
    X(DevGetInfo)                                                                                            \
    X(DevGetParentIF)                                                                                        \
    X(DevGetPort)                                                                                            \
    X(DevGetNumDataStreams)                                                                                  \
    X(DevGetDataStreamID)                                                                                    \
    X(DevOpenDataStream)                                                                                     \
    X(DSClose)                                                                                               \
    X(DSGetInfo)                                                                                             \
    X(DSGetParentDev)                                                                                        \
    X(DSAnnounceBuffer)                                                                                      \
    X(DSAllocAndAnnounceBuffer)                                                                              \
    X(DSRevokeBuffer)                                                                                        \
    X(DSQueueBuffer)                                                                                         \
    X(DSFlushQueue)                                                                                          \
    X(DSGetBufferID)                                                                                         \
    X(DSStartAcquisition)                                                                                    \
    X(DSStopAcquisition)                                                                                     \
    X(DSGetBufferInfo)                                                                                       \
    X(DSGetBufferChunkData)                                                                                  \
    X(DSGetNumBufferParts)                                                                                   \
    X(DSGetBufferPartInfo)                                                                                   \
    X(GCGetPortInfo)                                                                                         \
    X(GCGetNumPortURLs)                                                                                      \
    X(GCGetPortURLInfo)                                                                                      \
    X(GCGetPortURL)                                                                                          \
    X(GCReadPort)                                                                                            \
    X(GCWritePort)                                                                                           \
    X(GCReadPortStacked)                                                                                     \
    X(GCWritePortStacked)                                                                                    \
    X(GCRegisterEvent)                                                                                       \
    X(GCUnregisterEvent)                                                                                     \
    X(EventGetData)                                                                                          \
    X(EventGetDataInfo)                                                                                      \
    X(EventGetInfo)                                                                                          \
    X(EventFlush)                                                                                            \
    X(EventKill)

/// The producer under test, loaded once for the process.
struct Functions {
#define X(name) GenTL::P##name name;
    ZQ_FOR_EACH_FUNCTION(X)
#undef X
};

/// Loads ZQGENTL_FILE; ends the process with a message when a function is missing.
const Functions& Producer();
