#include "tools/zq/Commands.h"

#include "tools/zq/Chart.h"
#include "tools/zq/Events.h"
#include "tools/zq/Failure.h"
#include "tools/zq/FeatureTree.h"
#include "tools/zq/Grab.h"
#include "tools/zq/List.h"
#include "tools/zq/Settings.h"

#include <CLI/CLI.hpp>

#include <functional>
#include <limits>
#include <memory>
#include <ostream>

namespace ZqTool {

std::atomic<bool> interrupted{false};

namespace {

/// What is run once the arguments are read.
using Action = std::function<int(const Library&, const Console&)>;

constexpr uint64_t maxCount = std::numeric_limits<uint64_t>::max() - 1;
constexpr uint32_t maxTimeoutMs = 3600000;

void AddSettings(CLI::App& app, std::vector<std::string>& settings) {
    app.add_option("--set", settings, "Set this feature first, as NAME=VALUE; may be repeated")
        ->allow_extra_args(false)
        ->check(CLI::Validator([](std::string& text) { return text.find('=') == text.npos ? "no '='" : ""; },
                               "NAME=VALUE"));
}

CLI::Option* AddCamera(CLI::App& app, CameraChoice& camera) {
    return app.add_option("DEVICE", camera.name, "Identifier, serial number or user-defined name")
        ->required();
}

Action AddList(CLI::App& app) {
    const auto json = std::make_shared<bool>(false);
    app.add_flag("--json", *json, "Print JSON");
    return [json](const auto& library, const auto& console) { return List(library, *json, console); };
}

Action AddGrab(CLI::App& app) {
    const auto options = std::make_shared<GrabOptions>();
    AddCamera(app, options->camera)
        ->required(false)
        ->description("Identifier, serial number or user-defined name; the first available one if left out");
    app.add_option("-n,--count", options->frames, "How many frames")
        ->check(CLI::Range(uint64_t{1}, maxCount))
        ->capture_default_str();
    app.add_option("-o,--output", options->folder, "Folder for the images; none are written without it");
    const auto format = std::make_shared<std::string>("png");
    app.add_option("--format", *format, "Format of the image files")
        ->check(CLI::IsMember({"png", "tiff", "pgm", "raw", "npy"}))
        ->capture_default_str();
    app.add_flag("--demosaic", options->files.demosaic, "Make colour pictures of Bayer mosaics");
    app.add_flag("--chunks", options->chunks,
                 "Have the camera send chunks, and write them beside the pictures");
    app.add_option("--timeout", options->timeoutMs, "How long to wait for a frame, in ms")
        ->check(CLI::Range(1U, maxTimeoutMs))
        ->capture_default_str();
    AddSettings(app, options->camera.settings);
    app.callback([options, format] {
        options->files.format = *FileFormatOf(*format);
        if (options->files.demosaic && options->files.format == FileFormat::Raw)
            throw CLI::ValidationError("--demosaic", "raw files hold what the camera sent");
    });
    return [options](const auto& library, const auto& console) { return Grab(library, *options, console); };
}

Action AddFeatures(CLI::App& app) {
    const auto options = std::make_shared<FeatureTreeOptions>();
    AddCamera(app, options->camera);
    app.add_flag("--all", options->all, "Also invisible features and those that are not available now");
    app.add_flag("--json", options->json, "Print JSON");
    AddSettings(app, options->camera.settings);
    return [options](const auto& library, const auto& console) {
        return PrintFeatures(library, *options, console);
    };
}

struct FeatureArguments {
    CameraChoice camera;
    std::string feature;
    std::string value;
};

Action AddGet(CLI::App& app) {
    const auto arguments = std::make_shared<FeatureArguments>();
    AddCamera(app, arguments->camera);
    app.add_option("FEATURE", arguments->feature, "Name of the feature")->required();
    AddSettings(app, arguments->camera.settings);
    return [arguments](const auto& library, const auto& console) {
        return PrintFeature(library, arguments->camera, arguments->feature, console);
    };
}

Action AddSet(CLI::App& app) {
    const auto arguments = std::make_shared<FeatureArguments>();
    AddCamera(app, arguments->camera);
    app.add_option("FEATURE", arguments->feature, "Name of the feature")->required();
    app.add_option("VALUE", arguments->value, "The value; any, for a command to be executed")->required();
    return [arguments](const auto& library, const auto& console) {
        return ChangeFeature(library, arguments->camera, arguments->feature, arguments->value, console);
    };
}

struct SettingsArguments {
    CameraChoice camera;
    std::string file;
};

template <int (*Command)(const Library&, const std::string&, const CameraChoice&, const Console&)>
Action AddSettingsFile(CLI::App& app) {
    const auto arguments = std::make_shared<SettingsArguments>();
    app.add_option("FILE", arguments->file, "File of settings")->required();
    AddCamera(app, arguments->camera);
    AddSettings(app, arguments->camera.settings);
    return [arguments](const auto& library, const auto& console) {
        return Command(library, arguments->file, arguments->camera, console);
    };
}

Action AddDiff(CLI::App& app) {
    const auto sides = std::make_shared<std::pair<std::string, std::string>>();
    app.add_option("A", sides->first, "A file of settings or a camera")->required();
    app.add_option("B", sides->second, "A file of settings or a camera")->required();
    return [sides](const auto& library, const auto& console) {
        return Diff(library, sides->first, sides->second, console);
    };
}

Action AddChart(CLI::App& app) {
    const auto options = std::make_shared<ChartOptions>();
    const auto size = std::make_shared<std::string>();
    app.add_option("FORMAT", options->pixelFormat, "Pixel format, such as Mono8")->required();
    app.add_option("SIZE", *size, "Width x height, such as 640x480")->required();
    app.add_option("-o,--output", options->file, "The file; its ending says the format")->required();
    app.callback([options, size] {
        constexpr int maxSide = 65535;
        int width = 0;
        int height = 0;
        char rest = 0;
        if (std::sscanf(size->c_str(), "%dx%d%c", &width, &height, &rest) != 2 || width < 1 || height < 1 ||
            width > maxSide || height > maxSide)
            throw CLI::ValidationError("SIZE", "a size such as 640x480, up to 65535x65535");
        options->width = static_cast<size_t>(width);
        options->height = static_cast<size_t>(height);
    });
    return [options](const auto& library, const auto& console) { return Chart(library, *options, console); };
}

Action AddEvents(CLI::App& app) {
    const auto options = std::make_shared<EventOptions>();
    AddCamera(app, options->camera);
    app.add_option("NAME", options->names, "Events such as FrameStart; all if left out");
    app.add_flag("--jsonl", options->jsonLines, "Print one JSON object a line");
    app.add_option("-n,--count", options->count, "End after that many events")
        ->check(CLI::Range(uint64_t{1}, maxCount));
    app.add_option("--timeout", options->timeoutMs, "How long to wait for an event, in ms")
        ->check(CLI::Range(1U, maxTimeoutMs));
    app.add_flag("--acquire", options->acquire, "Have the camera acquire meanwhile; the frames are dropped");
    app.add_option("--execute", options->execute,
                   "Execute this command once the events are on; may be repeated")
        ->allow_extra_args(false);
    AddSettings(app, options->camera.settings);
    return [options](const auto& library, const auto& console) { return Events(library, *options, console); };
}

struct Command {
    const char* name;
    const char* help;
    Action (*add)(CLI::App& app);
};

constexpr Command commands[] = {
    {"list", "List the interfaces and cameras that the producers find", AddList},
    {"grab", "Acquire images from a camera", AddGrab},
    {"features", "Print a camera's features", AddFeatures},
    {"get", "Print a feature's value", AddGet},
    {"set", "Set a feature's value", AddSet},
    {"save", "Write a camera's settings into a file", AddSettingsFile<Save>},
    {"load", "Write the settings of a file into a camera", AddSettingsFile<Load>},
    {"diff", "Compare the settings of files and cameras", AddDiff},
    {"events", "Print a camera's events as they come", AddEvents},
    {"chart", "Write a test chart into an image file", AddChart},
};

int ParseAndRun(int argc, const char* const* argv, const Console& console) {
    CLI::App app{"Finds machine-vision cameras, sets them up and acquires images from them", "zq"};
    app.require_subcommand(1);
    app.set_version_flag("--version", ZQ_TOOL_VERSION);
    std::vector<std::pair<CLI::App*, Action>> actions;
    for (const auto& command : commands) {
        CLI::App* added = app.add_subcommand(command.name, command.help);
        actions.emplace_back(added, command.add(*added));
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error, console.out, console.err) == 0 ? Done : Usage;
    }
    const Library library;
    for (const auto& [added, action] : actions)
        if (added->parsed())
            return action(library, console);
    return Usage;
}

} // namespace

int RunCommand(int argc, const char* const* argv, const Console& console) {
    try {
        return ParseAndRun(argc, argv, console);
    } catch (const Failure& failure) {
        failure.Print(console.err);
        return failure.exitCode;
    } catch (const GenICam::GenericException& error) {
        Failure::Of("running the command", error).Print(console.err);
        return Failed;
    } catch (const std::exception& error) {
        Failure("running the command", error.what(), "report this").Print(console.err);
        return Failed;
    }
}

} // namespace ZqTool
