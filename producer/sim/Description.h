#pragma once

#include <cstddef>
#include <cstdint>

namespace zqgentl {

/// A description file as it was built into the library.
struct Description {
    const char* fileName;
    const uint8_t* data;
    size_t size;
    uint8_t sha1[20];
    int32_t schemaMinor; ///< of schema 1
};

/// Where every register space holds its description.
constexpr uint64_t descriptionAddress = 0x100000;

namespace descriptions {

extern const Description system;
extern const Description interface_u3v;
extern const Description interface_gev;
extern const Description interface_cxp;
extern const Description device_u3v;
extern const Description device_gev;
extern const Description device_cxp;
extern const Description stream;
extern const Description buffer;
extern const Description camera_u3v;
extern const Description camera_gev;
extern const Description camera_gev_schema10;
extern const Description camera_cxp;
extern const Description camera_cxp_native;

} // namespace descriptions
} // namespace zqgentl
