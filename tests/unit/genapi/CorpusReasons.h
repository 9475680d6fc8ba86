#pragma once

// Why the other side answers something else: rules about what stands in the description.
#include "CorpusAnswers.h"

#include <memory>

namespace corpus {

/// The same description without something that the other side does not know. What it answers differently
/// there is due to that; null where there is nothing of it.
struct Alternatives {
    Alternatives(const std::string& xml, const Opened& opened);

    const std::unique_ptr<Opened> unpadded;  ///< references with white space around them lead nowhere
    const std::unique_ptr<Opened> unswapped; ///< ports take bytes as they come
    const std::unique_ptr<Opened> inFloats;  ///< no converter computes in integers
    const std::unique_ptr<Opened> zeroed;    ///< formulas that the other side can't compute are 0
};

/// The node that is compared, and where it stands.
struct Subject {
    const Opened& opened;
    const Alternatives& otherwise;
    GenApi::INode* node;
    const nlohmann::json& row;
};

struct Difference {
    const Subject& subject;
    std::string kind;
    Answer ours;
    Answer theirs;

    bool IsLimit() const { return kind == "min" || kind == "max" || kind == "inc"; }
    bool TheyFailWith(const char* part) const {
        return theirs.failed && theirs.text.find(part) != std::string::npos;
    }
    bool WeFailWith(const char* part) const {
        return ours.failed && ours.text.find(part) != std::string::npos;
    }
};

/// Why the two differ; empty when no rule knows.
std::string Reason(const Difference& d);

} // namespace corpus
