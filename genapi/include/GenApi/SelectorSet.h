#pragma once

#include <GenApi/IBase.h>

namespace GENAPI_NAMESPACE {

/// Walks every combination of a feature's selectors. Not implemented: the constructor throws
/// RuntimeException.
class GENAPI_API CSelectorSet {
public:
    explicit CSelectorSet(IBase* pBase);
    virtual ~CSelectorSet();
    CSelectorSet(const CSelectorSet&) = delete;
    CSelectorSet& operator=(const CSelectorSet&) = delete;

    bool IsEmpty();
    /// Chooses the first combination; false when there is none.
    bool SetFirst();
    bool SetNext(bool Tick = true);
    /// Puts the selectors back to what they were at construction.
    void Restore();
    GENICAM_NAMESPACE::gcstring ToString();
};

} // namespace GENAPI_NAMESPACE
