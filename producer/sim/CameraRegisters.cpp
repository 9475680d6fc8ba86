#include "producer/sim/Camera.h"
#include "producer/sim/Failure.h"

#include <string>

namespace zqgentl {

namespace {

int64_t Whole(const RegisterValue& value) {
    return std::get<int64_t>(value);
}

[[noreturn]] void Refuse(const char* name, const std::string& value, const std::string& range) {
    throw Failure(GenTL::GC_ERR_INVALID_VALUE, std::string(name) + " = " + value + " is not " + range);
}

void CheckRange(const char* name, int64_t value, int64_t min, int64_t max, int64_t increment = 1) {
    if (value < min || value > max || (value - min) % increment != 0)
        Refuse(name, std::to_string(value),
               "from " + std::to_string(min) + " to " + std::to_string(max) + " in steps of " +
                   std::to_string(increment));
}

void CheckRange(const char* name, double value, double min, double max) {
    if (!(value >= min && value <= max))
        Refuse(name, std::to_string(value), "from " + std::to_string(min) + " to " + std::to_string(max));
}

template <auto Member>
RegisterValue Get(const Camera& camera) {
    return RegisterValue(camera.Settings().*Member);
}

/// A number between two constants, changeable at any time.
template <auto Member, int64_t Min, int64_t Max>
void SetWhole(Camera& camera, const RegisterValue& value) {
    CheckRange("the value", Whole(value), Min, Max);
    camera.Apply(Camera::Lockable::No, [&](CameraSettings& settings) { settings.*Member = Whole(value); });
}

/// The same, but locked together with the transport-layer parameters.
template <auto Member, int64_t Min, int64_t Max>
void SetLockable(Camera& camera, const RegisterValue& value) {
    CheckRange("the value", Whole(value), Min, Max);
    camera.Apply(Camera::Lockable::Yes, [&](CameraSettings& settings) { settings.*Member = Whole(value); });
}

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

void SetFrameRate(Camera& camera, const RegisterValue& value) {
    camera.Apply(Camera::Lockable::No, [&](CameraSettings& settings) {
        CheckRange("AcquisitionFrameRate", std::get<double>(value), frameRateMin, MaxFrameRate(settings));
        settings.frameRate = std::get<double>(value);
    });
}

void SetExposureTime(Camera& camera, const RegisterValue& value) {
    CheckRange("ExposureTime", std::get<double>(value), exposureTimeMinUs, exposureTimeMaxUs);
    camera.Apply(Camera::Lockable::No,
                 [&](CameraSettings& settings) { settings.exposureTimeUs = std::get<double>(value); });
}

/// A command register: writing 1 executes.
template <void (*Execute)(Camera&)>
void Command(Camera& camera, const RegisterValue& value) {
    CheckRange("the command", Whole(value), 1, 1);
    Execute(camera);
}

void LatchTimestamp(Camera& camera) {
    camera.Apply(Camera::Lockable::No,
                 [](CameraSettings& settings) { settings.timestampLatch = SteadyNow(); });
}

void Start(Camera& camera) {
    camera.StartAcquisition();
}

void Stop(Camera& camera) {
    camera.StopAcquisition();
}

void Lose(Camera& camera) {
    camera.Lose();
}

constexpr RegisterKind Integer = RegisterKind::Integer;
constexpr RegisterKind Float = RegisterKind::Float;
constexpr RegisterKind Text = RegisterKind::Text;
using Value = RegisterValue;

/// Pointer to the settings, shortened for the table.
using S = CameraSettings;

constexpr RegisterRow<Camera> rows[] = {
    {0x0000, 4, Integer, [](const Camera&) { return Value(int64_t{0x00010000}); }, nullptr},
    {0x0100, 64, Text, [](const Camera&) { return Value(std::string(vendorName)); }, nullptr},
    {0x0140, 64, Text, [](const Camera& c) { return Value(std::string(c.Model().modelName)); }, nullptr},
    {0x0180, 64, Text, [](const Camera&) { return Value(std::string(cameraVersion)); }, nullptr},
    {0x01C0, 64, Text, [](const Camera& c) { return Value(std::string(c.Model().serialNumber)); }, nullptr},
    {0x0200, 64, Text, [](const Camera& c) { return Value(c.UserId()); },
     [](Camera& c, const Value& v) { c.SetUserId(std::get<std::string>(v)); }},
    {0x0300, 8, Float, [](const Camera& c) { return Value(c.Acquiring() ? 42.5 : 36.0); }, nullptr},
    {0x0310, 4, Integer, nullptr, Command<LatchTimestamp>},
    {0x0318, 8, Integer, Get<&S::timestampLatch>, nullptr},

    {0x0400, 4, Integer, [](const Camera& c) { return Value(int64_t{c.Model().sensorWidth}); }, nullptr},
    {0x0404, 4, Integer, [](const Camera& c) { return Value(int64_t{c.Model().sensorHeight}); }, nullptr},
    {0x0410, 4, Integer, Get<&S::width>, SetWidth},
    {0x0414, 4, Integer, Get<&S::height>, SetHeight},
    {0x0418, 4, Integer, Get<&S::offsetX>, SetOffsetX},
    {0x041C, 4, Integer, Get<&S::offsetY>, SetOffsetY},
    {0x0420, 4, Integer, Get<&S::pixelFormat>,
     SetLockable<&S::pixelFormat, pixelFormatMono8, pixelFormatMono8>},
    {0x0424, 4, Integer, Get<&S::testPattern>, SetWhole<&S::testPattern, 0, testPatternCount - 1>},

    {0x0500, 4, Integer, Get<&S::acquisitionMode>, SetLockable<&S::acquisitionMode, 1, 3>},
    {0x0504, 4, Integer, Get<&S::acquisitionFrameCount>,
     SetLockable<&S::acquisitionFrameCount, 1, 0x7FFFFFFF>},
    {0x0508, 4, Integer, nullptr, Command<Start>},
    {0x050C, 4, Integer, nullptr, Command<Stop>},
    {0x0510, 8, Float, Get<&S::frameRate>, SetFrameRate},
    {0x0518, 8, Float, [](const Camera& c) { return Value(MaxFrameRate(c.Settings())); }, nullptr},
    {0x0520, 4, Integer, Get<&S::frameRateEnable>, SetWhole<&S::frameRateEnable, 0, 1>},
    {0x0528, 8, Float, Get<&S::exposureTimeUs>, SetExposureTime},
    {0x0530, 4, Integer, [](const Camera& c) { return Value(int64_t{c.Acquiring()}); }, nullptr},
    {0x0538, 8, Float, [](const Camera& c) { return Value(ResultingFrameRate(c.Settings())); }, nullptr},

    {0x0600, 4, Integer, Get<&S::tlParamsLocked>, SetWhole<&S::tlParamsLocked, 0, 1>},
    {0x0608, 8, Integer, [](const Camera& c) { return Value(c.PayloadSize()); }, nullptr},

    {0x0700, 4, Integer, nullptr, Command<Lose>},
};

} // namespace

void BindCameraRegisters(Camera& camera, RegisterMap& map) {
    map.Bind(camera, rows);
    const Description& description = *camera.Model().cameraDescription;
    map.AddMemory(descriptionAddress, description.data, description.size);
}

} // namespace zqgentl
