#pragma once

#include "producer/sim/PictureFile.h"

#include <memory>
#include <string>
#include <vector>

namespace zqgentl {

/// The pictures of a folder, in the order of their names. Never changes, so any thread may use it.
class PictureFolder {
public:
    /// Reads every file that ends with .png, .pgm, .ppm, .tif or .tiff. Throws Failure, GC_ERR_INVALID_VALUE,
    /// when the folder can't be read, has no such file or more than pixelsMax pixels, or when one of them
    /// can't be read.
    explicit PictureFolder(const std::string& path);

    [[nodiscard]] const std::string& Path() const noexcept { return m_path; }
    [[nodiscard]] size_t Count() const noexcept { return m_pictures.size(); }
    /// The picture that a frame shows: one after the other, over and over.
    [[nodiscard]] const PictureFile& Of(uint64_t frameId) const {
        return m_pictures[frameId % m_pictures.size()];
    }

    static constexpr size_t pixelsMax = size_t{1} << 28;

private:
    std::string m_path;
    std::vector<PictureFile> m_pictures;
};

using Pictures = std::shared_ptr<const PictureFolder>;

} // namespace zqgentl
