/**
 * @file
 * HTTP to one device.
 */
#ifndef PENDRA_CLIENT_HTTP_H
#define PENDRA_CLIENT_HTTP_H

#include <curl/curl.h>

#include <memory>
#include <string>

namespace pendra::client {

struct HttpReply {
    long status = 0;
    std::string body;
};

class HttpClient {
  public:
    /** @param baseUrl the device's address, for example "http://192.168.1.1:8480". */
    explicit HttpClient(std::string baseUrl);

    /** Both throw Failure when the device cannot be reached; any status is a reply. */
    HttpReply get(const std::string& path);
    HttpReply post(const std::string& path, const std::string& contentType, const std::string& body);

    /** @return a text as it may stand in a query or a form. */
    std::string escape(const std::string& text);

  private:
    void prepare(const std::string& path);
    HttpReply perform();

    using Handle = std::unique_ptr<CURL, decltype(&curl_easy_cleanup)>;
    std::string baseUrl_;
    Handle handle_;
};

} // namespace pendra::client

#endif
