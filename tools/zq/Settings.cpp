#include "tools/zq/Settings.h"

#include "tools/zq/Failure.h"
#include "tools/zq/OutputFile.h"
#include "tools/zq/SettingsDiff.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>

namespace ZqTool {

namespace {

using namespace ZqApi;

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (!file)
        throw Failure("reading " + path, std::strerror(errno), "check the file's name");
    return text;
}

Held<IZqFeatureBagReleasable> BagOf(const std::string& text, const std::string& name) {
    Held<IZqFeatureBagReleasable> bag(CreateIZqFeatureBag());
    try {
        bag->StoreStringToBag(gcstring(text.c_str(), text.size()));
    } catch (const GenICam::GenericException& error) {
        throw Failure("reading the settings in " + name, error.GetDescription(),
                      "give a file that was written with: zq save");
    }
    return bag;
}

std::string TextOf(IZqFeatureBag& bag) {
    gcstring text;
    bag.SaveToString(text);
    return {text.c_str(), text.size()};
}

/// Of a file or a camera, without what is no setting.
std::string SettingsIn(const Library& library, const std::string& name, const Console& console) {
    std::error_code error;
    if (std::filesystem::exists(name, error))
        return TextOf(*BagOf(ReadFile(name), name));
    const Camera camera(library, {name, {}}, console);
    return SettingsOf(camera.Features(), camera.Id());
}

} // namespace

std::string SettingsOf(INodeMap& features, const std::string& device) {
    return Doing("reading the settings of " + device, [&] {
        const Held<IZqFeatureBagReleasable> bag(CreateIZqFeatureBag());
        bag->StoreNodeMapToBag(&features, -1);
        return TextOf(*bag);
    });
}

std::vector<std::string> ApplySettings(const std::string& text, const std::string& name, INodeMap& features,
                                       const std::string& device) {
    const auto bag = BagOf(text, name);
    return Doing("writing the settings of " + device, [&] {
        gcstring_vector errors;
        std::vector<std::string> refused;
        const bool all = bag->Load(&features, true, &errors);
        for (const auto& error : errors)
            refused.emplace_back(error.c_str());
        if (!all && refused.empty())
            refused.emplace_back("a setting of which the camera does not say more");
        return all ? std::vector<std::string>() : refused;
    });
}

int Save(const Library& library, const std::string& file, const CameraChoice& choice,
         const Console& console) {
    const Camera camera(library, choice, console);
    const std::string text = SettingsOf(camera.Features(), camera.Id());
    OutputFile output(file);
    output.Write(text);
    output.Close();
    console.out << camera.Id() << ": " << ParseSettings(text).size() << " settings saved to " << file << "\n";
    return Done;
}

int Load(const Library& library, const std::string& file, const CameraChoice& choice,
         const Console& console) {
    const std::string text = ReadFile(file);
    const Camera camera(library, choice, console);
    const auto refused = ApplySettings(text, file, camera.Features(), camera.Id());
    for (const auto& line : refused)
        console.out << line << "\n";
    if (!refused.empty())
        throw Failure("loading " + file + " into " + camera.Id(),
                      std::to_string(refused.size()) + " settings did not stick, listed above",
                      "see what the camera accepts with: zq features " + camera.Id());
    console.out << camera.Id() << ": " << ParseSettings(text).size() << " settings loaded from " << file
                << "\n";
    return Done;
}

int Diff(const Library& library, const std::string& left, const std::string& right, const Console& console) {
    const auto one = ParseSettings(SettingsIn(library, left, console));
    const auto other = ParseSettings(SettingsIn(library, right, console));
    const auto differences = CompareSettings(one, other);
    for (const auto& line : differences)
        console.out << line.name << "\t" << line.left << "\t" << line.right << "\n";
    return differences.empty() ? Done : Failed;
}

} // namespace ZqTool
