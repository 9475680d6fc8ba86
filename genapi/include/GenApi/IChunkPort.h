#pragma once

#include <GenApi/IPort.h>

namespace GENAPI_NAMESPACE {

/// A port whose register space is a chunk of an image buffer.
struct GENAPI_API IChunkPort : virtual public IPort {
    /// Hexadecimal digits; empty when the port is no chunk port.
    virtual GENICAM_NAMESPACE::gcstring GetChunkID() = 0;
    virtual EYesNo CacheChunkData() = 0;
};

} // namespace GENAPI_NAMESPACE
