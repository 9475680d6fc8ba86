#include <GenApi/Persistence.h>

namespace GENAPI_NAMESPACE {

using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::gcstring_vector;

namespace {

bool SameTexts(const gcstring_vector& left, const gcstring_vector& right) {
    if (left.size() != right.size())
        return false;
    for (size_t i = 0; i < left.size(); ++i)
        if (left[i] != right[i])
            return false;
    return true;
}

} // namespace

CFeatureBag::CFeatureBag() = default;
CFeatureBag::~CFeatureBag() = default;

bool CFeatureBag::LoadFromBag(INodeMap*, bool, gcstring_vector*) {
    throw RUNTIME_EXCEPTION("CFeatureBag::LoadFromBag is not implemented");
}
int64_t CFeatureBag::StoreToBag(INodeMap*, int) {
    throw RUNTIME_EXCEPTION("CFeatureBag::StoreToBag is not implemented");
}
gcstring CFeatureBag::ToString() {
    gcstring text;
    for (size_t i = 0; i < m_Names.size(); ++i)
        text += m_Names[i] + " = " + m_Values[i] + "\n";
    return text;
}
const gcstring& CFeatureBag::GetBagName() const {
    return m_BagName;
}
void CFeatureBag::SetBagName(const gcstring& bagName) {
    m_BagName = bagName;
}
bool CFeatureBag::operator==(const CFeatureBag& other) const {
    return SameTexts(m_Names, other.m_Names) && SameTexts(m_Values, other.m_Values);
}
bool CFeatureBag::operator!=(const CFeatureBag& other) const {
    return !(*this == other);
}

std::istream& operator>>(std::istream&, CFeatureBag&) {
    throw RUNTIME_EXCEPTION("reading a CFeatureBag from a stream is not implemented");
}
std::ostream& operator<<(std::ostream&, const CFeatureBag&) {
    throw RUNTIME_EXCEPTION("writing a CFeatureBag to a stream is not implemented");
}

} // namespace GENAPI_NAMESPACE
