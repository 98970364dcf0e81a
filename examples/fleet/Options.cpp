#include "Options.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>

namespace Fleet {

namespace {

// A list beside the program goes before the one it was built with.
std::string defaultList(const char* program)
{
    namespace fs = std::filesystem;
    const fs::path folder = fs::path(program).parent_path();
    std::error_code error;
    if (!folder.empty() && fs::exists(folder / "devices.csv", error))
    {
        return (folder / "devices.csv").string();
    }
#ifdef FLEET_DEVICES
    return FLEET_DEVICES;
#else
    return "devices.csv";
#endif
}

}  // namespace

std::optional<int> readOptions(int argc, char** argv, Options& options)
{
    CLI::App app("Polls the devices of a list over TCP and reports what they measure. Ctrl-C stops it.", "fleet");
    app.get_formatter()->column_width(28);
    options.devices = defaultList(argv[0]);
    unsigned int seconds = 0;
    bool simulate = false;
    bool noSimulate = false;
    app.add_option("--devices", options.devices,
                   "the list: id, address, port, period in milliseconds, user, password a line; # begins a comment")
        ->option_text("FILE");
    CLI::Option* const all = app.add_flag("--simulate", simulate, "plays all devices itself; by default those of port 0");
    app.add_flag("--no-simulate", noSimulate, "plays none")->excludes(all);
    app.add_option("--seconds", seconds, "stops after N seconds")->option_text("N")->check(CLI::Range(1U, 1000000000U));
    app.add_option("--format", options.format, "how times are written: y M d, H m s, h for 12 hours, t for AM or PM; others as they are")
        ->option_text("TEMPLATE")
        ->check(checkStampTemplate);
    app.add_option("--log", options.log,
                   "saves what is logged to files named STEM, date and number: a new one each day and at the size limit")
        ->option_text("STEM")
        ->check([](const std::string& stem) { return stem.empty() || stem.back() == '/' ? "the name of a file is missing" : ""; });
    app.add_option("--log-size", options.logSize, "the size limit of a log file in KiB (1024)")
        ->option_text("KIB")
        ->check(CLI::Range(1U, 2097151U));
    app.add_option("--log-files", options.logFiles, "how many log files are kept, 0 for all (10)")
        ->option_text("N")
        ->check(CLI::Range(0U, 2147483647U));
    app.add_option("--log-command", options.logCommands,
                   "runs a log command at the start; lines of standard input that begin with -log are run too")
        ->option_text("COMMAND")
        ->allow_extra_args(false)
        ->check([](const std::string& command) { return command.rfind("-log", 0) == 0 ? "" : "a log command begins with -log"; });
    app.add_flag("--dst-rehearsal", options.dstRehearsal, "prints what daylight saving does to this year, and ends");
    app.add_flag("--verbose", options.verbose, "logs at trace level");
    try
    {
        app.parse(argc, argv);
    }
    catch (const CLI::CallForHelp&)
    {
        std::cout << app.help();
        return 0;
    }
    catch (const CLI::ParseError& error)
    {
        std::cerr << "fleet: " << error.what() << "; --help tells more\n";
        return 2;
    }
    options.runTime = std::chrono::seconds(seconds);
    if (simulate || noSimulate)
    {
        options.simulate = simulate;
    }
    return std::nullopt;
}

}  // namespace Fleet
