#include "genapi/src/document/DescriptionText.h"

#include "genapi/src/document/Lexical.h"

#include <Base/GCException.h>

#include <zip.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>

namespace GENAPI_NAMESPACE::inside {

namespace {

constexpr std::string_view kLocalHeader("PK\x03\x04", 4);
constexpr std::string_view kEndOfDirectory("PK\x05\x06", 4);
constexpr size_t kEndOfDirectorySize = 22;
constexpr std::string_view kEndOfText = "</RegisterDescription>";

uint32_t Little(std::string_view bytes, size_t offset, int count) {
    uint32_t value = 0;
    for (int i = 0; i < count; ++i)
        value |= static_cast<uint32_t>(static_cast<unsigned char>(bytes[offset + static_cast<size_t>(i)]))
                 << (8 * i);
    return value;
}

/// The archive alone: devices pad it at the end, and some put a header in front, which all stored offsets
/// ignore.
std::string_view ArchiveIn(std::string_view bytes) {
    const size_t end = bytes.rfind(kEndOfDirectory);
    if (end == bytes.npos || bytes.size() - end < kEndOfDirectorySize)
        return bytes;
    const size_t comment = Little(bytes, end + 20, 2);
    bytes = bytes.substr(0, std::min(bytes.size(), end + kEndOfDirectorySize + comment));
    const uint64_t directory = uint64_t{Little(bytes, end + 12, 4)} + Little(bytes, end + 16, 4);
    return directory < end ? bytes.substr(end - directory) : bytes;
}

struct CloseArchive {
    void operator()(zip_t* archive) const { zip_discard(archive); }
};
struct CloseFile {
    void operator()(zip_file_t* file) const { zip_fclose(file); }
};
using Archive = std::unique_ptr<zip_t, CloseArchive>;

Archive OpenArchive(std::string_view bytes) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, &error);
    Archive archive(source ? zip_open_from_source(source, ZIP_RDONLY, &error) : nullptr);
    if (!archive) {
        const std::string reason = zip_error_strerror(&error);
        if (source)
            zip_source_free(source);
        zip_error_fini(&error);
        throw RUNTIME_EXCEPTION("The zipped description can't be opened: %s.", reason.c_str());
    }
    zip_error_fini(&error);
    return archive;
}

bool IsDescriptionName(std::string_view name) {
    const size_t slash = name.rfind('/');
    const std::string_view file = slash == name.npos ? name : name.substr(slash + 1);
    return file.size() > 4 && EqualIgnoringCase(file.substr(file.size() - 4), ".xml") &&
           file.substr(0, 2) != "._" && name.substr(0, 9) != "__MACOSX/";
}

/// The first member that is named like a description, or else the first that is not empty.
zip_uint64_t ChooseMember(zip_t* archive) {
    const zip_int64_t count = zip_get_num_entries(archive, 0);
    std::optional<zip_uint64_t> fallback;
    for (zip_int64_t i = 0; i < count; ++i) {
        const auto index = static_cast<zip_uint64_t>(i);
        const char* const stored = zip_get_name(archive, index, ZIP_FL_ENC_RAW);
        const std::string_view name = stored ? stored : "";
        if (IsDescriptionName(name))
            return index;
        if (!name.empty() && name.back() != '/' && !fallback)
            fallback = index;
    }
    if (!fallback)
        throw RUNTIME_EXCEPTION("The zipped description holds no file.");
    return *fallback;
}

// Counts what really comes out: the sizes stored in an archive may lie.
std::string ReadMember(zip_t* archive, zip_uint64_t index) {
    const std::unique_ptr<zip_file_t, CloseFile> file(zip_fopen_index(archive, index, 0));
    if (!file)
        throw RUNTIME_EXCEPTION("The zipped description can't be unpacked: %s.", zip_strerror(archive));
    std::string text;
    char chunk[16384];
    for (;;) {
        const zip_int64_t got = zip_fread(file.get(), chunk, sizeof chunk);
        // Comes behind the last byte: some devices store a checksum of something else.
        if (got < 0 && zip_error_code_zip(zip_file_get_error(file.get())) == ZIP_ER_CRC)
            return text;
        if (got < 0)
            throw RUNTIME_EXCEPTION("The zipped description can't be unpacked: %s.",
                                    zip_file_strerror(file.get()));
        if (got == 0)
            return text;
        text.append(chunk, static_cast<size_t>(got));
        if (text.size() > kMaxDescriptionSize)
            throw RUNTIME_EXCEPTION("The zipped description unpacks to more than %zu bytes.",
                                    kMaxDescriptionSize);
    }
}

bool IsUtf16(std::string_view text) {
    const std::string_view mark = text.substr(0, 2);
    return mark == "\xFF\xFE" || mark == "\xFE\xFF" || mark == std::string_view("<\0", 2) ||
           mark == std::string_view("\0<", 2);
}

size_t SequenceLength(std::string_view text, size_t at) {
    const auto first = static_cast<unsigned char>(text[at]);
    const size_t length = first < 0x80   ? 1
                          : first < 0xC2 ? 0
                          : first < 0xE0 ? 2
                          : first < 0xF0 ? 3
                          : first < 0xF5 ? 4
                                         : 0;
    if (length == 0 || text.size() - at < length)
        return 0;
    for (size_t i = 1; i < length; ++i)
        if ((static_cast<unsigned char>(text[at + i]) & 0xC0) != 0x80)
            return 0;
    return length;
}

void AppendUtf8(std::string& out, unsigned point) {
    if (point >= 0x10000) {
        out += static_cast<char>(0xF0 | (point >> 18));
        out += static_cast<char>(0x80 | ((point >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((point >> 6) & 0x3F));
    } else if (point >= 0x800) {
        out += static_cast<char>(0xE0 | (point >> 12));
        out += static_cast<char>(0x80 | ((point >> 6) & 0x3F));
    } else if (point >= 0x80) {
        out += static_cast<char>(0xC0 | (point >> 6));
    } else {
        out += static_cast<char>(point);
        return;
    }
    out += static_cast<char>(0x80 | (point & 0x3F));
}

std::string FromUtf16(std::string_view text) {
    const bool little = text[0] == '\xFF' || text[0] == '<';
    const auto unit = [&](size_t at) {
        const auto first = static_cast<unsigned char>(text[at]);
        const auto second = static_cast<unsigned char>(text[at + 1]);
        return little ? unsigned{first} | unsigned{second} << 8 : unsigned{second} | unsigned{first} << 8;
    };
    std::string out;
    for (size_t at = unit(0) == 0xFEFF ? 2 : 0; at + 1 < text.size(); at += 2) {
        unsigned point = unit(at);
        if (point == 0) // padding
            break;
        const bool paired = point >= 0xD800 && point < 0xDC00 && at + 3 < text.size() &&
                            unit(at + 2) >= 0xDC00 && unit(at + 2) < 0xE000;
        if (paired) {
            point = 0x10000 + ((point - 0xD800) << 10) + (unit(at + 2) - 0xDC00);
            at += 2;
        }
        AppendUtf8(out, point >= 0xD800 && point < 0xE000 ? 0xFFFD : point);
    }
    return out;
}

/// Past the plain ASCII from `at` on, in steps of 8 bytes.
size_t SkipAscii(std::string_view text, size_t at) {
    constexpr uint64_t kHighBits = 0x8080808080808080;
    uint64_t bytes = 0;
    while (text.size() - at >= sizeof bytes) {
        std::memcpy(&bytes, text.data() + at, sizeof bytes);
        if ((bytes & kHighBits) != 0)
            break;
        at += sizeof bytes;
    }
    return at;
}

/// Bytes that are no UTF-8 are taken for Windows-1252, which old files use for the signs in their tool tips.
std::string RepairUtf8(std::string_view text) {
    static constexpr uint16_t kWindows[32] = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                              0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                              0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                              0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};
    std::string repaired;
    size_t copied = 0;
    for (size_t at = SkipAscii(text, 0); at < text.size(); at = SkipAscii(text, at)) {
        const size_t length = SequenceLength(text, at);
        if (length != 0) {
            at += length;
            continue;
        }
        const auto byte = static_cast<unsigned char>(text[at]);
        repaired.append(text.substr(copied, at - copied));
        AppendUtf8(repaired, byte < 0xA0 ? kWindows[byte - 0x80] : byte);
        copied = ++at;
    }
    return repaired.append(text.substr(copied));
}

bool IsUtf8(std::string_view text) {
    size_t at = SkipAscii(text, 0);
    while (at < text.size()) {
        const size_t length = SequenceLength(text, at);
        if (length == 0)
            return false;
        at = SkipAscii(text, at + length);
    }
    return true;
}

size_t BeginOfText(std::string_view bytes) {
    const size_t declaration = bytes.find("<?xml");
    return declaration == bytes.npos ? bytes.find("<RegisterDescription") : declaration;
}

/// Also behind a header, but not behind the text itself.
bool HoldsArchive(std::string_view bytes) {
    const size_t begin = bytes.find(kLocalHeader);
    return begin == 0 || (begin < BeginOfText(bytes) && bytes.find(kEndOfDirectory, begin) != bytes.npos);
}

} // namespace

std::string_view UnpackDescription(std::string_view bytes, std::string& storage) {
    if (bytes.size() > kMaxDescriptionSize)
        throw RUNTIME_EXCEPTION("The description is larger than %zu bytes.", kMaxDescriptionSize);
    if (!HoldsArchive(bytes))
        return bytes;
    try {
        const Archive archive = OpenArchive(ArchiveIn(bytes));
        storage = ReadMember(archive.get(), ChooseMember(archive.get()));
        return storage;
    } catch (const GENICAM_NAMESPACE::RuntimeException&) {
        // A damaged archive may still hold the whole text as it is.
        const size_t begin = BeginOfText(bytes);
        if (begin == bytes.npos || bytes.find(kEndOfText, begin) == bytes.npos)
            throw;
        return bytes.substr(begin);
    }
}

std::string_view CleanDescription(std::string_view text, std::string& storage) {
    if (IsUtf16(text)) {
        storage = FromUtf16(text);
        text = storage;
    }
    text = text.substr(0, text.find('\0'));
    const size_t begin = BeginOfText(text);
    if (begin != text.npos)
        text.remove_prefix(begin);
    const size_t end = text.rfind(kEndOfText);
    if (end != text.npos)
        text = text.substr(0, end + kEndOfText.size());
    if (IsUtf8(text))
        return text;
    storage = RepairUtf8(text);
    return storage;
}

} // namespace GENAPI_NAMESPACE::inside
