#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

/// An image file as other programs see it.
struct Decoded {
    size_t width = 0;
    size_t height = 0;
    size_t channels = 0;
    unsigned maximum = 0; ///< the greatest value that a sample may have
    unsigned significantBits = 0;
    std::map<std::string, std::string> texts;
    std::vector<unsigned> samples;
};

/// Read by libpng; texts by their keywords.
Decoded ReadPng(const std::filesystem::path& path);
/// Read by libtiff; the description is the text "ImageDescription".
Decoded ReadTiff(const std::filesystem::path& path);
/// Read by hand; the comment is the text "comment".
Decoded ReadPnm(const std::filesystem::path& path);
/// Read by hand.
Decoded ReadNpy(const std::filesystem::path& path);

std::string ReadBytes(const std::filesystem::path& path);
