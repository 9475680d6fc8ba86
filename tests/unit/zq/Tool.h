#pragma once

#include "tests/support/ScriptedProducer.h"
#include "tools/zq/Commands.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

/// Runs command lines of the tool in this process.
struct Tool {
    int Run(std::vector<std::string> arguments, bool terminal = false) {
        arguments.insert(arguments.begin(), "zq");
        std::vector<const char*> argv;
        for (const auto& argument : arguments)
            argv.push_back(argument.c_str());
        out.str("");
        err.str("");
        return ZqTool::RunCommand(static_cast<int>(argv.size()), argv.data(), {out, err, terminal});
    }

    std::ostringstream out;
    std::ostringstream err;
};

/// A folder of its own, gone with the test.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "zq-test-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("no temporary folder");
        m_path = name;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() { std::filesystem::remove_all(m_path); }

    [[nodiscard]] const std::filesystem::path& Path() const { return m_path; }
    [[nodiscard]] std::string File(const std::string& name) const { return (m_path / name).string(); }

    [[nodiscard]] std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_path))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    std::filesystem::path m_path;
};
