#pragma once

#include "genapi/src/description/Description.h"

#include <stdexcept>

namespace GENAPI_NAMESPACE::inside {

/// Why one node can't be built.
class Unbuildable : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads the texts of elements as what they mean. Throws Unbuildable for what means nothing.
class ElementReader {
public:
    explicit ElementReader(const Description& description) : m_description(description) {}

    /// The node that the element names.
    NodeIndex Require(const Element& element) const;
    /// The same, or kNoNode.
    NodeIndex Find(const Element& element) const { return m_description.Find(element.text); }
    int64_t Integer(const Element& element) const { return AnyNumber(element).AsInteger(); }
    Number AnyNumber(const Element& element) const;
    NodeIndex FindByName(std::string_view name) const { return m_description.Find(name); }
    std::string NameOf(const Element& element) const {
        return std::string(m_description.document.NameOf(element.name));
    }

private:
    const Description& m_description;
};

/// RO, WO or RW, also in the short forms R and W; else the fallback.
EAccessMode ReadMode(std::string_view text, EAccessMode fallback);
/// At most a hundred characters, for messages.
std::string Quoted(std::string_view text);

/// Reads a value of one of the interface's enumerations; a text that is none leaves it.
template <class EnumClass, class Enum>
bool ReadEnum(std::string_view text, Enum& value) {
    return EnumClass::FromString(GENICAM_NAMESPACE::gcstring(text.data(), text.size()), &value);
}

/// Fills the register part of a node.
void BuildRegisterPart(Arena& arena, const ElementReader& reader, const SourceNode& source, NodeType type,
                       RegisterPart& reg);

} // namespace GENAPI_NAMESPACE::inside
