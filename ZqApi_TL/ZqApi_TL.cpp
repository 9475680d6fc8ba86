#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>

#include <ZqApi/ZqApi.h>

#include "ZqApi_TL/ZqFeatureBag.h"
#include "ZqApi_TL/ZqPixelComponentInfo.h"
#include "ZqApi_TL/ZqPixelFormatInfo.h"
#include "ZqApi_TL/ZqSystem.h"
#include "ZqSDKCommon/Error.h"
#include "ZqSDKCommon/ZqImageBuffer.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqApi_TL";

constexpr uint32_t VERSION = 0x01000005;
constexpr const char* VERSION_TEXT = "1.0.5";
constexpr uint32_t COMPATIBLE_MASK = 0xFFFF0000;

constexpr const char* CACHE_VARIABLE = "GENICAM_CACHE_V3_0";

constexpr const char* PRODUCER_FILES[] = {"libzqgentl.cti", "coaxlink.cti", "KYFGLibGenTL.cti",
                                          "siso_gentl.cti"};
constexpr uint32_t VENDOR_COUNT = sizeof(PRODUCER_FILES) / sizeof(*PRODUCER_FILES);

// Initialisation and termination exclude each other, so that nobody returns from a concurrent first
// initialisation before the catalogues are there. Everything else only looks at the pointers.
std::mutex g_Mutex;
std::atomic<int64_t> m_lInitializedCount{0};
std::atomic<CZqPixelFormatInfo*> gpCZqPixelFormatInfo{nullptr};
std::atomic<CZqPixelComponentInfo*> gpCZqPixelComponentInfo{nullptr};

template <class Catalogue>
Catalogue& Initialized(const std::atomic<Catalogue*>& catalogue, int line) {
    Catalogue* const pCatalogue = catalogue.load();
    if (pCatalogue == nullptr)
        throw ReportError<GenICam::RuntimeException>(UNIT, line, "ZqApi is not initialized.");
    return *pCatalogue;
}

/// Kept: not idempotent, every call appends once more.
void PointCacheToSubdirectory() {
    const char* const root = std::getenv(CACHE_VARIABLE);
    if (root == nullptr)
        return;
    char folder[4096];
    std::snprintf(folder, sizeof(folder), "%s/GenICam/xml/cache", root);
    setenv(CACHE_VARIABLE, folder, 1);
}

template <class Catalogue>
void CreateOnce(std::atomic<Catalogue*>& catalogue) {
    if (catalogue.load() == nullptr)
        catalogue = std::make_unique<Catalogue>().release();
}

} // namespace

void ZqApiInitialize(uint32_t buildVersion) {
    if ((buildVersion & COMPATIBLE_MASK) != (VERSION & COMPATIBLE_MASK))
        throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__,
                                                     "The version of the runtime library is not matched the "
                                                     "version of the build time library. Runtime:1.0.5, "
                                                     "Build time:%u.%u.%u",
                                                     buildVersion >> 24, buildVersion >> 16 & 0xFF,
                                                     buildVersion & 0xFF);
    const std::lock_guard<std::mutex> lock(g_Mutex);
    if (m_lInitializedCount.fetch_add(1) + 1 != 1)
        return;
    PointCacheToSubdirectory();
    // Kept: the counter stays incremented when a catalogue can't be allocated.
    ConvertBadAlloc(UNIT, __LINE__, [] {
        CreateOnce(gpCZqPixelFormatInfo);
        CreateOnce(gpCZqPixelComponentInfo);
    });
}

void ZqApiTerminate() {
    const std::lock_guard<std::mutex> lock(g_Mutex);
    CheckZqApiInitialized();
    if (m_lInitializedCount.fetch_sub(1) != 1)
        return;
    delete gpCZqPixelFormatInfo.exchange(nullptr);
    delete gpCZqPixelComponentInfo.exchange(nullptr);
}

void CheckZqApiInitialized() {
    Initialized(gpCZqPixelFormatInfo, __LINE__);
}

uint32_t GetZqApiVersion() {
    CheckZqApiInitialized();
    return VERSION;
}

gcstring GetZqApiVersionText() {
    CheckZqApiInitialized();
    return VERSION_TEXT;
}

void SetGenApiCache() {
    const std::lock_guard<std::mutex> lock(g_Mutex);
    CheckZqApiInitialized();
    PointCacheToSubdirectory();
}

IZqPixelFormatInfo* GetIZqPixelFormatInfo(EZqPixelFormatNamingConvention_t eZqPixelFormat) {
    return Initialized(gpCZqPixelFormatInfo, __LINE__).GetIZqPixelFormatInfoInside(eZqPixelFormat);
}

IZqPixelComponentInfo* GetIZqPixelComponentInfo(EZqPixelComponent_t eZqPixelComponent) {
    CheckZqApiInitialized();
    return Initialized(gpCZqPixelComponentInfo, __LINE__).GetIZqPixelComponentInfoInside(eZqPixelComponent);
}

IZqSystemReleasable* CreateIZqSystem(EZqSystemVendor_t eZqSystemVendor, EZqInterfaceType_t eTargetInterface) {
    CheckZqApiInitialized();
    const uint32_t vendor = static_cast<uint32_t>(eZqSystemVendor);
    CheckBelow(UNIT, __LINE__, "eZqSystemVendor", vendor, VENDOR_COUNT);
    // The other vendors make frame grabbers; only their CoaXPress interfaces are wrapped.
    int32_t filter = eTargetInterface;
    if (eZqSystemVendor != ZqSystemVendor_Default)
        filter &= ZqInterfaceType_CXP;
    if (filter != ZqInterfaceType_All)
        CheckMin(UNIT, __LINE__, "eTargetInterface", filter, 1);
    return ConvertBadAlloc(UNIT, __LINE__, [&] {
        auto* const pSystem =
            new CZqSystem(eZqSystemVendor, PRODUCER_FILES[vendor], static_cast<EZqInterfaceType_t>(filter));
        pSystem->AddRef();
        return static_cast<IZqSystemReleasable*>(pSystem);
    });
}

IZqImageBufferReleasable* CreateIZqImageBuffer(IZqAllocator* pAllocator) {
    CheckZqApiInitialized();
    return ConvertBadAlloc(UNIT, __LINE__, [&] { return new CZqImageBuffer(pAllocator); });
}

IZqFeatureBagReleasable* CreateIZqFeatureBag() {
    CheckZqApiInitialized();
    return ConvertBadAlloc(UNIT, __LINE__, [] { return new CZqFeatureBag; });
}

void* GetModuleHandleTL() {
    return nullptr;
}

} // namespace ZqApi
