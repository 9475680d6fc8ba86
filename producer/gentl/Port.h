#pragma once

#include "producer/gentl/Reply.h"
#include "producer/sim/Description.h"
#include "producer/sim/RegisterMap.h"

#include <string>

namespace zqgentl {

/// What the information commands of a port say.
struct PortFacts {
    std::string id;
    std::string model;
    std::string tlType;
    const char* module;
    std::string version;
    const char* portName;
    bool bigEndian;
    bool writable;
};

/// A register space of a module together with its description. Registers outlive the port.
class Port {
public:
    Port(PortFacts facts, const RegisterMap& registers, const Description& description)
        : m_facts(std::move(facts)), m_registers(registers), m_description(description) {}
    Port(const Port&) = delete;
    Port& operator=(const Port&) = delete;
    virtual ~Port() = default;

    [[nodiscard]] const PortFacts& Facts() const noexcept { return m_facts; }
    [[nodiscard]] const Description& File() const noexcept { return m_description; }
    [[nodiscard]] std::string Url() const;

    void AnswerInfo(GenTL::PORT_INFO_CMD command, const InfoTarget& target) const;
    void AnswerUrlInfo(uint32_t index, GenTL::URL_INFO_CMD command, const InfoTarget& target) const;
    /// The list of URLs in the old form that carries the schema version.
    void AnswerUrlList(char* text, size_t* size) const;

    virtual void Read(uint64_t address, void* data, size_t size) const;
    virtual void Write(uint64_t address, const void* data, size_t size) const;

private:
    PortFacts m_facts;
    const RegisterMap& m_registers;
    const Description& m_description;
};

} // namespace zqgentl
