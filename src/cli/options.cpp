#include "cli/options.h"

#include <CLI/CLI.hpp>
#include <sstream>

namespace clipfix::cli {

namespace {

constexpr const char* kFooter =
    "\nExit status:\n"
    "  0    repaired, or answered\n"
    "  1    nothing could be recovered\n"
    "  2    wrong use of the command line\n"
    "  3    a healthy reference is needed\n"
    "  4    the reference cannot serve\n"
    "  5    a file or the disk failed (cannot open, no space, cannot write)\n"
    "  130  cancelled by Ctrl-C\n";

CLI::App* AddRepair(CLI::App& app, RepairOptions& options) {
    auto* command = app.add_subcommand("repair", "Repair a damaged video file");
    command
        ->add_option("DAMAGED", options.damaged,
                     "The damaged file: .mov, .mp4, .avi, .divx or .xvid; it is only read")
        ->required();
    command->add_option("-r,--reference", options.reference,
                        "A healthy recording from the same device, for .mov and .mp4");
    command->add_option("-o,--output", options.output,
                        "The repaired file; by default <name>_repaired.mov or .avi beside the "
                        "damaged one");
    command->add_flag("-f,--force", options.force, "Replace the output where it exists");
    command->add_flag("--json", options.json, "Print one JSON object instead of text");
    command->add_flag("-q,--quiet", options.quiet, "No progress and no report");
    command->add_flag("--trace", options.trace, "With --json: list every percent shown");
    return command;
}

CLI::App* AddCheck(CLI::App& app, CheckOptions& options) {
    auto* command = app.add_subcommand(
        "check", "Tell whether a file can serve as a reference, and what is in it");
    command->add_option("FILE", options.file, "A .mov or .mp4 file")->required();
    command->add_flag("--json", options.json, "Print one JSON object instead of text");
    return command;
}

CLI::App* AddScan(CLI::App& app, ScanOptions& options) {
    auto* command = app.add_subcommand(
        "scan", "List what stands in a damaged file, chunk by chunk, and write nothing");
    command->add_option("DAMAGED", options.damaged, "The damaged file; it is only read")
        ->required();
    command->add_option("-r,--reference", options.reference,
                        "A healthy recording from the same device, for .mov and .mp4");
    command->add_flag("--json", options.json, "Print one JSON object instead of text");
    return command;
}

CLI::App* AddGui(CLI::App& app, GuiOptions& options) {
    auto* command = app.add_subcommand("gui", "Open the window");
    command->add_option("FILE", options.file, "A damaged file to begin with");
    return command;
}

Answered WrongUse(const std::string& why, const CLI::App& app) {
    std::string text = "clipfix: " + why + "\n";
    const auto chosen = app.get_subcommands();
    const std::string command = chosen.empty() ? "" : " " + chosen.front()->get_name();
    return {text + "Try 'clipfix help" + command + "'.\n", true};
}

}  // namespace

Options ParseCommandLine(int argumentCount, const char* const* arguments) {
    RepairOptions repairOptions;
    CheckOptions checkOptions;
    ScanOptions scanOptions;
    GuiOptions guiOptions;
    std::string helpTopic;

    CLI::App app{"Repairs damaged video files. The damaged file is never written to."};
    app.name("clipfix");
    app.set_version_flag("--version", "clipfix " CLIPFIX_VERSION);
    app.footer(kFooter);
    app.require_subcommand(0, 1);
    const auto* repair = AddRepair(app, repairOptions);
    const auto* check = AddCheck(app, checkOptions);
    const auto* scan = AddScan(app, scanOptions);
    const auto* gui = AddGui(app, guiOptions);
    auto* help = app.add_subcommand("help", "Explain a command");
    help->add_option("COMMAND", helpTopic, "The command to explain");

    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::CallForHelp&) {
        const auto chosen = app.get_subcommands();
        return Answered{chosen.empty() ? app.help() : chosen.front()->help("clipfix"), false};
    } catch (const CLI::CallForVersion&) {
        return Answered{"clipfix " CLIPFIX_VERSION "\n", false};
    } catch (const CLI::ParseError& error) {
        return WrongUse(error.what(), app);
    }
    if (help->parsed()) {
        if (helpTopic.empty()) {
            return Answered{app.help(), false};
        }
        for (const auto* topic : app.get_subcommands([](const CLI::App*) { return true; })) {
            if (topic->get_name() == helpTopic) {
                return Answered{topic->help("clipfix"), false};
            }
        }
        return WrongUse("there is no command '" + helpTopic + "'", app);
    }
    if (repair->parsed()) {
        return repairOptions;
    }
    if (check->parsed()) {
        return checkOptions;
    }
    if (scan->parsed()) {
        return scanOptions;
    }
    if (gui->parsed()) {
        return guiOptions;
    }
    return Answered{app.help(), true};
}

}  // namespace clipfix::cli
