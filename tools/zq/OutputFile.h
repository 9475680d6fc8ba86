#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

namespace ZqTool {

/// A file that is being written. All operations throw Failure that names it.
class OutputFile {
public:
    explicit OutputFile(std::filesystem::path path);

    [[nodiscard]] std::FILE* Stream() const { return m_file.get(); }
    void Write(const void* bytes, size_t size);
    void Write(const std::string& text) { Write(text.data(), text.size()); }
    /// Reports what was held back until now; without it the file may be incomplete.
    void Close();
    /// Throws; with no reason given, the system's.
    [[noreturn]] void Fail(const std::string& why = {}) const;

private:
    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    std::filesystem::path m_path;
    std::unique_ptr<std::FILE, Closer> m_file;
};

} // namespace ZqTool
