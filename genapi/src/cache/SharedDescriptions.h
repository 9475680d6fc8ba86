#pragma once

#include "genapi/src/description/Description.h"

#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace GENAPI_NAMESPACE::inside {

/// What tells whether a file is still the one that was read: each write changes it, provided that some time
/// passes in between.
class FileVersion {
public:
    /// Nothing when there is no such file.
    static std::optional<FileVersion> Of(const std::string& path);

    bool operator==(const FileVersion& other) const;
    /// False when a write that comes now could leave the version as it is: clocks of file systems are coarse.
    bool IsSettled() const;

private:
    uint64_t m_device = 0;
    uint64_t m_inode = 0;
    int64_t m_size = 0;
    std::chrono::nanoseconds m_written{};
    std::chrono::nanoseconds m_changed{}; ///< its data, name or rights
};

/// The descriptions that this process has read from files: a second camera of a model shares the memory of
/// the first. Held are those that something else uses, and the last one, since a camera is often opened to be
/// looked at before it is opened to be used. What a file of the cache holds follows from its name, so one
/// that is kept is right whatever becomes of the file; that it is gone or damaged is noticed within some
/// milliseconds. Any thread.
class SharedDescriptions {
public:
    using Pointer = std::shared_ptr<const Description>;

    static SharedDescriptions& Get();

    /// Null when nothing is kept, or the file has changed.
    Pointer Find(const std::string& path);
    void Keep(const std::string& path, const FileVersion& version, Pointer description);
    void Clear();

private:
    using Clock = std::chrono::steady_clock;
    struct Entry {
        FileVersion version;
        std::weak_ptr<const Description> description;
        Clock::time_point looked; ///< at the file
    };

    std::mutex m_mutex;
    std::map<std::string, Entry> m_entries;
    Pointer m_last;
};

} // namespace GENAPI_NAMESPACE::inside
