#include "producer/sim/CameraRegisters.h"

namespace zqgentl {

namespace {

constexpr RegisterKind Integer = RegisterKind::Integer;

void SetWidth(Camera& camera, const RegisterValue& value) {
    camera.Apply(Camera::Lockable::Yes, [&](CameraSettings& settings) {
        CheckRange("Width", Whole(value), widthMin, camera.Model().sensorWidth - settings.offsetX,
                   widthIncrement);
        settings.width = Whole(value);
    });
}

void SetHeight(Camera& camera, const RegisterValue& value) {
    camera.Apply(Camera::Lockable::Yes, [&](CameraSettings& settings) {
        CheckRange("Height", Whole(value), heightMin, camera.Model().sensorHeight - settings.offsetY);
        settings.height = Whole(value);
    });
}

void SetOffsetX(Camera& camera, const RegisterValue& value) {
    camera.Apply(Camera::Lockable::No, [&](CameraSettings& settings) {
        CheckRange("OffsetX", Whole(value), 0, camera.Model().sensorWidth - settings.width, widthIncrement);
        settings.offsetX = Whole(value);
    });
}

void SetOffsetY(Camera& camera, const RegisterValue& value) {
    camera.Apply(Camera::Lockable::No, [&](CameraSettings& settings) {
        CheckRange("OffsetY", Whole(value), 0, camera.Model().sensorHeight - settings.height);
        settings.offsetY = Whole(value);
    });
}

constexpr RegisterRow<Camera> rows[] = {
    {0x0400, 4, Integer, [](const Camera& c) { return Value(int64_t{c.Model().sensorWidth}); }, nullptr},
    {0x0404, 4, Integer, [](const Camera& c) { return Value(int64_t{c.Model().sensorHeight}); }, nullptr},
    {0x0410, 4, Integer, Get<&S::width>, SetWidth},
    {0x0414, 4, Integer, Get<&S::height>, SetHeight},
    {0x0418, 4, Integer, Get<&S::offsetX>, SetOffsetX},
    {0x041C, 4, Integer, Get<&S::offsetY>, SetOffsetY},
    {0x0420, 4, Integer, Get<&S::pixelFormat>,
     SetLockable<&S::pixelFormat, pixelFormatMono8, pixelFormatMono8>},
    {0x0424, 4, Integer, Get<&S::testPattern>, SetWhole<&S::testPattern, 0, testPatternCount - 1>},
};

} // namespace

void BindImageRegisters(Camera& camera, RegisterMap& map) {
    map.Bind(camera, rows);
}

} // namespace zqgentl
