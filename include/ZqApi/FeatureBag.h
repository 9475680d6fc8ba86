#pragma once

#include <ZqApi/Releasable.h>
#include <ZqApi/Types.h>

namespace ZqApi {

/// An ordered list of feature names and values, filled from a node map or a text and written back to either.
/// One thread at a time.
class IZqFeatureBag {
public:
    /// Replaces the content by the streamable features of the node map, at most `maxEntries` (-1: all);
    /// returns their number.
    virtual int64_t StoreNodeMapToBag(INodeMap* pNodeMap, int maxEntries) = 0;
    virtual void StoreStringToBag(const gcstring& text) = 0;
    virtual void StoreFileToBag(const gcstring& fileName) = 0;
    /// Writes the content into the node map; false when a value did not stick, with the reasons in
    /// `pErrorList` (may be null).
    virtual bool Load(INodeMap* pNodeMap, bool verify, gcstring_vector* pErrorList) = 0;
    virtual void SaveToString(gcstring& text) = 0;
    virtual void SaveToFile(const gcstring& fileName) = 0;

protected:
    ~IZqFeatureBag() = default;
};

class IZqFeatureBagReleasable : public IZqFeatureBag, public IZqReleasable {
protected:
    ~IZqFeatureBagReleasable() = default;
};

} // namespace ZqApi
