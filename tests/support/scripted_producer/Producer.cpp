#include "tests/support/scripted_producer/Producer.h"

#include <cstring>

namespace Scripted {

using namespace GenTL;

namespace {

struct LastError {
    uint64_t epoch = 0;
    GC_ERROR code = GC_ERR_SUCCESS;
    std::string text = "No Error";
};
thread_local LastError lastError;

/// Stands in for the outputs that a rule leaves unwritten.
struct Scratch {
    Scratch(const Out& caller, int unwritten) : out(caller) {
        if ((unwritten & ZQSP_NO_TYPE) != 0 && out.type != nullptr)
            out.type = &type;
        if ((unwritten & ZQSP_NO_DATA) != 0 && out.data != nullptr) {
            data.resize(out.fixedSize + (out.size == nullptr ? 0 : *out.size * out.unit) + 1);
            out.data = data.data();
        }
        if ((unwritten & ZQSP_NO_SIZE) != 0 && out.size != nullptr) {
            size = *out.size;
            out.size = &size;
        }
    }

    Out out;
    int32_t type = 0;
    size_t size = 0;
    std::vector<uint8_t> data;
};

GC_ERROR Obey(Producer& producer, const Rule& rule, const Call& call, const Behaviour& behaviour,
              Lock& lock) {
    Scratch scratch(call.out, rule.what.unwritten);
    GC_ERROR result = GC_ERR_SUCCESS;
    if (!rule.ReplacesBehaviour())
        result = behaviour(producer, scratch.out, lock);
    if (rule.what.hasResult != 0)
        result = rule.what.result;
    rule.WriteOutputs(scratch.out);
    if (rule.what.lastErrorText != nullptr)
        producer.SetLastError(rule.what.hasLastErrorCode != 0 ? rule.what.lastErrorCode : result,
                              rule.lastErrorText);
    return result;
}

std::vector<std::string> SymbolsOf(const Producer& producer, const Call& call) {
    std::vector<std::string> symbols;
    for (const auto& argument : call.arguments)
        if (argument.kind == Call::Argument::Kind::Handle)
            symbols.push_back(producer.modules.SymbolOf(argument.pointer));
    return symbols;
}

bool WorksBeforeInit(const Call& call) {
    return std::strcmp(call.function, "GCInitLib") == 0 || std::strcmp(call.function, "GCGetLastError") == 0;
}

} // namespace

Producer& Producer::Get() {
    static auto& producer = *new Producer;
    return producer;
}

Producer::Producer() {
    Reset();
}

void Producer::Reset() {
    script.Clear();
    log.Reset();
    plan = Plan();
    plan.MakeUsual();
    ports = Ports();
    MakeUsualPorts(ports);
    keepScript = false;
    severalSystems = false;
    autoStream = 0;
    systemNumber = 0;
    bufferNumber = 0;
    ++m_epoch;
}

Port* Producer::PortOf(const void* handle) {
    const auto module = modules.Find<Module>(handle);
    return module == nullptr ? nullptr : ports.Find(module->symbol);
}

uint32_t Producer::RemoteNumber(const Module& stream, uint64_t address) {
    const auto* device = dynamic_cast<const DeviceModule*>(stream.parent);
    Port* port = device == nullptr ? nullptr : PortOf(device->remotePort);
    uint32_t number = 0;
    if (port != nullptr)
        port->registers.Read(address, &number, sizeof number);
    return number;
}

void Producer::SetLastError(GC_ERROR code, const std::string& text) {
    lastError.epoch = m_epoch;
    lastError.code = code;
    lastError.text = text;
}

GC_ERROR Producer::GetLastError(const Out& out) {
    if (lastError.epoch != m_epoch)
        SetLastError(GC_ERR_SUCCESS, "No Error");
    const std::string text = lastError.text;
    if (out.size == nullptr)
        return GC_ERR_INVALID_PARAMETER;
    Out textOnly = out;
    textOnly.type = nullptr;
    const GC_ERROR result = textOnly.WriteText(text);
    if (result == GC_ERR_SUCCESS && out.type != nullptr)
        *out.type = lastError.code;
    return result;
}

GC_ERROR Run(const Call& call, const Behaviour& behaviour) {
    Producer& producer = Producer::Get();
    Lock lock(producer.mutex);
    const auto symbols = SymbolsOf(producer, call);
    const bool onOpener = producer.opener == std::this_thread::get_id();
    const uint64_t line = producer.log.Add(call, symbols, onOpener);
    producer.callCame.notify_all();
    const auto rule = producer.script.Take(call, symbols, onOpener);
    if (rule != nullptr)
        rule->answered = producer.log.LineText(line);
    if (rule != nullptr && rule->what.hold != 0)
        rule->Hold(lock);
    const Behaviour allowed = producer.initialised == 0 && !WorksBeforeInit(call)
        ? [](Producer&, const Out&, Lock&) -> GC_ERROR { return GC_ERR_NOT_INITIALIZED; }
    : behaviour;
    const GC_ERROR result =
        rule == nullptr ? allowed(producer, call.out, lock) : Obey(producer, *rule, call, allowed, lock);
    producer.log.Finish(line, call, result);
    return result;
}

} // namespace Scripted
