#include "tools/zq/EventWatch.h"

#include "tools/zq/Feature.h"

#include <algorithm>
#include <cstdio>
#include <functional>

namespace ZqTool {

namespace {

using namespace GenApi;

bool Begins(const std::string& text, const std::string& prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

/// Whether a feature belongs to the event and to none with a longer name.
bool BelongsTo(const std::string& feature, const std::string& name, const std::vector<std::string>& names) {
    return Begins(feature, "Event" + name) &&
           std::none_of(names.begin(), names.end(), [&](const std::string& other) {
               return other.size() > name.size() && Begins(feature, "Event" + other);
           });
}

/// The features of the event without the one that has its name, which is its id.
std::vector<IValue*> FeaturesOf(ZqApi::INodeMap& features, const std::string& name,
                                const std::vector<std::string>& names) {
    std::vector<IValue*> found;
    NodeList_t nodes;
    features.GetNodes(nodes);
    for (INode* node : nodes) {
        auto* value = dynamic_cast<IValue*>(node);
        const std::string feature = node->GetName().c_str();
        if (value != nullptr && node->IsFeature() && node->GetPrincipalInterfaceType() != intfICategory &&
            feature != "Event" + name && BelongsTo(feature, name, names))
            found.push_back(value);
    }
    return found;
}

/// The feature that has the event's name gives its id.
std::string EventIdOf(INode& node) {
    auto* id = dynamic_cast<IInteger*>(&node);
    if (id == nullptr || !IsReadable(id->GetAccessMode()))
        return node.GetEventID().c_str();
    char digits[20];
    std::snprintf(digits, sizeof digits, "%04llX", static_cast<unsigned long long>(id->GetValue()));
    return digits;
}

} // namespace

EventWatch::~EventWatch() {
    for (const auto handle : m_registered)
        Deregister(handle);
}

bool EventWatch::Add(ZqApi::INodeMap& features, const std::string& name,
                     const std::vector<std::string>& names) {
    INode* node = features.GetNode(("Event" + name).c_str());
    if (node == nullptr)
        return false;
    const auto values = FeaturesOf(features, name, names);
    m_registered.push_back(
        Register(node, std::function<void(INode*)>([=](INode* event) { Arrived(name, *event, values); })));
    return true;
}

/// Runs inside the node map's lock: the values are those of this event.
void EventWatch::Arrived(const std::string& name, INode& node, const std::vector<IValue*>& features) {
    DeviceEvent event;
    event.name = name;
    event.id = EventIdOf(node);
    for (IValue* feature : features) {
        const std::string featureName = feature->GetNode()->GetName().c_str();
        try {
            if (!IsReadable(feature->GetAccessMode()))
                continue;
            const auto value = JsonOf(*feature);
            if (featureName == "Event" + name + "Timestamp" && value.is_number_integer())
                event.timestamp = value.get<int64_t>();
            else
                event.values[featureName] = value;
        } catch (const GenICam::GenericException&) {
            event.values[featureName] = nullptr; // the packet was too short for it
        }
    }
    {
        const std::lock_guard lock(m_mutex);
        m_events.push_back(std::move(event));
    }
    m_changed.notify_one();
}

std::optional<DeviceEvent> EventWatch::Next(std::chrono::milliseconds timeout) {
    std::unique_lock lock(m_mutex);
    if (!m_changed.wait_for(lock, timeout, [this] { return !m_events.empty(); }))
        return std::nullopt;
    DeviceEvent event = std::move(m_events.front());
    m_events.pop_front();
    return event;
}

} // namespace ZqTool
