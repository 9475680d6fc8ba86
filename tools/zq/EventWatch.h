#pragma once

#include "tools/zq/Camera.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace ZqTool {

/// What came with one event.
struct DeviceEvent {
    std::string name; ///< "FrameStart"
    std::string id;   ///< hexadecimal digits
    std::optional<int64_t> timestamp;
    nlohmann::ordered_json values = nlohmann::ordered_json::object(); ///< of its features, by name
};

/// Collects the events of a camera, each with the values that its features had when it came.
class EventWatch {
public:
    EventWatch() = default;
    EventWatch(const EventWatch&) = delete;
    EventWatch& operator=(const EventWatch&) = delete;
    /// Takes part in no event any more when it returns.
    ~EventWatch();

    /// Registers on the features Event<name>; `names` are all events that the camera has, as the features of
    /// "FrameStart" and "FrameStartWait" are told apart by them. False when the camera has no such feature.
    bool Add(ZqApi::INodeMap& features, const std::string& name, const std::vector<std::string>& names);

    /// The next event, in the order in which they came; nothing when none comes in time.
    std::optional<DeviceEvent> Next(std::chrono::milliseconds timeout);

private:
    void Arrived(const std::string& name, GenApi::INode& node, const std::vector<GenApi::IValue*>& features);

    std::vector<GenApi::CallbackHandleType> m_registered;
    std::deque<DeviceEvent> m_events;
    std::mutex m_mutex;
    std::condition_variable m_changed;
};

} // namespace ZqTool
