#pragma once

#include <GenApi/INodeMap.h>

#include <istream>
#include <memory>
#include <ostream>
#include <streambuf>

namespace GENAPI_NAMESPACE {

/// Files on a device, through its features FileSelector, FileOperationSelector, FileOpenMode,
/// FileAccessBuffer, FileAccessOffset, FileAccessLength, FileOperationExecute and FileOperationStatus;
/// FileOperationResult and FileSize are used where they exist. A file's name is an entry of FileSelector.
/// Each operation holds the map's lock until the device has done it, for a minute at most. The map must
/// outlive the adapter. Any thread. RuntimeException with the device's status when it refuses an operation,
/// InvalidArgumentException for a name that it does not have, TimeoutException when it does not end; failures
/// of features pass through.
class GENAPI_API FileProtocolAdapter {
public:
    FileProtocolAdapter();
    virtual ~FileProtocolAdapter();
    FileProtocolAdapter(const FileProtocolAdapter&) = delete;
    FileProtocolAdapter& operator=(const FileProtocolAdapter&) = delete;

    /// False when the map lacks one of the features; the adapter is then not attached.
    bool attach(INodeMap* pNodeMap);
    /// `mode` is in, out or both.
    void openFile(const char* pFileName, std::ios_base::openmode mode);
    void closeFile(const char* pFileName);
    void deleteFile(const char* pFileName);
    /// Reads or writes up to `length` bytes at an offset of an open file. Fewer when the file ends there, or
    /// when the device stops early.
    std::streamsize read(char* pBuffer, int64_t offset, std::streamsize length, const char* pFileName);
    std::streamsize write(const char* pBuffer, int64_t offset, std::streamsize length, const char* pFileName);
    /// What one operation of the device moves at most.
    int64_t getBufSize(const char* pFileName, std::ios_base::openmode mode);
    /// Negative when the device does not tell.
    int64_t getFileSize(const char* pFileName);

private:
    struct Features;
    std::unique_ptr<Features> m_features;
};

/// A file on the device, for reading; seeking works. As with files elsewhere, failbit tells that `open` has
/// failed, and badbit that the device has refused to read. InvalidArgumentException for a null map or name.
/// One thread at a time; the map must outlive the open stream.
class GENAPI_API IDevFileStream : public std::istream {
public:
    IDevFileStream();
    IDevFileStream(INodeMap* pNodeMap, const char* pFileName,
                   std::ios_base::openmode mode = std::ios_base::in);
    ~IDevFileStream() override;
    void open(INodeMap* pNodeMap, const char* pFileName, std::ios_base::openmode mode = std::ios_base::in);
    bool is_open() const;
    /// failbit when the device refuses to close the file.
    void close();

private:
    std::unique_ptr<std::streambuf> m_buffer;
};

/// A file on the device, for writing, with `app` behind its present end. Bytes reach the device when a buffer
/// is full, on `flush` and on `close`; otherwise as above.
class GENAPI_API ODevFileStream : public std::ostream {
public:
    ODevFileStream();
    ODevFileStream(INodeMap* pNodeMap, const char* pFileName,
                   std::ios_base::openmode mode = std::ios_base::out);
    ~ODevFileStream() override;
    void open(INodeMap* pNodeMap, const char* pFileName, std::ios_base::openmode mode = std::ios_base::out);
    bool is_open() const;
    /// failbit when bytes could not be written, or when the device refuses to close the file.
    void close();

private:
    std::unique_ptr<std::streambuf> m_buffer;
};

} // namespace GENAPI_NAMESPACE
