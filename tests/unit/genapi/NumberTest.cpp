#include "Camera.h"

#include <cmath>
#include <limits>

using namespace GenICam;
using namespace GenApi;

namespace {

std::string Integer(const std::string& name, const std::string& inside) {
    return ::Node("Integer", name, inside);
}
std::string Float(const std::string& name, const std::string& inside) {
    return ::Node("Float", name, inside);
}
std::string Converter(const std::string& name, const std::string& to, const std::string& from,
                      const std::string& target, const std::string& more = "") {
    return ::Node("Converter", name,
                  more + "<FormulaTo>" + to + "</FormulaTo><FormulaFrom>" + from + "</FormulaFrom><pValue>" +
                      target + "</pValue>");
}

} // namespace

TEST(Integer, RefusalNamesTheLimits) {
    Camera camera(Integer("Width", "<Value>64</Value><Min>16</Min><Max>4096</Max><Inc>4</Inc>"));
    EXPECT_EQ(Failure<OutOfRangeException>([&] { camera.Int("Width")->SetValue(5000); }),
              "Value 5000 of 'Width' must be at most 4096 (min 16, max 4096, inc 4).");
    EXPECT_EQ(Failure<OutOfRangeException>([&] { camera.Int("Width")->SetValue(8); }),
              "Value 8 of 'Width' must be at least 16 (min 16, max 4096, inc 4).");
    EXPECT_EQ(Failure<OutOfRangeException>([&] { camera.Int("Width")->SetValue(18); }),
              "Value 18 of 'Width' is no multiple of the increment 4 (min 16, max 4096).");
    camera.Int("Width")->SetValue(5001, false);
    EXPECT_EQ(camera.Int("Width")->GetValue(), 5001);
    EXPECT_THROW(camera.Int("Width")->GetValue(true), OutOfRangeException);
}

TEST(Integer, MultiplesCountFromANegativeMinimum) {
    Camera camera(Integer("I", "<Value>0</Value><Min>-10</Min><Max>0x7FFFFFFFFFFFFFFF</Max><Inc>4</Inc>"));
    camera.Int("I")->SetValue(-6);
    EXPECT_THROW(camera.Int("I")->SetValue(-4), OutOfRangeException);
    camera.Int("I")->SetValue(INT64_MAX - 1);
}

TEST(Integer, LimitsComeFromNodesOrFromTheTarget) {
    Camera camera(Integer("A", "<pValue>R</pValue><pMax>Max</pMax>") + IntReg("R", 0, 1) +
                  Integer("Max", "<Value>9</Value>") + Integer("B", "<pValue>R</pValue>") +
                  Integer("C", "<pValue>A</pValue><Min>3</Min>") +
                  Integer("Inc", "<pValue>C</pValue><pInc>Zero</pInc>") +
                  Integer("Zero", "<Value>0</Value>"));
    EXPECT_EQ(camera.Int("A")->GetMin(), 0);
    EXPECT_EQ(camera.Int("A")->GetMax(), 9);
    EXPECT_EQ(camera.Int("B")->GetMax(), 255);
    EXPECT_EQ(camera.Int("C")->GetMin(), 3);
    EXPECT_EQ(camera.Int("C")->GetMax(), 9);
    EXPECT_EQ(camera.Int("Inc")->GetInc(), 1);
    camera.Int("Max")->SetValue(5);
    EXPECT_THROW(camera.Int("C")->SetValue(6), OutOfRangeException);
}

TEST(Integer, LimitThatCannotBeReadRestrictsNothing) {
    Camera camera(Integer("A", "<Value>0</Value><pMax>WO</pMax>") +
                  IntReg("WO", 0, 4, "<AccessMode>WO</AccessMode>"));
    EXPECT_EQ(camera.Int("A")->GetMax(), INT64_MAX);
}

TEST(Integer, ImposedLimitsOnlyNarrow) {
    Camera camera(Integer("I", "<Value>5</Value><Min>0</Min><Max>10</Max>"));
    camera.Int("I")->ImposeMin(-5);
    camera.Int("I")->ImposeMax(7);
    EXPECT_EQ(camera.Int("I")->GetMin(), 0);
    EXPECT_EQ(camera.Int("I")->GetMax(), 7);
    EXPECT_THROW(camera.Int("I")->SetValue(8), OutOfRangeException);
}

TEST(Integer, ListOfValidValuesIsEnforced) {
    Camera camera(Integer("I", "<Value>1</Value><Max>4</Max><ValidValueSet>1;2; 4;8</ValidValueSet>"));
    EXPECT_EQ(camera.Int("I")->GetIncMode(), listIncrement);
    EXPECT_EQ(camera.Int("I")->GetListOfValidValues().size(), 3u);
    EXPECT_EQ(camera.Int("I")->GetListOfValidValues(false).size(), 4u);
    camera.Int("I")->SetValue(2);
    EXPECT_THROW(camera.Int("I")->SetValue(3), OutOfRangeException);
}

TEST(Integer, CopiesAreWrittenInOrderAndNarrowTheLimits) {
    Camera camera(Integer("I", "<pValueCopy>C1</pValueCopy><pValue>V</pValue><pValueCopy>C2</pValueCopy>") +
                  IntReg("V", 0, 2) + IntReg("C1", 8, 1) + IntReg("C2", 16, 4));
    EXPECT_EQ(camera.Int("I")->GetMax(), 255);
    camera.Int("I")->SetValue(7);
    ASSERT_EQ(camera.port.log.size(), 3u);
    EXPECT_EQ(camera.port.log[0].first, 8);
    EXPECT_EQ(camera.port.log[1].first, 0);
    EXPECT_EQ(camera.port.log[2].first, 16);
}

TEST(Integer, CopiesWithoutAnIncrementTakeThatOfTheOthers) {
    Camera camera(Integer("I", "<pValue>V</pValue><pValueCopy>C</pValueCopy>") +
                  Integer("J", "<pValue>R</pValue><pValueCopy>C</pValueCopy>") + IntReg("R", 0) +
                  Integer("V", "<Value>0</Value>") + Integer("C", "<Value>0</Value><Inc>4</Inc>"));
    for (const char* const name : {"I", "J"}) {
        EXPECT_EQ(camera.Mode(name), RW);
        EXPECT_EQ(camera.Int(name)->GetInc(), 4);
        camera.Int(name)->SetValue(8);
        EXPECT_THROW(camera.Int(name)->SetValue(6), OutOfRangeException);
        EXPECT_EQ(camera.Int(name)->GetValue(), 8);
    }
}

TEST(Integer, CopiesWithDifferentIncrementsCannotBeWritten) {
    const std::string targets = Integer("V", "<Value>0</Value><Inc>2</Inc>") +
                                Integer("C", "<Value>0</Value><pInc>Step</pInc>") +
                                Integer("Step", "<Value>3</Value>");
    Camera camera(Integer("I", "<pValue>V</pValue><pValueCopy>C</pValueCopy>") +
                  Integer("Own", "<pValue>V</pValue><pValueCopy>C</pValueCopy><Inc>6</Inc>") + targets);
    EXPECT_EQ(camera.Mode("I"), RO);
    EXPECT_EQ(Failure<AccessException>([&] { camera.Int("I")->SetValue(6); }),
              "Node 'I' is not writable: the increments of its targets differ (access mode RO).");
    EXPECT_EQ(camera.Int("V")->GetValue(), 0);
    EXPECT_EQ(camera.Mode("Own"), RW);
    camera.Int("Own")->SetValue(12);
    EXPECT_EQ(camera.Int("C")->GetValue(), 12);
    camera.Int("Step")->SetValue(2);
    EXPECT_EQ(camera.Mode("I"), RW);
    camera.Int("I")->SetValue(4);
    EXPECT_EQ(camera.Int("C")->GetValue(), 4);
}

TEST(Integer, TableChoosesItsEntryByIndex) {
    Camera camera(Integer("T",
                          "<pIndex>Index</pIndex><ValueIndexed Index=\"1\">10</ValueIndexed>"
                          "<pValueIndexed Index=\"2\">R</pValueIndexed><ValueDefault>99</ValueDefault>") +
                  Integer("Index", "<Value>1</Value>") + IntReg("R", 0, 1) +
                  Integer("Bare", "<pIndex>Index</pIndex><ValueIndexed Index=\"7\">1</ValueIndexed>"));
    EXPECT_EQ(camera.Int("T")->GetValue(), 10);
    camera.Int("T")->SetValue(11);
    EXPECT_EQ(camera.Int("T")->GetValue(), 11);
    camera.Int("Index")->SetValue(2);
    camera.Int("T")->SetValue(200);
    EXPECT_EQ(camera.port.memory[0], 200);
    EXPECT_EQ(camera.Int("T")->GetMax(), 255);
    camera.Int("Index")->SetValue(5);
    EXPECT_EQ(camera.Int("T")->GetValue(), 99);
    camera.Int("Index")->SetValue(1);
    EXPECT_EQ(camera.Int("T")->GetValue(), 11);
    EXPECT_EQ(camera.Mode("Bare"), NA);
}

TEST(Integer, TextFormsFollowTheRepresentation) {
    Camera camera(Integer("D", "<Value>-5</Value>") +
                  Integer("H", "<pValue>R</pValue><Representation>HexNumber</Representation>") +
                  IntReg("R", 0, 2, "<Sign>Signed</Sign>") +
                  Integer("Ip", "<Value>0xC0A80001</Value><Representation>IPV4Address</Representation>") +
                  Integer("Mac", "<Value>0x0A0B0C0D0E0F</Value><Representation>MACAddress</Representation>"));
    camera.Int("R")->SetValue(-1);
    EXPECT_TRUE(camera.Value("D")->ToString() == "-5");
    EXPECT_TRUE(camera.Value("H")->ToString() == "0xFFFF");
    EXPECT_TRUE(camera.Value("Ip")->ToString() == "192.168.0.1");
    EXPECT_TRUE(camera.Value("Mac")->ToString() == "0A:0B:0C:0D:0E:0F");
    camera.Value("D")->FromString("10.0.0.1");
    EXPECT_EQ(camera.Int("D")->GetValue(), 0x0A000001);
    camera.Value("D")->FromString(" 0x10 ");
    EXPECT_EQ(camera.Int("D")->GetValue(), 16);
    for (const char* bad : {"", "0.4", "12x", "1.2.3", "1.2.3.256", "0x"})
        EXPECT_THROW(camera.Value("D")->FromString(bad), InvalidArgumentException) << bad;
}

TEST(Float, LimitsAndTextForms) {
    Camera camera(Float("F", "<Value>1.5</Value><Min>-1e3</Min><Max>1000</Max><Unit>us</Unit>") +
                  Float("Fixed", "<Value>123.456789</Value><DisplayNotation>Fixed</DisplayNotation>") +
                  Float("Sci", "<Value>123456</Value><DisplayNotation>Scientific</"
                               "DisplayNotation><DisplayPrecision>3</DisplayPrecision>"));
    EXPECT_EQ(camera.Float("F")->GetMin(), -1000.0);
    EXPECT_TRUE(camera.Float("F")->GetUnit() == "us");
    EXPECT_TRUE(camera.Value("F")->ToString() == "1.5");
    EXPECT_TRUE(camera.Value("Fixed")->ToString() == "123.457");
    EXPECT_TRUE(camera.Value("Sci")->ToString() == "1.23e+05");
    camera.Value("F")->FromString("2.5e2");
    EXPECT_EQ(camera.Float("F")->GetValue(), 250.0);
    EXPECT_THROW(camera.Value("F")->FromString("2,5"), InvalidArgumentException);
    EXPECT_EQ(Failure<OutOfRangeException>([&] { camera.Float("F")->SetValue(1000.5); }),
              "Value 1000.5 of 'F' must be at most 1000 (min -1000, max 1000).");
    EXPECT_FALSE(camera.Float("F")->HasInc());
    EXPECT_THROW(camera.Float("F")->GetInc(), RuntimeException);
}

TEST(Float, OverAnIntegerRoundsWhatIsWritten) {
    Camera camera(Float("F", "<pValue>R</pValue>") + IntReg("R", 0, 1));
    camera.Float("F")->SetValue(2.5);
    EXPECT_EQ(camera.port.memory[0], 3);
    EXPECT_EQ(camera.Float("F")->GetMax(), 255.0);
    EXPECT_EQ(camera.Float("F")->GetValue(), 3.0);
}

TEST(Converter, ReadsFromAndWritesTo) {
    Camera camera(Converter("C", "FROM * 10", "TO / 10", "R", "<Slope>Increasing</Slope>") +
                  IntReg("R", 0, 2));
    camera.port.Put(0, {25, 0});
    EXPECT_EQ(camera.Float("C")->GetValue(), 2.5);
    camera.Float("C")->SetValue(0.1 * 3);
    EXPECT_EQ(camera.port.memory[0], 3);
    EXPECT_EQ(camera.Float("C")->GetMin(), 0.0);
    EXPECT_EQ(camera.Float("C")->GetMax(), 6553.5);
    EXPECT_THROW(camera.Float("C")->SetValue(6554), OutOfRangeException);
}

TEST(Converter, SlopeDecidesWhichEndIsTheMinimum) {
    const std::string target = Integer("R", "<Value>1</Value><Min>1</Min><Max>100</Max>");
    Camera camera(Converter("Down", "1000/FROM", "1000/TO", "R", "<Slope>Decreasing</Slope>") +
                  Converter("Auto", "1000/FROM", "1000/TO", "R") +
                  Converter("Any", "FROM", "TO", "R", "<Slope>Varying</Slope>") + target);
    for (const char* name : {"Down", "Auto"}) {
        EXPECT_EQ(camera.Float(name)->GetMin(), 10.0) << name;
        EXPECT_EQ(camera.Float(name)->GetMax(), 1000.0) << name;
    }
    EXPECT_EQ(camera.Float("Any")->GetMax(), std::numeric_limits<double>::max());
}

TEST(Converter, LimitWithoutAValueIsOpen) {
    Camera camera(Converter("C", "1000/FROM", "1000/TO", "R", "<Slope>Decreasing</Slope>") +
                  IntReg("R", 0, 1));
    EXPECT_EQ(camera.Float("C")->GetMax(), std::numeric_limits<double>::max());
    EXPECT_NEAR(camera.Float("C")->GetMin(), 1000.0 / 255, 1e-12);
}

TEST(Converter, OpenLimitOfTheTargetStaysOpen) {
    Camera camera(Converter("C", "FROM / 2", "TO * 2", "Own", "<Slope>Increasing</Slope>") +
                  ::Node("IntConverter", "I",
                         "<FormulaTo>FROM/2</FormulaTo><FormulaFrom>TO*2</FormulaFrom><pValue>Own</"
                         "pValue><Slope>Increasing</Slope>") +
                  Integer("Own", "<Value>0</Value><Min>-3</Min>"));
    EXPECT_EQ(camera.Float("C")->GetMin(), -6.0);
    EXPECT_EQ(camera.Float("C")->GetMax(), std::numeric_limits<double>::max());
    EXPECT_EQ(camera.Int("I")->GetMin(), -6);
    EXPECT_EQ(camera.Int("I")->GetMax(), INT64_MAX);
}

TEST(Converter, ReadsItsVariablesBeforeItWrites) {
    Camera camera(
        ::Node("IntConverter", "Bit",
               "<pVariable Name=\"OLD\">R</pVariable><FormulaTo>FROM ? (OLD | 4) : (OLD &amp; ~4)</FormulaTo>"
               "<FormulaFrom>(TO &gt;&gt; 2) &amp; 1</FormulaFrom><pValue>R</pValue>") +
        IntReg("R", 0, 1));
    camera.port.Put(0, {0x83});
    camera.Int("Bit")->SetValue(1);
    EXPECT_EQ(camera.port.memory[0], 0x87);
    camera.Int("Bit")->SetValue(0);
    EXPECT_EQ(camera.port.memory[0], 0x83);
}

TEST(Numbers, EveryKindServesAsTheOther) {
    Camera camera(
        Integer("OverFloat", "<pValue>F</pValue>") + Float("F", "<Value>2.9</Value>") +
        Integer("OverBool", "<pValue>B</pValue>") + ::Node("Boolean", "B", "<Value>true</Value>") +
        Float("OverEnum", "<pValue>E</pValue>") +
        ::Node("Enumeration", "E",
               "<EnumEntry Name=\"A\"><Value>1</Value><NumericValue>0.5</NumericValue></EnumEntry>"
               "<EnumEntry "
               "Name=\"B\"><Value>2</Value><NumericValue>1.5</NumericValue></EnumEntry><Value>1</Value>"));
    EXPECT_EQ(camera.Int("OverFloat")->GetValue(), 2);
    EXPECT_EQ(camera.Int("OverBool")->GetValue(), 1);
    EXPECT_EQ(camera.Float("OverEnum")->GetValue(), 0.5);
    camera.Float("OverEnum")->SetValue(1.4);
    EXPECT_TRUE(camera.Value("E")->ToString() == "B");
}

TEST(Numbers, UnitAndRepresentationComeFromBelow) {
    Camera camera(Integer("Top", "<pValue>R</pValue>") +
                  IntReg("R", 0, 4, "<Unit>px</Unit><Representation>Logarithmic</Representation>"));
    EXPECT_TRUE(camera.Int("Top")->GetUnit() == "px");
    EXPECT_EQ(camera.Int("Top")->GetRepresentation(), Logarithmic);
}

TEST(Numbers, CircularValueIsRefusedAndNamed) {
    Camera camera(Integer("A", "<pValue>B</pValue>") + Integer("B", "<pValue>A</pValue>"));
    const std::string text = Failure<RuntimeException>([&] { camera.Int("A")->GetValue(); });
    EXPECT_NE(text.find("circular reference"), text.npos) << text;
    EXPECT_THROW(camera.Int("A")->SetValue(1), RuntimeException);
    EXPECT_THROW(camera.Int("A")->GetMax(), RuntimeException);
}

TEST(Numbers, EndlessChainIsRefusedBeforeTheStackEnds) {
    std::string nodes;
    for (int i = 0; i < 5000; ++i)
        nodes += Integer("N" + std::to_string(i), "<pValue>N" + std::to_string(i + 1) + "</pValue>");
    Camera camera(nodes + Integer("N5000", "<Value>1</Value>"));
    EXPECT_ANY_THROW(camera.Int("N0")->GetValue());
    EXPECT_EQ(camera.Int("N4950")->GetValue(), 1);
}

TEST(Numbers, WorkThatDoublesWithEveryLinkIsRefused) {
    std::string nodes = IntReg("K0", 0, 4, "<Cachable>NoCache</Cachable>") +
                        Integer("C0", "<Value>1</Value><Min>0</Min><Max>9</Max>");
    for (int i = 1; i < 100; ++i) {
        const std::string below = std::to_string(i - 1);
        nodes += ::Node("IntSwissKnife", "K" + std::to_string(i),
                        "<pVariable Name=\"A\">K" + below + "</pVariable><Formula>A+A</Formula>");
        nodes += Converter("C" + std::to_string(i), "FROM", "TO", "C" + below);
    }
    Camera camera(nodes);
    EXPECT_ANY_THROW(camera.Int("K99")->GetValue());
    EXPECT_THROW(camera.Float("C99")->GetMax(), RuntimeException);
    EXPECT_EQ(camera.Float("C3")->GetMax(), 9.0);
}

TEST(Boolean, UsesItsOnAndOffValues) {
    Camera camera(::Node("Boolean", "B", "<pValue>R</pValue><OnValue>5</OnValue><OffValue>2</OffValue>") +
                  IntReg("R", 0, 1) + ::Node("Boolean", "Plain", "<pValue>P</pValue>") + IntReg("P", 1, 1));
    camera.Bool("B")->SetValue(true);
    EXPECT_EQ(camera.port.memory[0], 5);
    EXPECT_TRUE(camera.Bool("B")->GetValue());
    camera.Value("B")->FromString("FALSE");
    EXPECT_EQ(camera.port.memory[0], 2);
    camera.port.Put(0, {9});
    EXPECT_FALSE(camera.Bool("B")->GetValue(false, true));
    camera.port.Put(1, {0x80});
    EXPECT_TRUE(camera.Bool("Plain")->GetValue());
    EXPECT_TRUE(camera.Value("Plain")->ToString() == "1");
    EXPECT_THROW(camera.Value("B")->FromString("2"), InvalidArgumentException);
}

TEST(Command, WritesItsValueAndIsDoneWhenTheRegisterHasLeftIt) {
    Camera camera(::Node("Command", "C", "<pValue>R</pValue><pCommandValue>V</pCommandValue>") +
                  IntReg("R", 0, 1) + Integer("V", "<Value>7</Value>"));
    EXPECT_EQ(camera.Mode("C"), WO);
    camera.Command("C")->Execute();
    EXPECT_EQ(camera.port.memory[0], 7);
    EXPECT_FALSE(camera.Command("C")->IsDone());
    camera.port.Put(0, {0});
    EXPECT_TRUE(camera.Command("C")->IsDone());
    camera.Value("C")->FromString("1");
    EXPECT_EQ(camera.port.memory[0], 7);
}

TEST(Command, TakesNoTable) {
    Camera camera(::Node("Command", "C", "<pIndex>V</pIndex><ValueIndexed Index=\"1\">1</ValueIndexed>") +
                  Integer("V", "<Value>1</Value>"));
    camera.Command("C")->Execute();
    EXPECT_TRUE(camera.Command("C")->IsDone());
}

TEST(Command, OverAWriteOnlyRegisterIsDoneAtOnceWithoutAnAccess) {
    Camera camera(::Node("Command", "C", "<pValue>R</pValue><CommandValue>1</CommandValue>") +
                  IntReg("R", 0, 1, "<AccessMode>WO</AccessMode>"));
    camera.Command("C")->Execute();
    EXPECT_TRUE(camera.Command("C")->IsDone());
    EXPECT_EQ(camera.port.reads, 0);
}

namespace {

const char* const kEnumeration =
    "<Enumeration Name=\"E\"><EnumEntry Name=\"12bit\"><Value>3</Value></EnumEntry>"
    "<EnumEntry Name=\"Locked\"><pIsAvailable>No</pIsAvailable><Value>1</Value></EnumEntry>"
    "<EnumEntry Name=\"Twin\"><pIsAvailable>No</pIsAvailable><Value>2</Value></EnumEntry>"
    "<EnumEntry Name=\"Other\"><Value>2</Value></EnumEntry><pValue>R</pValue></Enumeration>"
    "<Integer Name=\"No\"><Value>0</Value></Integer>";

} // namespace

TEST(Enumeration, GoesByNameAndByNumber) {
    Camera camera(kEnumeration + IntReg("R", 0, 1));
    camera.port.Put(0, {3});
    EXPECT_TRUE(camera.Value("E")->ToString() == "12bit");
    *camera.Enum("E") = "Other";
    EXPECT_EQ(camera.port.memory[0], 2);
    camera.Enum("E")->SetIntValue(3);
    EXPECT_TRUE(camera.Enum("E")->GetCurrentEntry()->GetSymbolic() == "12bit");
    EXPECT_EQ(camera.Enum("E")->GetEntryByName("Twin")->GetValue(), 2);
    EXPECT_EQ(camera.Enum("E")->GetEntryByName("Nobody"), nullptr);
}

TEST(Enumeration, AvailableEntryIsPreferredAmongEqualNumbers) {
    Camera camera(kEnumeration + IntReg("R", 0, 1));
    camera.port.Put(0, {2});
    EXPECT_TRUE(camera.Value("E")->ToString() == "Other");
}

TEST(Enumeration, ListsEntriesInOrderAndAvailableNames) {
    Camera camera(kEnumeration + IntReg("R", 0, 1));
    NodeList_t entries;
    camera.Enum("E")->GetEntries(entries);
    ASSERT_EQ(entries.size(), 4u);
    EXPECT_TRUE(CEnumEntryPtr(entries[1])->GetSymbolic() == "Locked");
    EXPECT_EQ(entries[1]->GetAccessMode(), NA);
    StringList_t names;
    camera.Enum("E")->GetSymbolics(names);
    ASSERT_EQ(names.size(), 2u);
    EXPECT_TRUE(names[0] == "12bit" && names[1] == "Other");
}

TEST(Enumeration, RefusesWhatIsNoEntryOrNotAvailable) {
    Camera camera(kEnumeration + IntReg("R", 0, 1));
    EXPECT_EQ(Failure<InvalidArgumentException>([&] { camera.Value("E")->FromString("Nobody"); }),
              "'Nobody' is no entry of 'E'.");
    EXPECT_EQ(Failure<InvalidArgumentException>([&] { camera.Enum("E")->SetIntValue(8); }),
              "Value 8 is no entry of 'E'.");
    EXPECT_EQ(Failure<AccessException>([&] { camera.Value("E")->FromString("Locked"); }),
              "Entry 'Locked' of 'E' is not available: it is not available, as 'No' says.");
    camera.Value("E")->FromString("Locked", false);
    EXPECT_EQ(camera.port.memory[0], 1);
}

TEST(Enumeration, NumberWithoutEntryIsReadableAsANumberOnly) {
    Camera camera(kEnumeration + IntReg("R", 0, 1));
    camera.port.Put(0, {77});
    EXPECT_EQ(camera.Enum("E")->GetIntValue(), 77);
    EXPECT_THROW(camera.Value("E")->ToString(), RuntimeException);
    EXPECT_EQ(camera.Enum("E")->GetCurrentEntry(), nullptr);
}

TEST(Enumeration, EntryThatAsksItsOwnEnumerationIsNoCircle) {
    Camera camera("<Enumeration Name=\"E\"><EnumEntry "
                  "Name=\"A\"><pIsAvailable>K</pIsAvailable><Value>1</Value></EnumEntry>"
                  "<EnumEntry Name=\"B\"><Value>0</Value></EnumEntry><Value>1</Value></Enumeration>" +
                  ::Node("IntSwissKnife", "K", "<pVariable Name=\"X\">E</pVariable><Formula>X=1</Formula>"));
    EXPECT_TRUE(camera.Value("E")->ToString() == "A");
    camera.Value("E")->FromString("B");
    EXPECT_THROW(camera.Value("E")->FromString("A"), AccessException);
}

TEST(ErrorNode, TellsWhatTheDeviceThinksOfAWrite) {
    Camera camera(Integer("I", "<pValue>R</pValue><pError>Err</pError>") + IntReg("R", 0, 1) +
                  "<Enumeration Name=\"Err\"><EnumEntry Name=\"Ok\"><Value>0</Value></EnumEntry><EnumEntry "
                  "Name=\"Bad\">"
                  "<DisplayName>Bad "
                  "thing</DisplayName><Value>1</Value></EnumEntry><pValue>ErrReg</pValue></Enumeration>" +
                  IntReg("ErrReg", 8, 1));
    camera.Int("I")->SetValue(1);
    camera.port.Put(8, {1});
    EXPECT_EQ(Failure<RuntimeException>([&] { camera.Int("I")->SetValue(2); }),
              "The device refused the value of 'I': 'Err' says Bad: Bad thing.");
}
