#include "producer/sim/CameraRegisters.h"

namespace zqgentl {

namespace {

constexpr RegisterKind Integer = RegisterKind::Integer;
constexpr RegisterKind Bytes = RegisterKind::Bytes;

using State = DeviceFiles::State;

template <auto Member>
RegisterValue GetState(const Camera& camera) {
    return Value(static_cast<int64_t>(camera.Files().Current().*Member));
}

template <void (DeviceFiles::*Set)(int64_t)>
void SetState(Camera& camera, const RegisterValue& value) {
    (camera.Files().*Set)(Whole(value));
}

void ExecuteFileOperation(Camera& camera) {
    camera.Files().Execute();
}

using Files = DeviceFiles;

constexpr RegisterRow<Camera> rows[] = {
    {0x0F00, 4, Integer, GetState<&State::file>, SetState<&Files::Select>},
    {0x0F04, 4, Integer, GetState<&State::operation>, SetState<&Files::SelectOperation>},
    {0x0F08, 4, Integer, nullptr, Command<ExecuteFileOperation>},
    {0x0F0C, 4, Integer, GetState<&State::mode>, SetState<&Files::SetMode>},
    {0x0F10, 8, Integer, GetState<&State::offset>, SetState<&Files::SetOffset>},
    {0x0F18, 8, Integer, GetState<&State::length>, SetState<&Files::SetLength>},
    {0x0F20, 4, Integer, GetState<&State::status>, nullptr},
    {0x0F28, 8, Integer, GetState<&State::result>, nullptr},
    {0x0F30, 8, Integer, GetState<&State::size>, nullptr},
    {0x2000, Files::bufferSize, Bytes, [](const Camera& c) { return Value(c.Files().Buffer()); },
     [](Camera& c, const Value& v) { c.Files().SetBuffer(std::get<std::string>(v)); }},
};

} // namespace

void BindFileRegisters(Camera& camera, RegisterMap& map) {
    map.Bind(camera, rows);
}

} // namespace zqgentl
