#include <Base/GCBase.h>
#include <GenApi/GenApi.h>

#include <gtest/gtest.h>

#include <sstream>
#include <type_traits>

using namespace GenICam;

TEST(Text, KeepsItsLengthWithNulBytesInside) {
    const gcstring text("a\0b", 3);
    EXPECT_EQ(text.size(), 3u);
    EXPECT_NE(text, gcstring("a"));
    EXPECT_EQ(text.find('b'), 2u);
}

TEST(Text, NullPointersAreEmptyTexts) {
    EXPECT_TRUE(gcstring(static_cast<const char*>(nullptr)).empty());
    EXPECT_TRUE(gcstring(nullptr, 5).empty());
    gcstring text("x");
    text = static_cast<const char*>(nullptr);
    EXPECT_TRUE(text == "");
    EXPECT_TRUE(text == static_cast<const char*>(nullptr));
    EXPECT_TRUE(gcstring("x") != static_cast<const char*>(nullptr));
    EXPECT_EQ(gcstring("x").find(static_cast<const char*>(nullptr)), 0u);
}

TEST(Text, WideTextBecomesUtf8AndBack) {
    const gcstring text(L"\u00b5m \u20ac \U0001F4F7");
    EXPECT_STREQ(text.c_str(), "\xC2\xB5m \xE2\x82\xAC \xF0\x9F\x93\xB7");
    EXPECT_EQ(text.w_str(), L"\u00b5m \u20ac \U0001F4F7");
    EXPECT_EQ(gcstring("a\xFF").w_str(), L"a\uFFFD");
}

TEST(Text, WhatIsNoCodePointIsReplaced) {
    const wchar_t wide[] = {static_cast<wchar_t>(0xD800), static_cast<wchar_t>(0x110000), 0xE000, 0};
    EXPECT_STREQ(gcstring(wide).c_str(), "\xEF\xBF\xBD\xEF\xBF\xBD\xEE\x80\x80");
    EXPECT_TRUE(gcstring(static_cast<const wchar_t*>(nullptr)).empty());
    // Each byte of a bad sequence is replaced: lone, cut off, not continued, overlong, too large, a
    // surrogate.
    const std::pair<const char*, std::wstring> texts[] = {{"\x80", L"\uFFFD"},
                                                          {"\xC0\x80", L"\uFFFD\uFFFD"},
                                                          {"\xE2\x82", L"\uFFFD\uFFFD"},
                                                          {"\xE2(\x82", L"\uFFFD(\uFFFD"},
                                                          {"\xE0\x80\x80", L"\uFFFD\uFFFD\uFFFD"},
                                                          {"\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"},
                                                          {"\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},
                                                          {"\xEE\x80\x80", L"\uE000"}};
    for (const auto& [text, expected] : texts)
        EXPECT_EQ(gcstring(text).w_str(), expected);
}

TEST(Text, OperatorsWorkWithTextsAndLiterals) {
    gcstring text("ab");
    text += "c";
    text += 'd';
    text += gcstring("e");
    EXPECT_TRUE(text == "abcde");
    EXPECT_TRUE("abcde" == text);
    EXPECT_TRUE(text != "x");
    EXPECT_TRUE("<" + text + ">" == "<abcde>");
    EXPECT_TRUE(gcstring("a") < gcstring("b"));
    EXPECT_TRUE(gcstring("b") > gcstring("a"));
}

TEST(Text, FindTakesOffsetAndCount) {
    const gcstring text("abcabc");
    EXPECT_EQ(text.find("abc", 1), 3u);
    EXPECT_EQ(text.find("abX", 1, 2), 3u);
    EXPECT_EQ(text.find_first_not_of("ab"), 2u);
    EXPECT_EQ(text.find_last_of("a"), 3u);
    EXPECT_EQ(text.find('z'), gcstring::npos);
    EXPECT_EQ(gcstring::_npos(), gcstring::npos);
}

TEST(Text, PositionsBehindTheEndAreOutOfRange) {
    EXPECT_THROW(gcstring("abc").substr(4), OutOfRangeException);
    EXPECT_TRUE(gcstring("abc").substr(3).empty());
    gcstring text("abc");
    EXPECT_THROW(text.erase(4), OutOfRangeException);
    text.erase(1, 1);
    EXPECT_TRUE(text == "ac");
    text.erase(2);
    EXPECT_TRUE(text == "ac");
}

TEST(Text, StreamsReadAndWrite) {
    std::istringstream in("first line\nword rest;x");
    gcstring line;
    getline(in, line);
    EXPECT_TRUE(line == "first line");
    gcstring word;
    in >> word;
    EXPECT_TRUE(word == "word");
    getline(in, line, ';');
    EXPECT_TRUE(line == " rest");
    std::ostringstream out;
    out << gcstring("a\0b", 3);
    EXPECT_EQ(out.str(), std::string("a\0b", 3));
}

TEST(TextVector, InsertsErasesAndFinds) {
    gcstring_vector texts;
    texts.push_back("a");
    texts.push_back("c");
    texts.insert(1, "b");
    texts.insert(texts.begin(), "0");
    ASSERT_EQ(texts.size(), 4u);
    EXPECT_TRUE(texts[2] == "b");
    texts.erase(0);
    texts.erase(texts.begin());
    EXPECT_TRUE(texts.front() == "b");
    EXPECT_TRUE(texts.contains("c"));
    EXPECT_FALSE(texts.contains("a"));
    EXPECT_THROW(texts.at(2), OutOfRangeException);
}

TEST(Exceptions, WhatHoldsDescriptionKindAndPlace) {
    const RuntimeException failure("broken", "unit.cpp", 12, "RuntimeException");
    EXPECT_STREQ(failure.GetDescription(), "broken");
    EXPECT_STREQ(failure.GetSourceFileName(), "unit.cpp");
    EXPECT_EQ(failure.GetSourceLine(), 12u);
    EXPECT_STREQ(failure.what(), "broken : RuntimeException thrown (file 'unit.cpp', line 12)");
}

TEST(Exceptions, AreStandardExceptionsToo) {
    const AccessException failure("no", "f", 1);
    const std::exception& standard = failure;
    EXPECT_STREQ(standard.what(), "no : AccessException thrown (file 'f', line 1)");
}

TEST(Exceptions, CopiesAreIndependentAndNothrow) {
    static_assert(std::is_nothrow_copy_constructible<GenericException>::value, "thrown by value");
    auto first = std::make_unique<TimeoutException>("late", "f", 1);
    const TimeoutException copy(*first);
    first.reset();
    EXPECT_STREQ(copy.GetDescription(), "late");
}

TEST(Exceptions, TextsOfNoneAreEmpty) {
    AccessException first("no", "f", 1);
    const AccessException second(std::move(first));
    EXPECT_STREQ(second.GetDescription(), "no");
    EXPECT_STREQ(first.GetDescription(), "");
    EXPECT_STREQ(first.GetSourceFileName(), "");
    EXPECT_EQ(first.GetSourceLine(), 0u);
    EXPECT_STREQ(first.what(), "");
    const GenericException nothing(nullptr, nullptr, 3, nullptr);
    EXPECT_STREQ(nothing.what(), " : GenericException thrown (file '', line 3)");
}

TEST(Exceptions, MacrosFormatAndNameTheirKind) {
    try {
        throw OUT_OF_RANGE_EXCEPTION("%s = %d", "x", 7);
    } catch (const OutOfRangeException& failure) {
        EXPECT_STREQ(failure.GetDescription(), "x = 7");
        EXPECT_NE(std::string(failure.what()).find("OutOfRangeException thrown"), std::string::npos);
    }
}

TEST(Exceptions, ReporterTakesLongTextsWhole) {
    const std::string longText(5000, 'x');
    const auto failure = ExceptionReporter<RuntimeException>("f", 1).Report("%s!", longText.c_str());
    EXPECT_EQ(std::string(failure.GetDescription()), longText + "!");
    EXPECT_STREQ(ExceptionReporter<RuntimeException>("f", 1).Report(std::string("%s")).GetDescription(),
                 "%s");
    EXPECT_STREQ(ExceptionReporter<RuntimeException>("f", 1).Report().GetDescription(), "");
    const char* const none = nullptr;
    EXPECT_STREQ(ExceptionReporter<RuntimeException>("f", 1).Report(none).GetDescription(), "");
}

TEST(Exceptions, FormatThatFailsIsTheText) {
    const wchar_t noCharacter[] = {static_cast<wchar_t>(0xDC00), 0};
    EXPECT_STREQ(ExceptionReporter<RuntimeException>("f", 1).Report("%ls", noCharacter).GetDescription(),
                 "%ls");
}

TEST(Lock, IsRecursive) {
    GenApi::CLock lock;
    const GenApi::AutoLock first(lock);
    EXPECT_TRUE(lock.TryLock());
    lock.Unlock();
}

TEST(Modes, CombineIsTheMeetOfBoth) {
    using namespace GenApi;
    EXPECT_EQ(Combine(NI, RW), NI);
    EXPECT_EQ(Combine(NA, NI), NI);
    EXPECT_EQ(Combine(NA, RW), NA);
    EXPECT_EQ(Combine(RO, WO), NA);
    EXPECT_EQ(Combine(WO, RW), WO);
    EXPECT_EQ(Combine(RW, RO), RO);
    EXPECT_EQ(Combine(RW, RW), RW);
    EXPECT_EQ(Combine(Beginner, Guru), Guru);
    EXPECT_EQ(Combine(WriteThrough, NoCache), NoCache);
    EXPECT_EQ(Combine(WriteThrough, WriteAround), WriteAround);
    EXPECT_EQ(Combine(WriteAround, WriteThrough), WriteAround);
    EXPECT_EQ(Combine(NoCache, WriteThrough), NoCache);
    EXPECT_EQ(Combine(WriteThrough, WriteThrough), WriteThrough);
    EXPECT_EQ(Combine(WO, RO), NA);
    EXPECT_EQ(Combine(RO, RO), RO);
}

TEST(Modes, PredicatesTakeModesAndPointers) {
    using namespace GenApi;
    struct Fixed : virtual IBase {
        explicit Fixed(EAccessMode given) : mode(given) {}
        EAccessMode GetAccessMode() const override { return mode; }
        EAccessMode mode;
    };
    struct Row {
        EAccessMode mode;
        bool readable, writable, implemented, available;
    };
    for (const Row& row : {Row{NI, false, false, false, false}, Row{NA, false, false, true, false},
                           Row{WO, false, true, true, true}, Row{RO, true, false, true, true},
                           Row{RW, true, true, true, true}}) {
        const Fixed node(row.mode);
        const IBase* const pointer = &node;
        for (const bool readable : {IsReadable(row.mode), IsReadable(pointer), IsReadable(node)})
            EXPECT_EQ(readable, row.readable) << row.mode;
        for (const bool writable : {IsWritable(row.mode), IsWritable(pointer), IsWritable(node)})
            EXPECT_EQ(writable, row.writable) << row.mode;
        for (const bool implemented : {IsImplemented(row.mode), IsImplemented(pointer), IsImplemented(node)})
            EXPECT_EQ(implemented, row.implemented) << row.mode;
        for (const bool available : {IsAvailable(row.mode), IsAvailable(pointer), IsAvailable(node)})
            EXPECT_EQ(available, row.available) << row.mode;
    }
    const IBase* const none = nullptr;
    EXPECT_FALSE(IsReadable(none) || IsWritable(none) || IsImplemented(none) || IsAvailable(none));
    const CIntegerPtr empty;
    EXPECT_FALSE(IsReadable(empty) || IsWritable(empty) || IsImplemented(empty) || IsAvailable(empty));
    EXPECT_TRUE(IsCacheable(WriteThrough) && IsCacheable(WriteAround));
    EXPECT_FALSE(IsCacheable(NoCache));
    EXPECT_TRUE(IsVisible(Expert, Guru) && IsVisible(Guru, Guru));
    EXPECT_FALSE(IsVisible(Invisible, Guru));
}

TEST(EnumTexts, ReadBackWhatTheyWrite) {
    using namespace GenApi;
    for (const EAccessMode mode : {NI, NA, WO, RO, RW}) {
        EAccessMode back = _UndefinedAccesMode;
        EXPECT_TRUE(EAccessModeClass::FromString(EAccessModeClass::ToString(mode), &back));
        EXPECT_EQ(back, mode);
    }
    EVisibility visibility = Guru;
    EXPECT_FALSE(EVisibilityClass::FromString("Nobody", &visibility));
    EXPECT_EQ(visibility, Guru);
    EXPECT_TRUE(EDisplayNotationClass::ToString(fnScientific) == "Scientific");
}

namespace {

/// Every value of a table is read back from its text; `other` is the text of what has none.
template <class Class, class Enum>
void ExpectTexts(const std::vector<std::pair<Enum, const char*>>& rows, const char* other) {
    for (const auto& [value, text] : rows) {
        EXPECT_TRUE(Class::ToString(value) == text);
        gcstring out;
        Class::ToString(out, &value);
        EXPECT_TRUE(out == text);
        Enum back = static_cast<Enum>(-1);
        EXPECT_TRUE(Class::FromString(text, &back)) << text;
        EXPECT_EQ(back, value) << text;
        EXPECT_FALSE(Class::FromString(text, nullptr));
    }
    EXPECT_TRUE(Class::ToString(static_cast<Enum>(77)) == other) << other;
    gcstring none("x");
    Class::ToString(none, nullptr);
    EXPECT_TRUE(none == other) << other;
    Enum untouched = rows[0].first;
    EXPECT_FALSE(Class::FromString("Nobody", &untouched));
    EXPECT_EQ(untouched, rows[0].first);
}

} // namespace

TEST(EnumTexts, OfEveryEnumeration) {
    using namespace GenApi;
    ExpectTexts<EAccessModeClass, EAccessMode>({{NI, "NI"}, {NA, "NA"}, {WO, "WO"}, {RO, "RO"}, {RW, "RW"}},
                                               "_UndefinedAccesMode");
    ExpectTexts<EVisibilityClass, EVisibility>(
        {{Beginner, "Beginner"}, {Expert, "Expert"}, {Guru, "Guru"}, {Invisible, "Invisible"}},
        "_UndefinedVisibility");
    ExpectTexts<ECachingModeClass, ECachingMode>(
        {{NoCache, "NoCache"}, {WriteThrough, "WriteThrough"}, {WriteAround, "WriteAround"}},
        "_UndefinedCachingMode");
    ExpectTexts<ERepresentationClass, ERepresentation>({{Linear, "Linear"},
                                                        {Logarithmic, "Logarithmic"},
                                                        {Boolean, "Boolean"},
                                                        {PureNumber, "PureNumber"},
                                                        {HexNumber, "HexNumber"},
                                                        {IPV4Address, "IPV4Address"},
                                                        {MACAddress, "MACAddress"}},
                                                       "_UndefinedRepresentation");
    ExpectTexts<EEndianessClass, EEndianess>({{BigEndian, "BigEndian"}, {LittleEndian, "LittleEndian"}},
                                             "_UndefinedEndian");
    ExpectTexts<ESignClass, ESign>({{Signed, "Signed"}, {Unsigned, "Unsigned"}}, "_UndefinedSign");
    ExpectTexts<ENameSpaceClass, ENameSpace>({{Custom, "Custom"}, {Standard, "Standard"}},
                                             "_UndefinedNameSpace");
    ExpectTexts<EStandardNameSpaceClass, EStandardNameSpace>(
        {{None, "None"}, {GEV, "GEV"}, {IIDC, "IIDC"}, {CL, "CL"}, {USB, "USB"}},
        "_UndefinedStandardNameSpace");
    ExpectTexts<EYesNoClass, EYesNo>({{Yes, "Yes"}, {No, "No"}}, "_UndefinedYesNo");
    ExpectTexts<ESlopeClass, ESlope>({{Increasing, "Increasing"},
                                      {Decreasing, "Decreasing"},
                                      {Varying, "Varying"},
                                      {Automatic, "Automatic"}},
                                     "_UndefinedESlope");
    ExpectTexts<EDisplayNotationClass, EDisplayNotation>(
        {{fnAutomatic, "Automatic"}, {fnFixed, "Fixed"}, {fnScientific, "Scientific"}},
        "_UndefinedEDisplayNotation");
    ExpectTexts<EInterfaceTypeClass, EInterfaceType>(
        {{intfIValue, "IValue"}, {intfIInteger, "IInteger"}, {intfIPort, "IPort"}, {intfIBase, "IBase"}},
        "IBase");
}

TEST(Pointers, NullOneThrowsWhenUsed) {
    const GenApi::CIntegerPtr pointer;
    EXPECT_FALSE(pointer.IsValid());
    EXPECT_TRUE(pointer == nullptr);
    try {
        pointer->GetValue();
        FAIL();
    } catch (const LogicalErrorException& failure) {
        EXPECT_STREQ(failure.GetDescription(), "NULL pointer dereferenced");
    }
}

TEST(NodeMapRef, EmptyOneThrowsWhenUsed) {
    const GenApi::CNodeMapRef map("Name");
    EXPECT_TRUE(map._GetDeviceName() == "Name");
    try {
        map._GetNode("Width");
        FAIL();
    } catch (const AccessException& failure) {
        EXPECT_STREQ(failure.GetDescription(), "Feature not present (reference not valid)");
    }
}
