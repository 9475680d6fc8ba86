#include "Camera.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>

using namespace GenICam;
using namespace GenApi;

namespace {

std::string Escape(const std::string& text) {
    std::string out;
    for (const char c : text)
        out += c == '<' ? "&lt;" : c == '>' ? "&gt;" : c == '&' ? "&amp;" : std::string(1, c);
    return out;
}

std::string Knife(const std::string& name, const std::string& formula, bool integer,
                  const std::string& more = "") {
    return ::Node(integer ? "IntSwissKnife" : "SwissKnife", name,
                  more + "<Formula>" + Escape(formula) + "</Formula>");
}

int64_t Integer(const std::string& formula) {
    return Camera(Knife("K", formula, true)).Int("K")->GetValue();
}
double Float(const std::string& formula) {
    return Camera(Knife("K", formula, false)).Float("K")->GetValue();
}

} // namespace

TEST(Formula, PrecedenceAndAssociation) {
    EXPECT_EQ(Integer("1+2*3"), 7);
    EXPECT_EQ(Integer("10-4-3"), 3);
    EXPECT_EQ(Integer("2**3**2"), 512);
    EXPECT_EQ(Integer("-2**2"), 4); // a sign binds tighter than a power
    EXPECT_EQ(Integer("1<<2+1"), 8);
    EXPECT_EQ(Integer("1|2^3&2"), 1 | (2 ^ (3 & 2)));
    EXPECT_EQ(Integer("1=1&&2<3"), 1);
    EXPECT_EQ(Integer("0?1:0?2:3"), 3);
    EXPECT_EQ(Float("2**-1"), 0.5);
    EXPECT_EQ(Integer("~0 & 0xF"), 15);
    EXPECT_EQ(Integer("!3 + !0"), 1);
    EXPECT_EQ(Integer("3<>4"), 1);
    EXPECT_EQ(Integer("3==4"), 0);
}

TEST(Formula, WholeNumbersStayWhole) {
    EXPECT_EQ(Integer("7/2*2"), 6);
    EXPECT_EQ(Integer("-7/2"), -3);
    EXPECT_EQ(Integer("-7%3"), -1);
    EXPECT_EQ(Float("7/2"), 3.5);
    EXPECT_EQ(Integer("0x7FFFFFFFFFFFFFFF"), INT64_MAX);
    EXPECT_EQ(Integer("0xFFFFFFFFFFFFFFFF"), -1);
    EXPECT_EQ(Integer("0x7FFFFFFFFFFFFFFF+1"), INT64_MIN);
    EXPECT_EQ(Integer("010"), 10);
    EXPECT_EQ(Integer("1<<64"), 1);
    EXPECT_EQ(Integer("(0-1)>>63"), -1);
    EXPECT_EQ(Integer("3**39"), 4052555153018976267);
    EXPECT_EQ(Integer("2**(0-1)"), 0);
    EXPECT_EQ(Float("((3<<32)|5)=12884901893"), 1.0);
}

TEST(Formula, NumbersInEveryForm) {
    EXPECT_EQ(Float("1e+05"), 100000.0);
    EXPECT_EQ(Float("60e6"), 60e6);
    EXPECT_EQ(Float("2."), 2.0);
    EXPECT_EQ(Float(".5"), 0.5);
    EXPECT_EQ(Float("PI"), 3.14159265358979323846);
    EXPECT_EQ(Integer("2.9"), 2);
}

TEST(Formula, ConstantPartsAreTheSameAsVariableOnes) {
    const auto with = [](const std::string& formula, int64_t a) {
        Camera camera(::Node("Integer", "A", "<Value>" + std::to_string(a) + "</Value>") +
                      Knife("K", formula, false, "<pVariable Name=\"A\">A</pVariable>"));
        return camera.Float("K")->GetValue();
    };
    struct Row {
        const char* formula;
        double atZero;
        double atOne;
    };
    for (const Row& row : {Row{"(A?1:2)+3", 5, 4}, Row{"3+(A?1:2)", 5, 4}, Row{"A?1+2:3*4", 12, 3},
                           Row{"-(A?1:2)", -2, -1}, Row{"(A||0)+2*3", 6, 7}, Row{"2*3-(A&&1)", 6, 5},
                           Row{"A?1/0:2", 2, NAN}, Row{"ROUND(2.345,1+1)+A", 2.35, 3.35},
                           Row{"ROUND(-2.5)+A", -3, -2}, Row{"LN(10)*A", 0, std::log(10.0)},
                           Row{"7/2-A", 3.5, 2.5}, Row{"(1<<40|1)-A", 1099511627777.0, 1099511627776.0},
                           Row{"~(A?0:1)", -2, -1}, Row{"(A?2:3)**2", 9, 4}, Row{"ABS(A?0-1:2)", 2, 1}}) {
        EXPECT_DOUBLE_EQ(with(row.formula, 0), row.atZero) << row.formula;
        if (std::isnan(row.atOne))
            EXPECT_THROW(with(row.formula, 1), RuntimeException) << row.formula;
        else
            EXPECT_DOUBLE_EQ(with(row.formula, 1), row.atOne) << row.formula;
    }
}

TEST(Formula, OnlyTheChosenBranchIsEvaluated) {
    EXPECT_EQ(Integer("1?2:1/0"), 2);
    EXPECT_EQ(Integer("0?1/0:3"), 3);
    EXPECT_EQ(Integer("1||1/0"), 1);
    EXPECT_EQ(Integer("0&&1/0"), 0);
    EXPECT_EQ(Float("0.5?1:2"), 1.0);
}

TEST(Formula, Functions) {
    EXPECT_EQ(Float("ROUND(2.5)"), 3.0);
    EXPECT_EQ(Float("ROUND(-2.5)"), -3.0);
    EXPECT_DOUBLE_EQ(Float("ROUND(1.2345, 2)"), 1.23);
    EXPECT_EQ(Float("TRUNC(-2.7)"), -2.0);
    EXPECT_EQ(Float("LG(1000)"), 3.0);
    EXPECT_EQ(Float("LN(E)"), 1.0);
    EXPECT_EQ(Integer("ABS(0-5)+SGN(0-9)+NEG(1)"), 3);
    EXPECT_EQ(Float("sqrt(16)"), 4.0);
}

TEST(Formula, EveryFunctionHasItsValue) {
    const std::pair<const char*, double> values[] = {{"ATAN(1)", std::atan(1.0)},
                                                     {"COS(PI)", -1},
                                                     {"SIN(PI/2)", 1},
                                                     {"TAN(0.5)", std::tan(0.5)},
                                                     {"EXP(1)", std::exp(1.0)},
                                                     {"FLOOR(-1.5)", -2},
                                                     {"CEIL(-1.5)", -1},
                                                     {"ASIN(1)", std::asin(1.0)},
                                                     {"ACOS(0.5)", std::acos(0.5)},
                                                     {"ABS(-2.5)", 2.5},
                                                     {"NEG(2.5)", -2.5},
                                                     {"SGN(2.5)", 1},
                                                     {"SGN(-2.5)", -1},
                                                     {"SGN(0.0)", 0},
                                                     {"ROUND(1250,-2)", 1300},
                                                     {"ROUND(7,2)", 7},
                                                     {"FLOOR(7)", 7},
                                                     {"CEIL(7)", 7},
                                                     {"TRUNC(7)", 7},
                                                     {"ROUND(2.55,0.5)", 3}};
    for (const auto& [formula, value] : values)
        EXPECT_DOUBLE_EQ(Float(formula), value) << formula;
    EXPECT_EQ(Integer("FLOOR(7)+CEIL(7)+ROUND(7,-1)+TRUNC(7)"), 28); // whole numbers are round
    EXPECT_EQ(Integer("EXP(2)"), 7);
    EXPECT_EQ(Integer("ABS(5)+SGN(9)+SGN(0)"), 6);
    EXPECT_EQ(Integer("ABS (0-5)"), 5);
}

TEST(Formula, WholeNumbersWrapWhereTheyEnd) {
    EXPECT_EQ(Integer("1**(0-3)"), 1);
    EXPECT_EQ(Integer("(0-1)**(0-2)"), 1);
    EXPECT_EQ(Integer("(0-1)**(0-3)"), -1);
    EXPECT_EQ(Integer("7/(0-1)"), -7);
    EXPECT_EQ(Integer("7%(0-1)"), 0);
    EXPECT_EQ(Integer("0x8000000000000000/(0-1)"), INT64_MIN);
    EXPECT_EQ(Float("0x7FFFFFFFFFFFFFFF+1"), 9223372036854775808.0);
    EXPECT_EQ(Float("10**30"), 1e30);
    EXPECT_EQ(Float("4**0.5"), 2.0);
    EXPECT_EQ(Float("1+0.5"), 1.5);
    EXPECT_EQ(Float("1<1.5"), 1.0);
    EXPECT_EQ(Float("1.5<1"), 0.0);
    EXPECT_EQ(Integer("(2<=2)+(3<=2)+(3>=2)+(2>=3)"), 2);
    EXPECT_EQ(Integer("1e30"), INT64_MAX);
    EXPECT_EQ(Integer("-1e30"), -INT64_MAX);
    EXPECT_EQ(Integer("SQRT(0-1)"), 0); // what is no number has no whole part
}

TEST(Formula, SpellingsOfNumbersAndBlanks) {
    EXPECT_EQ(Integer("0xaF + 0Xf"), 190);
    EXPECT_EQ(Float("1E3"), 1000.0);
    EXPECT_EQ(Float("1e-2"), 0.01);
    EXPECT_EQ(Float("9223372036854775808"), 9223372036854775808.0);
    Camera camera("<IntSwissKnife Name=\"K\"><Constant Name=\"_c\">5</Constant>"
                  "<Formula>1&#9;+&#10;2&#13;+&#11;_c&#12;+0</Formula></IntSwissKnife>");
    EXPECT_EQ(camera.Int("K")->GetValue(), 8);
}

TEST(Formula, RefusalsNameTheirPlace) {
    const std::pair<const char*, const char*> refusals[] = {{"0xAG", "bad number at position 0"},
                                                            {"0xz", "bad number at position 0"},
                                                            {"2e", "bad number at position 0"},
                                                            {"1+.", "unexpected character at position 2"},
                                                            {"1+.x", "unexpected character at position 2"},
                                                            {"1 $", "unexpected character at position 2"},
                                                            {"FOO(1)", "unexpected text at position 3"},
                                                            {"(1", "')' expected at position 2"},
                                                            {"1?2", "':' expected at position 3"}};
    for (const auto& [formula, reason] : refusals) {
        Camera camera(Knife("K", formula, true));
        EXPECT_EQ(Failure<AccessException>([&] { camera.Int("K")->GetValue(); }),
                  "Node 'K' is not readable: its formula is wrong: " + std::string(reason) +
                      " (access mode NA).")
            << formula;
    }
}

TEST(Formula, WhatIsMissingOrNoNumberIsNamed) {
    Camera camera(::Node("IntSwissKnife", "None", "") +
                  Knife("Constant", "C", true, "<Constant Name=\"C\">ten</Constant>"));
    EXPECT_EQ(Failure<AccessException>([&] { camera.Int("None")->GetValue(); }),
              "Node 'None' is not readable: its formula is wrong: it has no Formula (access mode NA).");
    EXPECT_EQ(Failure<AccessException>([&] { camera.Int("Constant")->GetValue(); }),
              "Node 'Constant' is not readable: its formula is wrong: the constant 'C' is no number (access "
              "mode NA).");
}

TEST(Formula, DeepOperandsHaveTheirPlace) {
    std::string formula = "V";
    for (int i = 0; i < 40; ++i)
        formula = "V+(" + formula + ")";
    Camera camera(Knife("K", formula, true, "<pVariable Name=\"V\">V</pVariable>") +
                  ::Node("Integer", "V", "<Value>3</Value>"));
    EXPECT_EQ(camera.Int("K")->GetValue(), 41 * 3);
}

TEST(Formula, FailuresSayWhatIsWrong) {
    Camera camera(Knife("Div", "1/0", true) + Knife("FDiv", "1/0.0", false) + Knife("Syntax", "1 +", true) +
                  Knife("Gone", "1+NOBODY", true) + Knife("Half", "1||NOBODY", true));
    EXPECT_EQ(Failure<RuntimeException>([&] { camera.Int("Div")->GetValue(); }),
              "The formula of 'Div' has no value now: division by zero in \"1/0\".");
    EXPECT_THROW(camera.Float("FDiv")->GetValue(), RuntimeException);
    EXPECT_EQ(camera.Mode("Syntax"), NA);
    EXPECT_EQ(Failure<AccessException>([&] { camera.Int("Syntax")->GetValue(); }),
              "Node 'Syntax' is not readable: its formula is wrong: operand expected at position 3 (access "
              "mode NA).");
    EXPECT_THROW(camera.Int("Gone")->GetValue(), RuntimeException);
    EXPECT_EQ(camera.Int("Half")->GetValue(), 1);
    gcstring_vector errors;
    EXPECT_FALSE(camera.map._Ptr->ParseSwissKnifes(&errors));
    EXPECT_EQ(errors.size(), 1u);
}

TEST(Formula, DeclaredNamesComeBeforeFunctions) {
    Camera camera(Knife("K", "( EXP = 1 ) ? 0 : E", true,
                        "<pVariable Name=\"EXP\">V</pVariable><Constant Name=\"E\">7</Constant>") +
                  ::Node("Integer", "V", "<Value>2</Value>"));
    EXPECT_EQ(camera.Int("K")->GetValue(), 7);
}

TEST(Formula, PropertiesConstantsAndExpressions) {
    Camera camera(Knife("K", "V.Max + V.Min + M.Entry.Two + HALF + V", true,
                        "<pVariable Name=\"V\">V</pVariable><pVariable Name=\"M.Entry.Two\">Mode</pVariable>"
                        "<Constant Name=\"C\">0x10</Constant><Expression Name=\"HALF\">C/2</Expression>") +
                  ::Node("Integer", "V", "<Value>5</Value><Min>1</Min><Max>100</Max>") +
                  "<Enumeration Name=\"Mode\"><EnumEntry "
                  "Name=\"Two\"><Value>2000</Value></EnumEntry><Value>2000</Value></Enumeration>" +
                  Knife("Loop", "A", true,
                        "<Expression Name=\"A\">B</Expression><Expression Name=\"B\">A</Expression>"));
    EXPECT_EQ(camera.Int("K")->GetValue(), 100 + 1 + 2000 + 8 + 5);
    EXPECT_EQ(camera.Mode("Loop"), NA);
}

TEST(Formula, EveryPropertyOfAVariable) {
    const std::string variable =
        "<pVariable Name=\"V\">V</pVariable><pVariable Name=\"F\">F</pVariable>"
        "<pVariable Name=\"TS.Line\">V</pVariable><pVariable Name=\"A.B.C\">V</pVariable>"
        "<pVariable Name=\"V2.Value\">V</pVariable>";
    const std::string nodes = ::Node("Integer", "V",
                                     "<Visibility>Guru</Visibility><Value>7</Value><Min>1</Min><Max>100</Max>"
                                     "<Inc>3</Inc>") +
                              ::Node("Float", "F", "<Value>0.5</Value><Inc>0.25</Inc>");
    const std::pair<const char*, double> values[] = {{"V.Inc", 3},         {"F.Inc", 0.25},
                                                     {"V.AccessMode", RW}, {"V.Visibility", Guru},
                                                     {"TS.Line", 7},       {"A.B.C", 7},
                                                     {"V2.Value", 7},      {"V.Value", 7},
                                                     {"V.Max+V.Max", 200}, {"V.CachingMode", WriteThrough}};
    for (const auto& [formula, value] : values)
        EXPECT_EQ(Camera(nodes + Knife("K", formula, false, variable)).Float("K")->GetValue(), value)
            << formula;
    Camera none(Knife("K", "F.Inc", false, variable) + ::Node("Float", "F", "<Value>0.5</Value>"));
    EXPECT_EQ(none.Float("K")->GetValue(), 0.0);
}

TEST(Formula, EntriesAreConstantsOfTheirEnumeration) {
    const std::string names = "<pVariable Name=\"M\">Mode</pVariable><pVariable Name=\"V\">V</pVariable>"
                              "<Constant Name=\"C\">3</Constant><ToolTip Name=\"T\">5</ToolTip>";
    const std::string nodes =
        "<Enumeration Name=\"Mode\"><EnumEntry Name=\"Bad\"/><EnumEntry Name=\"One\">"
        "<Value>1</Value></EnumEntry><EnumEntry Name=\"Two\"><Value>2000</Value></EnumEntry>"
        "<Value>1</Value></Enumeration>" +
        ::Node("Integer", "V", "<Value>5</Value>");
    for (const char* formula : {"M.Entry.Two", "M.Enum.Two"})
        EXPECT_EQ(Camera(nodes + Knife("K", formula, true, names)).Int("K")->GetValue(), 2000) << formula;
    for (const std::string name : {"M.Entry.Nobody", "M.Enum.Bad", "V.Entry.Two", "C.Max", "T", "Gone.Max"}) {
        Camera camera(nodes + Knife("K", name, true, names));
        EXPECT_EQ(Failure<RuntimeException>([&] { camera.Int("K")->GetValue(); }),
                  "The formula of 'K' has no value now: '" + name + "' is not defined in \"" + name + "\".");
    }
}

TEST(Formula, FirstOfTwoDeclarationsCounts) {
    Camera camera(Knife("K", "C+D", true,
                        "<Constant Name=\"D\">10</Constant><Constant Name=\"C\">1</Constant>"
                        "<Constant Name=\"C\">2</Constant>"));
    EXPECT_EQ(camera.Int("K")->GetValue(), 11);
}

TEST(Formula, BombsAreRefused) {
    const std::string deep = std::string(10000, '(') + "1" + std::string(10000, ')');
    const std::string signs = std::string(50000, '-') + "1";
    std::string doubling = "<Expression Name=\"X0\">1</Expression>";
    for (int i = 1; i < 40; ++i)
        doubling += "<Expression Name=\"X" + std::to_string(i) + "\">X" + std::to_string(i - 1) + "+X" +
                    std::to_string(i - 1) + "</Expression>";
    Camera camera(Knife("Deep", deep, true) + Knife("Signs", signs, true) +
                  Knife("Doubling", "X39", true, doubling) +
                  Knife("Long", "1" + std::string(100000, ' ') + "+1", true) + Knife("Good", "1", true));
    for (const char* name : {"Deep", "Signs", "Doubling", "Long"})
        EXPECT_EQ(camera.Mode(name), NA) << name;
    EXPECT_EQ(camera.Int("Good")->GetValue(), 1);
}

TEST(Formula, LongChainsOfConditionsAreNoBombs) {
    std::string chain;
    for (int i = 0; i < 2000; ++i)
        chain += "(1=" + std::to_string(i + 2) + ")?" + std::to_string(i) + ":";
    EXPECT_EQ(Integer(chain + "4711"), 4711);
}

namespace {

/// One line of the table: what the formula gives, in the text of its kind.
struct Case {
    std::string line;
    bool integer;
    std::string expected;
    bool fails;
};

int64_t WholeNumber(const std::string& text) {
    size_t end = 0;
    const int64_t value = std::stoll(text, &end);
    EXPECT_EQ(end, text.size()) << text;
    return value;
}

bool IsClose(double left, double right) {
    return left == right || std::fabs(left - right) <= std::fabs(right) * 1e-12;
}

/// Whole numbers agree in every bit.
bool Agrees(const Case& line, Camera& camera, const std::string& knife, std::string& got) {
    try {
        if (line.integer) {
            const int64_t value = camera.Int(knife)->GetValue();
            got = std::to_string(value);
            return !line.fails && value == WholeNumber(line.expected);
        }
        const double value = camera.Float(knife)->GetValue();
        got = std::to_string(value);
        return !line.fails && IsClose(value, std::strtod(line.expected.c_str(), nullptr));
    } catch (const GenericException& failure) {
        got = failure.GetDescription();
        return line.fails && got.find("formula") != got.npos;
    }
}

/// The knife of one line of the table and the nodes for its variables.
std::string NodesOf(const std::vector<std::string>& fields, const std::string& name) {
    std::string inside;
    std::string nodes;
    for (size_t i = 2; i + 1 < fields.size(); ++i) {
        const std::string& field = fields[i];
        const size_t equals = field.find('=');
        const std::string variable = field.substr(0, equals);
        const char kind = field[equals + 1];
        const std::string value = field.substr(equals + 3);
        const std::string node = name + "_" + std::to_string(i);
        if (kind == 'C' || kind == 'E') {
            const std::string tag = kind == 'C' ? "Constant" : "Expression";
            inside += "<" + tag + " Name=\"" + variable + "\">" + Escape(value) + "</" + tag + ">";
            continue;
        }
        inside += "<pVariable Name=\"" + variable + "\">" + node + "</pVariable>";
        nodes += ::Node(kind == 'I' ? "Integer" : "Float", node, "<Value>" + value + "</Value>");
    }
    return Knife(name, fields[1], fields[0] == "i", inside) + nodes;
}

} // namespace

namespace {

/// What the other engine is known to do differently, by what stands in the formula; empty for the rest.
std::string KnownDifference(const Case& line) {
    const auto has = [&](const char* part) { return line.line.find(part) != std::string::npos; };
    const bool guarded = has("?") || has("&&") || has("||");
    if (line.fails && guarded && (has("division by zero") || has("unknown variable")))
        return "it evaluates branches that are not chosen";
    if (line.fails && has("missing arguments") && has("EXP="))
        return "it takes variables for functions";
    if (line.fails && line.integer && has("invalid double function") && has("ABS("))
        return "it lacks ABS in integer formulas";
    if (!line.fails && has("2**") + has("2 **") > 0)
        return "it computes integer powers as floats";
    return "";
}

} // namespace

TEST(Formula, RealFormulasGiveTheKnownValues) {
    const char* const folder = std::getenv("ZQAPI_TEST_DATA");
    if (!folder)
        GTEST_SKIP() << "ZQAPI_TEST_DATA is not set";
    std::ifstream table(std::string(folder) + "/formulas/cases.tsv");
    ASSERT_TRUE(table) << folder;
    std::vector<Case> cases;
    std::string nodes;
    for (std::string line; std::getline(table, line);) {
        std::vector<std::string> fields;
        std::istringstream cells(line);
        for (std::string cell; std::getline(cells, cell, '\t');)
            fields.push_back(cell);
        nodes += NodesOf(fields, "K" + std::to_string(cases.size()));
        const bool fails = fields.back().substr(0, 3) == "ERR";
        cases.push_back({line, fields[0] == "i", fields.back(), fails});
    }
    ASSERT_GT(cases.size(), 7000u);
    Camera camera(nodes);
    size_t agreeing = 0;
    std::map<std::string, int> different;
    for (size_t i = 0; i < cases.size(); ++i) {
        std::string got;
        if (Agrees(cases[i], camera, "K" + std::to_string(i), got)) {
            ++agreeing;
            continue;
        }
        const std::string reason = KnownDifference(cases[i]);
        ++different[reason];
        EXPECT_NE(reason, "") << cases[i].line << " -> " << got;
    }
    std::cout << agreeing << " of " << cases.size() << " agree\n";
    for (const auto& [reason, count] : different)
        std::cout << "differs: " << reason << " " << count << "\n";
    EXPECT_GE(agreeing, cases.size() - 14);
}
