#pragma once

#include <ZqApi/Releasable.h>
#include <ZqApi/Types.h>

namespace ZqApi {

/// An ordered list of feature names and values, filled from a node map or a text and written back to either.
/// One thread at a time.
///
/// The text is GenApi's persistence format, version 3.0.0: three comment lines, of which the first carries
/// the magic "{05D8C294-F295-4dfb-9D01-096BD04049F4}", then name, tab and value of one feature per line, as
/// they stand. Lines that begin with '#' are ignored; blank lines are not, and a carriage return belongs to
/// the value. A name of more than 1023 characters ends the reading without a word; of a comment of more than
/// 1024 the rest is read as data. A null node map throws GenICam::InvalidArgumentException "Nodemap pointer
/// is NULL".
class IZqFeatureBag {
public:
    /// Replaces the content by the streamable features of the node map, at most `maxEntries` (-1: all);
    /// returns their number.
    virtual int64_t StoreNodeMapToBag(INodeMap* pNodeMap, int maxEntries) = 0;
    /// Replaces the content by that of a text. Throws GenICam::RuntimeException: "The stream is eof" for an
    /// empty one, which leaves the content in place; when the first line lacks the magic, the bag is empty
    /// then. A last name without a tab or a value is dropped.
    virtual void StoreStringToBag(const gcstring& text) = 0;
    /// The same for a file; "File %s could not be opened." leaves the content in place, "File %s is
    /// unreadable." what was read until then.
    virtual void StoreFileToBag(const gcstring& fileName) = 0;
    /// Writes the content into the node map in order, with `verify` checked and read back. What fails is
    /// tried again while anything more succeeds; false when a value did not stick in the end, with the
    /// reasons in `pErrorList` (may be null). Writes nothing while the camera's TLParamsLocked is set.
    virtual bool Load(INodeMap* pNodeMap, bool verify, gcstring_vector* pErrorList) = 0;
    virtual void SaveToString(gcstring& text) = 0;
    /// Throws GenICam::RuntimeException "File %s could not be opened." or, when the disk is full,
    /// "File %s is unwritable."; part of the text is left then.
    virtual void SaveToFile(const gcstring& fileName) = 0;

protected:
    ~IZqFeatureBag() = default;
};

class IZqFeatureBagReleasable : public IZqFeatureBag, public IZqReleasable {
protected:
    ~IZqFeatureBagReleasable() = default;
};

} // namespace ZqApi
