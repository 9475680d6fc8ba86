#include "genapi/src/description/ElementReader.h"

#include <GenApi/EnumClasses.h>

namespace GENAPI_NAMESPACE::inside {

namespace {

class RegisterBuilder {
public:
    RegisterBuilder(ElementReader& reader, RegisterPart& reg) : m_reader(reader), m_reg(reg) {}

    void Read(const Element& element) {
        switch (element.name) {
        case ElementName::Address:
            m_reg.address = static_cast<int64_t>(static_cast<uint64_t>(m_reg.address) +
                                                 static_cast<uint64_t>(m_reader.Integer(element)));
            break;
        case ElementName::pAddress:
        case ElementName::pIndex:
            terms.push_back(Term(element));
            break;
        case ElementName::Length:
            m_reg.length = m_reader.Integer(element);
            break;
        case ElementName::pLength:
            m_reg.lengthNode = m_reader.Require(element);
            break;
        case ElementName::pPort:
            m_reg.port = m_reader.Require(element);
            break;
        case ElementName::AccessMode:
            m_reg.mode = ReadMode(element.text, RO);
            break;
        case ElementName::Cachable:
            ReadEnum<ECachingModeClass>(element.text, m_reg.caching);
            break;
        default:
            ReadBits(element);
        }
    }

    void Check(NodeType type) {
        if (m_reg.port == kNoNode)
            m_reader.Fail("it has no pPort");
        if (m_reg.lengthNode != kNoNode)
            return;
        const bool isFloat = type == NodeType::FloatReg;
        const bool isInteger = type == NodeType::IntReg || type == NodeType::MaskedIntReg;
        const int64_t length = m_reg.length;
        if (length <= 0 || length > kMaxRegisterLength || (isInteger && length > 8) ||
            (isFloat && length != 4 && length != 8))
            m_reader.Fail("a Length of " + std::to_string(length) + " is impossible");
        const auto isOutside = [length](int64_t bit) { return bit < 0 || bit >= 8 * length; };
        if (m_reg.masked && (isOutside(m_reg.lsb) || isOutside(m_reg.msb)))
            m_reader.Fail("bits " + std::to_string(m_reg.lsb) + " to " + std::to_string(m_reg.msb) +
                          " lie outside the register");
    }

    std::vector<AddressTerm> terms;

private:
    void ReadBits(const Element& element) {
        switch (element.name) {
        case ElementName::Endianess:
            m_reg.littleEndian = !EqualIgnoringCase(element.text, "BigEndian");
            break;
        case ElementName::Sign:
            m_reg.isSigned = EqualIgnoringCase(element.text, "Signed");
            break;
        case ElementName::Bit:
            m_reg.lsb = m_reg.msb = m_reader.Integer(element);
            break;
        case ElementName::LSB:
            m_reg.lsb = m_reader.Integer(element);
            break;
        case ElementName::MSB:
            m_reg.msb = m_reader.Integer(element);
            break;
        default:
            break;
        }
    }

    AddressTerm Term(const Element& element) {
        AddressTerm term;
        term.node = m_reader.Require(element);
        if (element.name == ElementName::pAddress)
            return term;
        term.factor = AddressTerm::Factor::Length;
        if (element.attributeName == AttributeName::Offset) {
            const auto offset = ParseInteger(element.attribute);
            if (!offset)
                m_reader.Fail("the Offset " + Quoted(element.attribute) + " is no number");
            term.factor = AddressTerm::Factor::Constant;
            term.offset = offset.value_or(0);
        } else if (element.attributeName == AttributeName::pOffset) {
            term.factor = AddressTerm::Factor::Node;
            term.offsetNode = m_reader.FindByName(element.attribute);
            if (term.offsetNode == kNoNode)
                m_reader.Fail("pOffset " + Quoted(element.attribute) + " does not exist");
        }
        return term;
    }

    ElementReader& m_reader;
    RegisterPart& m_reg;
};

} // namespace

void BuildRegisterPart(Arena& arena, ElementReader& reader, const SourceNode& source, NodeType type,
                       RegisterPart& reg) {
    reg.masked = type == NodeType::MaskedIntReg;
    reg.caching = type == NodeType::FloatReg ? WriteAround : WriteThrough;
    reg.lsb = reg.msb = -1;
    RegisterBuilder builder(reader, reg);
    for (const Element& element : source.elements)
        builder.Read(element);
    arena.KeepList(reg.terms, builder.terms);
    builder.Check(type);
}

} // namespace GENAPI_NAMESPACE::inside
