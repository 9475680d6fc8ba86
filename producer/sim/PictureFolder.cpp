#include "producer/sim/PictureFolder.h"

#include "producer/sim/Failure.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace zqgentl {

namespace {

namespace fs = std::filesystem;

bool IsPicture(const fs::path& path) {
    const std::string extension = path.extension().string();
    for (const char* known : {".png", ".pgm", ".ppm", ".tif", ".tiff"}) {
        if (extension == known)
            return true;
    }
    return false;
}

std::vector<fs::path> PicturesIn(const std::string& folder) {
    std::error_code error;
    std::vector<fs::path> paths;
    for (fs::directory_iterator next(folder, error); !error && next != fs::directory_iterator();
         next.increment(error)) {
        if (IsPicture(next->path()))
            paths.push_back(next->path());
    }
    if (error)
        throw Failure(GenTL::GC_ERR_INVALID_VALUE,
                      "the folder '" + folder + "' can't be read: " + error.message());
    if (paths.empty())
        throw Failure(GenTL::GC_ERR_INVALID_VALUE, "the folder '" + folder + "' has no pictures");
    std::sort(paths.begin(), paths.end());
    return paths;
}

/// Of a grey picture one colour is enough: it takes a third of the memory, and of the time to draw it.
void Simplify(PictureFile& picture) {
    picture.grey = picture.red == picture.green && picture.red == picture.blue;
    if (picture.grey) {
        picture.green = {};
        picture.blue = {};
    }
}

} // namespace

PictureFolder::PictureFolder(const std::string& path) : m_path(path) {
    size_t pixels = 0;
    for (const fs::path& file : PicturesIn(path)) {
        std::ifstream stream(file, std::ios::binary);
        const std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(stream),
                                         std::istreambuf_iterator<char>()};
        try {
            m_pictures.push_back(DecodePicture(bytes));
        } catch (const Failure& failure) {
            throw Failure(failure.Code(), file.filename().string() + ": " + failure.what());
        }
        Simplify(m_pictures.back());
        pixels += m_pictures.back().red.size();
        if (pixels > pixelsMax)
            throw Failure(GenTL::GC_ERR_INVALID_VALUE, "the pictures of the folder are too large");
    }
}

} // namespace zqgentl
