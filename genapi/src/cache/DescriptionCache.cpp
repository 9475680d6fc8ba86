#include "genapi/src/cache/DescriptionCache.h"

#include "genapi/src/cache/SharedDescriptions.h"

#include <atomic>
#include <cstdio>
#include <filesystem>

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

namespace GENAPI_NAMESPACE::inside {

namespace {

constexpr std::string_view kSuffix = ".zqgenapi";
constexpr std::string_view kUnfinishedSuffix = ".zqgenapi-new";

/// To be raised whenever an image of the same layout means something else.
constexpr uint32_t kVersion = 4;

/// Another compiler, or another version of the structures, lays out other images.
constexpr uint32_t LayoutNumber() {
    uint32_t number = 0;
    for (const size_t size :
         {sizeof(Description), sizeof(NodeDescription), sizeof(SourceNode), sizeof(Element),
          sizeof(RegisterPart), sizeof(SourcePart), sizeof(LimitPart), sizeof(DisplayPart),
          sizeof(FormulaPart), sizeof(Formula), sizeof(Instruction), sizeof(VariableReference),
          sizeof(EntryPart), sizeof(PortPart), sizeof(Number), static_cast<size_t>(ElementName::FirstUnknown),
          static_cast<size_t>(NodeType::Port)})
        number = number * 31 + static_cast<uint32_t>(size);
    return number;
}

struct Header {
    char magic[8] = {'Z', 'Q', 'I', 'M', 'A', 'G', 'E', '\n'};
    uint32_t version = kVersion;
    uint32_t layout = LayoutNumber();
    uint32_t byteOrder = 0x01020304;
    uint32_t reserved = 0;
    uint64_t keyLow = 0;
    uint64_t keyHigh = 0;
    uint64_t size = 0;
    uint64_t checksum = 0;
    uint64_t filler = 0;
};
static_assert(sizeof(Header) == 64, "the image behind it is aligned");

/// Read and checked in parts that stay in the processor's cache in between.
constexpr size_t kPartSize = size_t{128} * 1024;
constexpr size_t kFirstPart = size_t{16} * 1024;

class Checksum {
public:
    Checksum() { XXH3_64bits_reset(&m_state); }
    void Add(const void* bytes, size_t size) { XXH3_64bits_update(&m_state, bytes, size); }
    uint64_t Get() const { return XXH3_64bits_digest(&m_state); }

private:
    XXH3_state_t m_state;
};

Header HeaderOf(CacheKey key, size_t size, uint64_t checksum) {
    Header header;
    header.keyLow = key.low;
    header.keyHigh = key.high;
    header.size = size;
    header.checksum = checksum;
    return header;
}

/// Closed at the end of its life.
class File {
public:
    File(const std::string& path, int flags) : m_file(open(path.c_str(), flags | O_CLOEXEC, 0644)) {}
    ~File() { Close(); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool IsOpen() const { return m_file >= 0; }
    /// Up to `size`; less at the end of the file.
    size_t Read(char* bytes, size_t size) const {
        const ssize_t got = read(m_file, bytes, size);
        return got > 0 ? static_cast<size_t>(got) : 0;
    }
    bool Write(const void* data, size_t size) const {
        const auto* bytes = static_cast<const char*>(data);
        while (size > 0) {
            const ssize_t put = write(m_file, bytes, size);
            if (put <= 0)
                return false;
            bytes += put;
            size -= static_cast<size_t>(put);
        }
        return true;
    }
    bool Close() {
        const bool good = m_file < 0 || close(m_file) == 0;
        m_file = -1;
        return good;
    }

private:
    int m_file;
};

/// False when there is no more memory.
bool Resize(Memory& memory, size_t size) {
    void* const resized = std::realloc(memory.get(), size);
    if (!resized)
        return false;
    static_cast<void>(memory.release());
    memory.reset(static_cast<char*>(resized));
    return true;
}

/// Null when it is not what belongs to the key. For a small description the calls to the system are most of
/// the time: it takes one to read it.
std::shared_ptr<const Description> ReadImage(const File& file, CacheKey key) {
    Memory memory;
    if (!file.IsOpen() || !Resize(memory, kFirstPart))
        return nullptr;
    const size_t first = file.Read(memory.get(), kFirstPart);
    Header header;
    std::memcpy(&header, memory.get(), sizeof header);
    const size_t size = header.size;
    if (first < sizeof header + sizeof(Description) || size < first - sizeof header || size > kMaxImageSize ||
        !Resize(memory, sizeof header + size))
        return nullptr;
    char* const image = memory.get() + sizeof header;
    Checksum checksum;
    for (size_t done = 0, part = first - sizeof header; done < size;
         part = file.Read(image + done, std::min(kPartSize, size - done))) {
        if (part == 0)
            return nullptr;
        checksum.Add(image + done, part);
        done += part;
    }
    const Header expected = HeaderOf(key, size, checksum.Get());
    if (std::memcmp(&header, &expected, sizeof expected) != 0)
        return nullptr;
    const std::shared_ptr<char> whole(std::move(memory));
    return {whole, reinterpret_cast<const Description*>(image)};
}

bool EndsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

} // namespace

CacheKey KeyOf(std::string_view bytes, bool keepTexts) {
    const XXH128_hash_t hash = XXH3_128bits_withSeed(bytes.data(), bytes.size(), keepTexts ? 1 : 0);
    return {hash.low64, hash.high64};
}

CacheKey KeyOf(CacheKey target, CacheKey addition) {
    const uint64_t both[4] = {target.low, target.high, addition.low, addition.high};
    const XXH128_hash_t hash = XXH3_128bits(both, sizeof both);
    return {hash.low64, hash.high64};
}

std::optional<DescriptionCache> DescriptionCache::Find() {
    const char* const folder = std::getenv("GENICAM_CACHE_V3_0");
    if (!folder || !*folder)
        return std::nullopt;
    return DescriptionCache(folder);
}

std::string DescriptionCache::PathOf(CacheKey key) const {
    constexpr size_t kNameLength = 1 + 32;
    std::string path;
    path.reserve(m_folder.size() + kNameLength + kSuffix.size());
    path.append(m_folder).push_back('/');
    for (const uint64_t half : {key.high, key.low})
        for (int shift = 60; shift >= 0; shift -= 4)
            path.push_back("0123456789abcdef"[(half >> shift) & 15]);
    return path.append(kSuffix);
}

std::shared_ptr<const Description> DescriptionCache::Read(CacheKey key) const {
    SharedDescriptions& shared = SharedDescriptions::Get();
    const std::string path = PathOf(key);
    auto description = shared.Find(path);
    if (description)
        return description;
    const auto version = FileVersion::Of(path);
    if (!version)
        return nullptr;
    description = ReadImage(File(path, O_RDONLY), key);
    if (description)
        shared.Keep(path, *version, description);
    return description;
}

bool DescriptionCache::Write(CacheKey key, const DescriptionImage& image) const {
    static std::atomic<unsigned> count{0};
    const std::string path = PathOf(key);
    const std::string unfinished = path.substr(0, path.size() - kSuffix.size()) + "." +
                                   std::to_string(getpid()) + "." + std::to_string(++count) +
                                   std::string(kUnfinishedSuffix);
    File file(unfinished, O_WRONLY | O_CREAT | O_EXCL);
    if (!file.IsOpen())
        return false;
    const void* const bytes = image.description.get();
    const Header header = HeaderOf(key, image.size, XXH3_64bits(bytes, image.size));
    const bool written = file.Write(&header, sizeof header) && file.Write(bytes, image.size);
    if (file.Close() && written && std::rename(unfinished.c_str(), path.c_str()) == 0)
        return true;
    unlink(unfinished.c_str());
    return false;
}

bool DescriptionCache::Clear() const {
    namespace fs = std::filesystem;
    SharedDescriptions::Get().Clear();
    std::error_code failure;
    bool all = true;
    for (fs::directory_iterator file(m_folder, failure), end; !failure && file != end;
         file.increment(failure)) {
        const std::string name = file->path().filename().string();
        std::error_code left;
        if (EndsWith(name, kSuffix) || EndsWith(name, kUnfinishedSuffix))
            all = fs::remove(file->path(), left) && all;
    }
    return all && !failure;
}

} // namespace GENAPI_NAMESPACE::inside
