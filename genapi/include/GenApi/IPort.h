#pragma once

#include <GenApi/IBase.h>

namespace GENAPI_NAMESPACE {

/// A register space. The application implements it for its transport; its exceptions pass unchanged through
/// the node that caused the access. Calls come under the node map's lock.
struct GENAPI_API IPort : virtual public IBase {
    virtual void Read(void* pBuffer, int64_t Address, int64_t Length) = 0;
    virtual void Write(const void* pBuffer, int64_t Address, int64_t Length) = 0;
};

} // namespace GENAPI_NAMESPACE
