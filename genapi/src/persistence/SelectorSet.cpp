#include <GenApi/SelectorSet.h>

#include "genapi/src/persistence/SelectorWalk.h"

namespace GENAPI_NAMESPACE {

class CSelectorSet::Inside {
public:
    explicit Inside(IBase* base) : walk(Selectors(base)) {}

    inside::SelectorWalk walk;

private:
    static std::vector<INode*> Selectors(IBase* base) {
        auto* const node = dynamic_cast<INode*>(base);
        return node ? inside::SelectorsOf(*node) : std::vector<INode*>();
    }
};

CSelectorSet::CSelectorSet(IBase* pBase) : m_inside(std::make_unique<Inside>(pBase)) {}
CSelectorSet::~CSelectorSet() = default;

bool CSelectorSet::IsEmpty() {
    return m_inside->walk.IsEmpty();
}
bool CSelectorSet::SetFirst() {
    return m_inside->walk.SetFirst();
}
bool CSelectorSet::SetNext(bool Tick) {
    return Tick ? m_inside->walk.SetNext() : m_inside->walk.SetAgain();
}
void CSelectorSet::Restore() {
    m_inside->walk.Restore();
}
GENICAM_NAMESPACE::gcstring CSelectorSet::ToString() {
    return m_inside->walk.Text().c_str();
}

} // namespace GENAPI_NAMESPACE
