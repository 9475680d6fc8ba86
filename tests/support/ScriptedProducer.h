#pragma once

#include "gentl/GenTL.h"
#include "tests/support/scripted_producer/Control.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

/// The C++ side of the scripted producer. A test says in one line each what the producer answers:
///
///     ScriptedProducer producer;
///     producer.Answer("TLOpenInterface").OnCall(3).With(GC_ERR_ACCESS_DENIED).Saying("taken");
///     producer.Answer("GCRegisterEvent").On("BUF").Event(EVENT_ERROR).With(GC_ERR_NOT_IMPLEMENTED);
///     Latch latch(producer.Answer("GCReadPort").OnCall(2));
///
/// Symbols of modules, and what is usual without a script: Control.h.
namespace ZqTest {

class ScriptedProducer;

/// What one function answers. Goes into the script at the end of the full expression.
class Answer {
public:
    Answer(const ScriptedProducer& producer, std::string function);
    Answer(const Answer&) = delete;
    Answer& operator=(const Answer&) = delete;
    ~Answer();

    // Which calls: all that match everything said.
    Answer& On(const std::string& symbol);
    Answer& Id(const std::string& text);
    Answer& Command(int64_t value);
    Answer& Event(int64_t type);
    Answer& Index(uint64_t value);
    Answer& At(uint64_t address);
    Answer& SizeQuery();
    Answer& DataQuery();
    /// Only the n-th matching call, counted from 1.
    Answer& OnCall(uint64_t n);
    /// The n-th matching call and all after it.
    Answer& FromCall(uint64_t n);
    /// That many matching calls, from the first or from the one that FromCall names.
    Answer& Times(uint64_t calls);

    // What then happens. A failing result leaves outputs and state alone; a result that is left out, or 0
    // without a value, does what the function does.
    Answer& With(GenTL::GC_ERROR result);
    /// Does what the function does in spite of a failing result.
    Answer& AlsoRuns();
    /// GCGetLastError on that thread then has this text, with the result of the call or another code.
    Answer& Saying(const std::string& text);
    Answer& Saying(GenTL::GC_ERROR code, const std::string& text);
    /// The bytes for the output: a number, handle, flag or structure of exactly that width.
    template <class T>
    Answer& Value(T value) {
        return Bytes(std::string(reinterpret_cast<const char*>(&value), sizeof value));
    }
    /// A text with its terminator.
    Answer& Text(const std::string& text);
    /// Bytes as they are: a text without terminator, or an empty one.
    Answer& Bytes(const std::string& bytes);
    /// What is reported as size, whatever was written.
    Answer& Size(size_t value);
    /// What is reported as data type, or as code by GCGetLastError.
    Answer& Type(int32_t value);
    Answer& Code(GenTL::GC_ERROR value) { return Type(value); }
    Answer& WithoutData();
    Answer& WithoutSize();
    Answer& WithoutType();
    Answer& WithoutCode() { return WithoutType(); }

private:
    friend class Latch;
    uint32_t Commit();

    const ScriptedProducer& m_producer;
    ZqspRule m_rule{};
    bool m_committed = false;
    std::string m_function;
    std::string m_handle;
    std::string m_id;
    std::string m_lastErrorText;
    std::string m_value;
};

/// Holds the calls that the answer is for, until it is released or destroyed; then they are answered.
class Latch {
public:
    explicit Latch(Answer& answer);
    explicit Latch(Answer&& answer) : Latch(answer) {}
    Latch(const Latch&) = delete;
    Latch& operator=(const Latch&) = delete;
    ~Latch() { Release(); }

    /// True when that many calls are inside within the time.
    [[nodiscard]] bool WaitUntilHeld(uint32_t calls = 1, uint32_t timeoutMs = 10000) const;
    void Release() const;

private:
    const ScriptedProducer& m_producer;
    uint32_t m_rule;
};

/// An event to push; an item that is not set is one the producer has not.
struct PushedEvent {
    std::optional<std::string> block; ///< as it is; else one of the producer's own
    std::optional<std::string> id;
    std::optional<std::string> value;
    int32_t idType = GenTL::INFO_DATATYPE_STRING;
    int32_t valueType = GenTL::INFO_DATATYPE_BUFFER;
    std::optional<uint64_t> numId;
};

/// A frame to push: its bytes, and what DSGetBufferInfo says other than usual.
class Frame {
public:
    explicit Frame(std::string bytes = {}) : data(std::move(bytes)) {}

    template <class T>
    Frame& Info(int32_t command, int32_t type, T value) {
        return Add(command, 0, type, std::string(reinterpret_cast<const char*>(&value), sizeof value));
    }
    Frame& Fails(int32_t command, GenTL::GC_ERROR result) { return Add(command, result, 0, {}); }

    struct Item {
        int32_t command;
        int32_t result;
        int32_t type;
        std::string value;
    };
    std::string data;
    std::vector<Item> infos;

private:
    Frame& Add(int32_t command, int32_t result, int32_t type, std::string value) {
        infos.push_back({command, result, type, std::move(value)});
        return *this;
    }
};

/// One variant of the scripted producer, loaded, reset, and alone on the search path while the object lives.
/// The script stays through every GCInitLib of that time. Not for two variants at once.
class ScriptedProducer {
public:
    /// Variants: "full" (libzqgentl.cti), "euresys" (coaxlink.cti), "kaya", "silicon_software",
    /// "without_<function>" and "without_urls" (none of GCGetNumPortURLs, GCGetPortURLInfo and GCGetPortURL).
    explicit ScriptedProducer(const std::string& variant = "full");
    ScriptedProducer(const ScriptedProducer&) = delete;
    ScriptedProducer& operator=(const ScriptedProducer&) = delete;
    /// Lets every held call go and gives the search path back.
    ~ScriptedProducer();

    [[nodiscard]] const std::string& Folder() const { return m_folder; }
    [[nodiscard]] const std::string& File() const { return m_file; }

    [[nodiscard]] ZqTest::Answer Answer(const std::string& function) const { return {*this, function}; }
    /// Ends all answers given so far.
    void AnswerAsUsual() const;

    // The model.
    void ClearInterfaces() const;
    void AddInterface(const std::string& id, const std::string& tlType) const;
    void RemoveInterface(const std::string& id) const;
    void AddDevice(const std::string& interfaceId, const std::string& id,
                   int32_t accessStatus = GenTL::DEVICE_ACCESS_STATUS_READWRITE, uint32_t streams = 1) const;
    void RemoveDevice(const std::string& interfaceId, const std::string& id) const;
    /// Lets GCInitLib and TLOpen be called again without a close between.
    void AllowSeveralSystems() const;

    // Ports.
    template <class T>
    void SetRegister(const std::string& module, uint64_t address, T value) const {
        WriteRegister(module, address, std::string(reinterpret_cast<const char*>(&value), sizeof value));
    }
    template <class T>
    [[nodiscard]] T GetRegister(const std::string& module, uint64_t address) const {
        T value{};
        ReadRegister(module, address, &value, sizeof value);
        return value;
    }
    void WriteRegister(const std::string& module, uint64_t address, const std::string& bytes) const;
    void ReadRegister(const std::string& module, uint64_t address, void* bytes, size_t size) const;
    void SetUrl(const std::string& module, const std::string& url, uint32_t index = 0) const;
    void ClearUrls(const std::string& module) const;
    void SetDescription(const std::string& module, const std::string& fileName,
                        const std::string& bytes) const;
    void SetPayloadSize(uint32_t bytes) const;

    // The log: calls in order, such as "DSGetInfo(DS1, 7, 8)", "TLGetInfo(TL1, 0, null) = -1001".
    /// All but EventGetData, which event threads call all the time.
    [[nodiscard]] std::vector<std::string> Log() const;
    [[nodiscard]] std::vector<std::string> Log(std::initializer_list<const char*> functions) const;
    [[nodiscard]] std::vector<std::string> Log(const std::string& function) const;
    void ClearLog() const;
    void DontLog(const std::string& function) const;
    [[nodiscard]] uint64_t Count(const std::string& function) const;
    /// True when the function has been called that often within the time.
    [[nodiscard]] bool WaitForCalls(const std::string& function, uint64_t count,
                                    uint32_t timeoutMs = 10000) const;

    // Opens and closes; kinds LIB, TL, IF, DEV, DS, BUF, EVENT.
    [[nodiscard]] uint64_t Opened(const std::string& kind) const;
    [[nodiscard]] uint64_t Closed(const std::string& kind) const;
    /// Each successful open, announcement and registration has its successful close.
    [[nodiscard]] testing::AssertionResult NothingOpen() const;

    // Events and frames; false when nobody has registered the event, or no buffer is queued.
    [[nodiscard]] bool Push(const std::string& module, int32_t eventType, const PushedEvent& event) const;
    [[nodiscard]] bool PushError(const std::string& module, GenTL::GC_ERROR code,
                                 const std::string& text) const;
    [[nodiscard]] bool PushDeviceLost(const std::string& device) const;
    [[nodiscard]] bool PushFrame(const std::string& stream, const Frame& frame = Frame()) const;
    /// A record as it is, of any size, on the new-buffer event of the stream.
    [[nodiscard]] bool PushRecord(const std::string& stream, const std::string& bytes) const;
    /// Every DSStartAcquisition delivers that many frames, as buffers are queued.
    void AutoStream(uint64_t frames) const;

    /// A function of the producer, or null where the variant lacks it.
    template <class Function>
    [[nodiscard]] Function Resolve(const char* name) const {
        return reinterpret_cast<Function>(Symbol(name));
    }

private:
    friend class ZqTest::Answer;
    friend class Latch;

    void* Symbol(const char* name) const;
    [[nodiscard]] std::string LogText(const std::string& function) const;

    std::string m_folder;
    std::string m_file;
    void* m_library = nullptr;
    std::optional<std::string> m_pathBefore;
};

/// A message with each address, null too, replaced by PTR.
std::string WithoutPointers(const std::string& message);

} // namespace ZqTest
