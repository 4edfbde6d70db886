#include "scratch.h"

#include "platform/tree/text_form.h"

namespace pendra::test {

std::string textOf(tree::Tree& tree, std::string_view path) {
    std::string text;
    return tree.get(path, text) == tree::Outcome::done ? text : "(absent)";
}

std::string dumpOf(tree::Tree& tree) {
    std::string text;
    const auto add = [&](std::string_view path, std::string_view value) { text += tree::formatNode(path, value); };
    return tree.walk("/", add) == tree::Outcome::failed ? tree.reason() : text;
}

} // namespace pendra::test
