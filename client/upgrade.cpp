#include "client/upgrade.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <nlohmann/json.hpp>
#include <thread>

#include "client/download_bar.h"
#include "client/progress_bar.h"

namespace pendra::client {

namespace {

using nlohmann::ordered_json;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr auto kPollInterval = milliseconds(500);
constexpr auto kNotesInterval = milliseconds(200);
constexpr int kNotesPolls = 15;

// The device gives a silent server up much earlier.
constexpr auto kStallLimit = seconds(60);

// The device writes its flash three seconds after the image has been handed over.
constexpr auto kHandOverLimit = seconds(30);

// ---- search ----

[[noreturn]] void failSearch(const FirmwareStatus& status, const FirmwareState& state) {
    // A fetch that got no answer may leave an empty document behind instead of none.
    const bool fetched = status.result != kFwListNotFetched && state.listBytes > 0;
    if (!fetched) throw Failure(kServerUnreachable, "The device could not fetch the firmware list from its server.");
    throw Failure(kListMalformed, "The firmware list that the device has fetched is malformed.");
}

/** @return whether there is newer firmware; then @p image is its file name. */
bool search(DeviceClient& device, std::string& image) {
    device.firmwareAction('0');
    const FirmwareStatus status = device.firmwareAction('1');
    if (status.result == kFwNoneFound) return false;
    const FirmwareState state = device.firmwareState();
    if (status.result != kFwFound) failSearch(status, state);
    if (state.image.empty()) {
        throw Failure(kListMalformed, "The firmware list holds an address that the device does not accept.");
    }
    image = state.image;
    return true;
}

// The device fetches them in the background: they are complete when they have stopped growing.
std::string releaseNotes(DeviceClient& device) {
    std::string before;
    for (int polls = 0; polls < kNotesPolls; ++polls) {
        const std::string notes = device.releaseNotes();
        if (!notes.empty() && notes == before) break;
        before = notes;
        std::this_thread::sleep_for(kNotesInterval);
    }
    return before;
}

void showFound(const std::string& image, const std::string& notes) {
    std::printf("Found %s.\n", printable(image).c_str());
    std::string_view rest = notes;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        std::printf("  %s\n", printable(std::string(line)).c_str());
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    }
    std::fflush(stdout);
}

bool confirmed(const std::string& image) {
    std::fprintf(stderr, "Install %s now? [y/N] ", printable(image).c_str());
    std::string answer;
    std::getline(std::cin, answer);
    return answer == "y" || answer == "Y" || answer == "yes";
}

// ---- download ----

[[noreturn]] void failDownload(const FirmwareState& state) {
    const std::string bytes = std::to_string(state.bytes);
    throw Failure(kDownloadFailed, state.total ? "The download ended early, with " + bytes + " of " +
                                                     std::to_string(*state.total) + " bytes."
                                               : "The download failed, with " + bytes + " bytes.");
}

bool isComplete(const FirmwareState& state) {
    return state.bytes > 0 && state.bytes == state.total.value_or(state.bytes);
}

/** Notices a download that no longer grows. */
class StallWatch {
  public:
    void look(int64_t bytes) {
        const auto now = Clock::now();
        if (bytes != bytes_) {
            bytes_ = bytes;
            since_ = now;
        }
        if (now - since_ < kStallLimit) return;
        throw Failure(kDownloadFailed, "The download stands still at " + std::to_string(bytes) + " bytes.");
    }

  private:
    int64_t bytes_ = -1;
    Clock::time_point since_ = Clock::now();
};

void download(DeviceClient& device) {
    FirmwareStatus status = device.firmwareAction('2');
    DownloadBar progress;
    StallWatch watch;
    while (status.result == kFwDownloading) {
        const FirmwareState state = device.firmwareState();
        progress.show(state.bytes, state.total);
        watch.look(state.bytes);
        std::this_thread::sleep_for(kPollInterval);
        status = device.firmwareAction('9');
    }
    if (status.result != kFwDownloaded) throw Failure(kRefused, "Somebody else has started the upgrade over.");
    const FirmwareState state = device.firmwareState();
    progress.end(state.bytes, state.total);
    if (!isComplete(state)) failDownload(state);
}

// ---- installation ----

// A device that restarts at once does not answer any more; then the announced time says it all.
std::optional<FirmwareState> stateIfReachable(DeviceClient& device) {
    try {
        return device.firmwareState();
    } catch (const Failure& failure) {
        if (failure.code() != kUnreachable) throw;
        return std::nullopt;
    }
}

void awaitHandOver(DeviceClient& device) {
    const auto end = Clock::now() + kHandOverLimit;
    while (Clock::now() < end) {
        const auto state = stateIfReachable(device);
        if (!state) return;
        if (state->upgrade == "refused") {
            throw Failure(kImageRefused, "The device refused the image: " + printable(state->reason));
        }
        if (state->upgrade != "announced") return;
        std::this_thread::sleep_for(kPollInterval);
    }
}

void install(DeviceClient& device, bool noWait) {
    const FirmwareStatus status = device.firmwareAction('4');
    if (status.result != kFwStarted) throw Failure(kImageRefused, "The device did not take the image over.");
    const auto start = Clock::now();
    std::fprintf(stderr, "The device writes its flash and restarts, which takes %d seconds. Leave it switched on.\n",
                 status.waitSeconds);
    awaitHandOver(device);
    if (noWait) return;
    const auto passed = std::chrono::duration_cast<seconds>(Clock::now() - start);
    waitWithBar(status.waitSeconds - static_cast<int>(passed.count()));
}

void printJson(const ordered_json& outcome) {
    std::printf("%s\n", outcome.dump(2, ' ', false, ordered_json::error_handler_t::replace).c_str());
}

ExitCode noneFound(const UpgradeOptions& options) {
    if (options.json) {
        printJson({{"found", false}});
    } else {
        std::printf("There is no newer firmware for this device.\n");
    }
    return kNoFirmware;
}

} // namespace

ExitCode runUpgrade(DeviceClient& device, const UpgradeOptions& options) {
    const bool asks = !options.yes && !options.checkOnly;
    if (asks && isatty(STDIN_FILENO) != 1) throw Failure(kUsage, "Nobody can be asked here: give --yes or --check.");
    std::string image;
    if (!search(device, image)) return noneFound(options);
    const std::string notes = releaseNotes(device);
    if (!options.json || asks) showFound(image, notes);
    const bool installs = !options.checkOnly && (!asks || confirmed(image));
    if (installs) {
        download(device);
        install(device, options.noWait);
    }
    if (options.json) {
        printJson({{"found", true}, {"image", image}, {"notes", notes}, {"installed", installs}});
    } else if (!options.checkOnly) {
        std::printf("%s was %s.\n", printable(image).c_str(), installs ? "installed" : "not installed");
    }
    return kDone;
}

} // namespace pendra::client
