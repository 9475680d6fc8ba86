// Reading and writing values through nodes of other kinds, and what comes of targets that are none.
#include "Camera.h"

#include <cmath>
#include <limits>

using namespace GenICam;
using namespace GenApi;

namespace {

using Bytes = std::vector<int>;

std::string Integer(const std::string& name, const std::string& inside) {
    return ::Node("Integer", name, inside);
}
std::string Float(const std::string& name, const std::string& inside) {
    return ::Node("Float", name, inside);
}
const std::string kBad = ::Node("Integer", "Bad", "<pValue>Gone</pValue>");
const std::string kNoCache = "<Cachable>NoCache</Cachable>";

/// A register whose address is what `node` says.
std::string At(const std::string& name, const std::string& node) {
    return "<IntReg Name=\"" + name + "\"><pAddress>" + node +
           "</pAddress><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>";
}

} // namespace

TEST(Values, OfManyNodesOverOneRegisterAreReadOnce) {
    Camera camera(Float("A", "<pValue>R</pValue>") + Float("B", "<pValue>R</pValue>") +
                  ::Register("FloatReg", "R", 0, 8) + Integer("C", "<pValue>S</pValue>") +
                  Integer("D", "<pValue>S</pValue>") + IntReg("S", 8));
    EXPECT_EQ(camera.Float("A")->GetValue(), 0);
    EXPECT_EQ(camera.Float("B")->GetValue(), 0);
    EXPECT_EQ(camera.port.TakeReads(), 1);
    EXPECT_EQ(camera.Float("B")->GetValue(false, true), 0);
    EXPECT_EQ(camera.port.TakeReads(), 1);
    EXPECT_EQ(camera.Int("C")->GetValue() + camera.Int("D")->GetValue(), 0);
    EXPECT_EQ(camera.port.TakeReads(), 1);
}

TEST(Values, OfARegisterThatHasNotMovedAreKept) {
    const std::string at = "<pAddress>Where</pAddress>";
    Camera camera(
        "<IntReg Name=\"I\">" + at +
        "<Length>4</Length><pPort>Device</pPort></IntReg><FloatReg Name=\"F\"><Address>32</Address>" + at +
        "<pLength>Length</pLength><pPort>Device</pPort></FloatReg><Register Name=\"B\">" + at +
        "<Length>2</Length><pPort>Device</pPort></Register>" + IntReg("Where", 0x100, 4, kNoCache) +
        Integer("Length", "<Value>4</Value>") + Float("OverF", "<pValue>F</pValue>"));
    camera.port.Put(0, {0x12, 0x34});
    camera.port.Put(32, {0, 0, 0x80, 0x3F});
    camera.port.Put(40, {0, 0, 0, 0, 0, 0, 0x04, 0x40});
    const auto reads = [&](const std::function<void()>& work) {
        camera.port.TakeReads();
        work();
        return camera.port.TakeReads();
    };
    for (const std::function<void()>& read :
         {std::function<void()>([&] { EXPECT_EQ(camera.Int("I")->GetValue(), 0x3412); }),
          std::function<void()>([&] { EXPECT_EQ(camera.Float("OverF")->GetValue(), 1.0); }),
          std::function<void()>([&] { EXPECT_TRUE(camera.Value("B")->ToString() == "0x1234"); })}) {
        const int cold = reads(read);
        EXPECT_LT(reads(read), cold); // only where it lies is asked again
    }
    camera.port.Put(0x100, {8});
    EXPECT_EQ(camera.Int("I")->GetValue(), 0);
    camera.Int("Length")->SetValue(8);
    EXPECT_EQ(camera.Float("F")->GetValue(), 2.5);
}

TEST(Values, FloatRegisterReadPastTheCacheTellsTheOthers) {
    Camera camera(::Register("FloatReg", "R", 0, 4) + Float("F", "<pValue>R</pValue>"));
    EXPECT_EQ(camera.Float("F")->GetValue(), 0);
    int* const count = camera.Watch("F");
    camera.port.Put(0, {0, 0, 0x80, 0x3F});
    EXPECT_EQ(camera.Float("R")->GetValue(false, true), 1.0);
    EXPECT_EQ(*count, 1);
    EXPECT_EQ(camera.Float("F")->GetValue(), 1.0);
}

TEST(Values, FloatRegisterThatIsWrittenThroughIsNotReadBack) {
    Camera camera(::Register("FloatReg", "Through", 0, 4, "<Cachable>WriteThrough</Cachable>") +
                  ::Register("FloatReg", "Around", 8, 4));
    camera.Float("Through")->SetValue(0.1);
    EXPECT_EQ(camera.Float("Through")->GetValue(), double{0.1F});
    EXPECT_EQ(camera.port.reads, 0);
    camera.Float("Around")->SetValue(0.1);
    EXPECT_EQ(camera.Float("Around")->GetValue(), double{0.1F});
    EXPECT_EQ(camera.port.reads, 1);
}

TEST(Values, BytesWrittenToANumberAreReadBack) {
    Camera camera(IntReg("I", 0) + ::Register("StringReg", "S", 8, 4) + ::Register("Register", "B", 16, 2));
    const uint8_t bytes[] = {'a', 'b', 0, 0};
    camera.Reg("I")->Set(bytes, 4);
    EXPECT_EQ(camera.Int("I")->GetValue(), 0x6261);
    EXPECT_EQ(camera.port.TakeReads(), 1);
    camera.Reg("S")->Set(bytes, 4);
    camera.Reg("B")->Set(bytes, 2);
    EXPECT_TRUE(camera.String("S")->GetValue() == "ab");
    EXPECT_TRUE(camera.Value("B")->ToString() == "0x6162");
    EXPECT_EQ(camera.port.TakeReads(), 0);
    uint8_t back[4] = {};
    camera.Reg("I")->Get(back, 4);
    EXPECT_EQ(back[1], 'b');
}

TEST(Values, RegistersOfAStatedLengthOfNothingAreRead) {
    Camera camera("<Register Name=\"B\"><Address>0</Address><pLength>L</pLength><AccessMode>RW</AccessMode>"
                  "<pPort>Device</pPort></Register>" +
                  Integer("L", "<Value>0</Value>"));
    EXPECT_TRUE(camera.Value("B")->ToString() == "0x");
    EXPECT_EQ(camera.port.reads, 0);
}

TEST(Values, LengthsFromANodeMustSuit) {
    const std::string rest =
        "<Address>0</Address><pLength>L</pLength><AccessMode>RW</AccessMode><pPort>Device</pPort>";
    Camera camera(::Node("IntReg", "I", rest) + ::Node("FloatReg", "F", rest) +
                  ::Node("Register", "B", rest) +
                  ::Node("MaskedIntReg", "High", rest + "<LSB>4</LSB><MSB>11</MSB>") +
                  ::Node("MaskedIntReg", "Higher", rest + "<LSB>11</LSB><MSB>4</MSB>") +
                  ::Node("MaskedIntReg", "None", rest) +
                  ::Node("MaskedIntReg", "Half", rest + "<LSB>1</LSB>") + Integer("L", "<Value>1</Value>"));
    const auto refusal = [&](const char* name) {
        return Failure<GenericException>([&] { camera.Value(name)->ToString(); });
    };
    EXPECT_EQ(refusal("High"), "Bits 4 to 11 lie outside a register of 8.");
    EXPECT_EQ(refusal("Higher"), "Bits 11 to 4 lie outside a register of 8.");
    EXPECT_EQ(refusal("None"), "Bits -1 to -1 lie outside a register of 8.");
    EXPECT_EQ(refusal("Half"), "Bits 1 to -1 lie outside a register of 8.");
    EXPECT_EQ(refusal("F"), "A float of 1 bytes is impossible.");
    EXPECT_EQ(Failure<RuntimeException>([&] { camera.Float("F")->SetValue(1, false); }),
              "A float of 1 bytes is impossible.");
    camera.Int("L")->SetValue(2);
    EXPECT_EQ(camera.Int("High")->GetValue(), 0);
    for (const int64_t length : {0, 9, -1}) {
        camera.Int("L")->SetValue(length);
        for (const char* name : {"I", "F"})
            EXPECT_EQ(refusal(name), "Node '" + std::string(name) + "' has an impossible length of " +
                                         std::to_string(length) + " bytes, from 'L'.");
    }
    EXPECT_EQ(refusal("B"), "Node 'B' has an impossible length of -1 bytes, from 'L'.");
}

TEST(Values, WhatDoesNotFitIsRefusedUnverifiedToo) {
    Camera camera(IntReg("U", 0, 1) + IntReg("S", 1, 1, "<Sign>Signed</Sign>") + IntReg("Wide", 8, 8) +
                  ::Register("FloatReg", "F", 16, 4));
    EXPECT_EQ(Failure<OutOfRangeException>([&] { camera.Int("U")->SetValue(-1, false); }),
              "Value -1 does not fit into the 8 bits of 'U'.");
    EXPECT_THROW(camera.Int("U")->SetValue(256, false), OutOfRangeException);
    EXPECT_THROW(camera.Int("S")->SetValue(-129, false), OutOfRangeException);
    EXPECT_THROW(camera.Int("S")->SetValue(128, false), OutOfRangeException);
    EXPECT_EQ(Failure<OutOfRangeException>([&] { camera.Float("F")->SetValue(1e39, false); }),
              "Value 1e+39 does not fit into a float of 4 bytes.");
    EXPECT_THROW(camera.Float("F")->SetValue(-1e39, false), OutOfRangeException);
    EXPECT_EQ(camera.port.writes, 0);
    camera.Int("Wide")->SetValue(-1, false);
    EXPECT_EQ(camera.port.Bytes(8, 8), Bytes(8, 0xFF));
}

TEST(Values, FloatsBeyondEveryIntegerEndAtIt) {
    Camera camera(Integer("I", "<pValue>F</pValue>") + Float("F", "<pValue>R</pValue>") +
                  ::Register("FloatReg", "R", 0, 8));
    const std::pair<double, int64_t> values[] = {
        {1e30, INT64_MAX}, {-1e30, INT64_MIN}, {-9223372036854775808.0, INT64_MIN}, {-2.9, -2}};
    for (const auto& [real, whole] : values) {
        camera.Float("R")->SetValue(real);
        EXPECT_EQ(camera.Int("I")->GetValue(), whole) << real;
    }
    camera.port.Put(0, {0, 0, 0, 0, 0, 0, 0xF8, 0x7F});
    EXPECT_EQ(camera.Int("I")->GetValue(false, true), 0); // no number is none
}

TEST(Values, EnumerationsStandForTheirNumericValuesInFloats) {
    const std::string enumeration =
        "<Enumeration Name=\"E\"><EnumEntry "
        "Name=\"A\"><Value>1</Value><NumericValue>0.5</NumericValue></EnumEntry>"
        "<EnumEntry Name=\"B\"><Value>2</Value><NumericValue>2.5</NumericValue></EnumEntry><EnumEntry "
        "Name=\"C\">"
        "<pIsAvailable>No</pIsAvailable><Value>3</Value><NumericValue>2.0</NumericValue></EnumEntry>"
        "<EnumEntry Name=\"D\"><Value>4</Value><NumericValue>9</NumericValue></EnumEntry><pValue>R</pValue>"
        "</Enumeration>";
    Camera camera(enumeration + IntReg("R", 0) + Integer("No", "<Value>0</Value>") +
                  Float("F", "<pValue>E</pValue>") +
                  ::Node("Converter", "C",
                         "<FormulaTo>FROM/10</FormulaTo><FormulaFrom>TO*10</FormulaFrom><pValue>E</pValue>") +
                  ::Node("IntConverter", "I",
                         "<FormulaTo>FROM-1</FormulaTo><FormulaFrom>TO+1</FormulaFrom><pValue>E</pValue>"));
    camera.port.Put(0, {2});
    EXPECT_EQ(camera.Float("F")->GetValue(), 2.5);
    EXPECT_EQ(camera.Float("C")->GetValue(), 25.0);
    EXPECT_EQ(camera.Int("I")->GetValue(), 3);
    camera.Float("F")->SetValue(2.1); // the nearest is not available
    EXPECT_EQ(camera.port.memory[0], 2);
    camera.Float("F")->SetValue(1.0);
    EXPECT_EQ(camera.port.memory[0], 1);
    camera.Int("I")->SetValue(5);
    EXPECT_EQ(camera.port.memory[0], 4);
    camera.port.Put(0, {77});
    camera.Node("R")->InvalidateNode();
    EXPECT_EQ(camera.Float("F")->GetValue(), 77.0); // a number without an entry
}

TEST(Values, EntriesServeAsNumbersToo) {
    Camera camera(
        "<Enumeration Name=\"E\"><EnumEntry Name=\"A\"><Value>0x20</Value></EnumEntry><Value>0x20</Value>"
        "</Enumeration>" +
        At("R", "EnumEntry_E_A"));
    EXPECT_EQ(camera.Reg("R")->GetAddress(), 0x20);
}

TEST(Enumeration, AvailableOneOfEqualEntriesIsTaken) {
    const auto entry = [](const std::string& name, const std::string& flag) {
        return "<EnumEntry Name=\"" + name + "\"><pIsAvailable>" + flag +
               "</pIsAvailable><Value>1</Value></EnumEntry>";
    };
    Camera camera("<Enumeration Name=\"E\">" + entry("A", "FlagA") + entry("B", "FlagB") +
                  entry("C", "FlagC") + "<Value>1</Value></Enumeration>" +
                  Integer("FlagA", "<Value>1</Value>") + Integer("FlagB", "<Value>1</Value>") +
                  Integer("FlagC", "<Value>1</Value>"));
    EXPECT_TRUE(camera.Value("E")->ToString() == "A");
    camera.Int("FlagA")->SetValue(0);
    EXPECT_TRUE(camera.Value("E")->ToString() == "B");
    camera.Int("FlagB")->SetValue(0);
    EXPECT_TRUE(camera.Value("E")->ToString() == "C");
    camera.Int("FlagC")->SetValue(0);
    EXPECT_TRUE(camera.Value("E")->ToString() == "A"); // the first, where none is
}

TEST(Values, TargetsThatAreNoneAreNamed) {
    Camera camera(
        kBad + ::Node("String", "Text", "<Value>x</Value>") + Integer("OverText", "<pValue>Text</pValue>") +
        Integer("OverBad", "<pValue>Bad</pValue>") + Float("FloatOverBad", "<pValue>BadFloat</pValue>") +
        Float("BadFloat", "<pValue>Gone</pValue>") + ::Node("String", "OverNumber", "<pValue>I</pValue>") +
        ::Node("String", "TextOverBad", "<pValue>BadText</pValue>") +
        ::Node("String", "BadText", "<pValue>Gone</pValue>") + Integer("I", "<Value>1</Value>") +
        At("AtText", "Text") + At("AtBad", "Bad") + At("AtBadFloat", "BadFloat") + At("AtTable", "Table") +
        At("AtKnife", "Knife") +
        Integer("Table", "<pIndex>I</pIndex><ValueIndexed Index=\"5\">1</ValueIndexed>") +
        ::Node("IntSwissKnife", "Knife", "<Formula>1+</Formula>") +
        ::Node("SwissKnife", "Computed", "<Formula>1</Formula>"));
    const auto refusal = [](const std::function<void()>& work) { return Failure<GenericException>(work); };
    const std::string unbuilt = " could not be built: pValue 'Gone' does not exist.";
    EXPECT_EQ(refusal([&] { camera.Int("OverText")->SetValue(1, false); }),
              "Node 'Text' has no numeric value.");
    EXPECT_EQ(refusal([&] { camera.Int("OverBad")->SetValue(1, false); }), "Node 'Bad'" + unbuilt);
    EXPECT_EQ(refusal([&] { camera.Float("FloatOverBad")->SetValue(1, false); }),
              "Node 'BadFloat'" + unbuilt);
    EXPECT_EQ(refusal([&] { camera.String("OverNumber")->SetValue("x", false); }),
              "Node 'I' has no text value.");
    EXPECT_EQ(refusal([&] { camera.String("OverNumber")->GetValue(); }), "Node 'I' has no text value.");
    EXPECT_EQ(refusal([&] { camera.String("TextOverBad")->GetMaxLength(); }), "Node 'BadText'" + unbuilt);
    EXPECT_EQ(refusal([&] { camera.Reg("AtText")->GetAddress(); }), "Node 'Text' has no numeric value.");
    EXPECT_EQ(refusal([&] { camera.Reg("AtBad")->GetAddress(); }), "Node 'Bad'" + unbuilt);
    EXPECT_EQ(refusal([&] { camera.Reg("AtBadFloat")->GetAddress(); }), "Node 'BadFloat'" + unbuilt);
    EXPECT_EQ(refusal([&] { camera.Int("AtBad")->SetValue(1, false); }), "Node 'Bad'" + unbuilt);
    EXPECT_EQ(camera.port.writes, 0);
    EXPECT_EQ(refusal([&] { camera.Reg("AtTable")->GetAddress(); }),
              "Node 'Table' has no value for 1, the value of 'I'.");
    EXPECT_EQ(refusal([&] { camera.Int("Table")->SetValue(1, false); }),
              "Node 'Table' has no value for the current 'I'.");
    EXPECT_EQ(refusal([&] { camera.Reg("AtKnife")->GetAddress(); }),
              "The formula of 'Knife' is wrong: operand expected at position 2.");
    EXPECT_EQ(refusal([&] { camera.Float("Computed")->SetValue(1, false); }),
              "Node 'Computed' is computed and can't be written.");
}

TEST(Values, TextsAreAsLongAsTheirRegisters) {
    Camera camera(::Node("String", "Own", "<Value>x</Value>") +
                  ::Node("String", "Far", "<pValue>S</pValue>") + ::Register("StringReg", "S", 0, 4) +
                  ::Node("String", "OverNumber", "<pValue>Knife</pValue>") +
                  ::Node("IntSwissKnife", "Knife", "<Formula>1</Formula>"));
    EXPECT_EQ(camera.String("Own")->GetMaxLength(), INT64_MAX);
    EXPECT_EQ(camera.String("Far")->GetMaxLength(), 4);
    EXPECT_EQ(camera.String("OverNumber")->GetMaxLength(), INT64_MAX);
    EXPECT_EQ(Failure<OutOfRangeException>([&] { camera.String("Far")->SetValue("12345"); }),
              "A text of 5 bytes is too long for 'S', which takes 4.");
    *camera.String("Far") = "1234";
    EXPECT_TRUE(**camera.String("Far") == "1234" && (*camera.String("Far"))() == "1234");
}

TEST(ErrorNode, TellsWhatItCan) {
    const std::string error = "<pError>Err</pError>";
    const std::string entries =
        "<EnumEntry Name=\"Ok\"><Value>0</Value></EnumEntry><EnumEntry Name=\"Hot\"><ToolTip>too hot"
        "</ToolTip><Value>1</Value></EnumEntry>";
    Camera camera(Integer("I", "<Value>0</Value>" + error) +
                  ::Node("String", "S", "<Value>x</Value>" + error) + "<Enumeration Name=\"Err\">" + entries +
                  "<pValue>ErrReg</pValue></Enumeration>" + IntReg("ErrReg", 8, 1) +
                  Integer("N", "<Value>0</Value><pError>ErrReg</pError><pError>Gone</pError>"));
    camera.Int("I")->SetValue(1);
    camera.port.Put(8, {1});
    EXPECT_EQ(Failure<RuntimeException>([&] { camera.String("S")->SetValue("y"); }),
              "The device refused the value of 'S': 'Err' says Hot: too hot.");
    camera.port.Put(8, {7});
    EXPECT_EQ(Failure<RuntimeException>([&] { camera.Int("I")->SetValue(2); }),
              "The device refused the value of 'I': 'Err' says 7.");
    EXPECT_EQ(Failure<RuntimeException>([&] { camera.Int("N")->SetValue(2); }),
              "The device refused the value of 'N': 'ErrReg' says 7.");
}

TEST(Port, WithoutAConnectionIsNamed) {
    Camera camera("<Port Name=\"Second\"/>", false);
    const CPortPtr port = camera.Node("Device");
    uint8_t byte = 0;
    EXPECT_EQ(Failure<AccessException>([&] { port->Read(&byte, 0, 1); }), "Port 'Device' is not connected.");
    EXPECT_EQ(Failure<AccessException>([&] { port->Write(&byte, 0, 1); }), "Port 'Device' is not connected.");
}

TEST(Port, RegistersOfTwoPortsAreApart) {
    Camera camera("<Port Name=\"Second\"/>" + IntReg("R", 0) + IntReg("Before", 0x0E, 4) +
                  IntReg("Behind", 0x10, 4) +
                  "<IntReg Name=\"Other\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
                  "<pPort>Second</pPort></IntReg>");
    FakePort second;
    ASSERT_TRUE(camera.map._Connect(&second, "Second"));
    EXPECT_EQ(
        camera.Int("R")->GetValue() + camera.Int("Other")->GetValue() + camera.Int("Behind")->GetValue(), 0);
    second.Put(0, {9});
    camera.Int("R")->SetValue(1);
    EXPECT_EQ(camera.Int("Other")->GetValue(), 0); // kept
    camera.Int("Before")->SetValue(0x01020304);
    EXPECT_EQ(camera.Int("Behind")->GetValue(), 0x0102); // they overlap
    EXPECT_FALSE(camera.map._Connect(&second, "R"));
}

TEST(SharedWords, ManyPlacesAreNoReasonToForget) {
    Camera camera(
        "<IntReg Name=\"R\"><Address>0</Address><pIndex Offset=\"4\">Line</pIndex><Length>4</Length>"
        "<AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>" +
        Integer("Line", "<Value>0</Value>") + IntReg("Fixed", 0x100000, 4) +
        ::Register("MaskedIntReg", "Field", 0x100000, 4, "<LSB>0</LSB><MSB>7</MSB>"));
    const CIntegerPtr line = camera.Int("Line");
    const CIntegerPtr reg = camera.Int("R");
    EXPECT_EQ(camera.Int("Fixed")->GetValue(), 0);
    camera.port.memory[4 * 65536] = 5;
    for (int64_t i = 1; i <= 65536; ++i) {
        line->SetValue(i, false);
        ASSERT_EQ(reg->GetValue(), i == 65536 ? 5 : 0) << i;
    }
    EXPECT_EQ(camera.Int("Fixed")->GetValue(), 0);
    camera.Int("Field")->SetValue(3);
    EXPECT_EQ(camera.Int("Fixed")->GetValue(), 3);
}

TEST(MaskedRegister, ManyWriteOnlyOnesAreRememberedAsFarAsThereIsRoom) {
    const auto field = [](const std::string& name, int lsb) {
        return "<MaskedIntReg Name=\"" + name +
               "\"><Address>0</Address><pIndex Offset=\"1\">Line</pIndex><Length>1</Length>"
               "<AccessMode>WO</AccessMode><pPort>Device</pPort><LSB>" +
               std::to_string(lsb) + "</LSB><MSB>" + std::to_string(lsb + 3) + "</MSB></MaskedIntReg>";
    };
    Camera camera(field("Low", 0) + field("High", 4) + Integer("Line", "<Value>0</Value>"));
    for (int64_t i = 0; i <= 10000; ++i) {
        camera.Int("Line")->SetValue(i, false);
        camera.Int("Low")->SetValue(5, false);
    }
    camera.Int("High")->SetValue(6, false);
    EXPECT_EQ(camera.port.memory[10000], 0x60); // taken for 0
    camera.Int("Line")->SetValue(9999, false);
    camera.Int("High")->SetValue(6, false);
    EXPECT_EQ(camera.port.memory[9999], 0x65);
    EXPECT_EQ(camera.port.reads, 0);
}
