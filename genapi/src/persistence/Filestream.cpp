#include <GenApi/Filestream.h>

namespace GENAPI_NAMESPACE {

IDevFileStream::IDevFileStream() : std::istream(nullptr) {}
IDevFileStream::~IDevFileStream() = default;
void IDevFileStream::open(INodeMap*, const char*, std::ios_base::openmode) {
    throw RUNTIME_EXCEPTION("IDevFileStream::open is not implemented");
}
bool IDevFileStream::is_open() const {
    return false;
}
void IDevFileStream::close() {}

ODevFileStream::ODevFileStream() : std::ostream(nullptr) {}
ODevFileStream::~ODevFileStream() = default;
void ODevFileStream::open(INodeMap*, const char*, std::ios_base::openmode) {
    throw RUNTIME_EXCEPTION("ODevFileStream::open is not implemented");
}
bool ODevFileStream::is_open() const {
    return false;
}
void ODevFileStream::close() {}

} // namespace GENAPI_NAMESPACE
