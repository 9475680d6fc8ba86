#include "ZqGenTLCommon/ZqGenTLError.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "ZqGenTLCommon/ZqGenTLLib.h"
#include "tests/support/ScriptedProducer.h"

using namespace ZqApi;
using ZqTest::ScriptedProducer;

namespace {

/// Calls TLGetNumInterfaces, which the test makes fail, and reports it.
class ProducerErrors : public testing::Test {
protected:
    void Load(const std::string& variant = "full") {
        producer.emplace(variant);
        lib.emplace("libzqgentl.cti");
    }
    CZqGenTLErrorException Fail(const CZqGenTLLib* reporting) {
        uint32_t count = 0;
        const GC_ERROR result =
            CallProducer(lib->TLGetNumInterfaces, static_cast<TL_HANDLE>(nullptr), &count);
        return ProducerError(reporting, "ZqApi_TL/ZqSystem", 7, result, "TLGetNumInterfaces",
                             "%d = TLGetNumInterfaces(%I64u)", result, uint64_t{250});
    }
    std::string Message() { return Fail(&*lib).GetDescription(); }

    std::optional<ScriptedProducer> producer;
    std::optional<CZqGenTLLib> lib;
};

constexpr const char* LOG = "-1011 = TLGetNumInterfaces(250)";

} // namespace

TEST_F(ProducerErrors, SameCodeAppendsTheProducersText) {
    Load();
    producer->Answer("TLGetNumInterfaces").With(GC_ERR_TIMEOUT).Saying("too slow");
    const CZqGenTLErrorException error = Fail(&*lib);
    EXPECT_EQ(error.GetDescription(), std::string(LOG) + " too slow");
    EXPECT_EQ(error.GetError(), GC_ERR_TIMEOUT);
    EXPECT_STREQ(error.GetFunctionName().c_str(), "TLGetNumInterfaces");
    EXPECT_STREQ(error.GetSourceFileName(), "ZqApi_TL/ZqSystem");
    EXPECT_EQ(error.GetSourceLine(), 7u);
    EXPECT_NE(std::string(error.what()).find("ZqGenTLErrorException"), std::string::npos);
}

TEST_F(ProducerErrors, OtherCodeAppendsNothing) {
    Load();
    producer->Answer("TLGetNumInterfaces").With(GC_ERR_TIMEOUT).Saying(GC_ERR_IO, "something else");
    EXPECT_EQ(Message(), LOG);
}

TEST_F(ProducerErrors, NoLoaderAppendsNothing) {
    Load();
    producer->Answer("TLGetNumInterfaces").With(GC_ERR_TIMEOUT).Saying("too slow");
    EXPECT_STREQ(Fail(nullptr).GetDescription(), LOG);
    EXPECT_EQ(producer->Count("GCGetLastError"), 0u);
}

TEST_F(ProducerErrors, ProducerWithoutLastErrorAppendsNothing) {
    Load("without_GCGetLastError");
    producer->Answer("TLGetNumInterfaces").With(GC_ERR_TIMEOUT);
    EXPECT_EQ(Message(), LOG);
}

TEST_F(ProducerErrors, FailingOrUnwrittenLastErrorAppendsNothing) {
    for (const int query : {1, 2}) {
        Load();
        producer->Answer("TLGetNumInterfaces").With(GC_ERR_TIMEOUT).Saying("too slow");
        producer->Answer("GCGetLastError").OnCall(query).With(GC_ERR_ERROR);
        EXPECT_EQ(Message(), LOG) << query;
        producer->AnswerAsUsual();
        producer->Answer("TLGetNumInterfaces").With(GC_ERR_TIMEOUT).Saying("too slow");
        producer->Answer("GCGetLastError").OnCall(query).WithoutCode();
        EXPECT_EQ(Message(), LOG) << query;
        lib.reset();
        producer.reset();
    }
}

TEST_F(ProducerErrors, LongTextIsCut) {
    Load();
    producer->Answer("TLGetNumInterfaces").With(GC_ERR_TIMEOUT).Saying(std::string(5000, 'x'));
    EXPECT_EQ(Message(), std::string(LOG) + " " + std::string(1022, 'x'));
}

TEST_F(ProducerErrors, AbsurdSizeAppendsNothing) {
    for (const size_t size : {SIZE_MAX, size_t{65537}}) {
        Load();
        producer->Answer("TLGetNumInterfaces").With(GC_ERR_TIMEOUT).Saying("too slow");
        producer->Answer("GCGetLastError").SizeQuery().Size(size);
        EXPECT_EQ(Message(), LOG);
        lib.reset();
        producer.reset();
    }
}

TEST_F(ProducerErrors, TextWithoutTerminatorEnds) {
    Load();
    producer->Answer("TLGetNumInterfaces").With(GC_ERR_TIMEOUT).Saying("too slow");
    producer->Answer("GCGetLastError").SizeQuery().Size(3).Code(GC_ERR_TIMEOUT);
    producer->Answer("GCGetLastError").DataQuery().Bytes("abc").Size(3).Code(GC_ERR_TIMEOUT);
    EXPECT_EQ(Message(), std::string(LOG) + " abc");
}

TEST_F(ProducerErrors, ReportBuiltBeforeCleanUpKeepsItsText) {
    Load();
    producer->Answer("TLGetNumInterfaces").OnCall(1).With(GC_ERR_TIMEOUT).Saying("too slow");
    producer->Answer("TLClose").With(GC_ERR_ERROR).Saying("clean-up failed");
    const CZqGenTLErrorException error = Fail(&*lib);
    CallProducer(lib->TLClose, static_cast<TL_HANDLE>(nullptr));
    EXPECT_EQ(error.GetDescription(), std::string(LOG) + " too slow");
}

TEST_F(ProducerErrors, MissingFunctionIsReportedAsNotImplemented) {
    Load("without_TLOpen");
    TL_HANDLE hTL = nullptr;
    const GC_ERROR result = CallProducer(lib->TLOpen, &hTL);
    try {
        CheckProducer(&*lib, "ZqApi_TL/ZqSystem", 7, result, "TLOpen", "%d = TLOpen(0x%p)", result, &hTL);
        FAIL();
    } catch (const CZqGenTLErrorException& error) {
        EXPECT_EQ(error.GetError(), -1003);
        EXPECT_EQ(ZqTest::WithoutPointers(error.GetDescription()), "-1003 = TLOpen(PTR)");
    }
}

TEST(ProducerError, OnlySuccessIsLetThrough) {
    EXPECT_NO_THROW(CheckProducer(nullptr, "u", 1, GC_ERR_SUCCESS, "f", "%d", 0));
    EXPECT_THROW(CheckProducer(nullptr, "u", 1, 5, "f", "%d", 5), CZqGenTLErrorException);
}

TEST(ProducerError, MessageIsCutBeforeTheSuffix) {
    const CZqGenTLErrorException error =
        ProducerError(nullptr, "u", 1, -1, "f", "%s", std::string(5000, 'm'));
    EXPECT_EQ(error.GetDescription(), std::string(1023, 'm'));
}

TEST(ProducerError, PointersOfTheLogAreRecognisable) {
    int object = 0;
    const CZqGenTLErrorException error =
        ProducerError(nullptr, "u", 1, 0, "GCReadPort",
                      "%d = GCReadPort(0x%p, %I64d, 0x % p, 0x % p) Length:%I64d != %I64d", 0, &object,
                      int64_t{16}, &object, nullptr, int64_t{4}, int64_t{2});
    EXPECT_EQ(ZqTest::WithoutPointers(error.GetDescription()),
              "0 = GCReadPort(PTR, 16, 0x PTR, 0x PTR) Length:4 != 2");
}
