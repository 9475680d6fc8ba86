#pragma once

#include "genapi/src/image/DescriptionImage.h"

#include <optional>
#include <string>

namespace GENAPI_NAMESPACE::inside {

/// What a description is found by: a hash of all that it is made from.
struct CacheKey {
    uint64_t low = 0;
    uint64_t high = 0;
};

/// For the bytes of a description. `keepTexts` is part of the key: without tool tips it is another image.
CacheKey KeyOf(std::string_view bytes, bool keepTexts);
/// For a description into which another is merged.
CacheKey KeyOf(CacheKey target, CacheKey addition);

/// The folder of prepared descriptions: one file for each image. Any thread, any process: a file appears
/// whole or not at all. The folder belongs to the user: a file in it is trusted once its checksum is right.
class DescriptionCache {
public:
    /// The folder that GENICAM_CACHE_V3_0 names; none while it is unset.
    static std::optional<DescriptionCache> Find();

    /// Null when there is no file, or it is damaged, or was written by another version.
    std::shared_ptr<const Description> Read(CacheKey key) const;
    /// False when it can't be written, as when the folder does not exist.
    bool Write(CacheKey key, const DescriptionImage& image) const;
    /// Removes what has been written. False when something is left or there is no such folder.
    bool Clear() const;

private:
    explicit DescriptionCache(std::string folder) : m_folder(std::move(folder)) {}
    std::string PathOf(CacheKey key) const;

    std::string m_folder;
};

} // namespace GENAPI_NAMESPACE::inside
