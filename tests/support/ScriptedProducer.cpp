#include "tests/support/ScriptedProducer.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <stdexcept>

namespace ZqTest {

namespace {

constexpr const char* pathVariable = "GENICAM_GENTL64_PATH";
constexpr const char* kinds[] = {"LIB", "TL", "IF", "DEV", "DS", "BUF", "EVENT"};
constexpr uint64_t payloadSizeRegister = 0x10C;

std::string OnlyFileIn(const std::string& folder) {
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == ".cti")
            return entry.path().string();
    throw std::runtime_error("no producer in " + folder);
}

const void* Data(const std::optional<std::string>& bytes) {
    return bytes ? bytes->data() : nullptr;
}

size_t Size(const std::optional<std::string>& bytes) {
    return bytes ? bytes->size() : 0;
}

/// How many characters of an address as printf shows it stand there, after the format's own "0x".
size_t AddressLength(const std::string& message, size_t at) {
    if (message.compare(at, 5, "(nil)") == 0)
        return 5;
    if (message.compare(at, 2, "0x") != 0)
        return 0;
    const size_t end = message.find_first_not_of("0123456789abcdef", at + 2);
    return (end == std::string::npos ? message.size() : end) - at;
}

} // namespace

Answer::Answer(const ScriptedProducer& producer, std::string function)
    : m_producer(producer), m_function(std::move(function)) {}

Answer::~Answer() {
    Commit();
}

uint32_t Answer::Commit() {
    if (m_committed)
        return 0;
    m_committed = true;
    m_rule.function = m_function.c_str();
    return m_producer.Resolve<decltype(&Zqsp_AddRule)>("Zqsp_AddRule")(&m_rule);
}

Answer& Answer::On(const std::string& symbol) {
    m_handle = symbol;
    m_rule.handle = m_handle.c_str();
    return *this;
}

Answer& Answer::Id(const std::string& text) {
    m_id = text;
    m_rule.id = m_id.c_str();
    return *this;
}

Answer& Answer::Command(int64_t value) {
    m_rule.hasCommand = 1;
    m_rule.command = value;
    return *this;
}

Answer& Answer::Event(int64_t type) {
    m_rule.hasEvent = 1;
    m_rule.event = type;
    return *this;
}

Answer& Answer::Index(uint64_t value) {
    m_rule.hasIndex = 1;
    m_rule.index = value;
    return *this;
}

Answer& Answer::At(uint64_t address) {
    m_rule.hasAddress = 1;
    m_rule.address = address;
    return *this;
}

Answer& Answer::SizeQuery() {
    m_rule.query = ZQSP_SIZE_QUERY;
    return *this;
}

Answer& Answer::DataQuery() {
    m_rule.query = ZQSP_DATA_QUERY;
    return *this;
}

Answer& Answer::OnCall(uint64_t n) {
    return FromCall(n).Times(1);
}

Answer& Answer::FromCall(uint64_t n) {
    m_rule.firstCall = n;
    return *this;
}

Answer& Answer::Times(uint64_t calls) {
    m_rule.calls = calls;
    return *this;
}

Answer& Answer::With(GenTL::GC_ERROR result) {
    m_rule.hasResult = 1;
    m_rule.result = result;
    return *this;
}

Answer& Answer::AlsoRuns() {
    m_rule.alsoRuns = 1;
    return *this;
}

Answer& Answer::Saying(const std::string& text) {
    m_lastErrorText = text;
    m_rule.lastErrorText = m_lastErrorText.c_str();
    return *this;
}

Answer& Answer::Saying(GenTL::GC_ERROR code, const std::string& text) {
    m_rule.hasLastErrorCode = 1;
    m_rule.lastErrorCode = code;
    return Saying(text);
}

Answer& Answer::Text(const std::string& text) {
    return Bytes(std::string(text.c_str(), text.size() + 1));
}

Answer& Answer::Bytes(const std::string& bytes) {
    m_value = bytes;
    m_rule.hasValue = 1;
    m_rule.value = m_value.data();
    m_rule.valueSize = m_value.size();
    return *this;
}

Answer& Answer::Size(size_t value) {
    m_rule.hasSize = 1;
    m_rule.size = value;
    return *this;
}

Answer& Answer::Type(int32_t value) {
    m_rule.hasType = 1;
    m_rule.type = value;
    return *this;
}

Answer& Answer::WithoutData() {
    m_rule.unwritten |= ZQSP_NO_DATA;
    return *this;
}

Answer& Answer::WithoutSize() {
    m_rule.unwritten |= ZQSP_NO_SIZE;
    return *this;
}

Answer& Answer::WithoutType() {
    m_rule.unwritten |= ZQSP_NO_TYPE;
    return *this;
}

Latch::Latch(Answer& answer) : m_producer(answer.m_producer) {
    answer.m_rule.hold = 1;
    m_rule = answer.Commit();
}

bool Latch::WaitUntilHeld(uint32_t calls, uint32_t timeoutMs) const {
    return m_producer.Resolve<decltype(&Zqsp_WaitHeld)>("Zqsp_WaitHeld")(m_rule, calls, timeoutMs) != 0;
}

void Latch::Release() const {
    m_producer.Resolve<decltype(&Zqsp_Release)>("Zqsp_Release")(m_rule);
}

ScriptedProducer::ScriptedProducer(const std::string& variant)
    : m_folder(std::string(ZQ_SCRIPTED_FOLDER) + "/" + variant), m_file(OnlyFileIn(m_folder)) {
    m_library = dlopen(m_file.c_str(), RTLD_NOW | RTLD_NODELETE);
    if (m_library == nullptr)
        throw std::runtime_error(dlerror());
    if (const char* before = std::getenv(pathVariable))
        m_pathBefore = before;
    setenv(pathVariable, m_folder.c_str(), 1);
    Resolve<decltype(&Zqsp_Reset)>("Zqsp_Reset")();
    Resolve<decltype(&Zqsp_KeepScript)>("Zqsp_KeepScript")(1);
}

ScriptedProducer::~ScriptedProducer() {
    Resolve<decltype(&Zqsp_Reset)>("Zqsp_Reset")();
    if (m_pathBefore)
        setenv(pathVariable, m_pathBefore->c_str(), 1);
    else
        unsetenv(pathVariable);
    dlclose(m_library);
}

void* ScriptedProducer::Symbol(const char* name) const {
    return dlsym(m_library, name);
}

void ScriptedProducer::AnswerAsUsual() const {
    Resolve<decltype(&Zqsp_ClearRules)>("Zqsp_ClearRules")();
}

void ScriptedProducer::ClearInterfaces() const {
    Resolve<decltype(&Zqsp_ClearInterfaces)>("Zqsp_ClearInterfaces")();
}

void ScriptedProducer::AddInterface(const std::string& id, const std::string& tlType) const {
    Resolve<decltype(&Zqsp_AddInterface)>("Zqsp_AddInterface")(id.c_str(), tlType.c_str());
}

void ScriptedProducer::RemoveInterface(const std::string& id) const {
    if (Resolve<decltype(&Zqsp_RemoveInterface)>("Zqsp_RemoveInterface")(id.c_str()) == 0)
        throw std::invalid_argument("no interface " + id);
}

void ScriptedProducer::AddDevice(const std::string& interfaceId, const std::string& id, int32_t accessStatus,
                                 uint32_t streams) const {
    if (Resolve<decltype(&Zqsp_AddDevice)>("Zqsp_AddDevice")(interfaceId.c_str(), id.c_str(), accessStatus,
                                                             streams) == 0)
        throw std::invalid_argument("no interface " + interfaceId);
}

void ScriptedProducer::RemoveDevice(const std::string& interfaceId, const std::string& id) const {
    if (Resolve<decltype(&Zqsp_RemoveDevice)>("Zqsp_RemoveDevice")(interfaceId.c_str(), id.c_str()) == 0)
        throw std::invalid_argument("no device " + id);
}

void ScriptedProducer::AllowSeveralSystems() const {
    Resolve<decltype(&Zqsp_AllowSeveralSystems)>("Zqsp_AllowSeveralSystems")(1);
}

void ScriptedProducer::WriteRegister(const std::string& module, uint64_t address,
                                     const std::string& bytes) const {
    Resolve<decltype(&Zqsp_WriteRegister)>("Zqsp_WriteRegister")(module.c_str(), address, bytes.data(),
                                                                 bytes.size());
}

void ScriptedProducer::ReadRegister(const std::string& module, uint64_t address, void* bytes,
                                    size_t size) const {
    Resolve<decltype(&Zqsp_ReadRegister)>("Zqsp_ReadRegister")(module.c_str(), address, bytes, size);
}

void ScriptedProducer::SetUrl(const std::string& module, const std::string& url, uint32_t index) const {
    Resolve<decltype(&Zqsp_SetUrl)>("Zqsp_SetUrl")(module.c_str(), index, url.c_str());
}

void ScriptedProducer::ClearUrls(const std::string& module) const {
    Resolve<decltype(&Zqsp_ClearUrls)>("Zqsp_ClearUrls")(module.c_str());
}

void ScriptedProducer::SetDescription(const std::string& module, const std::string& fileName,
                                      const std::string& bytes) const {
    Resolve<decltype(&Zqsp_SetDescription)>("Zqsp_SetDescription")(module.c_str(), fileName.c_str(),
                                                                   bytes.data(), bytes.size());
}

void ScriptedProducer::SetPayloadSize(uint32_t bytes) const {
    SetRegister<uint32_t>("REMOTE", payloadSizeRegister, bytes);
}

std::string ScriptedProducer::LogText(const std::string& function) const {
    const auto log = Resolve<decltype(&Zqsp_Log)>("Zqsp_Log");
    std::string text;
    for (size_t needed = log(function.c_str(), nullptr, 0); text.size() < needed;) {
        text.resize(needed);
        needed = log(function.c_str(), text.data(), text.size());
    }
    return text.c_str();
}

std::vector<std::string> ScriptedProducer::Log(const std::string& function) const {
    std::istringstream text(LogText(function));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}

std::vector<std::string> ScriptedProducer::Log() const {
    auto lines = Log(std::string());
    lines.erase(std::remove_if(lines.begin(), lines.end(),
                               [](const std::string& line) { return line.rfind("EventGetData(", 0) == 0; }),
                lines.end());
    return lines;
}

std::vector<std::string> ScriptedProducer::Log(std::initializer_list<const char*> functions) const {
    auto lines = Log(std::string());
    const auto unwanted = [&](const std::string& line) {
        return std::none_of(functions.begin(), functions.end(), [&](const char* function) {
            return line.rfind(std::string(function) + "(", 0) == 0;
        });
    };
    lines.erase(std::remove_if(lines.begin(), lines.end(), unwanted), lines.end());
    return lines;
}

void ScriptedProducer::ClearLog() const {
    Resolve<decltype(&Zqsp_ClearLog)>("Zqsp_ClearLog")();
}

void ScriptedProducer::DontLog(const std::string& function) const {
    Resolve<decltype(&Zqsp_DontLog)>("Zqsp_DontLog")(function.c_str());
}

uint64_t ScriptedProducer::Count(const std::string& function) const {
    return Resolve<decltype(&Zqsp_Count)>("Zqsp_Count")(function.c_str());
}

bool ScriptedProducer::WaitForCalls(const std::string& function, uint64_t count, uint32_t timeoutMs) const {
    return Resolve<decltype(&Zqsp_WaitCount)>("Zqsp_WaitCount")(function.c_str(), count, timeoutMs) != 0;
}

uint64_t ScriptedProducer::Opened(const std::string& kind) const {
    return Resolve<decltype(&Zqsp_Opened)>("Zqsp_Opened")(kind.c_str());
}

uint64_t ScriptedProducer::Closed(const std::string& kind) const {
    return Resolve<decltype(&Zqsp_Closed)>("Zqsp_Closed")(kind.c_str());
}

testing::AssertionResult ScriptedProducer::NothingOpen() const {
    auto result = testing::AssertionSuccess();
    for (const char* kind : kinds) {
        const uint64_t opened = Opened(kind);
        const uint64_t closed = Closed(kind);
        if (opened == closed)
            continue;
        if (result)
            result = testing::AssertionFailure();
        result << kind << ": " << opened << " opened, " << closed << " closed; ";
    }
    return result;
}

bool ScriptedProducer::Push(const std::string& module, int32_t eventType, const PushedEvent& event) const {
    ZqspEvent pushed{};
    pushed.block = Data(event.block);
    pushed.blockSize = Size(event.block);
    pushed.id = Data(event.id);
    pushed.idSize = Size(event.id);
    pushed.idType = event.idType;
    pushed.value = Data(event.value);
    pushed.valueSize = Size(event.value);
    pushed.valueType = event.valueType;
    pushed.hasNumId = event.numId ? 1 : 0;
    pushed.numId = event.numId.value_or(0);
    return Resolve<decltype(&Zqsp_PushEvent)>("Zqsp_PushEvent")(module.c_str(), eventType, &pushed) != 0;
}

bool ScriptedProducer::PushError(const std::string& module, GenTL::GC_ERROR code,
                                 const std::string& text) const {
    PushedEvent event;
    event.id = std::string(reinterpret_cast<const char*>(&code), sizeof code);
    event.idType = GenTL::INFO_DATATYPE_INT32;
    event.value = std::string(text.c_str(), text.size() + 1);
    event.valueType = GenTL::INFO_DATATYPE_STRING;
    return Push(module, GenTL::EVENT_ERROR, event);
}

bool ScriptedProducer::PushDeviceLost(const std::string& device) const {
    PushedEvent event;
    event.id = std::string("0001", sizeof "0001");
    event.numId = 1;
    return Push(device, GenTL::EVENT_MODULE, event);
}

bool ScriptedProducer::PushFrame(const std::string& stream, const Frame& frame) const {
    std::vector<ZqspBufferInfo> infos;
    for (const auto& item : frame.infos)
        infos.push_back({item.command, item.result, item.type, item.value.data(), item.value.size()});
    const ZqspFrame pushed{frame.data.data(), frame.data.size(), infos.data(), infos.size()};
    return Resolve<decltype(&Zqsp_PushFrame)>("Zqsp_PushFrame")(stream.c_str(), &pushed) != 0;
}

bool ScriptedProducer::PushRecord(const std::string& stream, const std::string& bytes) const {
    PushedEvent event;
    event.block = bytes;
    return Push(stream, GenTL::EVENT_NEW_BUFFER, event);
}

void ScriptedProducer::AutoStream(uint64_t frames) const {
    Resolve<decltype(&Zqsp_AutoStream)>("Zqsp_AutoStream")(frames);
}

std::string WithoutPointers(const std::string& message) {
    std::string text;
    for (size_t at = 0; at < message.size();) {
        const bool blank = message.compare(at, 3, "0x ") == 0;
        const size_t address = blank ? at + 3 : at + 2;
        const size_t length = message.compare(at, 2, "0x") == 0 ? AddressLength(message, address) : 0;
        if (length == 0) {
            text += message[at++];
            continue;
        }
        text += blank ? "0x PTR" : "PTR";
        at = address + length;
    }
    return text;
}

} // namespace ZqTest
