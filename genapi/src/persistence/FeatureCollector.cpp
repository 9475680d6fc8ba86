#include "genapi/src/persistence/FeatureCollector.h"

#include "genapi/src/persistence/FeatureText.h"
#include "genapi/src/persistence/SelectorWalk.h"

#include <GenApi/GenApi.h>

#include <algorithm>
#include <map>
#include <optional>
#include <unordered_set>

namespace GENAPI_NAMESPACE::inside {

using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::gcstring_vector;

namespace {

// Marked features are worth many entries, the others are not: a table of 4,096 values is no setting.
constexpr uint64_t kMaxCombinations = 65536;
constexpr uint64_t kMaxCombinationsOfUnmarked = 256;

/// The features to store, in order.
class FeatureList {
public:
    explicit FeatureList(INodeMap& map) {
        NodeList_t all;
        map.GetNodes(all);
        onlyMarked = std::any_of(all.begin(), all.end(), [](INode* node) { return node->IsStreamable(); });
        if (INode* root = map.GetNode("Root"))
            Walk(*root);
        if (onlyMarked)
            for (INode* node : all)
                Take(*node);
    }

    std::vector<INode*> features;
    bool onlyMarked = false;

private:
    void Walk(INode& node) {
        std::vector<INode*> open{&node};
        while (!open.empty()) {
            INode* const next = open.back();
            open.pop_back();
            const CCategoryPtr category = next;
            if (!category) {
                Take(*next);
                continue;
            }
            if (!m_seen.insert(next).second)
                continue;
            FeatureList_t inside;
            category->GetFeatures(inside);
            for (size_t i = inside.size(); i-- > 0;)
                open.push_back(inside[i]->GetNode());
        }
    }

    void Take(INode& node) {
        if ((onlyMarked && !node.IsStreamable()) || !IsStorableKind(node))
            return;
        if (m_seen.insert(&node).second)
            features.push_back(&node);
    }

    static bool IsStorableKind(INode& node) {
        switch (node.GetPrincipalInterfaceType()) {
        case intfIInteger:
        case intfIBoolean:
        case intfIFloat:
        case intfIString:
        case intfIRegister:
        case intfIEnumeration:
            return true;
        default:
            return false;
        }
    }

    std::unordered_set<INode*> m_seen;
};

/// Features with the same selectors are stored in one walk over these.
struct Group {
    std::vector<INode*> selectors;
    std::vector<INode*> features;
};

std::vector<Group> GroupBySelectors(const std::vector<INode*>& features) {
    std::vector<Group> groups;
    std::map<std::vector<INode*>, size_t> places;
    for (INode* feature : features) {
        std::vector<INode*> selectors = SelectorsOf(*feature);
        const auto [place, isNew] = places.emplace(selectors, groups.size());
        // Features without selectors keep their order among the others.
        if (isNew || selectors.empty()) {
            place->second = groups.size();
            groups.push_back({std::move(selectors), {}});
        }
        groups[place->second].features.push_back(feature);
    }
    return groups;
}

class Collector {
public:
    Collector(int64_t maxEntries, gcstring_vector& names, gcstring_vector& values)
        : m_left(maxEntries < 0 ? INT64_MAX : maxEntries), m_names(names), m_values(values) {}

    bool IsFull() const { return m_left == 0; }

    void Store(const Group& group, uint64_t maxCombinations) {
        SelectorWalk walk(group.selectors);
        m_assigned.clear();
        if (walk.EstimateCount() > maxCombinations) {
            StoreCombination(group);
        } else {
            for (bool more = walk.SetFirst(); more && !IsFull(); more = walk.SetNext())
                StoreCombination(group);
        }
        walk.Restore();
        if (m_assigned.size() == group.selectors.size())
            AssignSelectors(group);
    }

private:
    void StoreCombination(const Group& group) {
        for (INode* feature : group.features) {
            const auto value = ValueOf(*feature);
            if (!value)
                continue;
            AssignSelectors(group);
            Append(*feature, *value);
        }
    }

    // Only those that have moved since they were last assigned.
    void AssignSelectors(const Group& group) {
        m_assigned.resize(group.selectors.size());
        for (size_t i = 0; i < group.selectors.size(); ++i) {
            const auto value = ValueOf(*group.selectors[i]);
            if (!value || m_assigned[i] == value)
                continue;
            m_assigned[i] = value;
            Append(*group.selectors[i], *value);
        }
    }

    /// Nothing when the feature is not to be stored now.
    static std::optional<gcstring> ValueOf(INode& feature) {
        if (feature.GetAccessMode() != RW)
            return std::nullopt;
        try {
            gcstring value = StoredText(feature);
            const std::string_view text(value.c_str(), value.size());
            if (text.find_first_of(std::string_view("\n\r\0", 3)) != text.npos)
                return std::nullopt;
            return value;
        } catch (const GENICAM_NAMESPACE::GenericException&) {
            return std::nullopt; // cannot be read now, whatever its access mode says
        }
    }

    void Append(INode& feature, const gcstring& value) {
        if (IsFull())
            return;
        --m_left;
        m_names.push_back(feature.GetName(false));
        m_values.push_back(value);
    }

    int64_t m_left;
    gcstring_vector& m_names;
    gcstring_vector& m_values;
    std::vector<std::optional<gcstring>> m_assigned;
};

} // namespace

void CollectFeatures(INodeMap& map, int64_t maxEntries, gcstring_vector& names, gcstring_vector& values) {
    const FeatureList list(map);
    Collector collector(maxEntries, names, values);
    for (const Group& group : GroupBySelectors(list.features)) {
        if (collector.IsFull())
            return;
        collector.Store(group, list.onlyMarked ? kMaxCombinations : kMaxCombinationsOfUnmarked);
    }
}

} // namespace GENAPI_NAMESPACE::inside
