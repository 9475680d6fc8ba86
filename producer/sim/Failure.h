#pragma once

#include "gentl/GenTL.h"

#include <stdexcept>
#include <string>

namespace zqgentl {

/// Thrown by every part of the producer; the entry point turns it into the result code and keeps the text for
/// GCGetLastError. The text says what was wrong with which value, not which function was called.
class Failure : public std::runtime_error {
public:
    Failure(GenTL::GC_ERROR code, const std::string& text) : std::runtime_error(text), m_code(code) {}

    [[nodiscard]] GenTL::GC_ERROR Code() const noexcept { return m_code; }

private:
    GenTL::GC_ERROR m_code;
};

} // namespace zqgentl
