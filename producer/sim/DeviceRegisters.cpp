#include "producer/sim/CameraRegisters.h"

namespace zqgentl {

namespace {

constexpr RegisterKind Integer = RegisterKind::Integer;
constexpr RegisterKind Float = RegisterKind::Float;
constexpr RegisterKind Text = RegisterKind::Text;

void LatchTimestamp(Camera& camera) {
    camera.Apply(Camera::Lockable::No,
                 [](CameraSettings& settings) { settings.timestampLatch = SteadyNow(); });
}

constexpr RegisterRow<Camera> rows[] = {
    {0x0000, 4, Integer, [](const Camera&) { return Value(int64_t{0x00010000}); }, nullptr},
    {0x0100, 64, Text, [](const Camera&) { return Value(std::string(vendorName)); }, nullptr},
    {0x0140, 64, Text, [](const Camera& c) { return Value(std::string(c.Model().modelName)); }, nullptr},
    {0x0180, 64, Text, [](const Camera&) { return Value(std::string(cameraVersion)); }, nullptr},
    {0x01C0, 64, Text, [](const Camera& c) { return Value(std::string(c.Model().serialNumber)); }, nullptr},
    {0x0200, 64, Text, [](const Camera& c) { return Value(c.UserId()); },
     [](Camera& c, const Value& v) { c.SetUserId(std::get<std::string>(v)); }},
    {0x0300, 8, Float, [](const Camera& c) { return Value(c.Temperature()); }, nullptr},
    {0x0310, 4, Integer, nullptr, Command<LatchTimestamp>},
    {0x0318, 8, Integer, Get<&S::timestampLatch>, nullptr},
};

} // namespace

void BindDeviceRegisters(Camera& camera, RegisterMap& map) {
    map.Bind(camera, rows);
}

} // namespace zqgentl
