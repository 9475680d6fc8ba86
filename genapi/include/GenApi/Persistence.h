#pragma once

#include <GenApi/INodeMap.h>

#include <istream>
#include <ostream>

namespace GENAPI_NAMESPACE {

/// Names and values of features, in the order in which they are to be written. One thread at a time; loading
/// and storing hold the node map's lock, and run its callbacks when they have ended.
class GENAPI_API CFeatureBag {
public:
    CFeatureBag();
    virtual ~CFeatureBag();

    /// Writes the values, in order; what fails is tried again while anything more succeeds. `Verify` checks
    /// access and limits and reads every value back. True when all values have been written; else
    /// `pErrorList` receives a line for each that has not. Writes nothing while 'TLParamsLocked' is set.
    /// "{Selector=Value, Selector2=Value2}<TAB>value" is understood as a value for one setting of selectors.
    /// A null map gives InvalidArgumentException "Nodemap pointer is NULL".
    bool LoadFromBag(INodeMap* pNodeMap, bool Verify = true,
                     GENICAM_NAMESPACE::gcstring_vector* pErrorList = nullptr);
    /// Replaces the content by that of a node map and returns the number of entries, at most
    /// `MaxNumPersistScriptEntries` unless negative: all features marked as streamable that can be read and
    /// written now, or all such features under "Root" where none is marked. Selected features are stored for
    /// every value of their selectors, which are put back.
    int64_t StoreToBag(INodeMap* pNodeMap, int MaxNumPersistScriptEntries = -1);
    /// "Name = Value" for every entry, in lines.
    GENICAM_NAMESPACE::gcstring ToString();
    const GENICAM_NAMESPACE::gcstring& GetBagName() const;
    void SetBagName(const GENICAM_NAMESPACE::gcstring& bagName);
    bool operator==(const CFeatureBag& other) const;
    bool operator!=(const CFeatureBag& other) const;

    friend GENAPI_API std::istream& operator>>(std::istream& stream, CFeatureBag& bag);
    friend GENAPI_API std::ostream& operator<<(std::ostream& stream, const CFeatureBag& bag);

protected:
    GENICAM_NAMESPACE::gcstring m_BagName;
    GENICAM_NAMESPACE::gcstring_vector m_Names;
    GENICAM_NAMESPACE::gcstring_vector m_Values;
};

/// Replaces the content by that of a persistence text. Blank lines and comments are skipped, line ends of
/// either kind understood. RuntimeException "The stream is eof" (the bag stays) or when the magic line is
/// missing or a NUL is met.
GENAPI_API std::istream& operator>>(std::istream& stream, CFeatureBag& bag);
/// Writes the persistence text, version 3.0.0.
GENAPI_API std::ostream& operator<<(std::ostream& stream, const CFeatureBag& bag);

} // namespace GENAPI_NAMESPACE
