#pragma once

#include "Context.h"

#include <memory>

namespace contract {

/// The few features of a camera that frames need, found in its description without a node map: a feature is
/// followed through pValue to a register with a plain address. Enough for most cameras; where it isn't, the
/// checks that need it are skipped.
class RemoteFeatures {
public:
    RemoteFeatures(const Functions& gentl, PORT_HANDLE port);
    ~RemoteFeatures();

    /// Writes a number into the register behind a feature; false when that can't be found or written.
    bool Write(const char* feature, uint32_t value) const;
    bool Read(const char* feature, uint64_t& value) const;

private:
    struct Document;
    struct Register;
    bool Find(const char* feature, Register& found) const;

    const Functions& m_gentl;
    PORT_HANDLE m_port;
    std::unique_ptr<Document> m_document;
};

} // namespace contract
