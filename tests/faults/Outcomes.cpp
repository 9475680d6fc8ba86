#include "tests/faults/Outcomes.h"

#include <cctype>
#include <cstring>

namespace ZqTest {

using namespace GenTL;

namespace {

enum class Effect {
    Throws,           ///< the producer's failure leaves the step that made the call, with the call as message
    Nothing,          ///< the scenario runs to its end and gets all its frames
    NoFrames,         ///< it runs to its end without the frames of that acquisition
    NoFramesAgain,    ///< the same for a second acquisition, if there is one
    Lost,             ///< the device counts as lost, and an acquisition can't be started
    InCallback,       ///< the producer's failure leaves the call that a callback makes
    AtRetrieval,      ///< the failure of the event thread leaves the next retrieval that finds nothing
    MaybeAtRetrieval, ///< as above if there is one; otherwise nothing
};

constexpr int any = 0;
constexpr int except(int code) {
    return -code; // codes of failures are negative
}

struct Row {
    const char* function;
    const char* arguments; ///< what the call's line holds behind the function; "" any
    const char* step;      ///< "" any, "first": the first on its thread
    int code;              ///< any, one, or except(one)
    Effect effect;
};

using E = Effect;

// The first row that fits decides. Calls on the thread of the application.
// clang-format off
constexpr Row applicationRows[] = {
    // Closing swallows everything; a stop that was asked for does not.
    {"GCCloseLib",             "",              "",               any,  E::Nothing},
    {"TLClose",                "",              "",               any,  E::Nothing},
    {"IFClose",                "",              "",               any,  E::Nothing},
    {"DevClose",               "",              "",               any,  E::Nothing},
    {"DSClose",                "",              "",               any,  E::Nothing},
    {"DSFlushQueue",           "",              "release stream", any,  E::Nothing},
    {"DSRevokeBuffer",         "",              "release stream", any,  E::Nothing},
    // The registration that stays makes the producer refuse the next one.
    {"GCUnregisterEvent",      "(DS1, 1)",      "stop",           any,  E::NoFramesAgain},
    {"GCUnregisterEvent",      "",              "",               any,  E::Nothing},
    {"EventKill",              "",              "stop events",    any,  E::Throws},
    {"EventKill",              "",              "",               any,  E::Nothing},
    // What only explains another failure.
    {"GCGetLastError",         "",              "",               any,  E::Nothing},

    {"GCInitLib",              "",              "open",           any,  E::Throws},
    {"TLOpen",                 "",              "open",           any,  E::Throws},
    {"TLGetInfo",              "",              "",               any,  E::Throws},
    {"TLUpdateInterfaceList",  "",              "",               any,  E::Throws},
    {"TLGetNumInterfaces",     "",              "",               any,  E::Throws},
    {"TLGetInterfaceID",       "",              "",               any,  E::Throws},
    {"TLGetInterfaceInfo",     "",              "open",           any,  E::Throws},
    {"TLOpenInterface",        "",              "open",           any,  E::Throws},
    {"IFGetInfo",              "",              "",               any,  E::Throws},
    {"IFUpdateDeviceList",     "",              "",               any,  E::Throws},
    {"IFGetNumDevices",        "",              "",               any,  E::Throws},
    {"IFGetDeviceID",          "",              "",               any,  E::Throws},
    {"IFGetDeviceInfo",        "",              "",               any,  E::Throws},
    {"IFOpenDevice",           "",              "open device",    any,  E::Throws},
    {"DevGetNumDataStreams",   "",              "open device",    any,  E::Throws},
    {"DevGetDataStreamID",     "",              "open device",    any,  E::Throws},
    {"DevGetPort",             "",              "open device",    any,  E::Throws},
    {"DevGetInfo",             "",              "",               any,  E::Throws},
    {"DevOpenDataStream",      "",              "open stream",    any,  E::Throws},

    // No event type is mandatory but that of new buffers; one that is refused otherwise never comes.
    {"GCRegisterEvent",        "(DS1, 1)",      "",               GC_ERR_NOT_IMPLEMENTED, E::Throws},
    {"GCRegisterEvent",        "(DS1, 1)",      "",               any,  E::NoFrames},
    {"GCRegisterEvent",        "",              "",               any,  E::Nothing},
    {"EventGetInfo",           "",              "",               any,  E::Nothing},

    // Descriptions: without those of interface and device the module events are absent, and the system's is read
    // when it is asked for; the camera's is needed.
    {"GCGetPortInfo",          "(IF1, ",        "open",           any,  E::Nothing},
    {"GCGetPortURLInfo",       "(IF1, ",        "open",           any,  E::Nothing},
    {"GCReadPort",             "(IF1, 0x10000", "open",           any,  E::Nothing},
    {"GCGetPortInfo",          "(DEV1, ",       "open device",    any,  E::Nothing},
    {"GCGetPortURLInfo",       "(DEV1, ",       "open device",    any,  E::Nothing},
    {"GCReadPort",             "(DEV1, 0x10000","open device",    any,  E::Nothing},
    {"GCGetPortInfo",          "(REMOTE1, ",    "open device",    any,  E::Throws},
    {"GCGetPortURLInfo",       "(REMOTE1, ",    "open device",    any,  E::Throws},
    {"GCReadPort",             "(REMOTE1, 0x10000","open device", any,  E::Throws},
    {"GCGetPortInfo",          "",              "read features",  any,  E::Throws},
    {"GCGetPortURLInfo",       "",              "read features",  any,  E::Throws},
    {"GCGetNumPortURLs",       "",              "read features",  any,  E::Throws},
    // The kind of chunk layout; asked again when a frame is handed out.
    {"GCGetPortInfo",          "(REMOTE1, 3, ", "start",          any,  E::Nothing},

    // The notification of a loss is a wish, the first register of the camera the proof that it is there.
    {"GCWritePort",            "(DEV1, ",       "open device",    any,  E::Nothing},
    {"GCReadPort",             "(DEV1, ",       "open device",    any,  E::Nothing},
    {"GCReadPort",             "(REMOTE1, 0x0,","open device",    any,  E::Lost},
    {"GCReadPort",             "",              "read features",  any,  E::Throws},
    {"GCWritePort",            "",              "read features",  any,  E::Throws},
    // What can't be read now is not saved.
    {"GCReadPort",             "",              "save features",  any,  E::Nothing},
    // TLParamsLocked and the commands.
    {"GCWritePort",            "(REMOTE1, ",    "start",          any,  E::Throws},
    {"GCWritePort",            "(REMOTE1, ",    "restart",        any,  E::Throws},
    {"GCWritePort",            "(REMOTE1, ",    "stop",           any,  E::Throws},
    {"GCWritePort",            "(REMOTE1, ",    "stop again",     any,  E::Throws},

    // A producer that does not know the size leaves it to the camera.
    {"DSGetInfo",              "(DS1, 7, ",     "",               GC_ERR_NOT_IMPLEMENTED, E::Nothing},
    {"DSGetInfo",              "",              "",               any,  E::Throws},
    {"DSAllocAndAnnounceBuffer","",             "start",          any,  E::Throws},
    {"DSAnnounceBuffer",       "",              "start",          any,  E::Throws},
    {"DSQueueBuffer",          "",              "",               any,  E::Throws},
    {"DSStartAcquisition",     "",              "",               any,  E::Throws},
    {"DSStopAcquisition",      "",              "",               any,  E::Throws},

    // Announcing: the base address. Keeping: the size. A kept buffer of unknown state is queued.
    {"DSGetBufferInfo",        ", 0, 8)",       "start",          any,  E::Throws},
    {"DSGetBufferInfo",        ", 1, 8)",       "restart",        any,  E::Throws},
    {"DSGetBufferInfo",        ", 5, 1)",       "restart",        any,  E::Nothing},
    // Handing out: incomplete, payload type, base, size filled, chunk data. A frame without chunks is a frame.
    {"DSGetBufferInfo",        ", 7, 1)",       "",               any,  E::Nothing},
    {"DSGetBufferInfo",        ", 19, 8)",      "",               any,  E::Nothing},
    {"DSGetBufferInfo",        ", 0, 8)",       "",               any,  E::Nothing},
    {"DSGetBufferInfo",        ", 9, 8)",       "",               any,  E::Nothing},
    {"DSGetBufferInfo",        ", 25, 1)",      "",               any,  E::Nothing},
    {"DSGetBufferChunkData",   "",              "",               any,  E::Nothing},
    // The image: present, offset, heights, width and padding have something to fall back on; the format (20, 21)
    // has only the chunk, which these frames lack. The frame's number (16) is plainly asked for.
    {"DSGetBufferInfo",        ", 17, 1)",      "",               any,  E::Nothing},
    {"DSGetBufferInfo",        ", 18, 8)",      "",               any,  E::Nothing},
    {"DSGetBufferInfo",        ", 22, 8)",      "",               any,  E::Nothing},
    {"DSGetBufferInfo",        ", 11, 8)",      "",               any,  E::Nothing},
    {"DSGetBufferInfo",        ", 10, 8)",      "",               any,  E::Nothing},
    {"DSGetBufferInfo",        ", 14, 8)",      "",               any,  E::Nothing},
    {"DSGetBufferInfo",        ", 20, 8)",      "",               any,  E::Throws},
    {"DSGetBufferInfo",        ", 21, 8)",      "",               any,  E::Throws},
    {"DSGetBufferInfo",        ", 16, 8)",      "",               any,  E::Throws},
};

// Calls on threads of the library: what a handler meets is the loss of its event at most, what a callback of the
// application meets is the application's.
constexpr Row threadRows[] = {
    {"GCGetLastError",         "",              "",               any,  E::Nothing},
    {"EventGetData",           "/1, ",          "",               GC_ERR_TIMEOUT, E::Nothing},
    {"EventGetData",           "/1, ",          "first",          any,  E::AtRetrieval},
    {"EventGetData",           "/1, ",          "",               any,  E::MaybeAtRetrieval},
    {"EventGetData",           "",              "",               any,  E::Nothing},
    {"EventGetDataInfo",       "",              "",               any,  E::Nothing},
    {"GCWritePort",            "(REMOTE1, ",    "",               any,  E::Nothing},
    {"GCReadPort",             "(REMOTE1, ",    "",               any,  E::Nothing},
    {"DSGetBufferInfo",        ", 16, 8)",      "",               any,  E::InCallback},
    {"DSGetBufferInfo",        ", 20, 8)",      "",               any,  E::InCallback},
    {"DSGetBufferInfo",        ", 21, 8)",      "",               any,  E::InCallback},
    {"DSGetBufferInfo",        "",              "",               any,  E::Nothing},
    {"DSGetBufferChunkData",   "",              "",               any,  E::Nothing},
    {"DSQueueBuffer",          "",              "",               any,  E::InCallback},
};

/// The report of a failed call: '#' is a number, the result stands in front. The first that fits the call.
struct Layout {
    const char* function;
    const char* arguments;
    const char* reportedAs;
    const char* text;
};
constexpr Layout layouts[] = {
    {"GCInitLib",              "", "GCInitLib",             " = GCInitLib()"},
    {"TLOpen",                 "", "TLOpen",                " = TLOpen(PTR)"},
    {"TLGetInfo",              "", "TLGetInfo",             " = TLGetInfo(PTR, #, PTR, PTR, PTR)"},
    {"TLUpdateInterfaceList",  "", "TLUpdateInterfaceList", " = TLUpdateInterfaceList(PTR, PTR, 250)"},
    {"TLGetNumInterfaces",     "", "TLGetNumInterfaces",    " = TLGetNumInterfaces(PTR, PTR)"},
    {"TLGetInterfaceID",       "", "TLGetInterfaceID",      " = TLGetInterfaceID(PTR, 0, PTR, PTR)"},
    {"TLGetInterfaceInfo",     "", "TLGetInterfaceInfo",    " = TLGetInterfaceInfo(PTR, PTR, 2, PTR, PTR, PTR)"},
    {"TLOpenInterface",        "", "TLOpenInterface",       " = TLOpenInterface(PTR, IF1, PTR)"},
    {"IFGetInfo",              "", "IFGetInfo",             " = IFGetInfo(PTR, #, PTR, PTR, PTR)"},
    {"IFUpdateDeviceList",     "", "IFUpdateDeviceList",    " = IFUpdateDeviceList(PTR, PTR, #)"},
    {"IFGetNumDevices",        "", "IFGetNumDevices",       " = IFGetNumDevices(PTR, PTR)"},
    {"IFGetDeviceID",          "", "IFGetNumDevices",       " = IFGetNumDevices(PTR, 0, PTR, PTR)"},
    {"IFGetDeviceInfo",        "", "IFGetDeviceInfo",       " = IFGetDeviceInfo(PTR, PTR, #, PTR, PTR, PTR)"},
    {"IFOpenDevice",           "", "IFOpenDevice",          " = IFOpenDevice(PTR, PTR, 0x3, PTR)"},
    {"DevGetNumDataStreams",   "", "DevGetNumDataStreams",  " = DevGetNumDataStreams(PTR, PTR)"},
    {"DevGetDataStreamID", ", null)", "DevGetDataStreamID", " = DevGetDataStreamID(PTR, 0, PTR, PTR)"},
    {"DevGetDataStreamID",     "", "DevGetDataStreamID",    "=DevGetDataStreamID(PTR, 0, PTR, PTR)"},
    {"DevGetPort",             "", "DevGetPort",            " = DevGetPort(PTR, PTR)"},
    {"DevGetInfo",             "", "DevGetInfo",            " = DevGetInfo(PTR, #, PTR, PTR, PTR)"},
    {"DevOpenDataStream",      "", "DevOpenDataStream",     " = DevOpenDataStream(PTR, PTR, PTR)"},
    {"GCRegisterEvent",        "", "GCRegisterEvent",       " = GCRegisterEvent(PTR, #, PTR)"},
    {"EventKill",              "", "EventKill",             " = EventKill(PTR)"},
    {"EventGetData",           "", "EventGetData",          " = EventGetData(PTR PTR, 16, 500)"},
    {"GCGetPortInfo",          "", "GCGetPortInfo",         " = GCGetPortInfo(PTR, #, PTR, PTR, PTR)"},
    {"GCGetPortURLInfo",       "", "GCGetPortURLInfo",      " = GCGetPortURLInfo(PTR, 0, #, PTR, PTR, PTR)"},
    {"GCGetNumPortURLs",       "", "GCGetNumPortURLs",      " = GCGetNumPortURLs(PTR, PTR)"},
    {"GCReadPort",             "", "GCReadPort",            " = GCReadPort(PTR, #, PTR, PTR)"},
    {"GCWritePort",            "", "GCWritePort",           " = GCWritePort(PTR, #, PTR, PTR)"},
    {"DSGetInfo",              "", "DSGetInfo",             " = DSGetInfo(PTR, #, PTR, PTR, PTR)"},
    {"DSAllocAndAnnounceBuffer", "", "DSAllocAndAnnounceBuffer",
                                                            " = DSAllocAndAnnounceBuffer(PTR, 4096, PTR, PTR)"},
    {"DSAnnounceBuffer",       "", "DSAnnounceBuffer",      " = DSAnnounceBuffer(PTR, PTR, 4096, PTR, PTR)"},
    {"DSQueueBuffer",          "", "DSQueueBuffer",         " = DSQueueBuffer(PTR, PTR)"},
    {"DSStartAcquisition",     "", "DSStartAcquisition",    " = DSStartAcquisition(PTR, 0, -1)"},
    {"DSStopAcquisition",      "", "DSStopAcquisition",     " = DSStopAcquisition(PTR, 0)"},
    {"DSGetBufferInfo",        "", "DSGetBufferInfo",       " = DSGetBufferInfo(PTR, PTR, #, PTR, PTR, PTR)"},
};
// clang-format on

bool CodeFits(int wanted, int code) {
    return wanted == any || (wanted < 0 ? wanted == code : except(wanted) != code);
}

template <size_t N>
const Row* FindRow(const Row (&rows)[N], const FailedCall& call, int code) {
    const std::string function = FunctionOf(call.line);
    for (const Row& row : rows) {
        const bool stepFits = *row.step == '\0' || call.step == row.step ||
                              (call.isFirst && std::strcmp(row.step, "first") == 0);
        if (function == row.function && stepFits && CodeFits(row.code, code) &&
            call.line.find(row.arguments) != std::string::npos)
            return &row;
    }
    return nullptr;
}

bool Fits(const char* layout, const char* text) {
    for (; *layout != '\0'; ++layout) {
        if (*layout != '#') {
            if (*layout != *text++)
                return false;
            continue;
        }
        if (!std::isdigit(static_cast<unsigned char>(*text)))
            return false;
        while (std::isdigit(static_cast<unsigned char>(*text)))
            ++text;
    }
    return *text == '\0';
}

} // namespace

std::string Show(const Failure& failure) {
    if (failure.kind.empty())
        return "nothing was thrown";
    return failure.kind + " \"" + failure.text + "\" of " + failure.function + ", code " +
           std::to_string(failure.code);
}

std::string JudgeReport(const FailedCall& call, const Fault& fault, const Failure& failure) {
    const std::string function = FunctionOf(call.line);
    for (const Layout& layout : layouts) {
        if (function != layout.function || call.line.find(layout.arguments) == std::string::npos)
            continue;
        // Loading has no module to ask for the text, and another thread's text is not to be had.
        const bool explained = call.explained && function != "GCInitLib" && function != "EventGetData";
        const std::string expected =
            std::to_string(fault.result) + layout.text + (explained ? std::string(" ") + scriptedText : "");
        const bool fits = failure.kind == "ZqGenTLErrorException" && failure.code == fault.result &&
                          failure.function == layout.reportedAs &&
                          Fits(expected.c_str(), failure.text.c_str());
        return fits ? std::string() : "expected \"" + expected + "\", got " + Show(failure);
    }
    return "no layout for " + call.line;
}

namespace {

std::string JudgeFrames(const Way& way, const Outcome& outcome) {
    if (outcome.framesRetrieved == FramesToRetrieve(way) && outcome.framesInCallback == framesToCallback)
        return {};
    return "retrieved " + std::to_string(outcome.framesRetrieved) + " frames, " +
           std::to_string(outcome.framesInCallback) + " in the callback";
}

std::string JudgeNothing(const Outcome& outcome) {
    if (!outcome.failure.kind.empty())
        return "left step '" + outcome.step + "': " + Show(outcome.failure);
    if (!outcome.inCallback.kind.empty())
        return "in the callback: " + Show(outcome.inCallback);
    return outcome.lost ? "the device counts as lost" : "";
}

std::string JudgeThrown(const Way& way, const FailedCall& call, const Fault& fault, const Outcome& outcome) {
    if (outcome.step != call.step)
        return "expected in step '" + call.step + "', but in '" + outcome.step +
               "': " + Show(outcome.failure);
    // The first device that can be opened: one that can't is passed over.
    if (way.firstDevice && call.step == "open device")
        return outcome.failure.kind == "RuntimeException" &&
                       outcome.failure.text == "There is no available device."
                   ? ""
                   : Show(outcome.failure);
    return JudgeReport(call, fault, outcome.failure);
}

std::string JudgeLost(const Outcome& outcome) {
    const bool refused = outcome.step == "start" && outcome.failure.kind == "AccessException" &&
                         outcome.failure.text == "The device is lost.";
    return outcome.lost && refused ? "" : "the device does not count as lost: " + Show(outcome.failure);
}

std::string JudgeRetrieval(const FailedCall& call, const Fault& fault, const Outcome& outcome, bool needed) {
    const Failure& failure = outcome.failure.kind.empty() ? outcome.inCallback : outcome.failure;
    if (failure.kind.empty() && !needed)
        return {};
    return JudgeReport(call, fault, failure);
}

} // namespace

std::string JudgeHealthy(const Way& way, const Outcome& outcome) {
    std::string wrong = JudgeNothing(outcome);
    if (wrong.empty())
        wrong = JudgeFrames(way, outcome);
    return wrong;
}

std::string Judge(const Way& way, const FailedCall& call, const Fault& fault, const Outcome& outcome) {
    const Row* const row = call.onOpener ? FindRow(applicationRows, call, fault.result)
                                         : FindRow(threadRows, call, fault.result);
    if (row == nullptr)
        return "the table has no row for this call";
    switch (row->effect) {
    case Effect::Throws:
        return JudgeThrown(way, call, fault, outcome);
    case Effect::Nothing:
        return JudgeHealthy(way, outcome);
    case Effect::NoFrames:
        return JudgeFrames(way, outcome).empty() ? "all frames came" : JudgeNothing(outcome);
    case Effect::NoFramesAgain:
        return way.restart && JudgeFrames(way, outcome).empty() ? "all frames came" : JudgeNothing(outcome);
    case Effect::Lost:
        return JudgeLost(outcome);
    case Effect::InCallback:
        return outcome.failure.kind.empty() ? JudgeReport(call, fault, outcome.inCallback)
                                            : Show(outcome.failure);
    case Effect::AtRetrieval:
        return JudgeRetrieval(call, fault, outcome, true);
    case Effect::MaybeAtRetrieval:
        return JudgeRetrieval(call, fault, outcome, false);
    }
    return "unknown effect";
}

} // namespace ZqTest
