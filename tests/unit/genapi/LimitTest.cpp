// Limits and increments where they come from far, can't be had, or belong to another kind of value.
#include "Camera.h"

#include <cmath>
#include <limits>

using namespace GenICam;
using namespace GenApi;

namespace {

constexpr double kHighest = std::numeric_limits<double>::max();

std::string Integer(const std::string& name, const std::string& inside) {
    return ::Node("Integer", name, inside);
}
std::string Float(const std::string& name, const std::string& inside) {
    return ::Node("Float", name, inside);
}
std::string Converter(const std::string& name, const std::string& from, const std::string& target,
                      const std::string& more = "") {
    return ::Node("Converter", name,
                  more + "<FormulaTo>FROM</FormulaTo><FormulaFrom>" + from + "</FormulaFrom><pValue>" +
                      target + "</pValue>");
}
const std::string kWriteOnly = "<AccessMode>WO</AccessMode>";

} // namespace

TEST(Limits, OfFloatsAreWholeNumbersInside) {
    Camera camera(Integer("I", "<Value>2</Value><Min>1.5</Min><Max>3.5</Max>") +
                  Integer("Over", "<pValue>F</pValue>") +
                  Float("F", "<Value>0</Value><Min>-2.5</Min><Max>2.5</Max>"));
    EXPECT_EQ(camera.Int("I")->GetMin(), 2);
    EXPECT_EQ(camera.Int("I")->GetMax(), 3);
    EXPECT_EQ(camera.Int("Over")->GetMin(), -2);
    EXPECT_EQ(camera.Int("Over")->GetMax(), 2);
}

TEST(Limits, OfCopiesOfAnotherKindNarrowThem) {
    Camera camera(Integer("I", "<pValue>R</pValue><pValueCopy>F</pValueCopy>") + IntReg("R", 0, 1) +
                  Float("F", "<Value>0</Value><Min>0.5</Min><Max>2.5</Max>"));
    EXPECT_EQ(camera.Int("I")->GetMin(), 1);
    EXPECT_EQ(camera.Int("I")->GetMax(), 2);
}

TEST(Limits, OfBooleansAndEnumerationsAreThoseOfTheirValues) {
    Camera camera(
        Integer("OverB", "<pValue>B</pValue>") + Integer("OverE", "<pValue>E</pValue>") +
        ::Node("Boolean", "B", "<Value>true</Value>") +
        "<Enumeration Name=\"E\"><EnumEntry Name=\"A\"><Value>7</Value></EnumEntry><EnumEntry Name=\"B\">"
        "<Value>-3</Value></EnumEntry><EnumEntry Name=\"C\"><Value>5</Value></EnumEntry><Value>5</Value>"
        "</Enumeration>");
    EXPECT_EQ(camera.Int("OverB")->GetMin(), 0);
    EXPECT_EQ(camera.Int("OverB")->GetMax(), 1);
    EXPECT_EQ(camera.Int("OverE")->GetMin(), -3);
    EXPECT_EQ(camera.Int("OverE")->GetMax(), 7);
}

TEST(Limits, ImposedOnFloatsNarrowOneSideEach) {
    Camera camera(Float("F", "<Value>0</Value><Min>-10</Min><Max>10</Max>") +
                  Float("G", "<Value>0</Value><Min>-10</Min><Max>10</Max>"));
    camera.Float("F")->ImposeMin(-2.5);
    camera.Float("G")->ImposeMax(2.5);
    EXPECT_EQ(camera.Float("F")->GetMin(), -2.5);
    EXPECT_EQ(camera.Float("F")->GetMax(), 10);
    EXPECT_EQ(camera.Float("G")->GetMin(), -10);
    EXPECT_EQ(camera.Float("G")->GetMax(), 2.5);
    camera.Float("F")->ImposeMin(-20);
    camera.Float("G")->ImposeMax(20);
    EXPECT_EQ(camera.Float("F")->GetMin(), -10);
    EXPECT_EQ(camera.Float("G")->GetMax(), 10);
}

TEST(Limits, FloatRefusalNamesThem) {
    Camera camera(Float("F", "<pValue>R</pValue><Min>-1.5</Min><Max>2.5</Max>") +
                  ::Register("FloatReg", "R", 0, 4));
    EXPECT_EQ(Failure<OutOfRangeException>([&] { camera.Float("F")->SetValue(-2); }),
              "Value -2 of 'F' must be at least -1.5 (min -1.5, max 2.5).");
    EXPECT_EQ(Failure<OutOfRangeException>([&] { camera.Float("F")->SetValue(3); }),
              "Value 3 of 'F' must be at most 2.5 (min -1.5, max 2.5).");
    camera.port.Put(0, {0, 0, 0xC0, 0xFF}); // no number at all
    EXPECT_TRUE(std::isnan(camera.Float("F")->GetValue()));
    EXPECT_EQ(Failure<OutOfRangeException>([&] { camera.Float("F")->GetValue(true); }),
              "Value NaN of 'F' must be at most 2.5 (min -1.5, max 2.5).");
}

TEST(Limits, TableHasThoseOfTheChosenEntry) {
    Camera camera(Integer("T", "<pIndex>I</pIndex><pValueIndexed Index=\"1\">R</pValueIndexed>"
                               "<ValueIndexed Index=\"2\">5</ValueIndexed><pValueIndexed Index=\"4\">S"
                               "</pValueIndexed>") +
                  Integer("D", "<pIndex>I</pIndex><ValueIndexed Index=\"2\">5</ValueIndexed>"
                               "<pValueDefault>S</pValueDefault>") +
                  Integer("Hidden", "<pIndex>Wo</pIndex><pValueIndexed Index=\"1\">R</pValueIndexed>") +
                  Integer("I", "<Value>1</Value>") + IntReg("R", 0, 1) + IntReg("Wo", 8, 4, kWriteOnly) +
                  Integer("S", "<Value>8</Value><Min>0</Min><Max>100</Max><Inc>4</Inc>"));
    camera.port.Put(0, {7});
    EXPECT_EQ(camera.Int("T")->GetValue(), 7);
    EXPECT_EQ(camera.Int("T")->GetMax(), 255);
    EXPECT_EQ(camera.Int("T")->GetInc(), 1);
    EXPECT_EQ(camera.Int("D")->GetMax(), 100);
    EXPECT_EQ(camera.Int("D")->GetInc(), 4);
    EXPECT_EQ(camera.Int("D")->GetValue(), 8);
    camera.Int("I")->SetValue(2);
    EXPECT_EQ(camera.Int("T")->GetMax(), INT64_MAX);
    EXPECT_EQ(camera.Int("T")->GetInc(), 1);
    camera.Int("I")->SetValue(3); // chooses nothing
    EXPECT_EQ(camera.Int("T")->GetMax(), INT64_MAX);
    EXPECT_EQ(camera.Int("T")->GetInc(), 1);
    EXPECT_EQ(camera.Int("Hidden")->GetMax(), INT64_MAX);
    EXPECT_EQ(camera.Int("Hidden")->GetInc(), 1);
    camera.Int("I")->SetValue(4);
    EXPECT_EQ(camera.Int("T")->GetInc(), 4);
}

TEST(Limits, IncrementOfWhatCouldNotBeBuiltIsOne) {
    Camera camera(Integer("A", "<pValue>Bad</pValue>") + Integer("Bad", "<pValue>Gone</pValue><Inc>8</Inc>"));
    EXPECT_EQ(camera.Int("A")->GetInc(), 1);
}

TEST(Limits, CopiesOfOtherKindsHaveNoIncrement) {
    Camera camera(::Node("Boolean", "B", "<pValue>R</pValue><pValueCopy>C</pValueCopy>") + IntReg("R", 0) +
                  IntReg("C", 4) + Integer("I", "<pValue>V</pValue><pValueCopy>C</pValueCopy>") +
                  Integer("V", "<Value>0</Value><Inc>2</Inc>"));
    EXPECT_EQ(camera.Mode("B"), RW);
    camera.Bool("B")->SetValue(true);
    EXPECT_EQ(camera.port.Bytes(0, 8), (std::vector<int>{1, 0, 0, 0, 1, 0, 0, 0}));
    EXPECT_EQ(camera.Mode("I"), RW);
    EXPECT_EQ(camera.Int("I")->GetInc(), 2);
}

TEST(Limits, FloatIncrementsAreOnlyToldNeverEnforced) {
    Camera camera(Float("F", "<Value>0</Value><Inc>0.25</Inc>") +
                  Float("Zero", "<Value>0</Value><Inc>0</Inc>") + Float("None", "<Value>0</Value>") +
                  Converter("C", "TO", "None"));
    EXPECT_TRUE(camera.Float("F")->HasInc());
    EXPECT_EQ(camera.Float("F")->GetInc(), 0.25);
    EXPECT_EQ(camera.Float("F")->GetIncMode(), fixedIncrement);
    EXPECT_TRUE(camera.Float("F")->GetListOfValidValues().empty());
    camera.Float("F")->SetValue(0.3);
    EXPECT_EQ(camera.Float("F")->GetValue(), 0.3);
    for (const std::string name : {"Zero", "None", "C"}) {
        EXPECT_FALSE(camera.Float(name)->HasInc()) << name;
        EXPECT_EQ(camera.Float(name)->GetIncMode(), noIncrement) << name;
        EXPECT_EQ(Failure<RuntimeException>([&] { camera.Float(name)->GetInc(); }),
                  "Node '" + name + "' has no increment.");
    }
}

TEST(Limits, ValidValuesMayBeSpelledOtherwiseAndBounded) {
    Camera camera(Integer("I", "<Value>4</Value><Min>2</Min><Max>8</Max><ValidValuesSet>1;x;2;4;16"
                               "</ValidValuesSet>"));
    const int64_autovector_t bounded = camera.Int("I")->GetListOfValidValues();
    ASSERT_EQ(bounded.size(), 2u);
    EXPECT_EQ(bounded[0], 2);
    EXPECT_EQ(bounded[1], 4);
    EXPECT_EQ(camera.Int("I")->GetListOfValidValues(false).size(), 4u);
    EXPECT_EQ(Failure<OutOfRangeException>([&] { camera.Int("I")->SetValue(3); }),
              "Value 3 of 'I' is not in its list of valid values.");
    EXPECT_EQ(Camera(Integer("I", "<Value>4</Value>")).Int("I")->GetIncMode(), fixedIncrement);
}

TEST(Limits, ConverterIsOpenWhereItsFormulaHasNoValue) {
    Camera camera(
        Integer("R", "<Value>5</Value><Min>0</Min><Max>10</Max>") + Converter("Rate", "100/TO", "R") +
        Converter("Up", "100/TO", "R", "<Slope>Increasing</Slope>") + Converter("Late", "100/(10-TO)", "R") +
        Converter("Log", "LN(TO)", "R") + Converter("Down", "100-TO", "R", "<Slope>Decreasing</Slope>") +
        Converter("Vary", "TO", "R", "<Slope>Varying</Slope>") + Converter("Wo", "TO", "WoReg") +
        IntReg("WoReg", 0, 1, kWriteOnly));
    EXPECT_EQ(camera.Float("Rate")->GetMin(), -kHighest); // one end alone tells nothing
    EXPECT_EQ(camera.Float("Rate")->GetMax(), kHighest);
    EXPECT_EQ(camera.Float("Late")->GetMin(), -kHighest);
    EXPECT_EQ(camera.Float("Up")->GetMin(), -kHighest);
    EXPECT_EQ(camera.Float("Up")->GetMax(), 10);
    EXPECT_EQ(camera.Float("Log")->GetMin(), -kHighest);
    EXPECT_EQ(camera.Float("Down")->GetMin(), 90);
    EXPECT_EQ(camera.Float("Down")->GetMax(), 100);
    EXPECT_EQ(camera.Float("Vary")->GetMax(), kHighest);
    EXPECT_EQ(camera.Float("Wo")->GetMax(), kHighest);
}

TEST(NumberText, FormsThatAreNoNumberAreRefused) {
    Camera camera(Integer("I", "<Value>0</Value>") + Float("F", "<Value>0</Value>"));
    for (const char* text :
         {"1..2.3", "1.2.3.", "1000.1.1.1", "a.1.1.1", "1x.1.1.1", "1:2:3:4:5", "g:1:1:1:1:1", "+", "-", "0x",
          "0xG", "1 2", "18446744073709551616", "-9223372036854775809"})
        EXPECT_EQ(Failure<InvalidArgumentException>([&] { camera.Value("I")->FromString(text); }),
                  "'" + std::string(text) + "' is no value of 'I': a whole number is needed.");
    for (const char* text : {"", "x", "1x", "+", "--1", "1e", "."})
        EXPECT_EQ(Failure<InvalidArgumentException>([&] { camera.Value("F")->FromString(text); }),
                  "'" + std::string(text) + "' is no value of 'F': a number is needed.");
}

TEST(NumberText, EveryFormOfANumberIsRead) {
    Camera camera(Integer("I", "<Value>0</Value>") + Float("F", "<Value>0</Value>"));
    const std::pair<const char*, int64_t> wholes[] = {{"+5", 5},
                                                      {"0A:0b:0C:0d:0E:0f", 0x0A0B0C0D0E0F},
                                                      {"255.255.255.255", 0xFFFFFFFF},
                                                      {"-9223372036854775808", INT64_MIN},
                                                      {"18446744073709551615", -1}};
    for (const auto& [text, value] : wholes) {
        camera.Value("I")->FromString(text);
        EXPECT_EQ(camera.Int("I")->GetValue(), value) << text;
    }
    const std::pair<const char*, double> reals[] = {{"+.5", 0.5},  {"-2.5e-3", -0.0025}, {"1e-999", 0},
                                                    {"1E-999", 0}, {" 7 ", 7},           {"1E3", 1000}};
    for (const auto& [text, value] : reals) {
        camera.Value("F")->FromString(text);
        EXPECT_EQ(camera.Float("F")->GetValue(), value) << text;
    }
    for (const char* text : {"INF", "-inf", "NaN", "1e999", "-1e999"})
        EXPECT_THROW(camera.Value("F")->FromString(text), OutOfRangeException) << text;
    EXPECT_EQ(Failure<OutOfRangeException>([&] { camera.Value("F")->FromString("-INF", false); }),
              "Value -INF can't be written to 'F'.");
}

TEST(NumberText, NotationAndPrecisionShapeFloats) {
    const auto text = [](const std::string& value, const std::string& more) {
        Camera camera(Float("F", "<Value>" + value + "</Value>" + more));
        return std::string(camera.Value("F")->ToString().c_str());
    };
    const std::string fixed = "<DisplayNotation>Fixed</DisplayNotation>";
    EXPECT_EQ(text("0.0123456", fixed + "<DisplayPrecision>4</DisplayPrecision>"), "0.012");
    EXPECT_EQ(text("123.456", fixed + "<DisplayPrecision>4</DisplayPrecision>"), "123.5");
    EXPECT_EQ(text("123456", fixed + "<DisplayPrecision>2</DisplayPrecision>"), "123456");
    EXPECT_EQ(
        text("1234.5", "<DisplayNotation>Scientific</DisplayNotation><DisplayPrecision>3</DisplayPrecision>"),
        "1.23e+03");
    EXPECT_EQ(text("1234.5678", "<DisplayNotation>Odd</DisplayNotation><Representation>Odd</Representation>"),
              "1234.57");
    EXPECT_EQ(text("INF", ""), "INF");
    EXPECT_EQ(text("-INF", fixed), "-INF");
    EXPECT_EQ(text("NaN", ""), "NaN");
}

TEST(NumberText, AddressesAreShownByteByByte) {
    Camera camera(IntReg("R", 0, 8, "<Representation>HexNumber</Representation>") +
                  Integer("Deep", "<pValue>Middle</pValue>") + Integer("Middle", "<pValue>R</pValue>"));
    camera.Int("R")->SetValue(-1, false);
    EXPECT_TRUE(camera.Value("R")->ToString() == "0xFFFFFFFFFFFFFFFF");
    EXPECT_TRUE(camera.Value("Deep")->ToString() == "0xFFFFFFFFFFFFFFFF");
}

TEST(Display, ComesFromTheChosenEntryAndTheNearestThatHasIt) {
    Camera camera(Float("T", "<pIndex>I</pIndex><pValueIndexed Index=\"1\">A</pValueIndexed>"
                             "<pValueIndexed Index=\"2\">B</pValueIndexed>") +
                  Float("Hidden", "<pIndex>Wo</pIndex><pValueIndexed Index=\"1\">A</pValueIndexed>") +
                  Integer("I", "<Value>1</Value>") + IntReg("Wo", 0, 4, kWriteOnly) +
                  Float("A", "<pValue>Below</pValue><Unit>mm</Unit><DisplayPrecision>3</DisplayPrecision>"
                             "<DisplayNotation>Fixed</DisplayNotation>") +
                  Float("Below", "<Value>1</Value><Unit>km</Unit><DisplayPrecision>9</DisplayPrecision>"
                                 "<DisplayNotation>Scientific</DisplayNotation>"
                                 "<Representation>Logarithmic</Representation>") +
                  Float("B", "<Value>1</Value><Unit>s</Unit>") + Float("OverText", "<pValue>Bool</pValue>") +
                  ::Node("Boolean", "Bool", "<Value>1</Value>") + Integer("OverBad", "<pValue>Bad</pValue>") +
                  Integer("Bad", "<pValue>Gone</pValue><Unit>u</Unit>"));
    EXPECT_TRUE(camera.Float("T")->GetUnit() == "mm");
    EXPECT_EQ(camera.Float("T")->GetDisplayPrecision(), 3);
    EXPECT_EQ(camera.Float("T")->GetDisplayNotation(), fnFixed);
    EXPECT_EQ(camera.Float("T")->GetRepresentation(), Logarithmic);
    camera.Int("I")->SetValue(2);
    EXPECT_TRUE(camera.Float("T")->GetUnit() == "s");
    EXPECT_EQ(camera.Float("T")->GetDisplayPrecision(), 6);
    camera.Int("I")->SetValue(3);
    EXPECT_TRUE(camera.Float("T")->GetUnit() == "");
    EXPECT_TRUE(camera.Float("Hidden")->GetUnit() == "");
    EXPECT_TRUE(camera.Float("OverText")->GetUnit() == "");
    EXPECT_TRUE(camera.Int("OverBad")->GetUnit() == "u");
}

TEST(Display, EndlessChainsEnd) {
    Camera camera(Integer("A", "<pValue>B</pValue>") + Integer("B", "<pValue>A</pValue>"));
    EXPECT_TRUE(camera.Int("A")->GetUnit() == "");
    EXPECT_EQ(camera.Int("A")->GetRepresentation(), PureNumber);
}
