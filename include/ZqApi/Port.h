#pragma once

#include <ZqApi/Types.h>

namespace ZqApi {

/// What a producer says of one of its ports (GCGetPortInfo).
///
/// Every getter asks the producer anew, from any thread, and throws CZqGenTLErrorException when the producer
/// refuses. The object belongs to its port.
class IZqPortInfo {
public:
    virtual gcstring GetID() const = 0;
    virtual gcstring GetVendor() const = 0;
    virtual gcstring GetModel() const = 0;
    /// The transport: "U3V", "GEV", "CXP", ...
    virtual gcstring GetTLType() const = 0;
    /// The kind of module behind the port: "TLSystem", "TLInterface", "TLDevice", "TLDataStream", "TLBuffer"
    /// or "Device".
    virtual gcstring GetModule() const = 0;
    virtual bool IsLittleEndian() const = 0;
    virtual bool IsBigEndian() const = 0;
    virtual bool IsAccessRead() const = 0;
    virtual bool IsAccessWrite() const = 0;
    virtual bool IsAccessNA() const = 0;
    virtual bool IsAccessNI() const = 0;
    virtual gcstring GetVersion() const = 0;
    /// The name of the Port node that the module's description file expects.
    virtual gcstring GetPortName() const = 0;
    virtual ~IZqPortInfo() = default;
};

/// What a producer says of the selected description file of a port (GCGetPortURLInfo).
///
/// Same rules as IZqPortInfo. A producer too old for GCGetPortURLInfo still answers `GetURL` for index 0.
class IZqPortURLInfo {
public:
    virtual gcstring GetURL() const = 0;
    virtual int32_t GetSchemaVerMajor() const = 0;
    virtual int32_t GetSchemaVerMinor() const = 0;
    virtual int32_t GetFileVerMajor() const = 0;
    virtual int32_t GetFileVerMinor() const = 0;
    virtual int32_t GetFileVerSubMinor() const = 0;
    /// Hands `pBuffer` (null: ask for the size only) and the in/out size straight to the producer.
    virtual void GetSha1HashBuffer(void* pBuffer, size_t* pSize) const = 0;
    virtual uint64_t GetFileRegisterAddress() const = 0;
    /// In bytes, zipped files as they are stored.
    virtual uint64_t GetFileSize() const = 0;
    /// 0 in the module's registers, 1 on a web server, 2 on disk.
    virtual int32_t GetScheme() const = 0;
    virtual gcstring GetFileName() const = 0;
    virtual ~IZqPortURLInfo() = default;
};

/// A module's register space and the feature tree (node map) that its description file defines.
///
/// Ports belong to their module object and live as long as it. The node map is built on the first call that
/// needs it and stays; a failed attempt is made again by the next call. Only descriptions that the module
/// itself stores ("local:") are supported, others throw GenICam::InvalidArgumentException.
class IZqPort {
public:
    /// The number of description files that the port offers; 0 or 1 from producers older than GenTL 1.1.
    virtual uint32_t GetPortURLCount() const = 0;
    virtual uint32_t GetPortURLIndex() const = 0;
    /// Selects the description file that `GetIZqPortURLInfo` describes and that a node map not yet built is
    /// built from. Throws GenICam::OutOfRangeException when the index is not below the count.
    virtual void SetPortURLIndex(uint32_t nURLIndex) = 0;
    virtual IZqPortURLInfo* GetIZqPortURLInfo() const = 0;
    /// The module's feature tree, owned by the port, never null. Its nodes may be used from any thread.
    virtual INodeMap* GetINodeMap() = 0;
    virtual IZqPortInfo* GetIZqPortInfo() const = 0;
    /// The name of the description file, as the module gives it.
    virtual gcstring GetXMLFileName() = 0;
    /// Writes the description file as it was retrieved (zipped or plain, a plain one without trailing NUL
    /// bytes). Throws GenICam::RuntimeException "File %s could not be opened." or "File %s is unwritable.".
    virtual void SaveXMLFile(const gcstring& fileName) = 0;

protected:
    ~IZqPort() = default;
};

} // namespace ZqApi
