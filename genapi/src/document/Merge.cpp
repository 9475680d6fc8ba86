#include "genapi/src/document/DocumentWriter.h"

#include <Base/GCException.h>

#include <vector>

namespace GENAPI_NAMESPACE::inside {

namespace {

/// What becomes of a node in a merge.
enum class Fate : uint8_t { Kept, Dropped, Replaced, Extended };

class Merge {
public:
    Merge(const Document& target, const Document& addition)
        : m_target(target), m_addition(addition), m_ofTarget(target.nodes.size(), Fate::Kept),
          m_ofAddition(addition.nodes.size(), Fate::Kept) {
        for (uint32_t i = 0; i < addition.nodes.size(); ++i)
            if (addition.nodes[i].tag != ElementName::EnumEntry)
                Decide(i);
    }

    void Write(DocumentWriter& writer) {
        writer.CopyHeader(m_target.header);
        for (uint32_t i = 0; i < m_target.nodes.size(); ++i)
            WriteTarget(writer, i);
        for (uint32_t i = 0; i < m_addition.nodes.size(); ++i)
            if (m_ofAddition[i] == Fate::Kept)
                Copy(writer, m_addition, m_addition.nodes[i]);
        writer.CopyRepeated(m_target);
        writer.CopyRepeated(m_addition);
        writer.Finish();
    }

private:
    void Decide(uint32_t place) {
        const SourceNode& added = m_addition.nodes[place];
        const uint32_t twin = m_target.Find(added.name);
        if (twin == Document::kNowhere)
            return;
        m_ofAddition[place] = Fate::Dropped;
        if (added.tag == ElementName::Category && m_target.nodes[twin].tag == ElementName::Category) {
            m_ofTarget[twin] = Fate::Extended;
        } else if (added.mergePriority > 0) {
            m_ofTarget[twin] = Fate::Replaced;
            DropEntries(m_target, m_target.nodes[twin], m_ofTarget);
        } else if (added.mergePriority < 0) {
            DropEntries(m_addition, added, m_ofAddition);
        } else {
            throw RUNTIME_EXCEPTION("Both descriptions have a node '%s', and the injected one has no merge "
                                    "priority.",
                                    added.name.Copy().c_str());
        }
    }

    // Entries are nodes of their own here, but go with their enumeration.
    static void DropEntries(const Document& document, const SourceNode& enumeration,
                            std::vector<Fate>& fates) {
        for (const Element& element : enumeration.elements) {
            const uint32_t entry =
                element.name == ElementName::EnumEntry ? document.Find(element.text) : Document::kNowhere;
            if (entry != Document::kNowhere)
                fates[entry] = Fate::Dropped;
        }
    }

    void WriteTarget(DocumentWriter& writer, uint32_t place) {
        const SourceNode& node = m_target.nodes[place];
        switch (m_ofTarget[place]) {
        case Fate::Dropped:
            break;
        case Fate::Kept:
            Copy(writer, m_target, node);
            break;
        case Fate::Replaced:
            Copy(writer, m_addition, m_addition.nodes[m_addition.Find(node.name)]);
            break;
        case Fate::Extended:
            WriteUnion(writer, node, m_addition.nodes[m_addition.Find(node.name)]);
            break;
        }
    }

    void Copy(DocumentWriter& writer, const Document& document, const SourceNode& node) {
        writer.DraftElements(document, node, m_elements);
        writer.Add(writer.Draft(document, node), m_elements.data(), m_elements.size());
    }

    void WriteUnion(DocumentWriter& writer, const SourceNode& category, const SourceNode& added) {
        writer.DraftElements(m_target, category, m_elements);
        for (const Element& element : added.elements) {
            const bool isNew = element.name == ElementName::pFeature &&
                               std::none_of(m_elements.begin(), m_elements.end(), [&](const ElementDraft& e) {
                                   return e.name == ElementName::pFeature && e.text == element.text.View();
                               });
            if (isNew)
                m_elements.push_back({element.name, AttributeName::None, element.text, {}});
        }
        writer.Add(writer.Draft(m_target, category), m_elements.data(), m_elements.size());
    }

    const Document& m_target;
    const Document& m_addition;
    std::vector<Fate> m_ofTarget;
    std::vector<Fate> m_ofAddition;
    std::vector<ElementDraft> m_elements;
};

} // namespace

void MergeDocuments(const Document& target, const Document& addition, DocumentWriter& writer) {
    Merge(target, addition).Write(writer);
}

} // namespace GENAPI_NAMESPACE::inside
