#pragma once

#include <array>
#include <cstdint>
#include <mutex>
#include <string>

namespace zqgentl {

/// The files that a camera keeps, and the one register interface through which they are reached: select,
/// open, put data into the buffer, execute. Results are told in registers, as on a real device, not by
/// failures. Any thread may call any member.
class DeviceFiles {
public:
    static constexpr size_t fileCount = 2;
    static constexpr size_t bufferSize = 4096;
    static constexpr size_t fileSizeMax = size_t{1} << 20;

    /// Numbered as the enumerations of FileAccessControl number them.
    enum class File : int64_t { UserFile, Information };
    enum class Operation : int64_t { Open, Close, Read, Write, Delete };
    enum class Mode : int64_t { Read, Write, ReadWrite };
    enum class Status : int64_t { Success, Failure };

    explicit DeviceFiles(std::string information);

    void Select(int64_t file);
    void SelectOperation(int64_t operation);
    void SetMode(int64_t mode);
    void SetOffset(int64_t offset);
    void SetLength(int64_t length);
    void SetBuffer(const std::string& bytes);
    void Execute();
    /// Closes every file, as a loss of power would.
    void CloseAll();

    struct State {
        int64_t file = 0;
        int64_t operation = 0;
        int64_t mode = 0;
        int64_t offset = 0;
        int64_t length = 0;
        int64_t result = 0;
        Status status = Status::Success;
        int64_t size = 0;
    };
    [[nodiscard]] State Current() const;
    [[nodiscard]] std::string Buffer() const;

private:
    struct Content {
        std::string bytes;
        bool writable = false;
        bool open = false;
        Mode mode = Mode::Read;
    };

    /// Each says whether it could be done.
    bool Open(Content& content);
    bool Read(const Content& content);
    bool Write(Content& content);
    bool Delete(Content& content);
    [[nodiscard]] bool Perform(Content& content);

    mutable std::mutex m_lock;
    std::array<Content, fileCount> m_files;
    State m_state;
    std::string m_buffer;
};

} // namespace zqgentl
