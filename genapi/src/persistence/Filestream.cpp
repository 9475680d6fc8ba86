#include <GenApi/Filestream.h>

#include <limits>
#include <string>
#include <vector>

namespace GENAPI_NAMESPACE {

namespace {

/// The bytes of one open file, in one direction.
class DevFileBuffer final : public std::streambuf {
public:
    ~DevFileBuffer() override { Close(); }

    bool IsOpen() const { return m_open; }

    bool Open(INodeMap* map, const char* name, std::ios_base::openmode mode) {
        if (!map || !name)
            throw INVALID_ARGUMENT_EXCEPTION("A file on a device needs a node map and a name.");
        if (m_open || !m_device.attach(map))
            return false;
        m_name = name;
        m_reads = (mode & std::ios_base::in) != 0;
        try {
            m_device.openFile(name, mode);
        } catch (const GENICAM_NAMESPACE::GenericException&) {
            return false;
        }
        m_open = true;
        return Begin(mode);
    }

    /// False when the file could not be written to its end or not be closed. Throws nothing: destructors use
    /// it.
    bool Close() noexcept {
        if (!m_open)
            return false;
        bool good = true;
        try {
            good = Flush();
        } catch (...) {
            good = false;
        }
        m_open = false;
        setg(nullptr, nullptr, nullptr);
        setp(nullptr, nullptr);
        try {
            m_device.closeFile(m_name.c_str());
        } catch (...) {
            good = false;
        }
        return good;
    }

protected:
    int_type underflow() override {
        if (!m_open || !m_reads)
            return traits_type::eof();
        m_offset += gptr() - eback();
        const auto got = m_device.read(m_bytes.data(), m_offset, Size(), m_name.c_str());
        setg(m_bytes.data(), m_bytes.data(), m_bytes.data() + got);
        return got > 0 ? traits_type::to_int_type(*gptr()) : traits_type::eof();
    }

    int_type overflow(int_type byte) override {
        if (!m_open || m_reads || !Flush())
            return traits_type::eof();
        if (!traits_type::eq_int_type(byte, traits_type::eof())) {
            *pptr() = traits_type::to_char_type(byte);
            pbump(1);
        }
        return traits_type::not_eof(byte);
    }

    int sync() override { return Flush() ? 0 : -1; }

    pos_type seekoff(off_type offset, std::ios_base::seekdir from, std::ios_base::openmode) override {
        if (!m_open)
            return pos_type(off_type(-1));
        const int64_t here = m_offset + (m_reads ? gptr() - eback() : pptr() - pbase());
        if (from == std::ios_base::cur && offset == 0)
            return pos_type(here);
        if (!Flush())
            return pos_type(off_type(-1));
        int64_t base = from == std::ios_base::cur ? here : 0;
        if (from == std::ios_base::end && (base = m_device.getFileSize(m_name.c_str())) < 0)
            return pos_type(off_type(-1));
        if (offset < -base || offset > std::numeric_limits<int64_t>::max() - base)
            return pos_type(off_type(-1));
        m_offset = base + offset;
        if (m_reads)
            setg(m_bytes.data(), m_bytes.data(), m_bytes.data());
        return pos_type(m_offset);
    }

    pos_type seekpos(pos_type position, std::ios_base::openmode mode) override {
        return seekoff(off_type(position), std::ios_base::beg, mode);
    }

private:
    std::streamsize Size() const { return static_cast<std::streamsize>(m_bytes.size()); }

    bool Begin(std::ios_base::openmode mode) {
        try {
            const int64_t size = m_device.getBufSize(m_name.c_str(), mode);
            m_offset = 0;
            if (size > 0 && (mode & (std::ios_base::app | std::ios_base::ate)))
                m_offset = m_device.getFileSize(m_name.c_str());
            if (size > 0 && m_offset >= 0) {
                m_bytes.resize(static_cast<size_t>(size));
                if (!m_reads)
                    setp(m_bytes.data(), m_bytes.data() + Size());
                return true;
            }
        } catch (const GENICAM_NAMESPACE::GenericException&) {
            // The device has opened the file, but does not tell how to use it.
        }
        Close();
        return false;
    }

    bool Flush() {
        if (m_reads || !m_open)
            return true;
        const std::streamsize waiting = pptr() - pbase();
        const auto written = waiting > 0 ? m_device.write(pbase(), m_offset, waiting, m_name.c_str()) : 0;
        m_offset += written;
        // What the device did not take is lost: the stream says so once, and not again for the same bytes.
        setp(m_bytes.data(), m_bytes.data() + Size());
        return written == waiting;
    }

    FileProtocolAdapter m_device;
    std::string m_name;
    std::vector<char> m_bytes;
    int64_t m_offset = 0; ///< of the first byte of the buffer
    bool m_open = false;
    bool m_reads = false;
};

DevFileBuffer& BufferOf(const std::unique_ptr<std::streambuf>& buffer) {
    return static_cast<DevFileBuffer&>(*buffer);
}

} // namespace

IDevFileStream::IDevFileStream() : std::istream(nullptr), m_buffer(new DevFileBuffer) {
    init(m_buffer.get());
}
IDevFileStream::IDevFileStream(INodeMap* pNodeMap, const char* pFileName, std::ios_base::openmode mode)
    : IDevFileStream() {
    open(pNodeMap, pFileName, mode);
}
IDevFileStream::~IDevFileStream() = default;
void IDevFileStream::open(INodeMap* pNodeMap, const char* pFileName, std::ios_base::openmode mode) {
    if (BufferOf(m_buffer).Open(pNodeMap, pFileName, mode | std::ios_base::in))
        clear();
    else
        setstate(std::ios_base::failbit);
}
bool IDevFileStream::is_open() const {
    return BufferOf(m_buffer).IsOpen();
}
void IDevFileStream::close() {
    if (!BufferOf(m_buffer).Close())
        setstate(std::ios_base::failbit);
}

ODevFileStream::ODevFileStream() : std::ostream(nullptr), m_buffer(new DevFileBuffer) {
    init(m_buffer.get());
}
ODevFileStream::ODevFileStream(INodeMap* pNodeMap, const char* pFileName, std::ios_base::openmode mode)
    : ODevFileStream() {
    open(pNodeMap, pFileName, mode);
}
ODevFileStream::~ODevFileStream() = default;
void ODevFileStream::open(INodeMap* pNodeMap, const char* pFileName, std::ios_base::openmode mode) {
    const auto writing = (mode | std::ios_base::out) & ~std::ios_base::in;
    if (BufferOf(m_buffer).Open(pNodeMap, pFileName, writing))
        clear();
    else
        setstate(std::ios_base::failbit);
}
bool ODevFileStream::is_open() const {
    return BufferOf(m_buffer).IsOpen();
}
void ODevFileStream::close() {
    if (!BufferOf(m_buffer).Close())
        setstate(std::ios_base::failbit);
}

} // namespace GENAPI_NAMESPACE
