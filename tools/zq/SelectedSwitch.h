#pragma once

#include "tools/zq/Camera.h"

#include <string>
#include <vector>

namespace ZqTool {

/// A feature that is set to one value for several entries of its selector, and put back at the end, the
/// selector too.
class SelectedSwitch {
public:
    SelectedSwitch(const Camera& camera, const std::string& selector, const std::string& feature);
    SelectedSwitch(const SelectedSwitch&) = delete;
    SelectedSwitch& operator=(const SelectedSwitch&) = delete;
    /// Puts back, without a word of what fails in it.
    ~SelectedSwitch();

    /// The selector's entries that are available. Throws Failure when the camera has no such selector.
    [[nodiscard]] std::vector<std::string> Entries() const;
    /// False when the feature can't be written for that entry. Throws Failure when setting it fails.
    bool Set(const std::string& entry, const std::string& value);
    /// Throws Failure, after the rest has been put back, when something can't be.
    void PutBack();

private:
    struct Before {
        std::string entry;
        std::string value;
    };

    GenApi::IValue& Selector() const;
    GenApi::IValue& Feature() const;

    const Camera& m_camera;
    std::string m_selector;
    std::string m_feature;
    std::string m_selectedBefore;
    std::vector<Before> m_before;
};

} // namespace ZqTool
