#pragma once

#include <memory>
#include <mutex>

#include <GenApi/ChunkAdapter.h>

#include "ZqApi_TL/InsideInterfaces.h"
#include "ZqApi_TL/ZqPortInfo.h"
#include "ZqApi_TL/ZqPortURLInfo.h"
#include "ZqSDKCommon/ZqXMLFile.h"

namespace ZqApi {

/// A GenTL port: towards the application its description files and node map, towards the node maps their
/// registers.
///
/// Owned by its module, which closes the port's handle after the port is gone. Building the node map is
/// serialised; register access holds no lock and goes straight to the producer.
class CZqPort final : public IZqPortInside {
public:
    /// `deviceName` becomes the device name of the node maps. Calls nothing in the producer.
    CZqPort(CZqGenTLLib* pCZqGenTL, PORT_HANDLE hPort, GenApi::EAccessMode accessMode,
            const gcstring& deviceName);

    uint32_t GetPortURLCount() const override;
    uint32_t GetPortURLIndex() const override;
    void SetPortURLIndex(uint32_t nURLIndex) override;
    IZqPortURLInfo* GetIZqPortURLInfo() const override;
    INodeMap* GetINodeMap() override;
    IZqPortInfo* GetIZqPortInfo() const override;
    gcstring GetXMLFileName() override;
    void SaveXMLFile(const gcstring& fileName) override;

    PORT_HANDLE GetPortHandle() const override;
    void AttachChunkBuffer(uint8_t* pBuffer, int64_t length) override;
    void DetachChunkBuffer() override;
    void CreateSubTreeNodeMap(gcstring rootName, GenApi::CNodeMapRef& nodeMapRef, bool subTreeFlag) override;
    void CreateNodeMapFactoryForChunkData(bool subTreeFlag) override;
    void CreateSubTreeNodeMapForChunkData(GenApi::CNodeMapRef& nodeMapRef) override;

    ~CZqPort() override;

    void Read(void* pBuffer, int64_t address, int64_t length) override;
    void Write(const void* pBuffer, int64_t address, int64_t length) override;
    GenApi::EAccessMode GetAccessMode() const override;

private:
    CZqXMLFile& CreatedXMLFile();

    CZqGenTLLib* m_pCZqGenTL;
    PORT_HANDLE m_hPort;
    mutable CZqPortURLInfo m_URLInfo;
    mutable CZqPortInfo m_PortInfo;
    GenApi::EAccessMode m_AccessMode;
    std::mutex m_CreationMutex;
    CZqXMLFile m_XMLFile;
    // Bound to the node map, so it goes first.
    std::unique_ptr<GenApi::CChunkAdapter> m_pChunkAdapter;
};

} // namespace ZqApi
