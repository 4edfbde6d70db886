#include "client/http.h"

#include "client/failure.h"

namespace pendra::client {

namespace {

constexpr long kConnectSeconds = 5;

// The device answers nobody while its scripts run, so an answer may take a while.
constexpr long kTotalSeconds = 60;

constexpr size_t kMaxReply = size_t{1} << 20;

using HeaderList = std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)>;

size_t collect(char* data, size_t size, size_t count, void* target) {
    auto& body = *static_cast<std::string*>(target);
    const size_t length = size * count;
    if (body.size() + length > kMaxReply) return 0;
    body.append(data, length);
    return length;
}

bool isConnected(CURL* handle) {
    long connections = 0;
    curl_easy_getinfo(handle, CURLINFO_NUM_CONNECTS, &connections);
    return connections > 0;
}

ExitCode exitCodeOf(CURLcode fault, CURL* handle) {
    switch (fault) {
        case CURLE_URL_MALFORMAT:
            return kUsage;
        case CURLE_UNSUPPORTED_PROTOCOL: // of the address, or of a peer that does not speak HTTP
            return isConnected(handle) ? kUnexpected : kUsage;
        case CURLE_WRITE_ERROR:
        case CURLE_WEIRD_SERVER_REPLY:
        case CURLE_PARTIAL_FILE:
            return kUnexpected;
        default:
            return kUnreachable;
    }
}

} // namespace

HttpClient::HttpClient(std::string baseUrl)
    : baseUrl_(std::move(baseUrl)), handle_(curl_easy_init(), curl_easy_cleanup) {
    if (handle_ == nullptr) throw Failure(kUnreachable, "The HTTP library could not be started.");
    while (!baseUrl_.empty() && baseUrl_.back() == '/') {
        baseUrl_.pop_back();
    }
}

void HttpClient::prepare(const std::string& path) {
    CURL* handle = handle_.get();
    curl_easy_reset(handle); // keeps the connection
    curl_easy_setopt(handle, CURLOPT_URL, (baseUrl_ + path).c_str());
    curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(handle, CURLOPT_NOPROXY, "*"); // the device is a neighbour, and its keys are bound to addresses
    curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT, kConnectSeconds);
    curl_easy_setopt(handle, CURLOPT_TIMEOUT, kTotalSeconds);
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_USERAGENT, "zepctl");
}

HttpReply HttpClient::perform() {
    HttpReply reply;
    curl_easy_setopt(handle_.get(), CURLOPT_WRITEFUNCTION, collect);
    curl_easy_setopt(handle_.get(), CURLOPT_WRITEDATA, &reply.body);
    const CURLcode fault = curl_easy_perform(handle_.get());
    if (fault != CURLE_OK) {
        throw Failure(exitCodeOf(fault, handle_.get()),
                      "No answer from " + baseUrl_ + ": " + curl_easy_strerror(fault) + ".");
    }
    curl_easy_getinfo(handle_.get(), CURLINFO_RESPONSE_CODE, &reply.status);
    return reply;
}

HttpReply HttpClient::get(const std::string& path) {
    prepare(path);
    return perform();
}

HttpReply HttpClient::post(const std::string& path, const std::string& contentType, const std::string& body) {
    prepare(path);
    const HeaderList headers(curl_slist_append(nullptr, ("Content-Type: " + contentType).c_str()), curl_slist_free_all);
    curl_easy_setopt(handle_.get(), CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(handle_.get(), CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    curl_easy_setopt(handle_.get(), CURLOPT_POSTFIELDS, body.c_str());
    return perform();
}

std::string HttpClient::escape(const std::string& text) {
    const std::unique_ptr<char, decltype(&curl_free)> escaped(
        curl_easy_escape(handle_.get(), text.c_str(), static_cast<int>(text.size())), curl_free);
    return escaped == nullptr ? "" : escaped.get();
}

} // namespace pendra::client
