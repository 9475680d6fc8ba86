#pragma once

#include <Base/GCStringVector.h>
#include <GenApi/Types.h>

namespace GENAPI_NAMESPACE {

struct INodeMap;

/// Appends a line "node: reason" for all that is wrong with the description of a node map that a
/// CNodeMapFactory made: nodes that could not be built and are not implemented, formulas that can't be
/// compiled or use what nobody declares, references to nodes that do not exist, nodes whose name was taken.
/// No line when all is well. A library of another make does not have this. Any thread.
/// InvalidArgumentException for null and for foreign maps.
GENAPI_API void GetDiagnostics(INodeMap* pNodeMap, GENICAM_NAMESPACE::gcstring_vector& Diagnostics);

} // namespace GENAPI_NAMESPACE
