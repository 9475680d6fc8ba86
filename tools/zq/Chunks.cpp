#include "tools/zq/Chunks.h"

#include "tools/zq/Failure.h"
#include "tools/zq/Feature.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace ZqTool {

namespace {

using namespace GenApi;
using GenICam::gcstring;

constexpr const char* activeName = "ChunkModeActive";

/// Whether the register's bytes come with the frame.
bool LiesInChunk(INode& reg) {
    gcstring port;
    gcstring attributes;
    if (!reg.GetProperty("pPort", port, attributes))
        return false;
    INode* node = reg.GetNodeMap()->GetNode(port);
    gcstring id;
    return node != nullptr && node->GetProperty("ChunkID", id, attributes);
}

std::vector<gcstring> ChunkFeatures(INodeMap& chunks) {
    std::vector<gcstring> names;
    NodeList_t nodes;
    chunks.GetNodes(nodes);
    for (INode* node : nodes) {
        if (!node->IsFeature() || dynamic_cast<IValue*>(node) == nullptr ||
            node->GetPrincipalInterfaceType() == intfICategory)
            continue;
        NodeList_t registers;
        node->GetChildren(registers, ctTerminalNodes);
        if (std::any_of(registers.begin(), registers.end(), [](INode* reg) { return LiesInChunk(*reg); }))
            names.push_back(node->GetName());
    }
    return names;
}

} // namespace

ChunkMode::Active::Active(const Camera& camera) : m_camera(camera) {
    IValue& active = FindFeature(camera.Features(), activeName, camera.Id());
    const std::string before = ReadFeature(active, activeName, camera.Id());
    SetFeature(camera.Features(), activeName, "1", camera.Id());
    m_before = before;
}

ChunkMode::Active::~Active() {
    try {
        PutBack();
    } catch (const Failure&) {
    }
}

void ChunkMode::Active::PutBack() {
    const std::string before = std::exchange(m_before, {});
    if (!before.empty())
        SetFeature(m_camera.Features(), activeName, before, m_camera.Id());
}

ChunkMode::ChunkMode(const Camera& camera)
    : m_active(camera), m_enable(camera, "ChunkSelector", "ChunkEnable") {
    for (const auto& chunk : m_enable.Entries())
        m_enable.Set(chunk, "1");
}

void ChunkMode::PutBack() {
    m_enable.PutBack();
    m_active.PutBack();
}

std::string ChunkReader::Values(ZqApi::IZqStreamBuffer& buffer) {
    INodeMap& chunks = *buffer.GetChunkINodeMap();
    if (m_names.empty())
        m_names = ChunkFeatures(chunks);
    nlohmann::ordered_json values = nlohmann::ordered_json::object();
    for (const auto& name : m_names) {
        auto* value = dynamic_cast<IValue*>(chunks.GetNode(name));
        if (value != nullptr && IsReadable(value->GetAccessMode()))
            values[name.c_str()] = JsonOf(*value);
    }
    return values.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

} // namespace ZqTool
