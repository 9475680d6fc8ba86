#pragma once

#include <GenApi/IBase.h>

#include <memory>

namespace GENAPI_NAMESPACE {

/// Walks every combination of the values of a feature's selectors, those that select selectors included; the
/// last selector changes fastest. What an inner selector offers is asked anew for each value of the outer
/// ones. A feature without selectors has one combination, the empty one. A selector that can't be written
/// stays as it is. One thread at a time; other threads see the selectors move.
class GENAPI_API CSelectorSet {
public:
    /// A null pointer, or something that is no node, has no selectors.
    explicit CSelectorSet(IBase* pBase);
    /// Restores, and drops what fails there.
    virtual ~CSelectorSet();
    CSelectorSet(const CSelectorSet&) = delete;
    CSelectorSet& operator=(const CSelectorSet&) = delete;

    /// True when the feature has no selectors.
    bool IsEmpty();
    /// Chooses the first combination; false when there is none.
    bool SetFirst();
    /// Chooses the next combination, or the present one again when not `Tick`; false when there is none.
    bool SetNext(bool Tick = true);
    /// Puts the selectors back to what they were at construction. Tries all, then throws the first failure.
    void Restore();
    /// "Selector=Value, Selector2=Value2" as they are now.
    GENICAM_NAMESPACE::gcstring ToString();

private:
    class Inside;
    std::unique_ptr<Inside> m_inside;
};

} // namespace GENAPI_NAMESPACE
