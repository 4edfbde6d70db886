// The same read as GET /zep/var, as a program that a web server runs for each request: PENDRA_TREE names the tree.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/tree/tree.h"

int main() {
    const char* file = std::getenv("PENDRA_TREE");
    pendra::tree::Tree tree;
    std::string error;
    std::string text;
    if (file == nullptr || !tree.open(file, pendra::tree::Tree::Access::read, error)) return EXIT_FAILURE;
    if (tree.get("/lan/wireless2.4:1/wirelessname", text) != pendra::tree::Outcome::done) return EXIT_FAILURE;
    const std::string body = "{\"name\":\"zep_Wl2_WirelessName\",\"value\":\"" + text + "\"}\n";
    std::printf("Content-Type: application/json\r\nCache-Control: no-store\r\nContent-Length: %zu\r\n\r\n%s",
                body.size(), body.c_str());
    return EXIT_SUCCESS;
}
