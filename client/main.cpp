/**
 * @file
 * zepctl: the setup client of Pendra devices for the command line.
 */
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <functional>

#include "client/commands.h"
#include "client/password_prompt.h"
#include "client/upgrade.h"
#include "client/variable_commands.h"

namespace {

using namespace pendra::client;

constexpr const char* kFooter =
    "Exit status:\n"
    "  0  done\n"
    "  1  refused by the device, or it holds no result\n"
    "  2  wrong usage\n"
    "  3  not admitted: wrong password\n"
    "  4  the device cannot be reached\n"
    "  5  the device answered unexpectedly\n"
    "  6  a file on this machine cannot be read, or it is out of memory\n"
    "  7  upgrade: there is no newer firmware\n"
    "  8  upgrade: the firmware list is malformed, or the device does not accept its addresses\n"
    "  9  upgrade: the firmware server cannot be reached from the device\n"
    " 10  upgrade: the download failed\n"
    " 11  upgrade: the device refused the image\n";

struct Options {
    std::string device = "http://127.0.0.1:8480";
    std::string password;
    SetupOptions setup;
    StationOptions stations;
    UpgradeOptions upgrade;
    VariableOptions variables;
};

using Command = std::function<ExitCode(DeviceClient&)>;

struct CommandLine {
    Options options;
    Command command;
    CLI::Option* password = nullptr;
    CLI::App app{"zepctl: sets up a Pendra device.", "zepctl"};

    void addCommand(const std::string& name, const std::string& help, const Command& work) {
        app.add_subcommand(name, help)->callback([this, work] { command = work; });
    }
    CLI::App& subcommand(const std::string& name) const { return *app.get_subcommand(name); }
};

void addGlobalOptions(CommandLine& line) {
    line.app.require_subcommand(1);
    line.app.fallthrough();
    line.app.footer(kFooter);
    line.app.set_version_flag("--version", "zepctl " PENDRA_VERSION);
    line.app.add_option("--device", line.options.device, "Address of the device")
        ->envname("ZEPCTL_DEVICE")
        ->capture_default_str();
    line.password = line.app
                        .add_option("--password", line.options.password,
                                    "Administrator password of the device; asked for when it is needed and not given. "
                                    "Other users of this machine may see the command line: prefer the environment")
                        ->envname("ZEPCTL_PASSWORD");
}

void addUpgrade(CommandLine& line) {
    UpgradeOptions& options = line.options.upgrade;
    line.addCommand("upgrade", "Search for newer firmware and install it",
                    [&](DeviceClient& device) { return runUpgrade(device, options); });
    CLI::App& upgrade = line.subcommand("upgrade");
    upgrade.add_flag("--check", options.checkOnly, "Only search, and show what was found");
    upgrade.add_flag("--yes", options.yes, "Install without being asked");
    upgrade.add_flag("--json", options.json, "Show the outcome as JSON");
    upgrade.add_flag("--no-wait", options.noWait, "Do not wait until the device has restarted");
}

void addCommands(CommandLine& line) {
    Options& options = line.options;
    line.addCommand("hello", "Show what the device says about itself", showHello);
    line.addCommand("login", "Check the password and be admitted", showLogin);
    line.addCommand("setup", "Post a setup document, wait, and show the result",
                    [&](DeviceClient& device) { return runSetup(device, options.setup); });
    line.addCommand("result", "Show the result of the last setup document", showResult);
    line.addCommand("stations", "List the wireless stations, or disconnect one",
                    [&](DeviceClient& device) { return runStations(device, options.stations); });

    addUpgrade(line);

    CLI::App& setup = line.subcommand("setup");
    setup.add_option("FILE", options.setup.file, "The document; - reads standard input")->required();
    setup.add_flag("--apcloning", options.setup.cloning, "The document is one for access-point cloning");
    setup.add_flag("--no-wait", options.setup.noWait, "Do not wait until the settings have taken effect");

    CLI::App& stations = line.subcommand("stations");
    CLI::Option* json = stations.add_flag("--json", options.stations.json, "List them as JSON");
    stations.add_option("--disconnect", options.stations.disconnect, "MAC of the station to disconnect")
        ->excludes(json);
}

void addVariableCommands(CommandLine& line) {
    VariableOptions& options = line.options.variables;
    const auto add = [&](const char* name, const char* help, ExitCode (*work)(DeviceClient&, const VariableOptions&)) {
        line.addCommand(name, help, [&options, work](DeviceClient& device) { return work(device, options); });
    };
    add("list", "Show every variable with its value", listVariables);
    add("get", "Show the values of variables", getVariables);
    add("set", "Set variables, wait until they take effect", setVariables);
    add("validate", "Check values and change nothing", validateVariables);
    add("path", "Show where in the device's configuration tree variables stand", showPaths);

    line.subcommand("list").add_flag("--json", options.json, "List them as JSON");
    for (const char* name : {"get", "path"}) {
        line.subcommand(name).add_option("NAME", options.names, "Names, like zep_DeviceName")->required();
    }
    for (const char* name : {"set", "validate"}) {
        line.subcommand(name).add_option("NAME=VALUE", options.assignments, "Names and their values")->required();
    }
    line.subcommand("set").add_flag("--no-wait", options.noWait, "Do not wait until the settings have taken effect");
}

// A password that was given is tried in any case: a wrong one must not go unnoticed just because this machine's address
// is still admitted.
ExitCode runCommand(const CommandLine& line) {
    using Login = DeviceClient::Login;
    const Options& options = line.options;
    const bool given = line.password->count() > 0;
    DeviceClient device(
        options.device, [&] { return given ? options.password : askPassword(); },
        given ? Login::always : Login::whenNeeded);
    return line.command(device);
}

int runProgram(int argc, const char* const* argv) {
    CommandLine line;
    addGlobalOptions(line);
    addCommands(line);
    addVariableCommands(line);
    try {
        line.app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return line.app.exit(error) == 0 ? kDone : kUsage;
    }
    return runCommand(line);
}

int end(int status, const char* line) {
    std::fprintf(stderr, "zepctl: %s\n", line);
    return status;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return runProgram(argc, argv);
    } catch (const Failure& failure) {
        return end(failure.code(), failure.what());
    } catch (const std::exception& fault) { // this machine is out of memory, for example
        return end(kUnreadable, fault.what());
    }
}
