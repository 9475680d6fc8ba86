#pragma once

#include <GenApi/Types.h>

namespace GENAPI_NAMESPACE {

/// The numbers of a version.
typedef struct {
    uint16_t Major;
    uint16_t Minor;
    uint16_t SubMinor;
} Version_t;

/// What a description says of itself. A node map gives it by dynamic_cast.
struct GENAPI_API IDeviceInfo {
    virtual GENICAM_NAMESPACE::gcstring GetModelName() = 0;
    virtual GENICAM_NAMESPACE::gcstring GetVendorName() = 0;
    virtual GENICAM_NAMESPACE::gcstring GetToolTip() = 0;
    virtual GENICAM_NAMESPACE::gcstring GetStandardNameSpace() = 0;
    /// The version of this library's interface.
    virtual void GetGenApiVersion(Version_t& Version, uint16_t& Build) = 0;
    virtual void GetSchemaVersion(Version_t& Version) = 0;
    virtual void GetDeviceVersion(Version_t& Version) = 0;
    virtual GENICAM_NAMESPACE::gcstring GetProductGuid() = 0;
    virtual GENICAM_NAMESPACE::gcstring GetVersionGuid() = 0;
    virtual ~IDeviceInfo() = 0;
};

} // namespace GENAPI_NAMESPACE
