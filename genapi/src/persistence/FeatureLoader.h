#pragma once

#include <GenApi/INodeMap.h>

#include <Base/GCStringVector.h>

namespace GENAPI_NAMESPACE::inside {

/// Writes names and values into a node map in order. What fails is tried again, with its selectors as they
/// were, for as long as anything more succeeds: limits depend on each other. With `verify`, values are
/// checked against access and limits while they are written and read back when all are. Returns a line for
/// each final failure; selectors that the list does not assign are as they were.
GENICAM_NAMESPACE::gcstring_vector LoadFeatures(INodeMap& map,
                                                const GENICAM_NAMESPACE::gcstring_vector& names,
                                                const GENICAM_NAMESPACE::gcstring_vector& values,
                                                bool verify);

} // namespace GENAPI_NAMESPACE::inside
