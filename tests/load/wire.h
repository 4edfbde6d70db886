/**
 * @file
 * A client's connection to the host, from an address of this machine that the client chooses.
 */
#ifndef PENDRA_TESTS_LOAD_WIRE_H
#define PENDRA_TESTS_LOAD_WIRE_H

#include <cstdint>
#include <string>
#include <string_view>

namespace pendra::load {

struct Reply {
    int status = 0; /**< 0: the host closed without an answer */
    std::string head;
    std::string body;
};

class Wire {
  public:
    /** @param from one of 127.0.0.0/8; each of them is another client to the host. */
    Wire(uint16_t port, std::string from) : port_(port), from_(std::move(from)) {}
    Wire(Wire&& other) noexcept;
    Wire(const Wire&) = delete;
    Wire& operator=(const Wire&) = delete;
    ~Wire() { close(); }

    [[nodiscard]] const std::string& address() const { return from_; }

    /** Connects when it is not connected. @return whether all of it went out. */
    bool send(std::string_view text);
    /** Reads one answer. @param isHead it has no body, whatever its length says. */
    Reply receive(bool isHead = false);
    Reply exchange(const std::string& request) {
        return send(request) ? receive(request.starts_with("HEAD")) : Reply{};
    }
    void open();
    void close();

  private:
    bool readUntil(size_t length);
    bool readMore();

    uint16_t port_;
    std::string from_;
    int socket_ = -1;
    std::string received_;
};

/** A request as it goes over a connection. @param headers whole lines, with their ends. */
std::string httpRequest(std::string_view method, std::string_view path, std::string_view headers = "",
                        std::string_view body = "");

} // namespace pendra::load

#endif
