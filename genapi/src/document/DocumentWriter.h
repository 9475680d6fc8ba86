#pragma once

#include "genapi/src/document/Document.h"
#include "genapi/src/image/Arena.h"

#include <string>
#include <unordered_map>
#include <unordered_set>

namespace GENAPI_NAMESPACE::inside {

/// An element on its way into a document.
struct ElementDraft {
    ElementName name = ElementName::FirstUnknown;
    AttributeName attributeName = AttributeName::None;
    std::string_view text;
    std::string_view attribute;
};

/// A node on its way into a document, but for its elements.
struct NodeDraft {
    ElementName tag = ElementName::FirstUnknown;
    bool standard = false;
    int8_t mergePriority = 0;
    std::string_view name;
};

/// Lays out a document in an arena. Texts that lie in the arena already are not copied.
class DocumentWriter {
public:
    DocumentWriter(Arena& arena, Document& document)
        : m_arena(arena), m_document(document), m_places(64, 0) {}

    Arena& GetArena() { return m_arena; }
    SourceHeader& Header() { return m_document.header; }
    void CopyHeader(const SourceHeader& header);
    /// From now on equal texts share their characters, which takes longer and less memory.
    void ShareTexts() { m_sharing = true; }
    /// The number of a name; unknown ones get one.
    ElementName Name(std::string_view name);
    std::string_view NameOf(ElementName name) const {
        return name < ElementName::FirstUnknown
                   ? KnownElementName(name)
                   : m_unknownNames[static_cast<size_t>(name) -
                                    static_cast<size_t>(ElementName::FirstUnknown)];
    }
    /// A node of another document, as this one would have it.
    NodeDraft Draft(const Document& document, const SourceNode& node);
    void DraftElements(const Document& document, const SourceNode& node, std::vector<ElementDraft>& elements);
    /// Adds a node. The first of several nodes of one name stays, and a name can be unusable: false then.
    /// RuntimeException when there are too many.
    bool Add(const NodeDraft& node, const ElementDraft* first, size_t count);
    /// What the other document had left out is left out here, too.
    void CopyRepeated(const Document& document);
    /// To be called once, at the end.
    void Finish();

private:
    struct Row {
        NodeDraft node;
        Element* first;
        size_t count;
        uint32_t hash;
    };

    void Grow();
    void KeepRepeated(std::string_view name);
    std::string_view Kept(std::string_view text);

    Arena& m_arena;
    Document& m_document;
    std::vector<Row> m_rows;
    std::vector<uint32_t> m_places;
    std::vector<std::string_view> m_unknownNames;
    std::vector<std::string_view> m_repeated;
    std::unordered_map<std::string_view, ElementName> m_unknownPlaces;
    bool m_sharing = false;
    std::unordered_set<std::string_view> m_shared;
};

/// The name of the node for an entry of an enumeration.
std::string EnumEntryName(std::string_view enumeration, std::string_view entry);

/// Parses a cleaned text, which is to lie in the arena and is used up. RuntimeException says what is wrong
/// and where. `keepTexts` false drops tool tips and descriptions.
void ParseDocument(char* text, size_t size, bool keepTexts, DocumentWriter& writer);

/// The node `root` and all that it needs. `renameToRoot` calls it "Root". RuntimeException when it does not
/// exist.
void ExtractDocument(const Document& document, std::string_view root, bool renameToRoot,
                     DocumentWriter& writer);

/// The whole document.
void CopyDocument(const Document& document, DocumentWriter& writer);

/// All of `target` and of `addition`. Categories of one name are united; of other nodes with one name the
/// merge priority of the one in `addition` decides: 1 that one, -1 the target's, 0 RuntimeException.
void MergeDocuments(const Document& target, const Document& addition, DocumentWriter& writer);

} // namespace GENAPI_NAMESPACE::inside
