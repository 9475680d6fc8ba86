// The destructors of the interfaces live here, so that their type information is emitted once, in this
// library.
#include <GenApi/IBase.h>
#include <GenApi/IDestroy.h>
#include <GenApi/IDeviceInfo.h>
#include <GenApi/INodeMap.h>

namespace GENAPI_NAMESPACE {

IBase::~IBase() = default;
IDestroy::~IDestroy() = default;
IDeviceInfo::~IDeviceInfo() = default;
INodeMap::~INodeMap() = default;

} // namespace GENAPI_NAMESPACE
