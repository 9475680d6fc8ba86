#pragma once

#include <GenApi/INodeMap.h>

namespace GENAPI_NAMESPACE::inside {

/// Brackets an operation on many features with two commands of the device, where it has them: one that opens
/// and one that closes. Waits until the device has done each.
class StreamingScope {
public:
    /// Executes `open`. A device without it, or where it can't be executed, needs no bracket.
    StreamingScope(INodeMap& map, const char* open, const char* close);
    /// Closes what Close has not closed; failures are dropped.
    ~StreamingScope();
    StreamingScope(const StreamingScope&) = delete;
    StreamingScope& operator=(const StreamingScope&) = delete;

    /// Executes `close`.
    void Close();

private:
    INodeMap& m_map;
    const char* m_close;
    bool m_open;
};

/// The bracket around many values that are written without being checked against each other one by one.
constexpr char kStreamingStart[] = "DeviceRegistersStreamingStart";
constexpr char kStreamingEnd[] = "DeviceRegistersStreamingEnd";
/// RuntimeException when the device, once it has all of them, says that they don't suit each other.
void RequireValidRegisters(INodeMap& map);

} // namespace GENAPI_NAMESPACE::inside
