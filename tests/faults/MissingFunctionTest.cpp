// Producers that lack one function each.
#include <gtest/gtest.h>

#include "tests/faults/Runs.h"

namespace ZqTest {

using namespace GenTL;

namespace {

/// What an application sees of a producer without the function.
struct Lack {
    const char* function;
    const char* step;         ///< which ends with a failure; "" none
    const char* kind;         ///< "": the missing function is reported like a failed call with -1003
    const char* text;         ///< of other kinds
    const char* kindLeftOpen; ///< nothing of it can be closed
    size_t way;               ///< index in `ways`
};

constexpr size_t usb = 0, ethernet = 1, grabber = 2;

// clang-format off
constexpr Lack lacks[] = {
    {"GCInitLib",                "open",          "", "", "", usb},
    {"GCCloseLib",               "",              "", "", "LIB", usb},
    {"GCGetInfo",                "",              "", "", "", usb},
    {"GCGetLastError",           "",              "", "", "", usb},
    {"TLOpen",                   "open",          "", "", "", usb},
    {"TLClose",                  "",              "", "", "TL", usb},
    {"TLGetInfo",                "open",          "", "", "", usb},
    {"TLUpdateInterfaceList",    "open",          "", "", "", usb},
    {"TLGetNumInterfaces",       "open",          "", "", "", usb},
    {"TLGetInterfaceID",         "open",          "", "", "", usb},
    {"TLGetInterfaceInfo",       "open",          "", "", "", usb},
    // Interfaces that can't be opened are passed over.
    {"TLOpenInterface",          "list",          "OutOfRangeException",
     "GetInterface = 0 must be smaller than Max = 0", "", usb},
    {"IFClose",                  "",              "", "", "IF", usb},
    {"IFGetInfo",                "open",          "", "", "", usb},
    {"IFGetParentTL",            "",              "", "", "", usb},
    {"IFUpdateDeviceList",       "open",          "", "", "", usb},
    {"IFGetNumDevices",          "open",          "", "", "", usb},
    {"IFGetDeviceID",            "open",          "", "", "", usb},
    {"IFGetDeviceInfo",          "list",          "", "", "", usb},
    {"IFOpenDevice",             "open device",   "", "", "", usb},
    {"DevClose",                 "",              "", "", "DEV", usb},
    {"DevGetInfo",               "open device",   "", "", "", usb},
    {"DevGetParentIF",           "",              "", "", "", usb},
    {"DevGetPort",               "open device",   "", "", "", usb},
    // A device without streams.
    {"DevGetNumDataStreams",     "open stream",   "OutOfRangeException",
     "nIndex = 0 must be smaller than Max = 0", "", usb},
    {"DevGetDataStreamID",       "open stream",   "OutOfRangeException",
     "nIndex = 0 must be smaller than Max = 0", "", usb},
    {"DevOpenDataStream",        "open stream",   "", "", "", usb},
    {"DSClose",                  "",              "", "", "DS", usb},
    {"DSGetInfo",                "open stream",   "", "", "", usb},
    {"DSGetParentDev",           "",              "", "", "", usb},
    {"DSAnnounceBuffer",         "start",         "", "", "", ethernet},
    {"DSAnnounceBuffer",         "",              "", "", "", usb},
    {"DSAllocAndAnnounceBuffer", "start",         "", "", "", usb},
    {"DSAllocAndAnnounceBuffer", "",              "", "", "", ethernet},
    {"DSRevokeBuffer",           "",              "", "", "BUF", ethernet},
    {"DSQueueBuffer",            "start",         "", "", "", usb},
    // What is still queued can't be revoked; it goes with the stream.
    {"DSFlushQueue",             "",              "", "", "BUF", usb},
    {"DSGetBufferID",            "",              "", "", "", usb},
    {"DSStartAcquisition",       "start",         "", "", "", usb},
    {"DSStopAcquisition",        "stop",          "", "", "", usb},
    {"DSGetBufferInfo",          "start",         "", "", "", usb},
    // Frames without chunks.
    {"DSGetBufferChunkData",     "",              "", "", "", grabber},
    {"DSGetNumBufferParts",      "",              "", "", "", usb},
    {"DSGetBufferPartInfo",      "",              "", "", "", usb},
    {"GCGetPortInfo",            "open device",   "", "", "", usb},
    // The older function gives the first URL, and the newer its count.
    {"GCGetNumPortURLs",         "",              "", "", "", usb},
    {"GCGetPortURLInfo",         "read features", "", "", "", usb},
    {"GCGetPortURL",             "",              "", "", "", usb},
    {"GCReadPort",               "open device",   "", "", "", usb},
    {"GCWritePort",              "read features", "", "", "", usb},
    {"GCReadPortStacked",        "",              "", "", "", usb},
    {"GCWritePortStacked",       "",              "", "", "", usb},
    // No event is mandatory but that of new buffers.
    {"GCRegisterEvent",          "start",         "ZqGenTLErrorException",
     "\"GCRegisterEvent\" is not implemented.", "", usb},
    {"GCUnregisterEvent",        "",              "", "", "EVENT", usb},
    {"EventGetData",             "grab",          "", "", "", usb},
    {"EventGetDataInfo",         "",              "", "", "", usb},
    {"EventGetInfo",             "",              "", "", "", usb},
    {"EventFlush",               "",              "", "", "", usb},
    {"EventKill",                "stop events",   "", "", "", usb},
};
// clang-format on

std::string Judge(const Lack& lack, const Outcome& outcome) {
    if (*lack.step == '\0')
        return JudgeHealthy(ways[lack.way], outcome);
    if (outcome.step != lack.step)
        return "in step '" + outcome.step + "': " + Show(outcome.failure);
    if (*lack.kind != '\0')
        return outcome.failure.kind == lack.kind && outcome.failure.text == lack.text ? ""
                                                                                      : Show(outcome.failure);
    FailedCall call{lack.function, lack.step, true, false};
    call.explained = false;
    // The first call is that for the size.
    call.line += "(DEV1, 0, null)";
    return JudgeReport(call, {"missing", GC_ERR_NOT_IMPLEMENTED, 0, false, 0, false}, outcome.failure);
}

/// Else the runner names the test by the bytes of its row.
void PrintTo(const Lack& lack, std::ostream* out) {
    *out << lack.function;
}

class MissingFunction : public testing::TestWithParam<Lack> {};

std::string NameOf(const testing::TestParamInfo<Lack>& info) {
    return std::string(info.param.function) + "_" + ways[info.param.way].name;
}

} // namespace

TEST_P(MissingFunction, IsReportedWhereItIsNeeded) {
    const Lack& lack = GetParam();
    {
        Runs runs(ways[lack.way], std::string("without_") + lack.function);
        if (std::string(lack.function) == "EventGetData")
            runs.patienceMs = 300; // its event threads never rest
        runs.CountFault();
        const Outcome outcome = runs.Run(lack.function, {}, [&] {
            return LeftOpen{lack.kindLeftOpen, runs.Producer().Opened(lack.kindLeftOpen)};
        });
        EXPECT_EQ(Judge(lack, outcome), "") << lack.function;
    }
    Runs(ways[lack.way]).RunHealthy(std::string("a producer without ") + lack.function);
}

TEST(MissingFunctions, AreAllInTheTable) {
    ScriptedProducer producer;
    size_t functions = 0;
    for (const Lack& lack : lacks) {
        EXPECT_NE(producer.Resolve<void*>(lack.function), nullptr) << lack.function;
        functions += &lack == lacks || std::string(lack.function) != (&lack)[-1].function ? 1 : 0;
    }
    EXPECT_EQ(functions, 57u);
}

INSTANTIATE_TEST_SUITE_P(Producers, MissingFunction, testing::ValuesIn(lacks), NameOf);

} // namespace ZqTest
