#include "genapi/src/cache/DescriptionSource.h"

#include "genapi/src/document/DescriptionText.h"

#include <Base/GCException.h>

namespace GENAPI_NAMESPACE::inside {

DescriptionSource::DescriptionSource(std::string_view bytes, ECacheUsage_t cacheUsage, bool suppressStrings)
    : m_usage(cacheUsage), m_keepTexts(!suppressStrings) {
    const auto cache = m_usage == CacheUsage_Ignore ? std::nullopt : DescriptionCache::Find();
    if (cache)
        m_key = KeyOf(bytes, m_keepTexts);
    m_description = From(cache);
    if (!m_description)
        m_bytes = bytes;
}

namespace {

/// The same description with every text once, and without the markup that parsing leaves between them.
DescriptionImage Compact(const DescriptionImage& image) {
    return BuildImage(image.size, [&](DocumentWriter& writer) {
        writer.ShareTexts();
        CopyDocument(image.description->document, writer);
    });
}

} // namespace

DescriptionSource::Pointer DescriptionSource::GetDescription() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return Prepared();
}
bool DescriptionSource::IsPreprocessed() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_description && m_injected.empty();
}
void DescriptionSource::Release() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    Prepared();
    m_released = true;
}
bool DescriptionSource::IsReleased() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_released;
}

// Prepares the other one first: with both locks held, two that are injected into each other would wait for
// ever.
void DescriptionSource::Inject(DescriptionSource& other) {
    Injected injected{other.GetDescription(), other.GetKey()};
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_injected.push_back(std::move(injected));
}

std::optional<CacheKey> DescriptionSource::GetKey() const {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_key;
}

/// Null when it isn't there; RuntimeException when it should be.
DescriptionSource::Pointer DescriptionSource::From(const std::optional<DescriptionCache>& cache) const {
    Pointer description;
    if (cache && m_key && (m_usage == CacheUsage_Automatic || m_usage == CacheUsage_ForceRead))
        description = cache->Read(*m_key);
    if (!description && m_usage == CacheUsage_ForceRead)
        throw RUNTIME_EXCEPTION("The folder of GENICAM_CACHE_V3_0 does not hold this description.");
    return description;
}

void DescriptionSource::ToCache(const DescriptionImage& image) const {
    if (m_usage == CacheUsage_Ignore)
        return;
    const auto cache = m_key ? DescriptionCache::Find() : std::nullopt;
    const bool written = cache && cache->Write(*m_key, Compact(image));
    if (!written && m_usage == CacheUsage_ForceWrite)
        throw RUNTIME_EXCEPTION("The description can't be written to the folder of GENICAM_CACHE_V3_0.");
}

DescriptionSource::Pointer DescriptionSource::Build(size_t textSize,
                                                    const std::function<void(DocumentWriter&)>& write) const {
    const DescriptionImage image = BuildImage(textSize, write);
    ToCache(image);
    return image.description;
}

DescriptionSource::Pointer DescriptionSource::Prepared() {
    if (!m_description)
        m_description = Parse();
    while (!m_injected.empty())
        Merge();
    return m_description;
}

DescriptionSource::Pointer DescriptionSource::Parse() {
    std::string storage;
    const std::string_view text = CleanDescription(UnpackDescription(m_bytes, storage), storage);
    Pointer description = Build(text.size(), [&](DocumentWriter& writer) {
        const std::string_view copy = writer.GetArena().Keep(text);
        ParseDocument(const_cast<char*>(copy.data()), copy.size(), m_keepTexts, writer);
    });
    m_bytes = std::string();
    return description;
}

// Those that can't be merged stay out.
void DescriptionSource::Merge() {
    const Injected injected = std::move(m_injected.front());
    m_injected.erase(m_injected.begin());
    const std::optional<CacheKey> before = m_key;
    m_key = m_key && injected.key ? std::optional<CacheKey>(KeyOf(*m_key, *injected.key)) : std::nullopt;
    try {
        Pointer merged = From(DescriptionCache::Find());
        if (!merged)
            merged = Build(0, [&](DocumentWriter& writer) {
                MergeDocuments(m_description->document, injected.description->document, writer);
            });
        m_description = std::move(merged);
    } catch (...) {
        m_key = before;
        throw;
    }
}

} // namespace GENAPI_NAMESPACE::inside
