#include "producer/sim/DeviceFiles.h"

#include "producer/sim/CameraRegisters.h"

#include <algorithm>
#include <utility>

namespace zqgentl {

DeviceFiles::DeviceFiles(std::string information) : m_buffer(bufferSize, '\0') {
    m_files[static_cast<size_t>(File::UserFile)].writable = true;
    m_files[static_cast<size_t>(File::Information)].bytes = std::move(information);
}

void DeviceFiles::Select(int64_t file) {
    CheckRange("FileSelector", file, 0, fileCount - 1);
    std::lock_guard<std::mutex> guard(m_lock);
    m_state.file = file;
}

void DeviceFiles::SelectOperation(int64_t operation) {
    CheckRange("FileOperationSelector", operation, 0, static_cast<int64_t>(Operation::Delete));
    std::lock_guard<std::mutex> guard(m_lock);
    m_state.operation = operation;
}

void DeviceFiles::SetMode(int64_t mode) {
    CheckRange("FileOpenMode", mode, 0, static_cast<int64_t>(Mode::ReadWrite));
    std::lock_guard<std::mutex> guard(m_lock);
    m_state.mode = mode;
}

void DeviceFiles::SetOffset(int64_t offset) {
    CheckRange("FileAccessOffset", offset, 0, fileSizeMax);
    std::lock_guard<std::mutex> guard(m_lock);
    m_state.offset = offset;
}

void DeviceFiles::SetLength(int64_t length) {
    CheckRange("FileAccessLength", length, 0, bufferSize);
    std::lock_guard<std::mutex> guard(m_lock);
    m_state.length = length;
}

void DeviceFiles::SetBuffer(const std::string& bytes) {
    std::lock_guard<std::mutex> guard(m_lock);
    m_buffer = bytes;
}

void DeviceFiles::Execute() {
    std::lock_guard<std::mutex> guard(m_lock);
    m_state.result = 0;
    const bool done = Perform(m_files[static_cast<size_t>(m_state.file)]);
    m_state.status = done ? Status::Success : Status::Failure;
}

bool DeviceFiles::Perform(Content& content) {
    switch (static_cast<Operation>(m_state.operation)) {
    case Operation::Open:
        return Open(content);
    case Operation::Close:
        return std::exchange(content.open, false);
    case Operation::Read:
        return Read(content);
    case Operation::Write:
        return Write(content);
    case Operation::Delete:
        return Delete(content);
    }
    return false;
}

bool DeviceFiles::Open(Content& content) {
    const Mode mode = static_cast<Mode>(m_state.mode);
    if (content.open || (mode != Mode::Read && !content.writable))
        return false;
    content.open = true;
    content.mode = mode;
    if (mode == Mode::Write)
        content.bytes.clear();
    return true;
}

bool DeviceFiles::Read(const Content& content) {
    const auto offset = static_cast<size_t>(m_state.offset);
    if (!content.open || content.mode == Mode::Write || offset > content.bytes.size())
        return false;
    const std::string piece = content.bytes.substr(offset, static_cast<size_t>(m_state.length));
    std::copy(piece.begin(), piece.end(), m_buffer.begin());
    m_state.result = static_cast<int64_t>(piece.size());
    return true;
}

bool DeviceFiles::Write(Content& content) {
    const auto offset = static_cast<size_t>(m_state.offset);
    const auto length = static_cast<size_t>(m_state.length);
    if (!content.open || content.mode == Mode::Read || offset > content.bytes.size() ||
        offset + length > fileSizeMax)
        return false;
    content.bytes.resize(std::max(content.bytes.size(), offset + length));
    content.bytes.replace(offset, length, m_buffer, 0, length);
    m_state.result = m_state.length;
    return true;
}

bool DeviceFiles::Delete(Content& content) {
    if (content.open || !content.writable)
        return false;
    content.bytes.clear();
    return true;
}

void DeviceFiles::CloseAll() {
    std::lock_guard<std::mutex> guard(m_lock);
    for (Content& content : m_files)
        content.open = false;
    m_state = State();
}

DeviceFiles::State DeviceFiles::Current() const {
    std::lock_guard<std::mutex> guard(m_lock);
    State state = m_state;
    state.size = static_cast<int64_t>(m_files[static_cast<size_t>(state.file)].bytes.size());
    return state;
}

std::string DeviceFiles::Buffer() const {
    std::lock_guard<std::mutex> guard(m_lock);
    return m_buffer;
}

} // namespace zqgentl
