#pragma once

#include <ZqApi/StreamBuffer.h>

namespace ZqApi {

/// Marks, while it lives, that this thread runs a callback of one of a stream's buffers: what would destroy
/// the buffers must not be done there.
class StreamCallbackScope {
public:
    explicit StreamCallbackScope(const IZqDataStream* pStream) : m_pOuter(s_pStream) { s_pStream = pStream; }
    ~StreamCallbackScope() { s_pStream = m_pOuter; }
    StreamCallbackScope(const StreamCallbackScope&) = delete;
    StreamCallbackScope& operator=(const StreamCallbackScope&) = delete;

    static bool IsInside(const IZqDataStream* pStream) { return s_pStream == pStream; }

    /// The stream whose callbacks the error events of a module count as; null for modules that own
    /// themselves.
    static const IZqDataStream* StreamOf(const IZqStreamBuffer* pBuffer) {
        return pBuffer->GetIZqDataStream();
    }
    static const IZqDataStream* StreamOf(const void*) { return nullptr; }

private:
    static thread_local const IZqDataStream* s_pStream;
    const IZqDataStream* const m_pOuter;
};

inline thread_local const IZqDataStream* StreamCallbackScope::s_pStream = nullptr;

} // namespace ZqApi
