#include "tools/zq/OutputFile.h"

#include "tools/zq/Failure.h"

#include <cerrno>
#include <cstring>

namespace ZqTool {

OutputFile::OutputFile(std::filesystem::path path)
    : m_path(std::move(path)), m_file(std::fopen(m_path.c_str(), "wb")) {
    if (!m_file)
        Fail();
}

void OutputFile::Write(const void* bytes, size_t size) {
    if (std::fwrite(bytes, 1, size, m_file.get()) != size)
        Fail();
}

void OutputFile::Close() {
    if (std::fclose(m_file.release()) != 0)
        Fail();
}

void OutputFile::Fail(const std::string& why) const {
    throw Failure("writing " + m_path.string(), why.empty() ? std::strerror(errno) : why,
                  "choose another folder with -o, or free some space");
}

} // namespace ZqTool
