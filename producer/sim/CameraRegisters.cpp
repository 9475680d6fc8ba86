#include "producer/sim/CameraRegisters.h"

namespace zqgentl {

namespace {

[[noreturn]] void Refuse(const char* name, const std::string& value, const std::string& range) {
    throw Failure(GenTL::GC_ERR_INVALID_VALUE, std::string(name) + " = " + value + " is not " + range);
}

} // namespace

void CheckRange(const char* name, int64_t value, int64_t min, int64_t max, int64_t increment) {
    // The difference of two whole numbers may be larger than any.
    const uint64_t above = static_cast<uint64_t>(value) - static_cast<uint64_t>(min);
    if (value < min || value > max || above % static_cast<uint64_t>(increment) != 0)
        Refuse(name, std::to_string(value),
               "from " + std::to_string(min) + " to " + std::to_string(max) + " in steps of " +
                   std::to_string(increment));
}

void CheckRange(const char* name, double value, double min, double max) {
    if (!(value >= min && value <= max))
        Refuse(name, std::to_string(value), "from " + std::to_string(min) + " to " + std::to_string(max));
}

void BindCameraRegisters(Camera& camera, RegisterMap& map) {
    BindDeviceRegisters(camera, map);
    BindImageRegisters(camera, map);
    BindAcquisitionRegisters(camera, map);
    BindStreamingRegisters(camera, map);
    BindAnalogRegisters(camera, map);
    BindControlRegisters(camera, map);
    BindFileRegisters(camera, map);
    BindSimulationRegisters(camera, map);
    const Description& description = *camera.Model().cameraDescription;
    map.AddMemory(descriptionAddress, description.data, description.size);
}

} // namespace zqgentl
