// The C functions of ports and events. Each only finds its objects and says what is asked of them.

#include "producer/gentl/Entry.h"

using namespace zqgentl;

namespace {

/// Does the entries in order; on a failure the count says how many were done.
template <class Access>
void ForEachEntry(GenTL::PORT_REGISTER_STACK_ENTRY* entries, size_t* count, Access access) {
    const size_t total = Required(count, "the count");
    if (total > 0)
        Required(entries, "the entries");
    *count = 0;
    for (size_t i = 0; i < total; ++i) {
        Required(static_cast<uint8_t*>(entries[i].pBuffer), "the buffer");
        access(entries[i]);
        ++*count;
    }
}

} // namespace

namespace GenTL {

GC_API GCGetPortInfo(PORT_HANDLE port, PORT_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                     size_t* size) {
    return Guard("GCGetPortInfo", [&] {
        VisitPort(port, [&](const Port& found) { found.AnswerInfo(command, {type, buffer, size}); });
    });
}

GC_API GCGetNumPortURLs(PORT_HANDLE port, uint32_t* count) {
    return Guard("GCGetNumPortURLs",
                 [&] { VisitPort(port, [&](const Port&) { Required(count, "the count") = 1; }); });
}

GC_API GCGetPortURLInfo(PORT_HANDLE port, uint32_t index, URL_INFO_CMD command, INFO_DATATYPE* type,
                        void* buffer, size_t* size) {
    return Guard("GCGetPortURLInfo", [&] {
        VisitPort(port, [&](const Port& found) {
            found.AnswerUrlInfo(index, command, {type, buffer, size});
        });
    });
}

GC_API GCGetPortURL(PORT_HANDLE port, char* text, size_t* size) {
    return Guard("GCGetPortURL",
                 [&] { VisitPort(port, [&](const Port& found) { found.AnswerUrlList(text, size); }); });
}

GC_API GCReadPort(PORT_HANDLE port, uint64_t address, void* buffer, size_t* size) {
    return Guard("GCReadPort", [&] {
        VisitPort(port, [&](const Port& found) {
            void* out = &Required(static_cast<uint8_t*>(buffer), "the buffer");
            found.Read(address, out, Required(size, "the size"));
        });
    });
}

GC_API GCWritePort(PORT_HANDLE port, uint64_t address, const void* buffer, size_t* size) {
    return Guard("GCWritePort", [&] {
        VisitPort(port, [&](const Port& found) {
            const void* in = &Required(static_cast<const uint8_t*>(buffer), "the buffer");
            found.Write(address, in, Required(size, "the size"));
        });
    });
}

GC_API GCReadPortStacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* count) {
    return Guard("GCReadPortStacked", [&] {
        VisitPort(port, [&](const Port& found) {
            ForEachEntry(entries, count, [&](const PORT_REGISTER_STACK_ENTRY& entry) {
                found.Read(entry.Address, entry.pBuffer, entry.Size);
            });
        });
    });
}

GC_API GCWritePortStacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* count) {
    return Guard("GCWritePortStacked", [&] {
        VisitPort(port, [&](const Port& found) {
            ForEachEntry(entries, count, [&](const PORT_REGISTER_STACK_ENTRY& entry) {
                found.Write(entry.Address, entry.pBuffer, entry.Size);
            });
        });
    });
}

GC_API GCRegisterEvent(EVENTSRC_HANDLE source, EVENT_TYPE type, EVENT_HANDLE* event) {
    return Guard("GCRegisterEvent", [&] {
        VisitModule(source, [&](Module& module) {
            EVENT_HANDLE& out = Required(event, "the event handle");
            out = module.RegisterEvent(type);
        });
    });
}

GC_API GCUnregisterEvent(EVENTSRC_HANDLE source, EVENT_TYPE type) {
    return Guard("GCUnregisterEvent",
                 [&] { VisitModule(source, [&](Module& module) { module.UnregisterEvent(type); }); });
}

GC_API EventGetData(EVENT_HANDLE event, void* buffer, size_t* size, uint64_t timeoutMs) {
    return Guard("EventGetData", [&] {
        const auto found = Get<Event>(event);
        if (buffer != nullptr) {
            Required(static_cast<uint8_t*>(buffer), "the buffer");
            Required(size, "the size");
        }
        found->GetData(buffer, size, timeoutMs);
    });
}

GC_API EventGetDataInfo(EVENT_HANDLE event, const void* data, size_t dataSize, EVENT_DATA_INFO_CMD command,
                        INFO_DATATYPE* type, void* buffer, size_t* size) {
    return Guard("EventGetDataInfo", [&] {
        Get<Event>(event)->AnswerDataInfo(data, dataSize, command, {type, buffer, size});
    });
}

GC_API EventGetInfo(EVENT_HANDLE event, EVENT_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                    size_t* size) {
    return Guard("EventGetInfo", [&] { Get<Event>(event)->AnswerInfo(command, {type, buffer, size}); });
}

GC_API EventFlush(EVENT_HANDLE event) {
    return Guard("EventFlush", [&] { Get<Event>(event)->Flush(); });
}

GC_API EventKill(EVENT_HANDLE event) {
    return Guard("EventKill", [&] { Get<Event>(event)->Kill(); });
}

} // namespace GenTL
