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
    "  6  a file on this machine cannot be read, or it is out of memory\n";

struct Options {
    std::string device = "http://127.0.0.1:8480";
    std::string password;
    SetupOptions setup;
    StationOptions stations;
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
    CLI::App& subcommand(const std::string& name) { return *app.get_subcommand(name); }
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

void addCommands(CommandLine& line) {
    Options& options = line.options;
    line.addCommand("hello", "Show what the device says about itself", showHello);
    line.addCommand("login", "Check the password and be admitted", showLogin);
    line.addCommand("setup", "Post a setup document, wait, and show the result",
                    [&](DeviceClient& device) { return runSetup(device, options.setup); });
    line.addCommand("result", "Show the result of the last setup document", showResult);
    line.addCommand("stations", "List the wireless stations, or disconnect one",
                    [&](DeviceClient& device) { return runStations(device, options.stations); });

    CLI::App& setup = line.subcommand("setup");
    setup.add_option("FILE", options.setup.file, "The document; - reads standard input")->required();
    setup.add_flag("--apcloning", options.setup.cloning, "The document is one for access-point cloning");
    setup.add_flag("--no-wait", options.setup.noWait, "Do not wait until the settings have taken effect");

    CLI::App& stations = line.subcommand("stations");
    CLI::Option* json = stations.add_flag("--json", options.stations.json, "List them as JSON");
    stations.add_option("--disconnect", options.stations.disconnect, "MAC of the station to disconnect")
        ->excludes(json);
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
