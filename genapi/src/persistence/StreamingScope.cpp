#include "genapi/src/persistence/StreamingScope.h"

#include <GenApi/GenApi.h>

#include <chrono>
#include <thread>

namespace GENAPI_NAMESPACE::inside {

namespace {

/// False when there is no such command to execute now.
bool ExecuteAndWait(INodeMap& map, const char* name) {
    const CCommandPtr command = map.GetNode(name);
    if (!command || !IsWritable(command))
        return false;
    command->Execute();
    constexpr auto kPatience = std::chrono::seconds(5);
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!command->IsDone()) {
        if (std::chrono::steady_clock::now() > end)
            throw TIMEOUT_EXCEPTION("The device has not completed '%s'.", name);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

} // namespace

StreamingScope::StreamingScope(INodeMap& map, const char* open, const char* close)
    : m_map(map), m_close(close), m_open(ExecuteAndWait(map, open)) {}

StreamingScope::~StreamingScope() {
    try {
        Close();
    } catch (const GENICAM_NAMESPACE::GenericException&) { // another failure is on its way already
    }
}

void StreamingScope::Close() {
    if (!m_open)
        return;
    m_open = false;
    ExecuteAndWait(m_map, m_close);
}

void RequireValidRegisters(INodeMap& map) {
    const CBooleanPtr valid = map.GetNode("DeviceRegistersValid");
    if (valid && IsReadable(valid) && !valid->GetValue(false, true))
        throw RUNTIME_EXCEPTION(
            "The device finds its registers inconsistent ('DeviceRegistersValid' is false).");
}

} // namespace GENAPI_NAMESPACE::inside
