#include "tools/zq/Commands.h"

#include "tools/zq/Failure.h"
#include "tools/zq/Grab.h"
#include "tools/zq/List.h"

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

struct Command {
    const char* name;
    const char* help;
    Action (*add)(CLI::App& app);
};

constexpr Command commands[] = {
    {"list", "List the interfaces and cameras that the producers find", AddList},
    {"grab", "Acquire images from a camera", AddGrab},
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
