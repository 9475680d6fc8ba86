#include "Context.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace contract {

namespace {

using Clock = std::chrono::steady_clock;

const std::vector<InfoRow> eventRows = {
    {EVENT_EVENT_TYPE, "EVENT_TYPE", INFO_DATATYPE_INT32, Need::Mandatory},
    {EVENT_NUM_IN_QUEUE, "NUM_IN_QUEUE", INFO_DATATYPE_SIZET, Need::Mandatory},
    {EVENT_NUM_FIRED, "NUM_FIRED", INFO_DATATYPE_UINT64, Need::Optional},
    {EVENT_SIZE_MAX, "SIZE_MAX", INFO_DATATYPE_SIZET, Need::Mandatory},
    {EVENT_INFO_DATA_SIZE_MAX, "DATA_SIZE_MAX", INFO_DATATYPE_SIZET, Need::Mandatory},
};

/// What becomes of waits: they time out, and each kill ends one.
void CheckWaits(Context& context, const std::string& name, EVENT_HANDLE event) {
    Report& report = context.report;
    const Functions& g = context.gentl;
    char data[4096];
    const auto wait = [&](uint64_t ms) {
        size_t size = sizeof data;
        return g.EventGetData(event, data, &size, ms);
    };
    report.Success("EventFlush" + name, g.EventFlush(event));
    report.Result("EventGetData" + name + " poll", wait(0), {GC_ERR_TIMEOUT});
    report.Result("EventGetData" + name + " no size", g.EventGetData(event, data, nullptr, 1000),
                  {GC_ERR_INVALID_PARAMETER});
    const Clock::time_point before = Clock::now();
    report.Result("EventGetData" + name + " 20 ms", wait(20), {GC_ERR_TIMEOUT});
    report.Holds("EventGetData" + name + " 20 ms", Clock::now() - before >= std::chrono::milliseconds(20),
                 "a wait of 20 ms");
    report.Success("EventKill" + name, g.EventKill(event));
    report.Success("EventKill" + name, g.EventKill(event));
    report.Result("EventGetData" + name + " after two kills", wait(1000), {GC_ERR_ABORT});
    report.Result("EventGetData" + name + " after two kills", wait(1000), {GC_ERR_ABORT});
    report.Result("EventGetData" + name + " after both", wait(0), {GC_ERR_TIMEOUT});
    std::atomic<GC_ERROR> result{1};
    std::thread waiting([&] { result = wait(GENTL_INFINITE); });
    report.Success("EventKill" + name + " during a wait", g.EventKill(event));
    waiting.join();
    report.Result("EventGetData" + name + " endless, killed", result, {GC_ERR_ABORT});
}

} // namespace

void CheckEventTypes(Context& context, const std::string& which, void* source,
                     std::initializer_list<EVENT_TYPE> refused) {
    EVENT_HANDLE event = nullptr;
    const Functions& g = context.gentl;
    for (const EVENT_TYPE type : refused)
        context.report.Result("GCRegisterEvent(" + which + ", " + std::to_string(type) + ")",
                              g.GCRegisterEvent(source, type, &event),
                              {GC_ERR_NOT_IMPLEMENTED, GC_ERR_NOT_AVAILABLE});
    context.report.Result("GCRegisterEvent(" + which + ", 999)", g.GCRegisterEvent(source, 999, &event),
                          {GC_ERR_NOT_IMPLEMENTED, GC_ERR_INVALID_PARAMETER});
}

void CheckEvent(Context& context, const std::string& which, void* source, EVENT_TYPE type) {
    Report& report = context.report;
    const Functions& g = context.gentl;
    const std::string name = "(" + which + ", event " + std::to_string(type) + ")";
    report.Result("GCUnregisterEvent" + name + " before", g.GCUnregisterEvent(source, type),
                  {GC_ERR_NOT_INITIALIZED});
    report.Result("GCRegisterEvent" + name + " no place", g.GCRegisterEvent(source, type, nullptr),
                  {GC_ERR_INVALID_PARAMETER});
    EVENT_HANDLE event = nullptr;
    const GC_ERROR registered = g.GCRegisterEvent(source, type, &event);
    if (registered == GC_ERR_NOT_IMPLEMENTED) {
        report.Skip("GCRegisterEvent" + name);
        return;
    }
    if (!report.Success("GCRegisterEvent" + name, registered))
        return;
    EVENT_HANDLE second = nullptr;
    report.Result("GCRegisterEvent" + name + " again", g.GCRegisterEvent(source, type, &second),
                  {GC_ERR_RESOURCE_IN_USE});
    const auto infoOf = [&](int32_t command) -> InfoCall {
        return [&context, event, command](INFO_DATATYPE* dataType, void* data, size_t* size) {
            return context.gentl.EventGetInfo(event, command, dataType, data, size);
        };
    };
    CheckInfos(context, "EventGetInfo" + name, eventRows, infoOf);
    report.Equal("EventGetInfo" + name + " type", ValueOf<int32_t>(infoOf(EVENT_EVENT_TYPE), -1),
                 int32_t{type});
    CheckWaits(context, name, event);
    INFO_DATATYPE dataType = 0;
    size_t size = 0;
    report.Result("EventGetDataInfo" + name + " no bytes",
                  g.EventGetDataInfo(event, nullptr, 16, EVENT_DATA_ID, &dataType, nullptr, &size),
                  {GC_ERR_INVALID_PARAMETER});
    const char garbage[] = "these bytes are no event at all";
    report.Result(
        "EventGetDataInfo" + name + " other bytes",
        g.EventGetDataInfo(event, garbage, sizeof garbage, EVENT_DATA_ID, &dataType, nullptr, &size),
        {GC_ERR_INVALID_PARAMETER});
    std::atomic<GC_ERROR> result{1};
    std::thread waiting([&] {
        char data[4096];
        size_t room = sizeof data;
        result = g.EventGetData(event, data, &room, 60000);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    report.Success("GCUnregisterEvent" + name, g.GCUnregisterEvent(source, type));
    waiting.join();
    report.Result("EventGetData" + name + " unregistered", result, {GC_ERR_ABORT, GC_ERR_INVALID_HANDLE});
    report.Result("EventFlush" + name + " unregistered", g.EventFlush(event), {GC_ERR_INVALID_HANDLE});
}

} // namespace contract
