#include "producer/sim/CameraRegisters.h"

namespace zqgentl {

namespace {

constexpr RegisterKind Integer = RegisterKind::Integer;

void Lose(Camera& camera) {
    camera.Lose();
}

constexpr RegisterRow<Camera> rows[] = {
    {0x0700, 4, Integer, nullptr, Command<Lose>},
};

} // namespace

void BindSimulationRegisters(Camera& camera, RegisterMap& map) {
    map.Bind(camera, rows);
}

} // namespace zqgentl
