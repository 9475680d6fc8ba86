#pragma once

// What both sides of the comparison say of a node.
#include "PatternPort.h"

#include <GenApi/GenApi.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace corpus {

/// A node map of a description, before registers with a pattern in them.
struct Opened {
    explicit Opened(const std::string& xml);
    /// What stands in the elements of that name of a node; empty where there is none.
    std::vector<std::string> Texts(GenApi::INode* node, const char* property) const;
    bool HasUnbuiltEntry(GenApi::INode* enumeration) const;

    PatternPort port;
    GenApi::CNodeMapRef map;
};

/// A node and all that its value is made of; with limits, also all that these are made of.
class Closure {
public:
    Closure(const Opened& opened, GenApi::INode* start, bool limits) : m_opened(opened), m_limits(limits) {
        Add(start);
    }
    /// The node alone.
    Closure(const Opened& opened, GenApi::INode* only) : nodes{only}, m_opened(opened), m_limits(false) {}

    template <class Predicate>
    bool Any(Predicate&& predicate) const {
        return std::any_of(nodes.begin(), nodes.end(), predicate);
    }
    bool HasText(const std::vector<const char*>& properties, const std::regex& pattern) const {
        return Any([&](GenApi::INode* node) {
            for (const char* property : properties)
                for (const std::string& text : m_opened.Texts(node, property))
                    if (std::regex_search(text, pattern))
                        return true;
            return false;
        });
    }
    bool HasFormula(const std::regex& pattern) const {
        return HasText({"Formula", "FormulaTo", "FormulaFrom", "Expression"}, pattern);
    }
    bool HasProperty(const char* property) const {
        return Any([&](GenApi::INode* node) { return !m_opened.Texts(node, property).empty(); });
    }

    std::set<GenApi::INode*> nodes;

private:
    void Add(GenApi::INode* node) {
        if (!node || !nodes.insert(node).second)
            return;
        for (const char* property : {"pValue", "pVariable", "pAddress", "pIndex", "pLength", "pValueIndexed",
                                     "pValueDefault", "pPort", "pChunkID"})
            Follow(node, property);
        if (m_limits)
            for (const char* property : {"pMin", "pMax", "pInc"})
                Follow(node, property);
    }
    void Follow(GenApi::INode* node, const char* property) {
        for (const std::string& name : m_opened.Texts(node, property))
            Add(m_opened.map._GetNode(name.c_str()));
    }

    const Opened& m_opened;
    const bool m_limits;
};

/// One answer, of either side.
struct Answer {
    std::string text; ///< or message
    bool failed = false;
};

/// Their answer in the form of ours.
std::string TheirText(const std::string& kind, const nlohmann::json& value);
Answer OurAnswer(GenApi::INode* node, const std::string& kind);
bool Same(const Answer& ours, const Answer& theirs);

} // namespace corpus
