// The operations on files that a device offers through its features.
#include <GenApi/Filestream.h>
#include <GenApi/Pointer.h>

#include <algorithm>
#include <chrono>
#include <thread>
#include <vector>

namespace GENAPI_NAMESPACE {

struct FileProtocolAdapter::Features {
    explicit Features(INodeMap& nodes)
        : map(nodes), file(nodes.GetNode("FileSelector")), operation(nodes.GetNode("FileOperationSelector")),
          openMode(nodes.GetNode("FileOpenMode")), buffer(nodes.GetNode("FileAccessBuffer")),
          offset(nodes.GetNode("FileAccessOffset")), length(nodes.GetNode("FileAccessLength")),
          execute(nodes.GetNode("FileOperationExecute")), status(nodes.GetNode("FileOperationStatus")),
          result(nodes.GetNode("FileOperationResult")), size(nodes.GetNode("FileSize")) {}

    bool AreThere() const {
        return IsImplemented(file) && IsImplemented(operation) && IsImplemented(openMode) &&
               IsImplemented(buffer) && IsImplemented(offset) && IsImplemented(length) &&
               IsImplemented(execute) && IsImplemented(status);
    }

    /// The other features may differ from file to file and from operation to operation, so that these two
    /// come first.
    void Select(const char* name, const char* what) {
        if (!name || !file->GetEntryByName(name))
            throw INVALID_ARGUMENT_EXCEPTION("The device has no file '%s'.", name ? name : "");
        file->FromString(name);
        operation->FromString(what);
    }

    void Execute(const char* name, const char* what) {
        using Clock = std::chrono::steady_clock;
        constexpr std::chrono::minutes kPatience(1);
        execute->Execute();
        for (const auto end = Clock::now() + kPatience; !execute->IsDone();
             std::this_thread::sleep_for(std::chrono::milliseconds(1)))
            if (Clock::now() > end)
                throw TIMEOUT_EXCEPTION("%s of file '%s' does not end.", what, name);
        const GENICAM_NAMESPACE::gcstring outcome = status->ToString(false, true);
        if (outcome != "Success")
            throw RUNTIME_EXCEPTION("%s of file '%s' failed: the device says '%s'.", what, name,
                                    outcome.c_str());
    }

    /// What the device has moved, of `wanted`.
    int64_t Moved(int64_t wanted) {
        return IsReadable(result) ? std::clamp<int64_t>(result->GetValue(false, true), 0, wanted) : wanted;
    }

    /// The longest access that the device may be asked for; bounded, because not every device says.
    int64_t MostAtOnce() {
        const int64_t least = length->GetMin();
        const int64_t most = std::min(length->GetMax(), kMostAtOnce);
        return most - (most - least) % length->GetInc();
    }

    /// Sets what the next operation moves; up to `wanted` bytes.
    int64_t SetRange(int64_t from, int64_t wanted) {
        offset->SetValue(from);
        int64_t count = std::min(wanted, MostAtOnce());
        length->SetValue(count);
        if (buffer->GetLength() < count) {
            count = buffer->GetLength();
            length->SetValue(count);
        }
        return count;
    }

    static constexpr int64_t kMostAtOnce = 1 << 20;

    INodeMap& map;
    CEnumerationPtr file;
    CEnumerationPtr operation;
    CEnumerationPtr openMode;
    CRegisterPtr buffer;
    CIntegerPtr offset;
    CIntegerPtr length;
    CCommandPtr execute;
    CEnumerationPtr status;
    CIntegerPtr result;
    CIntegerPtr size;
    std::vector<uint8_t> bytes;
};

namespace {

/// The features under the map's lock.
template <class Features>
class Locked {
public:
    explicit Locked(const std::unique_ptr<Features>& features) : m_features(Checked(features)) {
        m_features.map.GetLock().Lock();
    }
    ~Locked() { m_features.map.GetLock().Unlock(); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
    Features* operator->() { return &m_features; }

private:
    static Features& Checked(const std::unique_ptr<Features>& features) {
        if (!features)
            throw LOGICAL_ERROR_EXCEPTION("No node map with file access is attached.");
        return *features;
    }
    Features& m_features;
};

} // namespace

FileProtocolAdapter::FileProtocolAdapter() = default;
FileProtocolAdapter::~FileProtocolAdapter() = default;

bool FileProtocolAdapter::attach(INodeMap* pNodeMap) {
    m_features.reset();
    if (!pNodeMap)
        throw INVALID_ARGUMENT_EXCEPTION("There is no node map to look for files in.");
    auto features = std::make_unique<Features>(*pNodeMap);
    if (!features->AreThere())
        return false;
    m_features = std::move(features);
    return true;
}

void FileProtocolAdapter::openFile(const char* pFileName, std::ios_base::openmode mode) {
    Locked<Features> features(m_features);
    features->Select(pFileName, "Open");
    const bool writes = (mode & (std::ios_base::out | std::ios_base::app)) != 0;
    const bool reads = (mode & std::ios_base::in) != 0;
    features->openMode->FromString(writes && reads ? "ReadWrite" : writes ? "Write" : "Read");
    features->Execute(pFileName, "Open");
}

void FileProtocolAdapter::closeFile(const char* pFileName) {
    Locked<Features> features(m_features);
    features->Select(pFileName, "Close");
    features->Execute(pFileName, "Close");
}

void FileProtocolAdapter::deleteFile(const char* pFileName) {
    Locked<Features> features(m_features);
    features->Select(pFileName, "Delete");
    features->Execute(pFileName, "Delete");
}

int64_t FileProtocolAdapter::getFileSize(const char* pFileName) {
    Locked<Features> features(m_features);
    features->Select(pFileName, "Open");
    return IsReadable(features->size) ? features->size->GetValue(false, true) : -1;
}

int64_t FileProtocolAdapter::getBufSize(const char* pFileName, std::ios_base::openmode mode) {
    Locked<Features> features(m_features);
    features->Select(pFileName, mode & std::ios_base::in ? "Read" : "Write");
    const int64_t most = features->MostAtOnce();
    // A buffer that is as long as the access has no length of its own.
    features->length->SetValue(most);
    return std::min(most, features->buffer->GetLength());
}

// Devices refuse to read past the end, so that the size is asked where there is one.
std::streamsize FileProtocolAdapter::read(char* pBuffer, int64_t offset, std::streamsize length,
                                          const char* pFileName) {
    Locked<Features> features(m_features);
    features->Select(pFileName, "Read");
    int64_t rest = length;
    if (IsReadable(features->size))
        rest = std::min(rest, features->size->GetValue(false, true) - offset);
    std::streamsize done = 0;
    while (done < rest) {
        const int64_t wanted = features->SetRange(offset + done, rest - done);
        features->Execute(pFileName, "Read");
        std::vector<uint8_t>& bytes = features->bytes;
        bytes.resize(static_cast<size_t>(features->buffer->GetLength()));
        const int64_t moved = std::min(features->Moved(wanted), static_cast<int64_t>(bytes.size()));
        if (moved <= 0)
            break;
        features->buffer->Get(bytes.data(), static_cast<int64_t>(bytes.size()), false, true);
        std::copy_n(bytes.begin(), moved, pBuffer + done);
        done += moved;
    }
    return done;
}

std::streamsize FileProtocolAdapter::write(const char* pBuffer, int64_t offset, std::streamsize length,
                                           const char* pFileName) {
    Locked<Features> features(m_features);
    features->Select(pFileName, "Write");
    std::streamsize done = 0;
    while (done < length) {
        const int64_t wanted = features->SetRange(offset + done, length - done);
        std::vector<uint8_t>& bytes = features->bytes;
        bytes.assign(static_cast<size_t>(features->buffer->GetLength()), 0);
        std::copy_n(pBuffer + done, wanted, bytes.begin());
        features->buffer->Set(bytes.data(), static_cast<int64_t>(bytes.size()));
        features->Execute(pFileName, "Write");
        const int64_t moved = features->Moved(wanted);
        if (moved <= 0)
            break;
        done += moved;
    }
    return done;
}

} // namespace GENAPI_NAMESPACE
