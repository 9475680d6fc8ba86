// Real descriptions, compared with what an independent implementation says of them. Where the two differ, a
// rule must say why: it is about what stands in the description, never about a file or a feature.
#include "CorpusReasons.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iostream>

using namespace GenICam;
using namespace GenApi;
using namespace corpus;

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

std::string Content(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

/// The other side looks neither at predicates nor at access modes when it reads.
std::string WithoutPredicates(const std::string& xml) {
    static const std::regex predicate("<(pIs(Implemented|Available|Locked)|ImposedAccessMode)>[^<]*</[^>]*>");
    return std::regex_replace(xml, predicate, "");
}
std::string AllReadable(const std::string& xml) {
    static const std::regex writeOnly("<AccessMode>\\s*WO\\s*</AccessMode>");
    return std::regex_replace(xml, writeOnly, "<AccessMode>RW</AccessMode>");
}

const char* const kKinds[] = {"addr", "len",  "bytes",  "value",   "ivalue",   "svalue",  "min", "max",
                              "inc",  "unit", "maxlen", "entries", "features", "selects", "vis"};

struct Tally {
    int same = 0;
    int explained = 0;
    int unexplained = 0;
};

class Comparison {
public:
    void Compare(const fs::path& file, const fs::path& expected) {
        const std::string xml = AllReadable(WithoutPredicates(Content(file)));
        const Opened opened(xml);
        const Alternatives otherwise(xml, opened);
        std::ifstream lines(expected);
        for (std::string line; std::getline(lines, line);) {
            const Json row = Json::parse(line);
            INode* const node = opened.map._GetNode(row.at("name").get<std::string>().c_str());
            if (!node) {
                ADD_FAILURE() << file << " lacks " << row.at("name");
                continue;
            }
            for (const char* kind : kKinds)
                CompareOne({opened, otherwise, node, row}, kind);
        }
    }

    std::map<std::string, Tally> tallies;
    std::map<std::string, int> reasons;

private:
    void CompareOne(const Subject& subject, const std::string& kind) {
        const Json& row = subject.row;
        Answer theirs;
        if (row.contains(kind))
            theirs.text = TheirText(kind, row.at(kind));
        else if (row.contains(kind + "_err"))
            theirs = {row.at(kind + "_err").get<std::string>(), true};
        else
            return;
        const Answer ours = OurAnswer(subject.node, kind);
        Tally& tally = tallies[kind];
        if (Same(ours, theirs)) {
            ++tally.same;
            return;
        }
        const std::string reason = Reason({subject, kind, ours, theirs});
        ++(reason.empty() ? tally.unexplained : tally.explained);
        if (!reason.empty()) {
            ++reasons[kind + ": " + reason];
            return;
        }
        if (tally.unexplained <= 25)
            std::cout << kind << " of " << row.at("tag").get<std::string>() << " "
                      << subject.node->GetName().c_str() << ": ours " << ours.text << ", theirs "
                      << theirs.text << "\n";
    }
};

} // namespace

TEST(Corpus, AgreesWithAnIndependentImplementation) {
    const char* const folder = std::getenv("ZQAPI_TEST_DATA");
    if (!folder)
        GTEST_SKIP() << "ZQAPI_TEST_DATA is not set";
    Comparison comparison;
    const fs::path corpus = fs::path(folder) / "corpus";
    for (const auto& file : fs::directory_iterator(corpus))
        if (file.path().extension() == ".xml")
            comparison.Compare(file.path(), corpus / "expected" / (file.path().stem().string() + ".jsonl"));
    for (const auto& [reason, count] : comparison.reasons)
        std::cout << "differs, explained: " << reason << " " << count << "\n";
    for (const auto& [kind, tally] : comparison.tallies) {
        const int all = tally.same + tally.explained + tally.unexplained;
        std::cout << kind << ": " << tally.same << " of " << all << " agree, " << tally.explained
                  << " differ with a reason\n";
        EXPECT_EQ(tally.unexplained, 0) << kind;
    }
    EXPECT_GT(comparison.tallies["value"].same, 20000);
}
