#pragma once

#include "tools/zq/Camera.h"

namespace ZqTool {

struct FeatureTreeOptions {
    CameraChoice camera;
    bool all = false; ///< also invisible features and those that are not available now
    bool json = false;
};

/// Prints the tree of the camera's features with type, value, access and unit.
int PrintFeatures(const Library& library, const FeatureTreeOptions& options, const Console& console);

/// Prints one feature's value.
int PrintFeature(const Library& library, const CameraChoice& choice, const std::string& name,
                 const Console& console);

/// Sets one feature and prints the value that it then has.
int ChangeFeature(const Library& library, const CameraChoice& choice, const std::string& name,
                  const std::string& value, const Console& console);

} // namespace ZqTool
