#include "genapi/src/cache/SharedDescriptions.h"

#include <algorithm>

#include <sys/stat.h>

namespace GENAPI_NAMESPACE::inside {

namespace {

std::chrono::nanoseconds Duration(const timespec& time) {
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace

std::optional<FileVersion> FileVersion::Of(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0)
        return std::nullopt;
    FileVersion version;
    version.m_device = status.st_dev;
    version.m_inode = status.st_ino;
    version.m_size = status.st_size;
    version.m_written = Duration(status.st_mtim);
    version.m_changed = Duration(status.st_ctim);
    return version;
}

bool FileVersion::operator==(const FileVersion& other) const {
    return m_device == other.m_device && m_inode == other.m_inode && m_size == other.m_size &&
           m_written == other.m_written && m_changed == other.m_changed;
}

bool FileVersion::IsSettled() const {
    constexpr std::chrono::milliseconds kCoarsest(100);
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return now - std::max(m_written, m_changed) >= kCoarsest;
}

SharedDescriptions& SharedDescriptions::Get() {
    static SharedDescriptions all;
    return all;
}

SharedDescriptions::Pointer SharedDescriptions::Find(const std::string& path) {
    constexpr std::chrono::milliseconds kLookAgain(10);
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_entries.find(path);
    if (found == m_entries.end())
        return nullptr;
    Entry& entry = found->second;
    const Clock::time_point now = Clock::now();
    if (now - entry.looked >= kLookAgain) {
        if (!(FileVersion::Of(path) == entry.version))
            return nullptr;
        entry.looked = now;
    }
    return entry.description.lock();
}

void SharedDescriptions::Keep(const std::string& path, const FileVersion& version, Pointer description) {
    if (!version.IsSettled())
        return;
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (auto entry = m_entries.begin(); entry != m_entries.end();)
        entry = entry->second.description.expired() ? m_entries.erase(entry) : std::next(entry);
    m_entries.insert_or_assign(path, Entry{version, description, Clock::now()});
    m_last.swap(description); // what was the last one goes with the lock already given back
}

void SharedDescriptions::Clear() {
    Pointer last;
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_entries.clear();
    m_last.swap(last);
}

} // namespace GENAPI_NAMESPACE::inside
