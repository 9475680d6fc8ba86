#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

#include <unistd.h>

/// A file that no other run of the tests has, removed at the end.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& content)
        : m_path(testing::TempDir() + "genapi-" + std::to_string(getpid()) + ".xml") {
        std::ofstream(m_path, std::ios::binary) << content;
    }
    ~TemporaryFile() { std::remove(m_path.c_str()); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string& Path() const { return m_path; }

private:
    const std::string m_path;
};
