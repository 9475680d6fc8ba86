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
}

TEST(Text, WideTextBecomesUtf8AndBack) {
    const gcstring text(L"\u00b5m \u20ac \U0001F4F7");
    EXPECT_STREQ(text.c_str(), "\xC2\xB5m \xE2\x82\xAC \xF0\x9F\x93\xB7");
    EXPECT_EQ(text.w_str(), L"\u00b5m \u20ac \U0001F4F7");
    EXPECT_EQ(gcstring("a\xFF").w_str(), L"a\uFFFD");
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
