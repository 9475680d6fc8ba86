#pragma once

#include <GenApi/INode.h>

namespace GENAPI_NAMESPACE {

/// A node with a value that has a text form. In all value interfaces: `Verify` on reading checks that the
/// value lies within its limits, on writing that access, limits and increment allow it; `IgnoreCache` reads
/// from the device. AccessException says which restriction forbids an access, OutOfRangeException names the
/// limits, exceptions of the port pass unchanged.
struct GENAPI_API IValue : virtual public IBase {
    virtual INode* GetNode() = 0;
    virtual GENICAM_NAMESPACE::gcstring ToString(bool Verify = false, bool IgnoreCache = false) = 0;
    /// InvalidArgumentException when the text is no value of this node's kind.
    virtual void FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, bool Verify = true) = 0;
    virtual bool IsValueCacheValid() const = 0;
};

} // namespace GENAPI_NAMESPACE
