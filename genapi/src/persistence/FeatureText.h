#pragma once

#include <GenApi/INode.h>

#include <Base/GCString.h>

namespace GENAPI_NAMESPACE::inside {

/// A feature's value as it is stored: whole numbers in plain decimal, floats so that they read back as the
/// same value, registers as hexadecimal bytes, the rest as ToString has it. Throws what reading throws.
GENICAM_NAMESPACE::gcstring StoredText(INode& feature, bool ignoreCache = false);

/// True when the feature's value, read now, is what the text says; floats within what single precision on the
/// way costs.
bool HoldsStoredText(INode& feature, const GENICAM_NAMESPACE::gcstring& text);

/// Throws what writing throws.
void SetFromText(INode& feature, const GENICAM_NAMESPACE::gcstring& text, bool verify);
/// The value that it had before, even one that is outside its limits now.
void PutBack(INode& feature, const GENICAM_NAMESPACE::gcstring& text);

} // namespace GENAPI_NAMESPACE::inside
