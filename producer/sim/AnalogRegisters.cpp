#include "producer/sim/CameraRegisters.h"

namespace zqgentl {

namespace {

constexpr RegisterKind Integer = RegisterKind::Integer;
constexpr RegisterKind Float = RegisterKind::Float;
constexpr RegisterKind Bytes = RegisterKind::Bytes;

using T = ToneSettings;

template <auto Member>
RegisterValue GetTone(const Camera& camera) {
    return Value(camera.Settings().tone.*Member);
}

void SetTone(Camera& camera, const RegisterValue& value, double ToneSettings::*member, double min,
             double max) {
    CheckRange("the value", std::get<double>(value), min, max);
    camera.Apply(Camera::Lockable::No,
                 [&](CameraSettings& settings) { settings.tone.*member = std::get<double>(value); });
}

void SetGain(Camera& camera, const RegisterValue& value) {
    SetTone(camera, value, &T::gainDb, 0, gainMaxDb);
}

void SetBlackLevel(Camera& camera, const RegisterValue& value) {
    SetTone(camera, value, &T::blackLevel, 0, blackLevelMax);
}

void SetGamma(Camera& camera, const RegisterValue& value) {
    SetTone(camera, value, &T::gamma, gammaMin, gammaMax);
}

void SetLutEnable(Camera& camera, const RegisterValue& value) {
    CheckRange("LUTEnable", Whole(value), 0, 1);
    camera.Apply(Camera::Lockable::No,
                 [&](CameraSettings& settings) { settings.tone.lutEnable = Whole(value); });
}

RegisterValue GetLutValue(const Camera& camera) {
    const CameraSettings settings = camera.Settings();
    return Value(int64_t{settings.tone.lut[static_cast<size_t>(settings.lutIndex)]});
}

void SetLutValue(Camera& camera, const RegisterValue& value) {
    CheckRange("LUTValue", Whole(value), 0, 255);
    camera.Apply(Camera::Lockable::No, [&](CameraSettings& settings) {
        settings.tone.lut[static_cast<size_t>(settings.lutIndex)] = static_cast<uint8_t>(Whole(value));
    });
}

RegisterValue GetLut(const Camera& camera) {
    const LookUpTable lut = camera.Settings().tone.lut;
    return Value(std::string(lut.begin(), lut.end()));
}

void SetLut(Camera& camera, const RegisterValue& value) {
    const std::string& bytes = std::get<std::string>(value);
    camera.Apply(Camera::Lockable::No, [&](CameraSettings& settings) {
        for (size_t i = 0; i < lutSize; ++i)
            settings.tone.lut[i] = static_cast<uint8_t>(bytes[i]);
    });
}

constexpr int64_t lastLutIndex = lutSize - 1;

constexpr RegisterRow<Camera> rows[] = {
    {0x0900, 8, Float, GetTone<&T::gainDb>, SetGain},
    {0x0908, 8, Float, GetTone<&T::blackLevel>, SetBlackLevel},
    {0x0910, 8, Float, GetTone<&T::gamma>, SetGamma},

    {0x0A00, 4, Integer, [](const Camera&) { return Value(int64_t{0}); }, SetNothing<0>},
    {0x0A04, 4, Integer, GetTone<&T::lutEnable>, SetLutEnable},
    {0x0A08, 4, Integer, Get<&S::lutIndex>, SetWhole<&S::lutIndex, 0, lastLutIndex>},
    {0x0A0C, 4, Integer, GetLutValue, SetLutValue},
    {0x3000, lutSize, Bytes, GetLut, SetLut},
};

} // namespace

void BindAnalogRegisters(Camera& camera, RegisterMap& map) {
    map.Bind(camera, rows);
}

} // namespace zqgentl
