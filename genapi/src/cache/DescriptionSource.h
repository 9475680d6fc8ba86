#pragma once

#include "genapi/src/cache/DescriptionCache.h"

#include <GenApi/Types.h>

#include <mutex>

namespace GENAPI_NAMESPACE::inside {

/// Where a description comes from: bytes that are parsed when it is first asked for, the folder of prepared
/// descriptions, and others that are merged into it. Any thread.
class DescriptionSource {
public:
    using Pointer = std::shared_ptr<const Description>;

    DescriptionSource(std::string_view bytes, ECacheUsage_t cacheUsage, bool suppressStrings);
    /// Without bytes of its own, and so without a place in the cache.
    explicit DescriptionSource(Pointer description)
        : m_usage(CacheUsage_Ignore), m_description(std::move(description)), m_released(true) {}

    Pointer GetDescription();
    bool IsPreprocessed() const;
    void Release();
    bool IsReleased() const;
    /// To be merged when the description is next asked for.
    void Inject(DescriptionSource& other);

private:
    struct Injected {
        Pointer description;
        std::optional<CacheKey> key;
    };

    std::optional<CacheKey> GetKey() const;
    Pointer From(const std::optional<DescriptionCache>& cache) const;
    void ToCache(const DescriptionImage& image) const;
    Pointer Build(size_t textSize, const std::function<void(DocumentWriter&)>& write) const;
    Pointer Prepared();
    Pointer Parse();
    void Merge();

    mutable std::mutex m_mutex;
    const ECacheUsage_t m_usage;
    const bool m_keepTexts = true;
    std::optional<CacheKey> m_key;
    std::string m_bytes; ///< until they have been parsed
    Pointer m_description;
    std::vector<Injected> m_injected; ///< and not merged yet
    bool m_released = false;
};

} // namespace GENAPI_NAMESPACE::inside
