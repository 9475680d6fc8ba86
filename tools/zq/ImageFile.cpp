#include "tools/zq/ImageFile.h"

#include "tools/zq/Demosaic.h"
#include "tools/zq/Formats.h"
#include "tools/zq/OutputFile.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <iterator>

namespace ZqTool {

namespace {

using Json = nlohmann::ordered_json;

struct FormatRow {
    const char* word;
    FileFormat format;
    void (*write)(const Picture& picture, const std::filesystem::path& path); ///< null: the bytes as they are
};

// The first row of a format has the word that files are named with.
constexpr FormatRow rows[] = {
    {"png", FileFormat::Png, WritePng},   {"tiff", FileFormat::Tiff, WriteTiff},
    {"tif", FileFormat::Tiff, WriteTiff}, {"pgm", FileFormat::Pgm, WritePnm},
    {"ppm", FileFormat::Pgm, WritePnm},   {"raw", FileFormat::Raw, nullptr},
    {"npy", FileFormat::Npy, WriteNpy},
};

const FormatRow& RowOf(FileFormat format) {
    for (const auto& row : rows)
        if (row.format == format)
            return row;
    return rows[0];
}

void WriteRaw(const Frame& frame, const std::filesystem::path& path) {
    OutputFile file(path);
    file.Write(frame.bytes.data(), frame.size);
    file.Close();
}

std::string NameOf(ZqApi::EZqPixelFormatNamingConvention_t format) {
    return ZqApi::GetIZqPixelFormatInfo(format)->GetName().c_str();
}

void WriteBeside(Json document, const Frame& frame, std::filesystem::path path) {
    if (!frame.chunks.empty())
        document["chunks"] = Json::parse(frame.chunks);
    OutputFile file(path.replace_extension(".json"));
    file.Write(document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
    file.Close();
}

Json Describe(const Frame& frame) {
    return {{"pixel_format", NameOf(frame.format)}, {"width", frame.width}, {"height", frame.height}};
}

void WritePicture(const Picture& picture, const Frame& frame, const std::filesystem::path& path,
                  FileFormat format) {
    RowOf(format).write(picture, path);
    if (format != FileFormat::Npy && frame.chunks.empty())
        return;
    Json document = Describe(frame);
    document["bits"] = picture.bits;
    document["bayer_phase"] = picture.bayerPhase.empty() ? Json() : Json(picture.bayerPhase);
    WriteBeside(std::move(document), frame, path);
}

Picture PictureOf(const Frame& frame, const FileOptions& options) {
    return options.demosaic ? Demosaic(Unpack(frame)) : Unpack(frame);
}

} // namespace

std::optional<FileFormat> FileFormatOf(const std::string& word) {
    for (const auto& row : rows)
        if (word == row.word)
            return row.format;
    return std::nullopt;
}

void WriteImageFile(const Frame& frame, const std::filesystem::path& path, const FileOptions& options) {
    if (options.format != FileFormat::Raw) {
        WritePicture(PictureOf(frame, options), frame, path, options.format);
        return;
    }
    WriteRaw(frame, path);
    if (!frame.chunks.empty())
        WriteBeside(Describe(frame), frame, path);
}

void WriteNumberedFile(const Frame& frame, const std::filesystem::path& folder, const FileOptions& options) {
    char digits[32];
    std::snprintf(digits, sizeof digits, "%06llu", static_cast<unsigned long long>(frame.number));
    const std::string stem = digits;
    if (options.format == FileFormat::Raw) {
        WriteRaw(frame, folder / (stem + "_" + std::to_string(frame.width) + "x" +
                                  std::to_string(frame.height) + "_" + NameOf(frame.format) + ".raw"));
        if (!frame.chunks.empty())
            WriteBeside(Describe(frame), frame, folder / stem);
        return;
    }
    const Picture picture = PictureOf(frame, options);
    const char* word = RowOf(options.format).word;
    const bool colourPnm = options.format == FileFormat::Pgm && picture.channels > 1;
    WritePicture(picture, frame, folder / (stem + "." + (colourPnm ? "ppm" : word)), options.format);
}

} // namespace ZqTool
