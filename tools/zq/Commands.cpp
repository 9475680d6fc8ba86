#include "tools/zq/Commands.h"

#include "tools/zq/Failure.h"
#include "tools/zq/Grab.h"
#include "tools/zq/Library.h"
#include "tools/zq/List.h"

#include <CLI/CLI.hpp>

#include <limits>
#include <ostream>

namespace ZqTool {

std::atomic<bool> interrupted{false};

namespace {

/// Lists and grabs are given as CLI11 sub-commands; what was asked for is run after parsing.
class CommandLine {
public:
    CommandLine() {
        m_app.require_subcommand(1);
        m_app.set_version_flag("--version", ZQ_TOOL_VERSION);
        AddList();
        AddGrab();
    }

    int Run(int argc, const char* const* argv, const Console& console) {
        try {
            m_app.parse(argc, argv);
        } catch (const CLI::ParseError& error) {
            return m_app.exit(error, console.out, console.err) == 0 ? Done : Usage;
        }
        const Library library;
        if (m_list->parsed())
            return List(library, m_json, console);
        return Grab(library, m_grabOptions, console);
    }

private:
    void AddList() {
        m_list = m_app.add_subcommand("list", "List the interfaces and cameras that the producers find");
        m_list->add_flag("--json", m_json, "Print JSON");
    }

    void AddGrab() {
        m_grab = m_app.add_subcommand("grab", "Acquire images from a camera");
        m_grab->add_option(
            "DEVICE", m_grabOptions.device,
            "Identifier, serial number or user-defined name; the first available one if left out");
        m_grab->add_option("-n,--count", m_grabOptions.frames, "How many frames")
            ->check(CLI::Range(uint64_t{1}, std::numeric_limits<uint64_t>::max() - 1))
            ->capture_default_str();
        m_grab->add_option("-o,--output", m_grabOptions.folder,
                           "Folder for the images; none are written without it");
        m_grab->add_option("--format", m_format, "Format of the image files")
            ->check(CLI::IsMember({"png", "raw"}))
            ->capture_default_str();
        m_grab->add_option("--timeout", m_grabOptions.timeoutMs, "How long to wait for a frame, in ms")
            ->check(CLI::Range(1U, 3600000U))
            ->capture_default_str();
        m_grab->callback(
            [this] { m_grabOptions.format = m_format == "raw" ? FileFormat::Raw : FileFormat::Png; });
    }

    CLI::App m_app{"Finds machine-vision cameras and acquires images from them", "zq"};
    CLI::App* m_list = nullptr;
    CLI::App* m_grab = nullptr;
    bool m_json = false;
    GrabOptions m_grabOptions;
    std::string m_format = "png";
};

} // namespace

int RunCommand(int argc, const char* const* argv, const Console& console) {
    try {
        return CommandLine().Run(argc, argv, console);
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
