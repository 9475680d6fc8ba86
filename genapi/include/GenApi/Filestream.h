#pragma once

#include <GenApi/INodeMap.h>

#include <istream>
#include <ostream>
#include <streambuf>

namespace GENAPI_NAMESPACE {

/// A file on the device, through its file access features. Not implemented: `open` throws RuntimeException.
class GENAPI_API IDevFileStream : public std::istream {
public:
    IDevFileStream();
    ~IDevFileStream() override;
    void open(INodeMap* pNodeMap, const char* pFileName, std::ios_base::openmode mode = std::ios_base::in);
    bool is_open() const;
    void close();
};

/// A file on the device, for writing. Not implemented: `open` throws RuntimeException.
class GENAPI_API ODevFileStream : public std::ostream {
public:
    ODevFileStream();
    ~ODevFileStream() override;
    void open(INodeMap* pNodeMap, const char* pFileName, std::ios_base::openmode mode = std::ios_base::out);
    bool is_open() const;
    void close();
};

} // namespace GENAPI_NAMESPACE
