#pragma once

#include <GenApi/INodeMap.h>

#include <Base/GCStringVector.h>

namespace GENAPI_NAMESPACE::inside {

/// Appends what is to be stored of a node map, as names and values in the order in which they are to be
/// written again: the features marked as streamable that can be read and written now, in the order of the
/// category tree, then of the file. Where no node is marked, all features under "Root". Commands and texts
/// with line breaks are left out. A selected feature stands once for every value of its selectors, behind the
/// assignments that choose them; behind the last one the selectors are set back.
///
/// `maxEntries` ends the list early; negative: all.
void CollectFeatures(INodeMap& map, int64_t maxEntries, GENICAM_NAMESPACE::gcstring_vector& names,
                     GENICAM_NAMESPACE::gcstring_vector& values);

} // namespace GENAPI_NAMESPACE::inside
