#pragma once

#include <atomic>
#include <memory>

#include <ZqApi/Types.h>

namespace ZqApi {

class CZqGenTLLib;

/// A module's description file: reads it through the module's port, keeps the bytes and builds node maps from
/// them.
///
/// A member of its port, which serialises node-map creation. Node maps that were handed out by reference
/// outlive it.
class CZqXMLFile {
public:
    /// `deviceName` names every node map made here.
    CZqXMLFile(CZqGenTLLib* pCZqGenTL, PORT_HANDLE hPort, GenApi::EAccessMode accessMode,
               const gcstring& deviceName);
    ~CZqXMLFile();
    CZqXMLFile(const CZqXMLFile&) = delete;
    CZqXMLFile& operator=(const CZqXMLFile&) = delete;

    /// Builds the main node map and connects it to the port, once; later calls do nothing. After a failure
    /// the next call loads again.
    void CreateNodeMap(const gcstring& url, GenApi::IPort* pPort, const gcstring& portName);
    /// Any thread.
    bool IsCreated() const { return m_bCreated; }
    /// The main node map; null until created.
    INodeMap* GetNodeMap() const;

    /// Throws GenICam::RuntimeException "XML File is not loaded.".
    gcstring GetXMLFileName() const;
    /// Writes the bytes as retrieved; a plain file without its trailing NUL bytes.
    void SaveToFile(const gcstring& fileName) const;

    /// A node map of the features under `rootName`; does nothing before the main one exists.
    void CreateSubTreeNodeMap(const gcstring& rootName, GenApi::CNodeMapRef& nodeMapRef, bool subTreeFlag);
    bool HasFactoryForChunkData() const { return !m_ChunkFactory.IsEmpty(); }
    void CreateNodeMapFactoryForChunkData(const gcstring& rootName, bool subTreeFlag);
    void CreateSubTreeNodeMapForChunkData(GenApi::CNodeMapRef& nodeMapRef);

    /// Reads the description into memory in one port access. Throws GenICam::InvalidArgumentException for a
    /// description that does not lie in the module's registers, CZqGenTLErrorException when the read fails.
    void LoadXMLFile(const gcstring& url);
    void DeleteBuffer();

    /// The port's URL as producers older than GenTL 1.1 tell it.
    static gcstring GetURL(CZqGenTLLib* pCZqGenTL, PORT_HANDLE hPort);

private:
    std::unique_ptr<GenApi::CNodeMapFactory> MakeFactory(const gcstring& portName) const;
    void Connect(GenApi::CNodeMapRef& nodeMapRef);

    CZqGenTLLib* m_pCZqGenTL;
    PORT_HANDLE m_hPort;
    GenApi::EAccessMode m_AccessMode;
    GenApi::EContentType_t m_ContentType = GenApi::ContentType_Xml;
    gcstring m_strFilePath;
    size_t m_BufferSize = 0;
    std::unique_ptr<char[]> m_Buffer;
    GenApi::CNodeMapRef m_NodeMapRef{"Device"};
    std::unique_ptr<GenApi::CNodeMapFactory> m_Factory;
    GenApi::CNodeMapFactory m_ChunkFactory;
    // Set last: whoever sees it set may use the node map without the port's lock.
    std::atomic<bool> m_bCreated{false};
    GenApi::IPort* m_pPort = nullptr;
    gcstring m_PortName;
    gcstring m_DeviceName;
};

} // namespace ZqApi
