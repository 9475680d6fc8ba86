#include "tests/support/AllocationFailure.h"
#include "tests/unit/ZqApi_TL/ModuleTree.h"

namespace ZqTest {
namespace {

class InfoQueries : public ModuleTree {
protected:
    void SetUp() override {
        producer.ClearInterfaces();
        system = OpenSystem();
    }

    void TearDown() override {
        system.reset();
        ModuleTree::TearDown();
    }

    const IZqSystemInfo& Info() { return *system->GetIZqSystemInfo(); }

    System system;
};

TEST_F(InfoQueries, TextIsAskedForInTwoCallsEveryTime) {
    producer.ClearLog();
    Info().GetVendor();
    Info().GetVendor();
    const Calls log = producer.Log("TLGetInfo");
    ASSERT_EQ(log.size(), 4u);
    EXPECT_EQ(log[0], "TLGetInfo(TL1, 1, null)");
    EXPECT_EQ(log[1], "TLGetInfo(TL1, 1, 9)");
}

TEST_F(InfoQueries, FailingSizeAndDataQueryAreReportedTheSame) {
    producer.Answer("TLGetInfo").Command(TL_INFO_VENDOR).SizeQuery().With(GC_ERR_NOT_AVAILABLE);
    producer.Answer("TLGetInfo")
        .Command(TL_INFO_MODEL)
        .DataQuery()
        .With(GC_ERR_BUFFER_TOO_SMALL)
        .Saying("bigger");
    const Thrown size = CatchProducerError([&] { Info().GetVendor(); });
    EXPECT_EQ(size.text, "-1014 = TLGetInfo(PTR, 1, PTR, PTR, PTR)");
    EXPECT_EQ(size.function, "TLGetInfo");
    EXPECT_EQ(size.source, "ZqApi_TL/ZqSystemInfo");
    EXPECT_EQ(CatchProducerError([&] { Info().GetModel(); }).text,
              "-1016 = TLGetInfo(PTR, 2, PTR, PTR, PTR) bigger");
}

TEST_F(InfoQueries, NumberIsReportedWithItsCommand) {
    producer.Answer("TLGetInfo").Command(TL_INFO_GENTL_VER_MINOR).With(GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(CatchProducerError([&] { Info().GetGenTLVersionMinor(); }).text,
              "-1003 = TLGetInfo(PTR, 10, PTR, PTR, PTR)");
}

TEST_F(InfoQueries, NumberOfAnotherTypeIsTakenAsWritten) {
    producer.Answer("TLGetInfo")
        .Command(TL_INFO_CHAR_ENCODING)
        .Value<uint32_t>(0xDEADBEEF)
        .Type(INFO_DATATYPE_STRING)
        .Size(77);
    EXPECT_EQ(static_cast<uint32_t>(Info().GetCharEncoding()), 0xDEADBEEFu);
}

TEST_F(InfoQueries, BytesThatAreNotWrittenAreZero) {
    producer.Answer("TLGetInfo").Command(TL_INFO_CHAR_ENCODING).Value<uint8_t>(0x5A);
    EXPECT_EQ(Info().GetCharEncoding(), 0x5A);
}

TEST_F(InfoQueries, TextWithoutTerminatorEndsAtItsSize) {
    producer.Answer("TLGetInfo").Command(TL_INFO_VENDOR).Bytes("abc");
    EXPECT_STREQ(Info().GetVendor().c_str(), "abc");
}

TEST_F(InfoQueries, TextEndsAtItsFirstTerminator) {
    producer.Answer("TLGetInfo").Command(TL_INFO_VENDOR).Bytes(std::string("ab\0cd\0", 6));
    EXPECT_STREQ(Info().GetVendor().c_str(), "ab");
}

TEST_F(InfoQueries, TextOfSizeZeroIsEmpty) {
    producer.Answer("TLGetInfo").Command(TL_INFO_VENDOR).Bytes("");
    EXPECT_STREQ(Info().GetVendor().c_str(), "");
}

TEST_F(InfoQueries, AbsurdSizeIsAnAllocationFailure) {
    for (const size_t size : {SIZE_MAX, static_cast<size_t>(PTRDIFF_MAX)}) {
        producer.Answer("TLGetInfo").Command(TL_INFO_VENDOR).SizeQuery().Size(size);
        EXPECT_EQ(Catch<GenICam::BadAllocException>([&] { Info().GetVendor(); }).text, "std::bad_alloc");
    }
}

TEST_F(InfoQueries, FailingAllocationHasTheAllocatorsText) {
    producer.Answer("TLGetInfo").Command(TL_INFO_VENDOR).SizeQuery().Size(1 << 20);
    const AllocationLimit limit(1 << 19);
    const Thrown thrown = Catch<GenICam::BadAllocException>([&] { Info().GetVendor(); });
    EXPECT_EQ(thrown.text, "std::bad_alloc");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqSystemInfo");
}

TEST_F(InfoQueries, ProducersTextFollowsOnlyItsOwnCode) {
    producer.Answer("TLGetInfo")
        .Command(TL_INFO_VENDOR)
        .With(GC_ERR_IO)
        .Saying(GC_ERR_ERROR, "another call's");
    EXPECT_EQ(CatchProducerError([&] { Info().GetVendor(); }).text,
              "-1010 = TLGetInfo(PTR, 1, PTR, PTR, PTR)");
}

TEST_F(InfoQueries, FailedQueryIsTriedAgain) {
    producer.Answer("TLGetInfo").Command(TL_INFO_VENDOR).OnCall(1).With(GC_ERR_IO);
    EXPECT_EQ(CatchProducerError([&] { Info().GetVendor(); }).error, -1010);
    EXPECT_STREQ(Info().GetVendor().c_str(), "Scripted");
}

class InfoWithoutTLGetInfo : public ModuleTree {
protected:
    InfoWithoutTLGetInfo() : ModuleTree("without_TLGetInfo") {}
};

TEST_F(InfoWithoutTLGetInfo, SystemCanNotBeNamedAndIsNotCreated) {
    const Thrown thrown = CatchProducerError([this] { OpenSystem(); });
    EXPECT_EQ(thrown.text, "-1003 = TLGetInfo(PTR, 0, PTR, PTR, PTR)");
    EXPECT_EQ(thrown.error, -1003);
}

} // namespace
} // namespace ZqTest
