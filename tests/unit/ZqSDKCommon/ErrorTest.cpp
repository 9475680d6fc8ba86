#include "ZqSDKCommon/Error.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <vector>

#include "tests/support/AllocationFailure.h"

using namespace ZqApi;

namespace {

constexpr const char* UNIT = "ZqSDKCommon/Some";

/// The message of the exception of class E that `function` throws.
template <class E, class Function>
std::string Thrown(Function function) {
    try {
        function();
    } catch (const E& error) {
        EXPECT_STREQ(error.GetSourceFileName(), UNIT);
        EXPECT_EQ(error.GetSourceLine(), 7u);
        return error.GetDescription();
    }
    return "nothing thrown";
}

CZqLinuxErrorException LinuxError(int error, int systemError, const char* format,
                                  const std::string& argument) {
    errno = systemError;
    return CZqLinuxErrorExceptionReporter(UNIT, 7, KindOf<CZqLinuxErrorException>())
        .Report(error, "open", format, argument);
}

} // namespace

TEST(RangeCheck, TextsAndKinds) {
    using Range = GenICam::OutOfRangeException;
    EXPECT_EQ(Thrown<Range>([] { CheckAbove(UNIT, 7, "width", 0, 0); }),
              "width = 0 must be greater than Min = 0");
    EXPECT_EQ(Thrown<Range>([] { CheckMin(UNIT, 7, "eTargetInterface", -2, 1); }),
              "eTargetInterface = -2 must be equal or greater than Min = 1");
    EXPECT_EQ(Thrown<Range>([] { CheckMax(UNIT, 7, "nCount", 65536, 65535); }),
              "nCount = 65536 must be equal or smaller than Max = 65535");
    EXPECT_EQ(Thrown<Range>([] { CheckBelow(UNIT, 7, "eZqSystemVendor", 4294967295, 4); }),
              "eZqSystemVendor = 4294967295 must be smaller than Max = 4");
    EXPECT_EQ(Thrown<Range>([] { CheckIncrement(UNIT, 7, "x", 7, 1, 4); }),
              "The difference between x = 7 and Min = 1 must be dividable without rest by Inc = 4");
    EXPECT_EQ(Thrown<GenICam::LogicalErrorException>([] { CheckIncrement(UNIT, 7, "x", 7, 1, 0); }),
              "Increment must not equal 0!");
}

TEST(RangeCheck, LimitsThemselves) {
    EXPECT_NO_THROW(CheckAbove(UNIT, 7, "v", 1, 0));
    EXPECT_NO_THROW(CheckMin(UNIT, 7, "v", 0, 0));
    EXPECT_NO_THROW(CheckMax(UNIT, 7, "v", 5, 5));
    EXPECT_NO_THROW(CheckBelow(UNIT, 7, "v", 4, 5));
    EXPECT_NO_THROW(CheckIncrement(UNIT, 7, "v", 9, 1, 4));
    EXPECT_NO_THROW(CheckIncrement(UNIT, 7, "v", INT64_MIN, INT64_MAX, 1));
    EXPECT_NO_THROW(CheckIncrement(UNIT, 7, "v", INT64_MIN, 0, INT64_MIN));
}

TEST(RangeCheck, IndexIsCheckedFromBelowFirst) {
    using Range = GenICam::OutOfRangeException;
    EXPECT_EQ(Thrown<Range>([] { CheckIndex(UNIT, 7, "GetInterface", SIZE_MAX, 3); }),
              "GetInterface = -1 must be equal or greater than Min = 0");
    EXPECT_EQ(Thrown<Range>([] { CheckIndex(UNIT, 7, "GetInterface", 3, 3); }),
              "GetInterface = 3 must be smaller than Max = 3");
    EXPECT_NO_THROW(CheckIndex(UNIT, 7, "GetInterface", 2, 3));
}

TEST(ReportedError, CarriesTextUnitLineAndKind) {
    const auto error = ReportError<GenICam::AccessException>(UNIT, 7, "The %s is lost.", "device");
    EXPECT_STREQ(error.GetDescription(), "The device is lost.");
    EXPECT_NE(std::strstr(error.what(), "AccessException"), nullptr) << error.what();
    EXPECT_NE(std::strstr(error.what(), UNIT), nullptr) << error.what();
}

TEST(ReportedError, TextMayBeLongAndEmpty) {
    const std::string name(5000, 'n');
    EXPECT_EQ(ReportError<GenICam::RuntimeException>(UNIT, 7, "File %s not found.", name).GetDescription(),
              "File " + name + " not found.");
    EXPECT_STREQ(ReportError<GenICam::BadAllocException>(UNIT, 7, "").GetDescription(), "");
}

TEST(LinuxError, MessageNamesErrnoAndErrorIsTheNumberPassed) {
    const CZqLinuxErrorException error = LinuxError(5, ENOENT, "%s", "p");
    EXPECT_STREQ(error.GetDescription(), "p ErrorCode=0x00000005 \" \"No such file or directory");
    EXPECT_EQ(error.GetError(), 5);
    EXPECT_STREQ(error.GetFunctionName().c_str(), "open");
    EXPECT_NE(std::strstr(error.what(), "ZqLinuxErrorException"), nullptr) << error.what();
}

TEST(LinuxError, MainTextIsCutAndSuffixKeptWhole) {
    const CZqLinuxErrorException error = LinuxError(-1, 0, "%s", std::string(4096, 'x'));
    EXPECT_EQ(error.GetDescription(), std::string(1023, 'x') + " ErrorCode=0xffffffff \" \"Success");
}

TEST(LinuxError, IsCopiedMovedAndCaughtAsBase) {
    CZqLinuxErrorException error = LinuxError(5, ENOENT, "%s", "p");
    const CZqLinuxErrorException copy = error;
    const CZqLinuxErrorException moved = std::move(error);
    EXPECT_EQ(moved.GetError(), 5);
    EXPECT_STREQ(copy.GetDescription(), moved.GetDescription());
    EXPECT_THROW(throw copy, GenICam::GenericException);
    EXPECT_THROW(throw copy, std::exception);
}

TEST(ConvertBadAlloc, AllocatorsTextBecomesTheMessage) {
    EXPECT_EQ(
        Thrown<GenICam::BadAllocException>([] { ConvertBadAlloc(UNIT, 7, [] { throw std::bad_alloc(); }); }),
        "std::bad_alloc");
}

TEST(ConvertBadAlloc, ConvertsWhatTheHeapRefuses) {
    EXPECT_EQ(Thrown<GenICam::BadAllocException>([] {
                  const ZqTest::AllocationLimit limit(1 << 20);
                  ConvertBadAlloc(UNIT, 7, [] { return std::vector<char>(2 << 20); });
              }),
              "std::bad_alloc");
}

TEST(ConvertBadAlloc, LetsResultsAndOtherExceptionsThrough) {
    EXPECT_EQ(ConvertBadAlloc(UNIT, 7, [] { return 42; }), 42);
    int value = 1;
    int& reference = ConvertBadAlloc(UNIT, 7, [&value]() -> int& { return value; });
    EXPECT_EQ(&reference, &value);
    EXPECT_THROW(ConvertBadAlloc(UNIT, 7, [] { throw std::length_error("x"); }), std::length_error);
}

TEST(AssertionDeathTest, PrintsUnitAndExpressionAsGiven) {
    const void* const m_hTL = nullptr;
    EXPECT_DEATH(ZQ_ASSERT(UNIT, m_hTL != NULL),
                 "ZqSDKCommon/Some:[0-9]+: assertion failed: m_hTL != NULL\n");
    ZQ_ASSERT(UNIT, m_hTL == NULL);
}
