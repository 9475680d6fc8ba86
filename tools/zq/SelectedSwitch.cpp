#include "tools/zq/SelectedSwitch.h"

#include "tools/zq/Failure.h"
#include "tools/zq/Feature.h"

#include <optional>

namespace ZqTool {

using namespace GenApi;

SelectedSwitch::SelectedSwitch(const Camera& camera, const std::string& selector, const std::string& feature)
    : m_camera(camera), m_selector(selector), m_feature(feature) {
    m_selectedBefore = ReadFeature(Selector(), m_selector, m_camera.Id());
    Feature();
}

SelectedSwitch::~SelectedSwitch() {
    try {
        PutBack();
    } catch (const Failure&) {
    }
}

IValue& SelectedSwitch::Selector() const {
    return FindFeature(m_camera.Features(), m_selector, m_camera.Id());
}

IValue& SelectedSwitch::Feature() const {
    return FindFeature(m_camera.Features(), m_feature, m_camera.Id());
}

std::vector<std::string> SelectedSwitch::Entries() const {
    std::vector<std::string> names;
    if (auto* selector = dynamic_cast<IEnumeration*>(&Selector())) {
        StringList_t symbolics;
        selector->GetSymbolics(symbolics);
        for (const auto& symbolic : symbolics)
            names.emplace_back(symbolic.c_str());
    }
    return names;
}

bool SelectedSwitch::Set(const std::string& entry, const std::string& value) {
    SetFeature(m_camera.Features(), m_selector, entry, m_camera.Id());
    IValue& feature = Feature();
    if (!IsWritable(feature.GetAccessMode()))
        return false;
    const std::string before = ReadFeature(feature, m_feature + " of " + entry, m_camera.Id());
    m_before.push_back({entry, before});
    SetFeature(m_camera.Features(), m_feature, value, m_camera.Id());
    return true;
}

void SelectedSwitch::PutBack() {
    std::optional<Failure> first;
    const auto set = [&](const std::string& name, const std::string& value) {
        try {
            SetFeature(m_camera.Features(), name, value, m_camera.Id());
        } catch (const Failure& failure) {
            if (!first)
                first.emplace(failure);
        }
    };
    while (!m_before.empty()) {
        const Before before = m_before.back();
        m_before.pop_back();
        set(m_selector, before.entry);
        set(m_feature, before.value);
    }
    if (!m_selectedBefore.empty())
        set(m_selector, m_selectedBefore);
    m_selectedBefore.clear();
    if (first)
        throw Failure(*first);
}

} // namespace ZqTool
