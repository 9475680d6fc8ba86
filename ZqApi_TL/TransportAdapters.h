#pragma once

#include <memory>

#include <GenApi/ChunkAdapter.h>
#include <GenApi/EventAdapter.h>
#include <ZqApi/Types.h>

namespace ZqApi {

/// The adapters that read a transport's own layout. A transport that is neither USB3 Vision nor GigE Vision
/// has none that the library knows, and gets the generic one, which is told the layout. Throw std::bad_alloc.
std::unique_ptr<GenApi::CEventAdapter> MakeEventAdapter(const gcstring& tlType, INodeMap* pNodeMap);
std::unique_ptr<GenApi::CChunkAdapter> MakeChunkAdapter(const gcstring& tlType, INodeMap* pNodeMap);

} // namespace ZqApi
