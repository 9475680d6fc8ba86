#pragma once

#include "tools/zq/Commands.h"
#include "tools/zq/Library.h"
#include "tools/zq/Producers.h"

#include <string>
#include <vector>

namespace ZqTool {

/// Which camera, and what is set on it first.
struct CameraChoice {
    std::string name; ///< identifier, serial number or user-defined name; empty: the first available one
    std::vector<std::string> settings; ///< "Feature=Value", in order
};

/// A camera that the tool holds open, with the producers behind it.
class Camera {
public:
    /// Throws Failure when there is none of that name, when it can't be opened or a setting is refused.
    Camera(const Library& library, const CameraChoice& choice, const Console& console);

    [[nodiscard]] const std::string& Id() const { return m_id; }
    [[nodiscard]] ZqApi::IZqDevice& Device() const { return *m_device; }
    /// The camera's own features.
    [[nodiscard]] ZqApi::INodeMap& Features() const { return *m_features; }

private:
    std::vector<Producer> m_producers;
    std::string m_id;
    Held<ZqApi::IZqDeviceReleasable> m_device;
    ZqApi::INodeMap* m_features = nullptr;
};

} // namespace ZqTool
