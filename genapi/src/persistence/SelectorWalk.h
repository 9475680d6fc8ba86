#pragma once

#include <GenApi/INode.h>

#include <Base/GCString.h>

#include <cstdint>
#include <string>
#include <vector>

namespace GENAPI_NAMESPACE::inside {

/// The selectors of a feature and their selectors, outermost first. The feature itself is never among them.
std::vector<INode*> SelectorsOf(INode& feature);

/// Walks the combinations of some selectors' values, the last one changing fastest, and puts them back at the
/// end of its life.
class SelectorWalk {
public:
    /// Outermost first, as SelectorsOf gives them. Those that can't be read are left out.
    explicit SelectorWalk(const std::vector<INode*>& selectors);
    ~SelectorWalk();
    SelectorWalk(const SelectorWalk&) = delete;
    SelectorWalk& operator=(const SelectorWalk&) = delete;

    bool IsEmpty() const { return m_digits.empty(); }
    /// How many combinations there would be if no selector changed what another offers; saturates.
    uint64_t EstimateCount() const;
    /// Chooses the first combination; false when there is none.
    bool SetFirst();
    bool SetNext();
    /// Chooses the present combination again; false when none has been chosen.
    bool SetAgain();
    /// Tries all, then throws the first failure.
    void Restore();
    std::string Text() const;

private:
    struct Digit {
        INode* node = nullptr;
        GENICAM_NAMESPACE::gcstring original;
        std::vector<GENICAM_NAMESPACE::gcstring> values;
        size_t position = 0;
    };

    bool EnterFrom(size_t digit);
    bool ChooseFrom(size_t digit, size_t position);

    std::vector<Digit> m_digits;
    bool m_chosen = false;
    bool m_moved = false;
};

} // namespace GENAPI_NAMESPACE::inside
