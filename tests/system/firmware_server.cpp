#include "firmware_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>
#include <thread>

namespace pendra::test {

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

std::string firmwarePort() {
    const std::string address = kFirmwareServer;
    return address.substr(address.rfind(':') + 1);
}

class Address {
  public:
    Address() {
        address_.sin_family = AF_INET;
        address_.sin_port = htons(static_cast<uint16_t>(std::stoi(firmwarePort())));
        address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    }
    [[nodiscard]] const sockaddr* get() const {
        return static_cast<const sockaddr*>(static_cast<const void*>(&address_));
    }
    [[nodiscard]] static socklen_t size() { return sizeof(sockaddr_in); }

  private:
    sockaddr_in address_ = {};
};

bool isListening() {
    const Address address;
    const int probe = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool listening = ::connect(probe, address.get(), Address::size()) == 0;
    ::close(probe);
    return listening;
}

int openConnector() {
    const Address address;
    const int connector = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    static_cast<void>(::connect(connector, address.get(), Address::size())); // goes on in the background
    return connector;
}

} // namespace

FirmwareServer::FirmwareServer(const std::string& root, int rate)
    : process_({.command = {PENDRA_SOURCE "/platform/fwserver/serve", root, "--port", firmwarePort(), "--rate",
                            std::to_string(rate)}}) {
    const auto end = std::chrono::steady_clock::now() + seconds(10);
    while (process_.isRunning() && std::chrono::steady_clock::now() < end) {
        if (process_.errors().find("server started") != std::string::npos && isListening()) return;
        std::this_thread::sleep_for(milliseconds(10));
    }
    throw std::runtime_error("the firmware server does not listen: " + process_.errors());
}

void FirmwareServer::kill() {
    process_.signal(SIGKILL);
    process_.wait(seconds(10));
}

SilentServer::SilentServer(Connections connections) : listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const Address address;
    const int on = 1;
    ::setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    const int backlog = connections == Connections::ignored ? 0 : 16;
    if (::bind(listener_, address.get(), Address::size()) != 0 || ::listen(listener_, backlog) != 0) {
        throw std::runtime_error("the port of the firmware server is taken");
    }
    if (connections == Connections::taken) return;
    for (int& filler : fillers_) {
        filler = openConnector();
    }
    std::this_thread::sleep_for(milliseconds(100));
}

SilentServer::~SilentServer() {
    for (const int filler : fillers_) {
        if (filler >= 0) ::close(filler);
    }
    ::close(listener_);
}

} // namespace pendra::test
