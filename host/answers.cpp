#include "host/answers.h"

#include <nlohmann/json.hpp>

namespace pendra::host {

namespace {

using nlohmann::ordered_json;

struct Header {
    const char* name;
    const char* value;
};

// What every answer says to a browser: take nothing from elsewhere, stand in no frame, guess no types, tell nobody.
constexpr Header kCommonHeaders[] = {
    {MHD_HTTP_HEADER_CACHE_CONTROL, "no-store"},
    {"Content-Security-Policy",
     "default-src 'self'; base-uri 'none'; form-action 'self'; frame-ancestors 'none'; object-src 'none'"},
    {"X-Content-Type-Options", "nosniff"},
    {"X-Frame-Options", "DENY"},
    {"Referrer-Policy", "same-origin"},
};

void addHeaders(MHD_Response* response, const Answer& answer) {
    MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, answer.contentType);
    for (const Header& header : kCommonHeaders) {
        MHD_add_response_header(response, header.name, header.value);
    }
    if (!answer.location.empty()) {
        MHD_add_response_header(response, MHD_HTTP_HEADER_LOCATION, answer.location.c_str());
    }
    if (answer.status == MHD_HTTP_UNAUTHORIZED) {
        MHD_add_response_header(response, MHD_HTTP_HEADER_WWW_AUTHENTICATE, "PendraKey realm=\"/zep/login\"");
    }
    if (!answer.allow.empty()) MHD_add_response_header(response, MHD_HTTP_HEADER_ALLOW, answer.allow.c_str());
}

} // namespace

Answer textAnswer(unsigned status, const std::string& line) {
    return {.status = status, .body = line + "\n"};
}

Answer jsonAnswer(const ordered_json& value) {
    // Texts of the tree may hold any byte; what is not UTF-8 is shown as the replacement character.
    std::string text = value.dump(-1, ' ', false, ordered_json::error_handler_t::replace) + "\n";
    return {.contentType = "application/json", .body = std::move(text)};
}

Answer xmlAnswer(std::string document) {
    return {.contentType = "application/xml", .body = std::move(document)};
}

Answer redirect(const std::string& location) {
    Answer answer = textAnswer(MHD_HTTP_SEE_OTHER, "Go on at " + location);
    answer.location = location;
    return answer;
}

MHD_Result sendAnswer(MHD_Connection* connection, const Answer& answer) {
    // The buffer is copied, so nothing is written through the pointer.
    void* body = const_cast<char*>(answer.body.data());
    MHD_Response* response = MHD_create_response_from_buffer(answer.body.size(), body, MHD_RESPMEM_MUST_COPY);
    if (response == nullptr) return MHD_NO;
    addHeaders(response, answer);
    const MHD_Result queued = MHD_queue_response(connection, answer.status, response);
    MHD_destroy_response(response);
    return queued;
}

} // namespace pendra::host
