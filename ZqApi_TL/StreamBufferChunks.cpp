#include "ZqApi_TL/StreamBufferChunks.h"

#include <algorithm>

#include "ZqApi_TL/Teardown.h"
#include "ZqApi_TL/TransportAdapters.h"
#include "ZqApi_TL/ZqStreamBuffer.h"
#include "ZqGenTLCommon/ZqGenTLError.h"
#include "ZqGenTLCommon/ZqGenTLLib.h"
#include "ZqSDKCommon/Error.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqStreamBuffer";

// Far more than any camera sends; the adapters have the same limit.
constexpr size_t MAX_CHUNKS = 65536;

} // namespace

void StreamBufferChunks::Renew() {
    const std::lock_guard<std::mutex> lock(m_Preparing);
    m_bWithoutChunks = false;
}

void StreamBufferChunks::Prepare(CZqGenTLLib* pGenTL, IZqDeviceInside& device) {
    const std::lock_guard<std::mutex> lock(m_Preparing);
    if (m_pAdapter || m_bWithoutChunks)
        return;
    m_bWithoutChunks = true;
    m_pCZqGenTL = pGenTL;
    auto* const pRemotePort = static_cast<IZqPortInside*>(device.GetRemoteIZqPort());
    if (m_NodeMap._Ptr == nullptr)
        pRemotePort->CreateSubTreeNodeMapForChunkData(m_NodeMap);
    if (m_NodeMap._Ptr == nullptr)
        return;
    const gcstring tlType = pRemotePort->GetIZqPortInfo()->GetTLType();
    m_pAdapter = ConvertBadAlloc(UNIT, __LINE__, [&] { return MakeChunkAdapter(tlType, m_NodeMap._Ptr); });
    m_pGenericAdapter = dynamic_cast<GenApi::CChunkAdapterGeneric*>(m_pAdapter.get());
    m_bWithoutChunks = false;
}

void StreamBufferChunks::Attach() {
    if (m_pAdapter) {
        try {
            AttachBytes();
        } catch (...) {
            Detach();
            throw;
        }
    }
    m_bAttached = true;
}

void StreamBufferChunks::AttachBytes() {
    const CZqStreamBufferInfo& info = m_Buffer.GetInfo();
    auto* const base = static_cast<uint8_t*>(info.GetBaseAddress());
    // What a producer says beyond the memory that it was given is not to be believed.
    const size_t size = std::min(FilledSize(info), m_Buffer.GetAnnouncedSize());
    // Nor is an address that is not the one the buffer was announced with.
    if (base == nullptr || base != m_Buffer.GetBufferAddress()) {
        Detach();
        return;
    }
    m_bLayoutHeld = true;
    if (m_pGenericAdapter != nullptr)
        AttachAsListed(*m_pGenericAdapter, base, size);
    else
        m_pAdapter->AttachBuffer(base, static_cast<int64_t>(size));
}

size_t StreamBufferChunks::FilledSize(const CZqStreamBufferInfo& info) const {
    try {
        return info.GetSizeFilled();
    } catch (const GenICam::GenericException&) {
        // A list of places needs no end; tags are found from it.
        if (m_pGenericAdapter == nullptr)
            throw;
        return m_Buffer.GetAnnouncedSize();
    }
}

size_t StreamBufferChunks::QueryChunkList(SINGLE_CHUNK_DATA* list, size_t count) {
    const DS_HANDLE hDataStream = m_Buffer.GetIZqDataStreamInside()->GetDataStreamHandle();
    const BUFFER_HANDLE hBuffer = m_Buffer.GetBufferHandle();
    const GC_ERROR result =
        CallProducer(m_pCZqGenTL->DSGetBufferChunkData, hDataStream, hBuffer, list, &count);
    CheckProducer(m_pCZqGenTL, UNIT, __LINE__, result, "DSGetBufferChunkData",
                  "%d = DSGetBufferChunkData(0x%p, 0x%p, 0x%p, 0x%p)", result, hDataStream, hBuffer, list,
                  &count);
    return count;
}

void StreamBufferChunks::AttachAsListed(GenApi::CChunkAdapterGeneric& adapter, uint8_t* base, size_t size) {
    const size_t announced = QueryChunkList(nullptr, 0);
    // Refused before anything is allocated for it.
    if (announced > MAX_CHUNKS)
        throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__, "No buffer has %I64u chunks.",
                                                     static_cast<uint64_t>(announced));
    ConvertBadAlloc(UNIT, __LINE__, [&] {
        if (m_ListedChunks.size() < announced)
            m_ListedChunks.resize(announced);
        m_Chunks.reserve(m_ListedChunks.size());
    });
    const size_t listed = announced == 0 ? 0 : QueryChunkList(m_ListedChunks.data(), m_ListedChunks.size());
    const size_t count = std::min(listed, m_ListedChunks.size());
    m_Chunks.clear();
    for (size_t index = 0; index < count; ++index) {
        const SINGLE_CHUNK_DATA& chunk = m_ListedChunks[index];
        const auto offset = static_cast<size_t>(chunk.ChunkOffset);
        if (chunk.ChunkOffset < 0 || offset > size || chunk.ChunkLength > size - offset)
            throw ReportError<GenICam::RuntimeException>(
                UNIT, __LINE__, "Chunk %u does not lie in the buffer.", static_cast<uint32_t>(index));
        m_Chunks.push_back({chunk.ChunkID, chunk.ChunkOffset, chunk.ChunkLength});
    }
    adapter.AttachBuffer(base, m_Chunks.data(), static_cast<int64_t>(m_Chunks.size()));
}

void StreamBufferChunks::Detach() {
    m_bAttached = false;
    if (!m_pAdapter || !m_bLayoutHeld)
        return;
    m_bLayoutHeld = false;
    m_pAdapter->DetachBuffer();
}

void StreamBufferChunks::DeleteAdapter() {
    Teardown().Run([this] { Detach(); });
    m_pGenericAdapter = nullptr;
    m_pAdapter.reset();
}

} // namespace ZqApi
