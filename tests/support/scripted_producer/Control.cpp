#include "tests/support/scripted_producer/Control.h"

#include "tests/support/scripted_producer/Streaming.h"

#include <chrono>
#include <cstring>

using namespace Scripted;

namespace {

Producer& Locked(Lock& lock) {
    Producer& producer = Producer::Get();
    lock = Lock(producer.mutex);
    return producer;
}

std::string TextOf(const char* text) {
    return text == nullptr ? std::string() : std::string(text);
}

/// Copies a text with its terminator where there is room, and returns the size that it takes.
size_t GiveText(const std::string& given, char* text, size_t capacity) {
    if (text != nullptr && capacity > given.size())
        std::memcpy(text, given.c_str(), given.size() + 1);
    return given.size() + 1;
}

std::optional<std::vector<uint8_t>> BytesOf(const void* bytes, size_t size) {
    if (bytes == nullptr)
        return std::nullopt;
    const auto* begin = static_cast<const uint8_t*>(bytes);
    return std::vector<uint8_t>(begin, begin + size);
}

template <class T>
std::shared_ptr<T> FindBySymbol(const Producer& producer, const char* symbol) {
    return producer.modules.FindIf<T>([&](const T& each) { return each.symbol == symbol; });
}

/// A block that EventGetDataInfo knows again: a running number.
std::vector<uint8_t> OwnBlock(Producer& producer) {
    const uint64_t number = ++producer.blockNumber;
    return *BytesOf(&number, sizeof number);
}

} // namespace

void Zqsp_Reset() {
    Lock lock;
    Locked(lock).Reset();
}

void Zqsp_KeepScript(int keep) {
    Lock lock;
    Locked(lock).keepScript = keep != 0;
}

void Zqsp_ClearInterfaces() {
    Lock lock;
    Locked(lock).plan.Clear();
}

void Zqsp_AddInterface(const char* id, const char* tlType) {
    Lock lock;
    Locked(lock).plan.AddInterface(id, tlType);
}

int Zqsp_RemoveInterface(const char* id) {
    Lock lock;
    return Locked(lock).plan.RemoveInterface(id) ? 1 : 0;
}

int Zqsp_AddDevice(const char* interfaceId, const char* id, int32_t accessStatus, uint32_t streams) {
    Lock lock;
    return Locked(lock).plan.AddDevice(interfaceId, id, accessStatus, streams) ? 1 : 0;
}

int Zqsp_RemoveDevice(const char* interfaceId, const char* id) {
    Lock lock;
    return Locked(lock).plan.RemoveDevice(interfaceId, id) ? 1 : 0;
}

void Zqsp_AllowSeveralSystems(int allow) {
    Lock lock;
    Locked(lock).severalSystems = allow != 0;
}

void Zqsp_WriteRegister(const char* module, uint64_t address, const void* bytes, size_t size) {
    Lock lock;
    Locked(lock).ports.ForEach(module, [&](Port& port) { port.registers.Write(address, bytes, size); });
}

void Zqsp_ReadRegister(const char* module, uint64_t address, void* bytes, size_t size) {
    Lock lock;
    Port* port = Locked(lock).ports.Find(module);
    if (port != nullptr)
        port->registers.Read(address, bytes, size);
}

void Zqsp_SetUrl(const char* module, uint32_t index, const char* url) {
    Lock lock;
    Locked(lock).ports.ForEach(module, [&](Port& port) {
        if (port.urls.size() <= index)
            port.urls.resize(index + 1);
        port.urls[index] = url;
    });
}

void Zqsp_ClearUrls(const char* module) {
    Lock lock;
    Locked(lock).ports.ForEach(module, [](Port& port) { port.urls.clear(); });
}

void Zqsp_SetDescription(const char* module, const char* fileName, const void* bytes, size_t size) {
    Lock lock;
    Locked(lock).ports.ForEach(module, [&](Port& port) { SetDescription(port, fileName, bytes, size); });
}

uint32_t Zqsp_AddRule(const ZqspRule* rule) {
    Lock lock;
    return Locked(lock).script.Add(*rule);
}

void Zqsp_ClearRules() {
    Lock lock;
    Locked(lock).script.Clear();
}

int Zqsp_WaitHeld(uint32_t id, uint32_t calls, uint32_t timeoutMs) {
    Lock lock;
    const auto rule = Locked(lock).script.Find(id);
    return rule != nullptr && rule->WaitHeld(lock, calls, timeoutMs) ? 1 : 0;
}

void Zqsp_Release(uint32_t id) {
    Lock lock;
    const auto rule = Locked(lock).script.Find(id);
    if (rule != nullptr)
        rule->Release();
}

size_t Zqsp_Answered(uint32_t id, char* text, size_t capacity) {
    Lock lock;
    const auto rule = Locked(lock).script.Find(id);
    return GiveText(rule == nullptr ? std::string() : rule->answered, text, capacity);
}

uint32_t Zqsp_WaitingForEvents() {
    Lock lock;
    uint32_t waiting = 0;
    Locked(lock).modules.ForEach<EventModule>([&](const EventModule& event) {
        if (event.queue.empty() && event.kills == 0)
            waiting += event.waiting;
    });
    return waiting;
}

size_t Zqsp_Log(const char* function, char* text, size_t capacity) {
    Lock lock;
    return GiveText(Locked(lock).log.Text(TextOf(function)), text, capacity);
}

size_t Zqsp_LogOfThreads(int threads, char* text, size_t capacity) {
    Lock lock;
    return GiveText(Locked(lock).log.TextOfThreads(threads), text, capacity);
}

void Zqsp_ClearLog() {
    Lock lock;
    Locked(lock).log.Clear();
}

void Zqsp_DontLog(const char* function) {
    Lock lock;
    Locked(lock).log.Leave(function);
}

uint64_t Zqsp_Count(const char* function) {
    Lock lock;
    return Locked(lock).log.Count(function);
}

int Zqsp_WaitCount(const char* function, uint64_t count, uint32_t timeoutMs) {
    Lock lock;
    Producer& producer = Locked(lock);
    return producer.callCame.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                                      [&] { return producer.log.Count(function) >= count; })
               ? 1
               : 0;
}

uint64_t Zqsp_Opened(const char* kind) {
    Lock lock;
    return Locked(lock).log.Opened(kind);
}

uint64_t Zqsp_Closed(const char* kind) {
    Lock lock;
    return Locked(lock).log.Closed(kind);
}

int Zqsp_PushEvent(const char* module, int32_t eventType, const ZqspEvent* event) {
    Lock lock;
    Producer& producer = Locked(lock);
    const auto source = FindBySymbol<Module>(producer, module);
    const auto registered = source == nullptr ? nullptr : FindEvent(producer, *source, eventType);
    if (registered == nullptr)
        return 0;
    EventEntry entry;
    entry.block = event->block == nullptr ? OwnBlock(producer) : *BytesOf(event->block, event->blockSize);
    entry.id = BytesOf(event->id, event->idSize);
    entry.idType = event->idType;
    entry.value = BytesOf(event->value, event->valueSize);
    entry.valueType = event->valueType;
    if (event->hasNumId != 0)
        entry.numId = event->numId;
    registered->queue.push_back(std::move(entry));
    ++registered->fired;
    producer.eventCame.notify_all();
    return 1;
}

int Zqsp_PushFrame(const char* stream, const ZqspFrame* frame) {
    Lock lock;
    Producer& producer = Locked(lock);
    const auto found = FindBySymbol<StreamModule>(producer, stream);
    return found != nullptr && Deliver(producer, *found, *frame) ? 1 : 0;
}

void Zqsp_AutoStream(uint64_t frames) {
    Lock lock;
    Locked(lock).autoStream = frames;
}
