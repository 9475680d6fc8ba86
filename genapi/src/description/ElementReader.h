#pragma once

#include "genapi/src/description/Description.h"

namespace GENAPI_NAMESPACE::inside {

/// Reads the texts of the elements of one node after the other as what they mean. What means nothing is a
/// reason why the node can't be built, and reads as nothing: in descriptions that a part is missing of, too
/// many nodes have one for exceptions.
class ElementReader {
public:
    explicit ElementReader(const Description& description) : m_description(description) {}

    /// The next node has no reason yet.
    void Restart() { m_failure.clear(); }
    /// The first reason stays.
    void Fail(std::string reason) {
        if (m_failure.empty())
            m_failure = std::move(reason);
    }
    bool HasFailed() const { return !m_failure.empty(); }
    const std::string& Failure() const { return m_failure; }

    /// The node that the element names.
    NodeIndex Require(const Element& element);
    /// The same, or kNoNode.
    NodeIndex Find(const Element& element) const { return m_description.Find(element.text); }
    int64_t Integer(const Element& element) { return AnyNumber(element).AsInteger(); }
    Number AnyNumber(const Element& element);
    NodeIndex FindByName(std::string_view name) const { return m_description.Find(name); }
    std::string NameOf(const Element& element) const {
        return std::string(m_description.document.NameOf(element.name));
    }

private:
    const Description& m_description;
    std::string m_failure;
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

/// Fills the register part of a node, unless something in it means nothing.
void BuildRegisterPart(Arena& arena, ElementReader& reader, const SourceNode& source, NodeType type,
                       RegisterPart& reg);

} // namespace GENAPI_NAMESPACE::inside
