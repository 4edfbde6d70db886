#include "bench/tree_device.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bench/own_directory.h"
#include "common/log_state.h"
#include "pendra/pendra.h"
#include "platform/device_state.h"
#include "platform/tree/text_form.h"

namespace pendra::device {

tree::Tree& deviceTree() {
    static tree::Tree tree;
    return tree;
}

} // namespace pendra::device

namespace pendra::bench {
namespace {

void require(bool done, const std::string& error) {
    if (done) return;
    std::fprintf(stderr, "bench: %s\n", error.c_str());
    std::exit(EXIT_FAILURE);
}

void store(const std::string& path, const std::string& text) {
    require(device::deviceTree().set(path, text) == tree::Outcome::done, device::deviceTree().reason());
}

} // namespace

const std::string& treeDirectory() {
    static const OwnDirectory directory;
    return directory.path();
}

void openDevice() {
    std::string error;
    tree::Tree& tree = device::deviceTree();
    require(tree.open(treeDirectory() + "/device.mdb", tree::Tree::Access::write, error), error);
    tree::Listing listing;
    require(tree::parseListing(textOfFile(PENDRA_BENCH_TREE), listing, error), error);
    beginTransaction();
    require(tree.clear() == tree::Outcome::done, tree.reason());
    for (const auto& [path, line] : listing)
        store(path, line.text);
    store("/bramble/tempdirecory", treeDirectory());
    store("/bramble/scriptdirecory", treeDirectory());
    commitTransaction();
    zepXmlData = {};
    logState = {};
    daemon_log_file_size_k = 1 << 20;
    init_ZepVar();
}

void beginTransaction() {
    std::string error;
    require(device::deviceTree().begin(error), error);
}

void commitTransaction() {
    std::string error;
    require(device::deviceTree().commit(error), error);
}

} // namespace pendra::bench

extern "C" {

int tcapi_set(const char*, const char*, const char*) {
    return 0;
}

int tcapi_commit(const char*) {
    return 0;
}

int system(const char*) {
    return 0;
}

} // extern "C"
