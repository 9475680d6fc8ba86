#pragma once

#include <GenApi/INodeMap.h>

#include <istream>
#include <ostream>

namespace GENAPI_NAMESPACE {

/// Names and values of features, in order. Not implemented: LoadFromBag and StoreToBag throw
/// RuntimeException.
class GENAPI_API CFeatureBag {
public:
    CFeatureBag();
    virtual ~CFeatureBag();

    bool LoadFromBag(INodeMap* pNodeMap, bool Verify = true,
                     GENICAM_NAMESPACE::gcstring_vector* pErrorList = nullptr);
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

/// Not implemented: RuntimeException.
GENAPI_API std::istream& operator>>(std::istream& stream, CFeatureBag& bag);
/// Not implemented: RuntimeException.
GENAPI_API std::ostream& operator<<(std::ostream& stream, const CFeatureBag& bag);

} // namespace GENAPI_NAMESPACE
