#pragma once

#include <cstddef>
#include <cstdint>

#include <Base/GCString.h>
#include <Base/GCStringVector.h>
#include <GenApi/GenApi.h>
#include <GenTL.h>

namespace ZqApi {

// The types of the GenTL standard (handles, flags, codes) and of the node-map library stand in signatures
// under their own names.
using namespace GenTL;
using GenApi::INodeMap;
using GenICam::gcstring;
using GenICam::gcstring_vector;

/// Which producer file a system loads; looked for in the folders of GENICAM_GENTL64_PATH.
enum EZqSystemVendor_t : int32_t {
    ZqSystemVendor_Default = 0,        ///< "libzqgentl.cti", the library's own simulated cameras
    ZqSystemVendor_Euresys = 1,        ///< "coaxlink.cti"
    ZqSystemVendor_Kaya = 2,           ///< "KYFGLibGenTL.cti"
    ZqSystemVendor_SiliconSoftware = 3 ///< "siso_gentl.cti"
};

/// Kinds of interface, as a bit set: which of the producer's interfaces a system wraps.
///
/// An interface whose transport-layer type is none of the three is `Unknown` and is never wrapped, not even
/// for `All`.
enum EZqInterfaceType_t : int32_t {
    ZqInterfaceType_Unknown = 0,
    ZqInterfaceType_U3V = 1, ///< USB3 Vision
    ZqInterfaceType_GEV = 2, ///< GigE Vision
    ZqInterfaceType_CXP = 4, ///< CoaXPress
    ZqInterfaceType_All = -1
};

/// What a retrieval does when its time-out elapses.
enum EZqTimeoutHandling_t : int32_t {
    ZqTimeoutHandling_ReturnNull = 0,    ///< return null
    ZqTimeoutHandling_ThrowException = 1 ///< throw GenICam::TimeoutException
};

} // namespace ZqApi
