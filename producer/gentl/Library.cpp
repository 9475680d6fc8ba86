#include "producer/gentl/Library.h"

namespace zqgentl {

Library::State& Library::Instance() {
    // Never destroyed: a process may end without GCCloseLib, with threads in calls.
    static auto* state = new State;
    return *state;
}

void Library::Init() {
    State& state = Instance();
    std::lock_guard<std::mutex> guard(state.lock);
    if (state.initialised)
        throw Failure(GenTL::GC_ERR_RESOURCE_IN_USE, "the library is initialised already");
    state.inventory = std::make_shared<Inventory>(PopulationOfEnvironment());
    state.initialised = true;
}

void Library::Close() {
    State& state = Instance();
    std::shared_ptr<SystemModule> system;
    {
        std::lock_guard<std::mutex> guard(state.lock);
        if (!state.initialised)
            throw Failure(GenTL::GC_ERR_NOT_INITIALIZED, "GCInitLib has not been called");
        state.initialised = false;
        system.swap(state.system);
        state.inventory.reset();
    }
    if (system != nullptr && HandleRegistry::Instance().Remove(Kind::System, system->Handle()))
        system->Close();
}

void Library::RequireInitialised() {
    if (!Instance().initialised)
        throw Failure(GenTL::GC_ERR_NOT_INITIALIZED, "GCInitLib has not been called");
}

void* Library::OpenSystem() {
    State& state = Instance();
    std::lock_guard<std::mutex> guard(state.lock);
    if (!state.initialised)
        throw Failure(GenTL::GC_ERR_NOT_INITIALIZED, "GCInitLib has not been called");
    if (state.system != nullptr)
        throw Failure(GenTL::GC_ERR_RESOURCE_IN_USE, "the system is open already");
    state.system = Publish(std::make_shared<SystemModule>(state.inventory));
    return state.system->Handle();
}

void Library::CloseSystem(void* handle) {
    CloseModule<SystemModule>(handle);
    State& state = Instance();
    std::lock_guard<std::mutex> guard(state.lock);
    if (state.system != nullptr && state.system->Handle() == handle)
        state.system.reset();
}

} // namespace zqgentl
