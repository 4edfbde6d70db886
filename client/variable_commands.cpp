#include "client/variable_commands.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "client/progress_bar.h"

namespace pendra::client {

namespace {

using nlohmann::ordered_json;

// One answer stands alone, for scripts; several are told apart by their names.
template <typename Read>
ExitCode showEach(const std::vector<std::string>& names, Read read) {
    for (const std::string& name : names) {
        const std::string text = printable(read(name));
        if (names.size() == 1) {
            std::printf("%s\n", text.c_str());
        } else {
            std::printf("%s=%s\n", name.c_str(), text.c_str());
        }
    }
    return kDone;
}

void printVariables(const std::vector<Variable>& variables) {
    size_t width = 0;
    for (const Variable& variable : variables) {
        width = std::max(width, variable.name.size());
    }
    std::printf("%-*s  %-9s  %s\n", static_cast<int>(width), "Name", "", "Value");
    for (const Variable& variable : variables) {
        std::printf("%-*s  %-9s  %s\n", static_cast<int>(width), printable(variable.name).c_str(),
                    variable.settable ? "" : "read only", printable(variable.value).c_str());
    }
}

void printVariablesAsJson(const std::vector<Variable>& variables) {
    ordered_json list = ordered_json::array();
    for (const Variable& variable : variables) {
        list.push_back({{"name", variable.name}, {"value", variable.value}, {"settable", variable.settable}});
    }
    std::printf("%s\n", list.dump(2, ' ', false, ordered_json::error_handler_t::replace).c_str());
}

std::string refusalText(const Verdict& verdict) {
    return printable(verdict.name) + ": " + printable(verdict.words);
}

} // namespace

Assignments readAssignments(const std::vector<std::string>& texts) {
    Assignments assignments;
    for (const std::string& text : texts) {
        const size_t equals = text.find('=');
        if (equals == 0 || equals == std::string::npos) {
            throw Failure(kUsage, "\"" + printable(text) + "\" is not of the form NAME=VALUE.");
        }
        assignments.emplace_back(text.substr(0, equals), text.substr(equals + 1));
    }
    return assignments;
}

ExitCode getVariables(DeviceClient& device, const VariableOptions& options) {
    return showEach(options.names, [&](const std::string& name) { return device.variable(name); });
}

ExitCode showPaths(DeviceClient& device, const VariableOptions& options) {
    return showEach(options.names, [&](const std::string& name) { return device.variablePath(name); });
}

ExitCode setVariables(DeviceClient& device, const VariableOptions& options) {
    const Verdict verdict = device.set(readAssignments(options.assignments));
    if (verdict.code != 0) throw Failure(kRefused, "The device refused " + refusalText(verdict));
    std::printf("The device has applied the settings.\n");
    if (verdict.waitSeconds > 0 && !options.noWait) {
        std::fprintf(stderr, "The device needs %d seconds until its settings take effect.\n", verdict.waitSeconds);
        waitWithBar(verdict.waitSeconds);
    }
    return kDone;
}

ExitCode validateVariables(DeviceClient& device, const VariableOptions& options) {
    ExitCode outcome = kDone;
    for (const Verdict& verdict : device.validate(readAssignments(options.assignments))) {
        if (verdict.code != 0) outcome = kRefused;
        std::printf("%s: %s\n", printable(verdict.name).c_str(),
                    verdict.code == 0 ? "valid" : printable(verdict.words).c_str());
    }
    return outcome;
}

ExitCode listVariables(DeviceClient& device, const VariableOptions& options) {
    const std::vector<Variable> variables = device.variables();
    if (options.json) {
        printVariablesAsJson(variables);
    } else {
        printVariables(variables);
    }
    return kDone;
}

} // namespace pendra::client
