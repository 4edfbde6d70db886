/**
 * @file
 * Every kind of request that the host gets, each with the answer that it has to give.
 */
#ifndef PENDRA_TESTS_LOAD_REQUESTS_H
#define PENDRA_TESTS_LOAD_REQUESTS_H

#include <string>
#include <vector>

#include "changes.h"
#include "wire.h"

namespace pendra::load {

/** One client that sends requests of all kinds. */
class Caller {
  public:
    /** @param number tells the callers apart: each has addresses and a random course of its own. */
    Caller(uint16_t port, unsigned number, const std::string& password, Model& model);

    /** Logs in; every other request depends on it. */
    void login();
    /** Sends one request of a kind chosen at random. */
    void call();

    /** Expects the answer to a request. */
    void expect(const std::string& request, int status, const std::string& content = "");
    /** Expects the answer to a text on a connection of its own, which is closed then. */
    void expectAlone(const std::string& text, int status);
    /** Sends a text on a connection of its own and goes away. */
    void abandon(const std::string& text);
    void expectOfStranger(const std::string& request, int status);
    void make(const Change& change);
    void pipeline();
    void loginAnew(const char* field);
    void logout();

    [[nodiscard]] Random& random() { return random_; }
    [[nodiscard]] size_t requests() const { return requests_; }
    /** What was not as it should be. */
    [[nodiscard]] const std::vector<std::string>& faults() const { return faults_; }

  private:
    void check(const std::string& request, const Reply& reply, int status, const std::string& content);
    [[nodiscard]] std::string key();

    Wire wire_;
    Wire stranger_;
    Wire alone_;
    std::string password_;
    Model& model_;
    Random random_;
    std::string slot_;
    std::string key_;
    size_t requests_ = 0;
    std::vector<std::string> faults_;
};

/** @return how many kinds there are. */
size_t requestKinds();

} // namespace pendra::load

#endif
