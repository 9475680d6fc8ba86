#include "genapi/src/persistence/FeatureLoader.h"

#include "genapi/src/document/Lexical.h"
#include "genapi/src/persistence/FeatureText.h"
#include "genapi/src/persistence/SelectorWalk.h"

#include <GenApi/GenApi.h>

#include <map>
#include <set>
#include <unordered_map>

namespace GENAPI_NAMESPACE::inside {

using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::gcstring_vector;

namespace {

/// A selector and what it is to be while a value is written.
using Setting = std::pair<INode*, gcstring>;

struct Line {
    gcstring name;
    gcstring value;
    INode* node = nullptr;
    std::vector<Setting> selection; ///< from the lines before this one, or from the line itself
    bool selectsItself = false;     ///< the line names its selectors
    std::string failure;
};

/// Sets selectors for its lifetime.
class Selection {
public:
    explicit Selection(const std::vector<Setting>& settings) {
        try {
            for (const auto& [selector, value] : settings) {
                gcstring before = StoredText(*selector);
                if (before == value)
                    continue;
                SetFromText(*selector, value, true);
                m_before.emplace_back(selector, std::move(before));
            }
        } catch (...) {
            Restore();
            throw;
        }
    }
    ~Selection() { Restore(); }
    Selection(const Selection&) = delete;
    Selection& operator=(const Selection&) = delete;

private:
    void Restore() {
        for (const auto& [selector, value] : m_before)
            try {
                PutBack(*selector, value);
            } catch (const GENICAM_NAMESPACE::GenericException&) { // it no longer takes what it was
            }
    }

    std::vector<Setting> m_before;
};

std::string_view View(const gcstring& text) {
    return {text.c_str(), text.size()};
}
gcstring Text(std::string_view view) {
    return gcstring(view.data(), view.size());
}

class Loader {
public:
    Loader(INodeMap& map, bool verify) : m_map(map), m_verify(verify) {}

    void Add(const gcstring& name, const gcstring& value) {
        Line line;
        line.name = Text(Trim(View(name)));
        std::string_view text = View(value);
        if (!text.empty() && text.back() == '\r')
            text.remove_suffix(1);
        line.value = Text(text);
        line.node = m_map.GetNode(line.name);
        if (!line.node || !CValuePtr(line.node)) {
            line.node = nullptr;
            line.failure = "there is no such feature";
        } else if (!TakeSelection(line, text)) {
            AddSelection(line);
        }
        m_lines.push_back(std::move(line));
        if (m_lines.back().node && !m_lines.back().selectsItself)
            m_assigned[m_lines.back().node] = m_lines.back().value;
    }

    void Run() {
        size_t open = 0;
        for (Line& line : m_lines)
            if (line.node && !Apply(line, line.selectsItself))
                ++open;
        // Each pass but the last sets one line at least, so that the lines themselves bound them.
        while (open > 0) {
            size_t left = 0;
            for (Line& line : m_lines)
                if (line.node && !line.failure.empty() && !Apply(line, true))
                    ++left;
            if (left == open)
                break;
            open = left;
        }
        if (m_verify)
            ReadBack();
    }

    gcstring_vector Failures() const {
        gcstring_vector failures;
        for (const Line& line : m_lines)
            if (!line.failure.empty())
                failures.push_back("'" + line.name + "' could not be set to '" + line.value +
                                   "': " + line.failure.c_str());
        return failures;
    }

private:
    /// "{Selector=Value, Selector2=Value2}<TAB>value". False when the text is another.
    bool TakeSelection(Line& line, std::string_view text) {
        const size_t end = text.find("}\t");
        if (text.substr(0, 1) != "{" || end == text.npos)
            return false;
        line.selectsItself = true;
        line.value = Text(text.substr(end + 2));
        std::string_view list = text.substr(1, end - 1);
        while (!list.empty()) {
            const std::string_view each = list.substr(0, list.find(','));
            list.remove_prefix(std::min(list.size(), each.size() + 1));
            const size_t equals = each.find('=');
            INode* const selector = m_map.GetNode(Text(Trim(each.substr(0, equals))));
            if (equals == each.npos || !selector || !CValuePtr(selector)) {
                line.failure = "there is no selector '" + std::string(Trim(each)) + "'";
                line.node = nullptr;
                return true;
            }
            line.selection.emplace_back(selector, Text(Trim(each.substr(equals + 1))));
        }
        return true;
    }

    void AddSelection(Line& line) {
        for (INode* selector : Selectors(line.node)) {
            const auto assigned = m_assigned.find(selector);
            if (assigned != m_assigned.end())
                line.selection.emplace_back(selector, assigned->second);
        }
    }

    const std::vector<INode*>& Selectors(INode* node) {
        const auto known = m_selectors.find(node);
        return known != m_selectors.end() ? known->second
                                          : m_selectors.emplace(node, SelectorsOf(*node)).first->second;
    }

    bool Apply(Line& line, bool select) {
        try {
            const Selection selection(select ? line.selection : std::vector<Setting>());
            if (!IsWritable(line.node))
                throw ACCESS_EXCEPTION("it is not writable (access mode %s)",
                                       EAccessModeClass::ToString(line.node->GetAccessMode()).c_str());
            SetFromText(*line.node, line.value, m_verify);
            line.failure.clear();
        } catch (const GENICAM_NAMESPACE::GenericException& failure) {
            line.failure = failure.GetDescription();
        }
        return line.failure.empty();
    }

    // A value that a later line replaces is not looked for.
    void ReadBack() {
        std::set<std::pair<INode*, std::vector<Setting>>, Earlier> seen;
        for (size_t i = m_lines.size(); i-- > 0;) {
            Line& line = m_lines[i];
            if (!line.node || !line.failure.empty() || !seen.emplace(line.node, line.selection).second)
                continue;
            try {
                const Selection selection(line.selection);
                if (IsReadable(line.node) && !HoldsStoredText(*line.node, line.value))
                    line.failure = "it reads back as '" + std::string(StoredText(*line.node).c_str()) + "'";
            } catch (const GENICAM_NAMESPACE::GenericException& failure) {
                line.failure = std::string("it can't be read back: ") + failure.GetDescription();
            }
        }
    }

    struct Earlier {
        using Key = std::pair<INode*, std::vector<Setting>>;
        bool operator()(const Key& left, const Key& right) const {
            if (left.first != right.first)
                return left.first < right.first;
            return std::lexicographical_compare(left.second.begin(), left.second.end(), right.second.begin(),
                                                right.second.end(), [](const Setting& a, const Setting& b) {
                                                    return a.first != b.first ? a.first < b.first
                                                                              : a.second < b.second;
                                                });
        }
    };

    INodeMap& m_map;
    const bool m_verify;
    std::vector<Line> m_lines;
    std::unordered_map<INode*, gcstring> m_assigned;
    std::unordered_map<INode*, std::vector<INode*>> m_selectors;
};

} // namespace

gcstring_vector LoadFeatures(INodeMap& map, const gcstring_vector& names, const gcstring_vector& values,
                             bool verify) {
    Loader loader(map, verify);
    for (size_t i = 0; i < names.size() && i < values.size(); ++i)
        loader.Add(names[i], values[i]);
    loader.Run();
    return loader.Failures();
}

} // namespace GENAPI_NAMESPACE::inside
