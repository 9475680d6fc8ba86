#pragma once

#include <ZqApi/Export.h>
#include <ZqApi/PixelComponent.h>
#include <ZqApi/PixelFormat.h>
#include <ZqApi/Types.h>

namespace ZqApi {

class IZqAllocator;
class IZqFeatureBagReleasable;
class IZqImageBufferReleasable;
class IZqSystemReleasable;

/// The version that these headers belong to, packed as (major << 24) | (minor << 16) | patch: what a program
/// passes to ZqApiInitialize.
constexpr uint32_t ZqApiBuildVersion = 0x01000005;

/// Counted initialisation; call before anything else, once for each later ZqApiTerminate. Any thread.
///
/// The first call creates the catalogues and, if the environment variable GENICAM_CACHE_V3_0 is set, appends
/// "/GenICam/xml/cache" to it (nobody creates that folder). Throws GenICam::RuntimeException when the program
/// was built for another major or minor version.
ZQAPI_API void ZqApiInitialize(uint32_t buildVersion);
/// Takes one initialisation back; the last one destroys the catalogues. Objects still held stay usable until
/// their `Release`. Throws GenICam::RuntimeException "ZqApi is not initialized.".
ZQAPI_API void ZqApiTerminate();
/// Throws GenICam::RuntimeException "ZqApi is not initialized." before the first initialisation and after the
/// last termination, as every function below does but GetModuleHandleTL.
ZQAPI_API void CheckZqApiInitialized();
/// 0x01000005 for version 1.0.5.
ZQAPI_API uint32_t GetZqApiVersion();
/// "1.0.5".
ZQAPI_API gcstring GetZqApiVersionText();
/// Appends "/GenICam/xml/cache" to GENICAM_CACHE_V3_0 if it is set; each call appends again.
ZQAPI_API void SetGenApiCache();

/// The catalogue's record of a pixel format; owned by the library until the last ZqApiTerminate. Throws
/// GenICam::RuntimeException "Unknown pixelformat 0x%X".
ZQAPI_API IZqPixelFormatInfo* GetIZqPixelFormatInfo(EZqPixelFormatNamingConvention_t eZqPixelFormat);
/// The catalogue's record of a pixel component; owned as above. Throws GenICam::InvalidArgumentException.
ZQAPI_API IZqPixelComponentInfo* GetIZqPixelComponentInfo(EZqPixelComponent_t eZqPixelComponent);

/// Loads the vendor's producer and opens its transport layer; the caller releases the system.
///
/// Only interfaces of the kinds in `eTargetInterface` are wrapped, and of the frame-grabber vendors only
/// CoaXPress ones. Throws GenICam::OutOfRangeException for arguments out of range, GenICam::RuntimeException
/// "File %s not found." when the producer is in no folder of GENICAM_GENTL64_PATH, CZqLinuxErrorException
/// when it can't be loaded and CZqGenTLErrorException when it refuses (a second system on one producer:
/// -1004). Nothing stays open then.
ZQAPI_API IZqSystemReleasable* CreateIZqSystem(EZqSystemVendor_t eZqSystemVendor,
                                               EZqInterfaceType_t eTargetInterface);
/// An image that the caller owns, its memory from `pAllocator` or, with null, from the heap.
ZQAPI_API IZqImageBufferReleasable* CreateIZqImageBuffer(IZqAllocator* pAllocator);
/// An empty feature bag that the caller releases.
ZQAPI_API IZqFeatureBagReleasable* CreateIZqFeatureBag();

/// Always null; kept for programs that ask.
ZQAPI_API void* GetModuleHandleTL();

} // namespace ZqApi
