#include "client/firmware_status.h"

#include "client/elements.h"

namespace pendra::client {

namespace {

constexpr int kMaxWaitSeconds = 3600;

} // namespace

std::optional<FirmwareStatus> parseFirmwareStatus(const std::string& xml) {
    const auto result = elementNumber(xml, "result");
    if (!result) return std::nullopt;
    const int waitSeconds = elementNumber(xml, "time").value_or(0);
    if (waitSeconds < 0 || waitSeconds > kMaxWaitSeconds) return std::nullopt;
    return FirmwareStatus{*result, waitSeconds};
}

} // namespace pendra::client
