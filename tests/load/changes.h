/**
 * @file
 * Changes of settings that the device accepts, and what its tree has to hold after them.
 */
#ifndef PENDRA_TESTS_LOAD_CHANGES_H
#define PENDRA_TESTS_LOAD_CHANGES_H

#include <map>
#include <mutex>
#include <random>
#include <string>

namespace pendra::load {

/** What the tree has to hold: path and text. */
using Nodes = std::map<std::string, std::string>;

/** All changes that were accepted. Whoever makes one holds the lock until its answer is there, so their order is known.
 */
struct Model {
    std::mutex lock;
    Nodes nodes;
    size_t changes = 0;
};

struct Change {
    std::string path; /**< where it is posted */
    std::string headers;
    std::string body;
    std::string accepted; /**< the answer holds this */
    Nodes nodes;          /**< and then the tree holds these */
};

using Random = std::mt19937;

/** Every one of them changes what its scripts take up, but the first: web safety has none. */
Change changeSafety(Random& random);
Change changeNameByDocument(Random& random);
Change changeRadioByForm(Random& random);
Change changeRadioByPage(Random& random);
Change changeUplinkByText(Random& random);
Change changeAllByDocument(Random& random);

} // namespace pendra::load

#endif
