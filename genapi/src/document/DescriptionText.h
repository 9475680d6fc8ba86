#pragma once

#include <Base/GCTypes.h>

#include <string>
#include <string_view>

namespace GENAPI_NAMESPACE::inside {

/// No description is larger than this, packed or not.
constexpr size_t kMaxDescriptionSize = size_t{64} * 1024 * 1024;

/// The XML text in what a device handed out: unzipped when the bytes are a zip archive, whatever they were
/// announced as. RuntimeException when there is none or when it is larger than kMaxDescriptionSize.
///
/// What has to be made anew lies in `storage`; the rest is a part of `bytes`.
std::string_view UnpackDescription(std::string_view bytes, std::string& storage);

/// Cuts away what stands around the document and repairs text that is not UTF-8. `text` may lie in `storage`.
std::string_view CleanDescription(std::string_view text, std::string& storage);

} // namespace GENAPI_NAMESPACE::inside
