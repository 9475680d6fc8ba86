#pragma once

#include "Report.h"
#include "tests/unit/producer/Functions.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace contract {

using namespace GenTL;

/// What every chapter of the suite works with.
struct Context {
    Functions gentl{};
    Report report;

    explicit Context(bool verbose) : report(verbose) {}
};

/// Loads a producer; false, with the missing functions reported, when it can't be used.
bool Load(Context& context, const char* file);

/// A call that answers with a type, a value and its size.
using InfoCall = std::function<GC_ERROR(INFO_DATATYPE*, void*, size_t*)>;
/// A call that answers with a text and its size.
using TextCall = std::function<GC_ERROR(char*, size_t*)>;

enum class Need { Mandatory, Optional };

/// One information command: the type of its answer, and whether a producer must know it.
struct InfoRow {
    int32_t command;
    const char* name;
    INFO_DATATYPE type;
    Need need;
};

/// Walks a command through the protocol of sizes and types. True when it has an answer now.
bool CheckInfo(Context& context, const std::string& function, const InfoRow& row, const InfoCall& call);
/// The same for every row of a table, and for a command that nobody knows.
void CheckInfos(Context& context, const std::string& function, const std::vector<InfoRow>& rows,
                const std::function<InfoCall(int32_t)>& callOf);
/// The protocol of sizes alone.
bool CheckText(Context& context, const std::string& function, const TextCall& call);

std::string TextOf(const InfoCall& call);
std::string TextOf(const TextCall& call);
template <class T>
T ValueOf(const InfoCall& call, T fallback = T{}) {
    T value{};
    size_t size = sizeof value;
    INFO_DATATYPE type = 0;
    return call(&type, &value, &size) == GC_ERR_SUCCESS ? value : fallback;
}

/// The chapters, each leaving the producer as it found it: initialised or not, as its name says.
void CheckUninitialised(Context& context);
void CheckLibrary(Context& context);
void CheckSystem(Context& context, TL_HANDLE system);
void CheckInterface(Context& context, TL_HANDLE system, const std::string& id);
void CheckDevice(Context& context, IF_HANDLE interface, const std::string& id);
/// Each way to open a device that is closed, and its status meanwhile.
void CheckAccessModes(Context& context, IF_HANDLE interface, const std::string& id);
void CheckStream(Context& context, DEV_HANDLE device, PORT_HANDLE remote, const std::string& id);
void CheckAcquisition(Context& context, DS_HANDLE stream, PORT_HANDLE remote);
void CheckPort(Context& context, const std::string& which, void* port, const char* module);
/// With the library closed before and after: two devices at once, and for every function handles that are
/// none, of another kind, or closed.
void CheckTwoDevices(Context& context);
void CheckHandles(Context& context);
/// One event registration; `newBuffer` has the data of its own kind.
void CheckEvent(Context& context, const std::string& which, void* source, EVENT_TYPE type);
void CheckEventTypes(Context& context, const std::string& which, void* source,
                     std::initializer_list<EVENT_TYPE> refused);

} // namespace contract
