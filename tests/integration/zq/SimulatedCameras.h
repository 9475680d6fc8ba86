#pragma once

#include "tests/unit/zq/Decoded.h"
#include "tests/unit/zq/Tool.h"

#include <string>
#include <vector>

/// The tool, in this process, on the simulated cameras. As a camera forgets its settings when it is closed,
/// what a command needs is set by the command.
class SimulatedCamera : public testing::TestWithParam<const char*> {
protected:
    /// The exit code of a command on the test's camera.
    int Run(std::vector<std::string> arguments, const std::string& camera = GetParam()) {
        arguments.insert(arguments.begin() + 1, camera);
        return tool.Run(std::move(arguments));
    }

    /// Grabs one frame of a pixel format, small and at once, into the folder.
    testing::AssertionResult Grab(const std::string& pixelFormat, std::vector<std::string> more) {
        std::vector<std::string> arguments{
            "grab",     "-o",    folder.Path(), "--set", "AcquisitionFrameRateEnable=0", "--set",
            "Width=64", "--set", "Height=16",   "--set", "TestPattern=ColorBar"};
        arguments.insert(arguments.end(), {"--set", "PixelFormat=" + pixelFormat});
        arguments.insert(arguments.end(), more.begin(), more.end());
        if (Run(arguments) == 0)
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << tool.err.str();
    }

    const TemporaryFolder folder;
    Tool tool;
};

constexpr const char* allCameras[] = {"SIM-U3V-0001", "SIM-GEV-0001", "SIM-CXP-0001"};

inline std::string CameraName(const testing::TestParamInfo<const char*>& info) {
    return std::string(info.param).substr(4, 3);
}
