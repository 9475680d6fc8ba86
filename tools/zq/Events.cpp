#include "tools/zq/Events.h"

#include "tools/zq/Acquisition.h"
#include "tools/zq/EventWatch.h"
#include "tools/zq/Failure.h"
#include "tools/zq/Feature.h"
#include "tools/zq/FrameDrain.h"
#include "tools/zq/SelectedSwitch.h"

#include <algorithm>
#include <optional>
#include <ostream>

namespace ZqTool {

namespace {

using namespace std::chrono_literals;
using Json = nlohmann::ordered_json;

constexpr auto slice = 100ms; ///< how soon an interrupt is noticed

void Print(const DeviceEvent& event, bool asJson, std::ostream& out) {
    const Json timestamp = event.timestamp ? Json(*event.timestamp) : Json();
    if (asJson) {
        out << Json{{"event", event.name},
                    {"id", event.id},
                    {"timestamp", timestamp},
                    {"values", event.values}}
                   .dump(-1, ' ', false, Json::error_handler_t::replace)
            << std::endl;
        return;
    }
    out << event.name << " " << event.id << " " << (event.timestamp ? timestamp.dump() : "-");
    for (const auto& [name, value] : event.values.items())
        out << " " << name << "=" << (value.is_string() ? value.get<std::string>() : value.dump());
    out << std::endl;
}

/// Those named, or all; each must be one that the camera has.
std::vector<std::string> Chosen(const EventOptions& options, const std::vector<std::string>& all,
                                const std::string& device) {
    std::string offered;
    for (const auto& name : all)
        offered += (offered.empty() ? "one of " : ", ") + name;
    for (const auto& name : options.names)
        if (std::find(all.begin(), all.end(), name) == all.end())
            throw Failure("looking for the event " + name, device + " has no event of that name", offered,
                          NothingFound);
    return options.names.empty() ? all : options.names;
}

/// Of all events, the ones that can't be switched or have no feature are left out; of those named, none is.
void SwitchOn(const std::vector<std::string>& names, const std::vector<std::string>& all, bool named,
              const Camera& camera, SelectedSwitch& notification, EventWatch& watch) {
    size_t count = 0;
    for (const auto& name : names) {
        const bool added = watch.Add(camera.Features(), name, all);
        if (added && notification.Set(name, "On"))
            ++count;
        else if (named)
            throw Failure("switching on the event " + name + " of " + camera.Id(),
                          added ? "EventNotification is not writable"
                                : "the camera has no feature Event" + name,
                          "name another event");
    }
    if (count == 0)
        throw Failure("switching on the events of " + camera.Id(), "none can be switched on",
                      "use another camera", NothingFound);
}

/// Prints until the count is reached, time runs out or the user interrupts.
int PrintEvents(const EventOptions& options, const Camera& camera, EventWatch& watch,
                const Console& console) {
    auto last = std::chrono::steady_clock::now();
    for (uint64_t count = 0; options.count == 0 || count < options.count;) {
        if (interrupted && options.count == 0)
            return Done;
        if (interrupted)
            throw Failure("waiting for events of " + camera.Id(), "interrupted by a signal",
                          "run the command again");
        if (const auto event = watch.Next(slice)) {
            Print(*event, options.jsonLines, console.out);
            ++count;
            last = std::chrono::steady_clock::now();
        } else if (options.timeoutMs > 0 &&
                   std::chrono::steady_clock::now() - last >= std::chrono::milliseconds(options.timeoutMs)) {
            throw Failure("waiting for events of " + camera.Id(),
                          "none came within " + std::to_string(options.timeoutMs) + " ms",
                          "have the camera acquire with --acquire, or give more time with --timeout",
                          TimedOut);
        }
    }
    return Done;
}

} // namespace

int Events(const Library& library, const EventOptions& options, const Console& console) {
    const Camera camera(library, options.camera, console);
    // Declared first: callbacks end after the events are off.
    EventWatch watch;
    SelectedSwitch notification(camera, "EventSelector", "EventNotification");
    const auto all = notification.Entries();
    SwitchOn(Chosen(options, all, camera.Id()), all, !options.names.empty(), camera, notification, watch);
    std::optional<Acquisition> acquisition;
    std::optional<FrameDrain> drain;
    if (options.acquire) {
        acquisition.emplace(camera);
        drain.emplace(acquisition->Stream());
    }
    for (const auto& command : options.execute)
        SetFeature(camera.Features(), command, "1", camera.Id());
    const int result = PrintEvents(options, camera, watch, console);
    drain.reset();
    if (acquisition)
        acquisition->Stop();
    notification.PutBack();
    return result;
}

} // namespace ZqTool
