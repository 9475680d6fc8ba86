#pragma once

#include <iosfwd>

#include <GenApi/Persistence.h>
#include <ZqApi/FeatureBag.h>

namespace ZqApi {

/// The node-map library's feature bag with a persistence text of its own: values stay as they stand, a
/// carriage return before the line feed included.
class CZqFeatureBag final : public IZqFeatureBagReleasable {
public:
    CZqFeatureBag() = default;
    CZqFeatureBag(const CZqFeatureBag&) = delete;
    CZqFeatureBag& operator=(const CZqFeatureBag&) = delete;

    int64_t StoreNodeMapToBag(INodeMap* pNodeMap, int maxEntries) override;
    void StoreStringToBag(const gcstring& text) override;
    void StoreFileToBag(const gcstring& fileName) override;
    bool Load(INodeMap* pNodeMap, bool verify, gcstring_vector* pErrorList) override;
    void SaveToString(gcstring& text) override;
    void SaveToFile(const gcstring& fileName) override;
    void Release() override;

private:
    ~CZqFeatureBag() = default;
    void Read(std::istream& stream);
    void ReadFeatures(std::istream& stream);
    void Append(const gcstring& name, const gcstring& value);
    void Write(std::ostream& stream) const;

    /// The lists, which only derived classes reach.
    class Content final : public GenApi::CFeatureBag {
    public:
        using CFeatureBag::m_BagName;
        using CFeatureBag::m_Names;
        using CFeatureBag::m_Values;
    };
    Content FeatureBag;
};

} // namespace ZqApi
