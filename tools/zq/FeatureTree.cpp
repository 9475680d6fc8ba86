#include "tools/zq/FeatureTree.h"

#include "tools/zq/Failure.h"
#include "tools/zq/Feature.h"

#include <nlohmann/json.hpp>

#include <iomanip>
#include <ostream>
#include <set>

namespace ZqTool {

namespace {

using namespace GenApi;
using Json = nlohmann::ordered_json;

/// Null for what can't be read now.
Json ValueOf(IValue& value, EAccessMode access) {
    if (!IsReadable(access) || value.GetNode()->GetPrincipalInterfaceType() == intfICommand)
        return nullptr;
    try {
        return JsonOf(value);
    } catch (const GenICam::GenericException&) {
        return nullptr; // of a whole tree, the one that fails is shown without a value
    }
}

class Tree {
public:
    explicit Tree(bool all) : m_all(all) {}

    Json Describe(ICategory& category) {
        Json list = Json::array();
        FeatureList_t features;
        category.GetFeatures(features);
        for (IValue* feature : features)
            Add(*feature, list);
        return list;
    }

private:
    void Add(IValue& value, Json& list) {
        INode& node = *value.GetNode();
        const EAccessMode access = node.GetAccessMode();
        if (!m_all && (node.GetVisibility() >= Invisible || !IsAvailable(access)))
            return;
        if (auto* category = dynamic_cast<ICategory*>(&value)) {
            // Descriptions come from cameras: a category may hold itself.
            if (!m_open.insert(&node).second)
                return;
            Json inside = Describe(*category);
            m_open.erase(&node);
            if (m_all || !inside.empty())
                list.push_back({{"category", node.GetName().c_str()}, {"features", std::move(inside)}});
            return;
        }
        list.push_back({{"name", node.GetName().c_str()},
                        {"type", TypeOf(node)},
                        {"value", ValueOf(value, access)},
                        {"access", EAccessModeClass::ToString(access).c_str()},
                        {"unit", UnitOf(node)}});
    }

    bool m_all;
    std::set<INode*> m_open;
};

std::string Text(const Json& value) {
    if (value.is_null())
        return "-";
    return value.is_string() ? value.get<std::string>() : value.dump();
}

void PrintText(const Json& list, size_t depth, std::ostream& out) {
    const std::string indent(2 * depth, ' ');
    for (const auto& entry : list) {
        if (entry.contains("category")) {
            out << indent << Text(entry["category"]) << "\n";
            PrintText(entry["features"], depth + 1, out);
            continue;
        }
        const std::string unit = Text(entry["unit"]);
        out << std::left << std::setw(40) << indent + Text(entry["name"]) << " " << std::setw(12)
            << Text(entry["type"]) << " " << Text(entry["access"]) << "  " << Text(entry["value"])
            << (unit.empty() ? "" : " " + unit) << "\n";
    }
}

} // namespace

int PrintFeatures(const Library& library, const FeatureTreeOptions& options, const Console& console) {
    const Camera camera(library, options.camera, console);
    const Json tree = Doing("reading the features of " + camera.Id(), [&] {
        auto* root = dynamic_cast<ICategory*>(camera.Features().GetNode("Root"));
        return root == nullptr ? Json::array() : Tree(options.all).Describe(*root);
    });
    if (options.json)
        console.out << Json{{"device", camera.Id()}, {"features", tree}}.dump(2, ' ', false,
                                                                              Json::error_handler_t::replace)
                    << "\n";
    else
        PrintText(tree, 0, console.out);
    return Done;
}

int PrintFeature(const Library& library, const CameraChoice& choice, const std::string& name,
                 const Console& console) {
    const Camera camera(library, choice, console);
    console.out << ReadFeature(FindFeature(camera.Features(), name, camera.Id()), name, camera.Id()) << "\n";
    return Done;
}

int ChangeFeature(const Library& library, const CameraChoice& choice, const std::string& name,
                  const std::string& value, const Console& console) {
    const Camera camera(library, choice, console);
    SetFeature(camera.Features(), name, value, camera.Id());
    IValue& feature = FindFeature(camera.Features(), name, camera.Id());
    const bool shows =
        IsReadable(feature.GetAccessMode()) && feature.GetNode()->GetPrincipalInterfaceType() != intfICommand;
    console.out << (shows ? ReadFeature(feature, name, camera.Id()) : "done") << "\n";
    return Done;
}

} // namespace ZqTool
