#pragma once

#include "producer/sim/Camera.h"
#include "producer/sim/Failure.h"

#include <string>

/// What the tables of camera registers are written with. Each table is a subject of its own and is bound by
/// one function.
namespace zqgentl {

using Value = RegisterValue;
using S = CameraSettings;

void BindDeviceRegisters(Camera& camera, RegisterMap& map);
void BindImageRegisters(Camera& camera, RegisterMap& map);
void BindAcquisitionRegisters(Camera& camera, RegisterMap& map);
void BindStreamingRegisters(Camera& camera, RegisterMap& map);
void BindAnalogRegisters(Camera& camera, RegisterMap& map);
void BindControlRegisters(Camera& camera, RegisterMap& map);
void BindFileRegisters(Camera& camera, RegisterMap& map);
void BindSimulationRegisters(Camera& camera, RegisterMap& map);

inline int64_t Whole(const RegisterValue& value) {
    return std::get<int64_t>(value);
}

/// Throw GC_ERR_INVALID_VALUE.
void CheckRange(const char* name, int64_t value, int64_t min, int64_t max, int64_t increment = 1);
void CheckRange(const char* name, double value, double min, double max);

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

/// A member of a part of the settings.
template <auto Part, auto Member>
RegisterValue GetIn(const Camera& camera) {
    return Value(camera.Settings().*Part.*Member);
}

template <auto Part, auto Member, int64_t Min, int64_t Max>
void SetIn(Camera& camera, const RegisterValue& value) {
    CheckRange("the value", Whole(value), Min, Max);
    camera.Apply(Camera::Lockable::No,
                 [&](CameraSettings& settings) { settings.*Part.*Member = Whole(value); });
}

/// A number of the counter, timer or trigger that a selector names.
template <auto Parts, auto Selector, auto Member>
RegisterValue GetOf(const Camera& camera) {
    const CameraSettings settings = camera.Settings();
    return Value((settings.*Parts)[static_cast<size_t>(settings.*Selector)].*Member);
}

template <auto Parts, auto Selector, auto Member, class Number>
void SetOf(Camera& camera, Number number) {
    camera.Apply(Camera::Lockable::No, [&](CameraSettings& settings) {
        (settings.*Parts)[static_cast<size_t>(settings.*Selector)].*Member = number;
    });
}

/// A selector with few entries, none of which has a state of its own.
template <int64_t Max>
void SetNothing(Camera&, const RegisterValue& value) {
    CheckRange("the selector", Whole(value), 0, Max);
}

/// A command register: writing 1 executes.
template <void (*Execute)(Camera&)>
void Command(Camera& camera, const RegisterValue& value) {
    CheckRange("the command", Whole(value), 1, 1);
    Execute(camera);
}

} // namespace zqgentl
