#pragma once

#include "genapi/src/description/Description.h"
#include "genapi/src/document/DocumentWriter.h"

#include <functional>

namespace GENAPI_NAMESPACE::inside {

/// A description and the size of its image, which begins with it.
struct DescriptionImage {
    std::shared_ptr<const Description> description;
    size_t size = 0;
};

/// Lays out a description: `write` writes its document, the rest follows from that. `write` runs again when
/// the image has turned out larger than thought; `textSize` says what to expect.
DescriptionImage BuildImage(size_t textSize, const std::function<void(DocumentWriter&)>& write);

/// The description at the beginning of an image; the memory lives as long as it.
std::shared_ptr<const Description> DescriptionIn(Memory image);

} // namespace GENAPI_NAMESPACE::inside
