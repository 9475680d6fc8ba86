#include "Camera.h"

using namespace GenICam;
using namespace GenApi;

namespace {

using Bytes = std::vector<int>;

struct Coding {
    const char* more;
    int length;
    Bytes bytes;
    int64_t value;
};

std::string Masked(const std::string& name, int64_t address, int length, const std::string& more) {
    return ::Register("MaskedIntReg", name, address, length, more);
}

} // namespace

TEST(IntegerRegister, DecodesAndEncodesEveryOrderAndSign) {
    const Coding codings[] = {
        {"", 1, {0xFE}, 0xFE},
        {"<Sign>Signed</Sign>", 1, {0xFE}, -2},
        {"<Endianess>BigEndian</Endianess>", 2, {0x12, 0x34}, 0x1234},
        {"<Endianess>LittleEndian</Endianess>", 2, {0x12, 0x34}, 0x3412},
        {"<Endianess>BigEndian</Endianess><Sign>Signed</Sign>", 4, {0xFF, 0xFF, 0xFF, 0x00}, -256},
        {"", 4, {0xFF, 0xFF, 0xFF, 0xFF}, 0xFFFFFFFF},
        {"<Endianess>BigEndian</Endianess>", 6, {0, 1, 2, 3, 4, 5}, 0x102030405},
        {"", 8, {0, 0, 0, 0, 0, 0, 0, 0x80}, INT64_MIN},
        {"<Endianess>BigEndian</Endianess>",
         8,
         {0x7F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE},
         INT64_MAX - 1},
    };
    for (const Coding& coding : codings) {
        Camera camera(IntReg("R", 16, coding.length, coding.more));
        for (size_t i = 0; i < coding.bytes.size(); ++i)
            camera.port.Put(16 + static_cast<int64_t>(i), {coding.bytes[i]});
        EXPECT_EQ(camera.Int("R")->GetValue(), coding.value) << coding.more;
        camera.Int("R")->SetValue(0, false);
        EXPECT_EQ(camera.port.Bytes(16, coding.length), Bytes(static_cast<size_t>(coding.length), 0));
        camera.Int("R")->SetValue(coding.value, false);
        EXPECT_EQ(camera.port.Bytes(16, coding.length), coding.bytes) << coding.more;
    }
}

TEST(IntegerRegister, LimitsFollowWidthAndSign) {
    Camera camera(IntReg("U1", 0, 1) + IntReg("S2", 0, 2, "<Sign>Signed</Sign>") + IntReg("U8", 0, 8) +
                  Masked("M", 0, 4, "<LSB>4</LSB><MSB>6</MSB>"));
    EXPECT_EQ(camera.Int("U1")->GetMax(), 255);
    EXPECT_EQ(camera.Int("S2")->GetMin(), -32768);
    EXPECT_EQ(camera.Int("S2")->GetMax(), 32767);
    EXPECT_EQ(camera.Int("U8")->GetMax(), INT64_MAX);
    EXPECT_EQ(camera.Int("M")->GetMax(), 7);
    EXPECT_EQ(camera.Int("M")->GetInc(), 1);
}

TEST(MaskedRegister, BitNumbersCountFromTheOtherEndInBigEndian) {
    Camera camera(Masked("Little", 0, 4, "<LSB>4</LSB><MSB>11</MSB><Endianess>LittleEndian</Endianess>") +
                  Masked("Big", 8, 4, "<LSB>31</LSB><MSB>28</MSB><Endianess>BigEndian</Endianess>") +
                  Masked("Top", 16, 2, "<LSB>11</LSB><MSB>0</MSB><Endianess>BigEndian</Endianess>") +
                  Masked("BigBit", 8, 4, "<Bit>0</Bit><Endianess>BigEndian</Endianess>") +
                  Masked("Turned", 0, 4, "<LSB>11</LSB><MSB>4</MSB><Endianess>LittleEndian</Endianess>"));
    camera.port.Put(0, {0xA0, 0x0B, 0, 0});
    camera.port.Put(8, {0x80, 0, 0, 0x05});
    camera.port.Put(16, {0x12, 0x34});
    EXPECT_EQ(camera.Int("Little")->GetValue(), 0xBA);
    EXPECT_EQ(camera.Int("Turned")->GetValue(), 0xBA);
    EXPECT_EQ(camera.Int("Big")->GetValue(), 5);
    EXPECT_EQ(camera.Int("BigBit")->GetValue(), 1);
    EXPECT_EQ(camera.Int("Top")->GetValue(), 0x123);
}

TEST(MaskedRegister, SignComesFromTheTopBitOfTheField) {
    Camera camera(Masked("M", 0, 1, "<LSB>2</LSB><MSB>4</MSB><Sign>Signed</Sign>"));
    camera.port.Put(0, {0b00011100});
    EXPECT_EQ(camera.Int("M")->GetValue(), -1);
    EXPECT_EQ(camera.Int("M")->GetMin(), -4);
    EXPECT_EQ(camera.Int("M")->GetMax(), 3);
}

TEST(MaskedRegister, NegativeNumberStaysInsideItsField) {
    const std::string field = "<LSB>2</LSB><MSB>4</MSB><Sign>Signed</Sign>";
    Camera camera(
        Masked("Little", 0, 1, field) +
        Masked("Big", 8, 2, "<LSB>12</LSB><MSB>9</MSB><Sign>Signed</Sign><Endianess>BigEndian</Endianess>"));
    camera.port.Put(8, {0x81, 0x01});
    camera.Int("Little")->SetValue(-4);
    EXPECT_EQ(camera.port.Bytes(0, 1), Bytes{0b00010000});
    camera.Int("Big")->SetValue(-1);
    EXPECT_EQ(camera.port.Bytes(8, 2), (Bytes{0x81, 0x79}));
    EXPECT_EQ(camera.Int("Big")->GetValue(), -1);
}

TEST(MaskedRegister, WriteKeepsTheOtherBitsWithFreshBytes) {
    Camera camera(Masked("Low", 0, 2, "<LSB>0</LSB><MSB>3</MSB>") +
                  Masked("High", 0, 2, "<LSB>8</LSB><MSB>15</MSB>"));
    camera.port.Put(0, {0x51, 0x22});
    EXPECT_EQ(camera.Int("Low")->GetValue(), 1);
    camera.port.Put(1, {0x77}); // the device changes it without a word
    camera.Int("Low")->SetValue(9);
    EXPECT_EQ(camera.port.Bytes(0, 2), (Bytes{0x59, 0x77}));
    EXPECT_EQ(camera.Int("High")->GetValue(), 0x77);
}

TEST(MaskedRegister, WritingOneFieldMakesItsNeighboursStale) {
    Camera camera(Masked("A", 0, 4, "<Bit>0</Bit>") + IntReg("Whole", 0, 4) + IntReg("Apart", 4, 4));
    EXPECT_EQ(camera.Int("Whole")->GetValue(), 0);
    EXPECT_EQ(camera.Int("Apart")->GetValue(), 0);
    camera.Int("A")->SetValue(1);
    camera.port.TakeReads();
    EXPECT_EQ(camera.Int("Whole")->GetValue(), 1);
    EXPECT_EQ(camera.port.TakeReads(), 1);
    EXPECT_EQ(camera.Int("Apart")->GetValue(), 0);
    EXPECT_EQ(camera.port.TakeReads(), 0);
}

TEST(IntegerRegister, OneByteInCommonIsEnoughToMakeAnotherStale) {
    Camera camera(IntReg("Low", 0) + IntReg("High", 3) + IntReg("Behind", 7));
    const auto readsAfterWriting = [&](const char* written) {
        std::vector<int> reads;
        for (const char* const name : {"Low", "High", "Behind"})
            camera.Int(name)->GetValue();
        camera.Int(written)->SetValue(1);
        for (const char* const name : {"Low", "High", "Behind"}) {
            camera.port.TakeReads();
            camera.Int(name)->GetValue();
            reads.push_back(camera.port.TakeReads());
        }
        return reads;
    };
    EXPECT_EQ(readsAfterWriting("Low"), (std::vector<int>{0, 1, 0}));
    EXPECT_EQ(readsAfterWriting("High"), (std::vector<int>{1, 0, 0}));
    EXPECT_EQ(readsAfterWriting("Behind"), (std::vector<int>{0, 0, 0}));
}

TEST(MaskedRegister, WriteOnlyOneIsNeverReadButRemembered) {
    const std::string wo = "<AccessMode>WO</AccessMode>";
    Camera camera(Masked("A", 0, 1, wo + "<LSB>0</LSB><MSB>3</MSB>") +
                  Masked("B", 0, 1, wo + "<LSB>4</LSB><MSB>7</MSB>"));
    camera.Int("A")->SetValue(5);
    camera.Int("B")->SetValue(6);
    EXPECT_EQ(camera.port.Bytes(0, 1), Bytes{0x65});
    EXPECT_EQ(camera.port.reads, 0);
}

TEST(MaskedRegister, ValueThatDoesNotFitIsRefusedEvenUnverified) {
    Camera camera(Masked("A", 0, 1, "<LSB>0</LSB><MSB>1</MSB>"));
    EXPECT_THROW(camera.Int("A")->SetValue(4, false), OutOfRangeException);
    EXPECT_EQ(camera.port.writes, 0);
}

TEST(Structure, EntriesInheritAndOverride) {
    Camera camera(
        "<StructReg Comment=\"s\"><Address>0x10</Address><Length>2</Length><AccessMode>RW</AccessMode>"
        "<pPort>Device</pPort><Endianess>BigEndian</Endianess>"
        "<StructEntry Name=\"First\"><Bit>15</Bit></StructEntry>"
        "<StructEntry Name=\"Second\"><AccessMode>RO</AccessMode><LSB>7</LSB><MSB>0</MSB></StructEntry>"
        "</StructReg>");
    camera.port.Put(0x10, {0xAB, 0x01});
    EXPECT_EQ(camera.Int("First")->GetValue(), 1);
    EXPECT_EQ(camera.Int("Second")->GetValue(), 0xAB);
    EXPECT_EQ(camera.Mode("First"), RW);
    EXPECT_EQ(camera.Mode("Second"), RO);
}

TEST(Address, IsTheSumOfAllTerms) {
    Camera camera(
        "<IntReg Name=\"R\"><Address>0x10</Address><Address>-2</Address><pAddress>Base</pAddress>"
        "<IntSwissKnife Name=\"Inner\"><pVariable "
        "Name=\"B\">Base</pVariable><Formula>B*2</Formula></IntSwissKnife>"
        "<pIndex Offset=\"0x20\">Index</pIndex><pIndex pOffset=\"Step\">Index</pIndex><pIndex>Index</pIndex>"
        "<Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>" +
        ::Node("Integer", "Base", "<Value>100</Value>") + ::Node("Integer", "Index", "<Value>3</Value>") +
        ::Node("Integer", "Step", "<Value>0x1000</Value>"));
    EXPECT_EQ(camera.Reg("R")->GetAddress(), 0x10 - 2 + 100 + 200 + 3 * 0x20 + 3 * 0x1000 + 3 * 4);
    EXPECT_EQ(camera.Int("Inner")->GetValue(), 200);
    camera.Int("Index")->SetValue(0);
    EXPECT_EQ(camera.Reg("R")->GetAddress(), 0x10 - 2 + 100 + 200);
}

TEST(Address, ChangedTermMakesTheKeptValueStale) {
    Camera camera(
        "<IntReg Name=\"R\"><Address>0</Address><pIndex Offset=\"4\">Line</pIndex><Length>4</Length>"
        "<AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>" +
        ::Node("Integer", "Line", "<Value>0</Value>") + ::Node("Integer", "Feature", "<pValue>R</pValue>"));
    camera.port.Put(0, {11, 0, 0, 0, 22, 0, 0, 0});
    EXPECT_EQ(camera.Int("Feature")->GetValue(), 11);
    camera.Int("Line")->SetValue(1);
    EXPECT_EQ(camera.Int("Feature")->GetValue(), 22);
}

TEST(Address, WhatIsWrittenOverAComputedOneIsNoticed) {
    Camera camera(IntReg("Whole", 0, 4) + IntReg("Part", 0, 2, "<pIndex Offset=\"2\">I</pIndex>") +
                  ::Node("Integer", "I", "<Value>1</Value>"));
    EXPECT_EQ(camera.Int("Part")->GetValue(), 0);
    camera.Int("Whole")->SetValue(0x00050000);
    EXPECT_EQ(camera.Int("Part")->GetValue(), 5);
    camera.Int("I")->SetValue(2);
    EXPECT_EQ(camera.Int("Part")->GetValue(), 0);
    camera.Int("Whole")->SetValue(0);
    camera.port.TakeReads();
    EXPECT_EQ(camera.Int("Part")->GetValue(), 0); // lies behind it now
    EXPECT_EQ(camera.port.TakeReads(), 0);
}

TEST(Address, TermThatIsNeverKeptIsAskedEveryTime) {
    Camera camera(
        "<IntReg Name=\"R\"><Address>0</Address><pIndex Offset=\"4\">Line</pIndex><Length>4</Length>"
        "<AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>" +
        IntReg("Line", 0x100, 1, "<Cachable>NoCache</Cachable>") +
        ::Node("Integer", "Feature", "<pValue>R</pValue>"));
    camera.port.Put(0, {11, 0, 0, 0, 22, 0, 0, 0});
    EXPECT_EQ(camera.Int("Feature")->GetValue(), 11);
    camera.port.Put(0x100, {1});
    EXPECT_EQ(camera.Int("Feature")->GetValue(), 22);
}

TEST(Numbers, DecimalWithLeadingZeroIsDecimalAndHexWraps) {
    Camera camera(::Node("Integer", "Ten", "<Value>010</Value>") +
                  ::Node("Integer", "Low", "<Value>0x8000000000000000</Value>") +
                  ::Node("Integer", "Padded", "<Value>\n  0X1f\n </Value>") +
                  ::Node("Integer", "Float", "<Value>1e3</Value>"));
    EXPECT_EQ(camera.Int("Ten")->GetValue(), 10);
    EXPECT_EQ(camera.Int("Low")->GetValue(), INT64_MIN);
    EXPECT_EQ(camera.Int("Padded")->GetValue(), 31);
    EXPECT_EQ(camera.Int("Float")->GetValue(), 1000);
}

TEST(FloatRegister, DecodesAndEncodesBothWidths) {
    Camera camera(::Register("FloatReg", "Single", 0, 4, "<Endianess>BigEndian</Endianess>") +
                  ::Register("FloatReg", "Double", 8, 8));
    camera.port.Put(0, {0x3F, 0xC0, 0, 0});
    EXPECT_EQ(camera.Float("Single")->GetValue(), 1.5);
    camera.Float("Double")->SetValue(-2.0);
    EXPECT_EQ(camera.port.Bytes(8, 8), (Bytes{0, 0, 0, 0, 0, 0, 0, 0xC0}));
    EXPECT_THROW(camera.Float("Single")->SetValue(1e300), OutOfRangeException);
    EXPECT_THROW(camera.Float("Double")->SetValue(std::numeric_limits<double>::quiet_NaN()),
                 OutOfRangeException);
    EXPECT_EQ(camera.Node("Double")->GetCachingMode(), WriteAround);
}

TEST(StringRegister, EndsAtTheFirstNulAndIsPaddedWhenWritten) {
    Camera camera(::Register("StringReg", "S", 0, 8));
    camera.port.Put(0, {'a', 'b', 'c', 0, 'x', 'y', 'z', 'w'});
    EXPECT_TRUE(camera.String("S")->GetValue() == "abc");
    camera.String("S")->SetValue("q");
    EXPECT_EQ(camera.port.Bytes(0, 8), (Bytes{'q', 0, 0, 0, 0, 0, 0, 0}));
    camera.String("S")->SetValue("12345678");
    EXPECT_TRUE(camera.String("S")->GetValue() == "12345678");
    EXPECT_THROW(camera.String("S")->SetValue("123456789"), OutOfRangeException);
    EXPECT_EQ(camera.String("S")->GetMaxLength(), 8);
}

TEST(StringNode, HoldsItsOwnTextOrGoesToItsTarget) {
    Camera camera(::Node("String", "Own", "<Value> spaced </Value>") +
                  ::Node("String", "Far", "<pValue> S </pValue>") + ::Register("StringReg", "S", 0, 4));
    EXPECT_TRUE(camera.String("Own")->GetValue() == " spaced ");
    camera.String("Own")->SetValue("new");
    EXPECT_TRUE(camera.String("Own")->GetValue() == "new");
    camera.String("Far")->SetValue("abc");
    EXPECT_EQ(camera.port.Bytes(0, 4), (Bytes{'a', 'b', 'c', 0}));
    EXPECT_EQ(camera.String("Far")->GetMaxLength(), 4);
}

TEST(RawRegister, NeedsItsExactLength) {
    Camera camera(::Register("Register", "R", 4, 3));
    const uint8_t bytes[] = {1, 2, 3, 4};
    camera.Reg("R")->Set(bytes, 3);
    EXPECT_EQ(camera.port.Bytes(4, 3), (Bytes{1, 2, 3}));
    EXPECT_TRUE(camera.Value("R")->ToString() == "0x010203");
    camera.Value("R")->FromString("0xAABBCC");
    uint8_t back[3] = {};
    camera.Reg("R")->Get(back, 3);
    EXPECT_EQ(back[2], 0xCC);
    EXPECT_THROW(camera.Reg("R")->Set(bytes, 4), InvalidArgumentException);
    EXPECT_THROW(camera.Reg("R")->Get(back, 2), InvalidArgumentException);
    EXPECT_THROW(camera.Value("R")->FromString("0xABC"), InvalidArgumentException);
}

TEST(RawRegister, LengthMayComeFromANode) {
    Camera camera("<Register Name=\"R\"><Address>0</Address><pLength>L</pLength><AccessMode>RW</AccessMode>"
                  "<pPort>Device</pPort></Register>" +
                  ::Node("Integer", "L", "<Value>2</Value>"));
    camera.port.Put(0, {7, 8, 9});
    EXPECT_TRUE(camera.Value("R")->ToString() == "0x0708");
    camera.Int("L")->SetValue(3);
    EXPECT_TRUE(camera.Value("R")->ToString() == "0x070809");
    camera.Int("L")->SetValue(INT64_MAX);
    EXPECT_THROW(camera.Value("R")->ToString(), AccessException);
}

TEST(IntegerRegister, AnotherLengthAtTheSameAddressIsReadAgain) {
    Camera camera("<IntReg Name=\"R\"><Address>0</Address><pLength>L</pLength><AccessMode>RW</AccessMode>"
                  "<pPort>Device</pPort></IntReg>" +
                  IntReg("L", 100, 4, "<Cachable>NoCache</Cachable>") + IntReg("Over", 1, 1));
    camera.port.Put(0, {1, 2, 3, 4});
    camera.port.Put(100, {4});
    EXPECT_EQ(camera.Int("R")->GetValue(), 0x04030201);
    camera.port.Put(100, {2});
    EXPECT_EQ(camera.Int("R")->GetValue(), 0x0201);
    camera.port.TakeReads();
    EXPECT_EQ(camera.Int("R")->GetValue(), 0x0201);
    EXPECT_EQ(camera.port.TakeReads(), 1); // of the length
    camera.Int("Over")->SetValue(0x99);
    EXPECT_EQ(camera.Int("R")->GetValue(), 0x9901);
}

TEST(Port, SwapsTheBytesOfWordsWhenToldTo) {
    CNodeMapFactory factory(
        ("<RegisterDescription SchemaMajorVersion=\"1\"><Port "
         "Name=\"P\"><SwapEndianess>Yes</SwapEndianess></Port>"
         "<IntReg Name=\"R\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
         "<pPort>P</pPort><Endianess>BigEndian</Endianess></IntReg></RegisterDescription>"));
    CNodeMapRef map(factory.CreateNodeMap());
    FakePort port;
    ASSERT_TRUE(map._Connect(&port, "P"));
    port.Put(0, {4, 3, 2, 1});
    EXPECT_EQ(CIntegerPtr(map._GetNode("R"))->GetValue(), 0x01020304);
    CIntegerPtr(map._GetNode("R"))->SetValue(0x0A0B0C0D);
    EXPECT_EQ(port.Bytes(0, 4), (Bytes{0x0D, 0x0C, 0x0B, 0x0A}));
}
