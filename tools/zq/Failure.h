#pragma once

#include "tools/zq/Commands.h"

#include <ZqApi/ZqApi.h>

#include <exception>
#include <iosfwd>
#include <string>
#include <utility>

namespace ZqTool {

/// What a command ends with when it can't go on: three short lines for stderr and the exit code.
class Failure : public std::exception {
public:
    /// `doing` is what failed and on what: "opening CAM1".
    Failure(std::string doing, std::string why, std::string advice, ExitCode code = Failed)
        : exitCode(code), m_doing(std::move(doing)), m_why(std::move(why)), m_advice(std::move(advice)) {}

    static Failure Of(const std::string& doing, const GenICam::GenericException& error);

    [[nodiscard]] const char* what() const noexcept override { return m_why.c_str(); }
    void Print(std::ostream& err) const;

    const ExitCode exitCode;

private:
    std::string m_doing;
    std::string m_why;
    std::string m_advice;
};

/// Runs one step; what the library throws in it becomes a Failure that names the step.
template <class Step>
auto Doing(const std::string& what, Step step) {
    try {
        return step();
    } catch (const GenICam::GenericException& error) {
        throw Failure::Of(what, error);
    }
}

} // namespace ZqTool
