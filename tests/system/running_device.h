/**
 * @file
 * The fixture of the system tests: a device, its host, and what a client does with it.
 */
#ifndef PENDRA_TESTS_SYSTEM_RUNNING_DEVICE_H
#define PENDRA_TESTS_SYSTEM_RUNNING_DEVICE_H

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "clients.h"
#include "device_files.h"
#include "device_process.h"

namespace pendra::test {

class RunningDevice : public testing::Test {
  protected:
    explicit RunningDevice(const std::string& listing = "router.tree") : files(listing) {}

    void start(const HostOptions& options = {}) { host.emplace(files, options); }
    /** Ends the host and starts another one on the same device. */
    void restart(const HostOptions& options = {});

    [[nodiscard]] std::string url(const std::string& path) const { return host->url() + path; }
    [[nodiscard]] long uptime() const;
    [[nodiscard]] std::string password() const { return files.get("/sys/user:1/password"); }
    /** @return the key of this machine for the current slot of the device. */
    [[nodiscard]] std::string key() const { return accessKey(uptime() / 20, "127.0.0.1", password()); }

    [[nodiscard]] HttpReply get(const std::string& path) const { return curl({url(path)}); }
    [[nodiscard]] HttpReply post(const std::string& path, const std::string& body) const;
    void login() const;
    /** Logs in and posts a setup document. */
    [[nodiscard]] HttpReply setUp(const std::string& document, const std::string& query = "") const;
    /** Returns when the scripts of an answered document have run: the host answers nobody before. */
    void awaitScripts() const;
    [[nodiscard]] Ended zepctl(std::vector<std::string> arguments, const std::string& input = "") const;

    /** Expects a result document to the letter: in the answer, in its file, and when it is asked for later. */
    void expectResult(const HttpReply& reply, int code, const std::string& message, int waitSeconds) const;

    DeviceFiles files;
    std::optional<DeviceProcess> host;
};

/** The result document as the device writes it. */
std::string resultDocument(int code, const std::string& message, int waitSeconds);

/** Expects what xmllint calls well-formed. */
void expectWellFormed(const std::string& document);

/** A document with the content of one element replaced. @p path names it by its ancestors, "Wireless5/Channel". */
std::string withElement(const std::string& document, const std::string& path, const std::string& content);

/** A document without one element. */
std::string withoutElement(const std::string& document, const std::string& path);

/** A document that changes nothing of the default device but its name. */
std::string nameDocument(const std::string& name);

} // namespace pendra::test

#endif
