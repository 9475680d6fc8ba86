#include <GenApi/SelectorSet.h>

namespace GENAPI_NAMESPACE {

CSelectorSet::CSelectorSet(IBase*) {
    throw RUNTIME_EXCEPTION("CSelectorSet is not implemented");
}
CSelectorSet::~CSelectorSet() = default;
bool CSelectorSet::IsEmpty() {
    throw RUNTIME_EXCEPTION("CSelectorSet::IsEmpty is not implemented");
}
bool CSelectorSet::SetFirst() {
    throw RUNTIME_EXCEPTION("CSelectorSet::SetFirst is not implemented");
}
bool CSelectorSet::SetNext(bool) {
    throw RUNTIME_EXCEPTION("CSelectorSet::SetNext is not implemented");
}
void CSelectorSet::Restore() {
    throw RUNTIME_EXCEPTION("CSelectorSet::Restore is not implemented");
}
GENICAM_NAMESPACE::gcstring CSelectorSet::ToString() {
    throw RUNTIME_EXCEPTION("CSelectorSet::ToString is not implemented");
}

} // namespace GENAPI_NAMESPACE
