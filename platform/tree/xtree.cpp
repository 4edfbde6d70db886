/**
 * @file
 * xtree: looks into a configuration tree and changes it, from a shell or a script.
 */
#include <CLI/CLI.hpp>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string>

#include "platform/tree/node_path.h"
#include "platform/tree/text_form.h"
#include "platform/tree/tree.h"

namespace {

using namespace pendra::tree;

enum Exit { found = 0, absent = 1, usage = 2, refused = 3, unusable = 4 };

constexpr const char* description =
    "Reads and changes a configuration tree.\n"
    "A path is /component/component, a list element is name:N, and name# reads how many elements there are.";

constexpr const char* footer = R"(
Text form (dump, load, diff), one node a line:
  /sys/friendlyname = "Kitchen"   # a comment
  \n \t \r \" \\ and \xHH stand for bytes that cannot stand there as they are.

Exit status:
  0  found, done, or no differences
  1  no such node, or differences
  2  wrong usage, or a listing that cannot be read
  3  refused: a path, a text or a line of a listing that the tree does not take; nothing was changed
  4  the tree cannot be opened, read or written)";

struct Arguments {
    std::string treeFile;
    std::string path = "/";
    std::string text;
    std::string listing;
    std::string secondListing;
    bool escaped = false;
    bool replace = false;
};

int complain(Exit status, const std::string& message) {
    std::cerr << "xtree: " << message << '\n';
    return status;
}

int absentNode(const std::string& path) {
    return complain(absent, "no node " + escapedPath(path));
}

int report(Outcome outcome, const Tree& tree, const std::string& path) {
    switch (outcome) {
        case Outcome::done:
            return found;
        case Outcome::absent:
            return absentNode(path);
        case Outcome::refused:
            return complain(refused, tree.reason());
        case Outcome::failed:
            break;
    }
    return complain(unusable, tree.reason());
}

bool readListing(const std::string& file, Listing& listing, std::string& error, Exit& status) {
    std::ifstream opened;
    if (file != "-") opened.open(file, std::ios::binary);
    std::istream& source = file == "-" ? std::cin : opened;
    std::ostringstream text;
    if (source && source.peek() != std::istream::traits_type::eof()) text << source.rdbuf();
    status = usage;
    error = "cannot read " + file;
    if (file != "-" && (!opened.is_open() || opened.bad())) return false;
    status = refused;
    if (parseListing(text.view(), listing, error)) return true;
    error = file + ", " + error;
    return false;
}

Outcome readTree(Tree& tree, Listing& listing) {
    const Outcome outcome = tree.walk("/", [&](std::string_view path, std::string_view text) {
        listing.emplace(path, Line{std::string(text), 0});
    });
    return outcome == Outcome::absent ? Outcome::done : outcome; // an empty tree has no differences of its own
}

int get(Tree& tree, const Arguments& arguments) {
    std::string text;
    const Outcome outcome = tree.get(arguments.path, text);
    if (outcome == Outcome::done) std::cout << (arguments.escaped ? escapedText(text) : text) << '\n';
    return report(outcome, tree, arguments.path);
}

int set(Tree& tree, const Arguments& arguments) {
    return report(tree.set(arguments.path, arguments.text), tree, arguments.path);
}

int del(Tree& tree, const Arguments& arguments) {
    return report(tree.remove(arguments.path), tree, arguments.path);
}

int list(Tree& tree, const Arguments& arguments) {
    const std::string prefix = childPrefix(arguments.path);
    std::string last;
    const auto visit = [&](std::string_view path, std::string_view) {
        if (!path.starts_with(prefix)) return; // the node itself
        const std::string_view child = throughComponent(path, prefix.size());
        if (child == last) return;
        last = child;
        std::cout << escapedPath(child.substr(prefix.size())) << '\n';
    };
    return report(tree.walk(arguments.path, visit), tree, arguments.path);
}

int dump(Tree& tree, const Arguments& arguments) {
    const auto visit = [](std::string_view path, std::string_view text) { std::cout << formatNode(path, text); };
    const Outcome outcome = tree.walk(arguments.path, visit);
    const bool emptyTree = outcome == Outcome::absent && arguments.path == "/";
    return emptyTree ? found : report(outcome, tree, arguments.path);
}

/** One transaction: a line that the tree does not take leaves it as it was. */
int store(Tree& tree, const Arguments& arguments, const Listing& listing) {
    std::size_t bytes = 0;
    for (const auto& [path, line] : listing)
        bytes += path.size() + line.text.size();
    std::string error;
    if (!tree.begin(error, bytes)) return complain(unusable, error);

    Outcome outcome = arguments.replace ? tree.clear() : Outcome::done;
    for (const auto& [path, line] : listing) {
        if (outcome == Outcome::done) outcome = tree.set(path, line.text);
        if (outcome == Outcome::refused)
            return complain(refused,
                            arguments.listing + ", line " + std::to_string(line.number) + ": " + tree.reason());
    }
    if (outcome != Outcome::done) return report(outcome, tree, "/");
    return tree.commit(error) ? found : complain(unusable, error);
}

int load(const Arguments& arguments) {
    Listing listing;
    std::string error;
    Exit status = found;
    if (!readListing(arguments.listing, listing, error, status)) return complain(status, error);
    Tree tree;
    if (!tree.open(arguments.treeFile, Tree::Access::write, error)) return complain(unusable, error);
    return store(tree, arguments, listing);
}

int diff(const Arguments& arguments) {
    Listing before;
    Listing after;
    std::string error;
    Exit status = found;
    if (!readListing(arguments.listing, before, error, status)) return complain(status, error);
    if (!arguments.secondListing.empty()) {
        if (!readListing(arguments.secondListing, after, error, status)) return complain(status, error);
    } else {
        Tree tree;
        if (!tree.open(arguments.treeFile, Tree::Access::read, error)) return complain(unusable, error);
        if (readTree(tree, after) != Outcome::done) return complain(unusable, tree.reason());
    }
    const std::string lines = difference(before, after);
    std::cout << lines;
    return lines.empty() ? found : absent;
}

/** The commands that work on nodes of an open tree. */
struct NodeCommand {
    const char* name;
    const char* help;
    Tree::Access access;
    int (*run)(Tree&, const Arguments&);
};
constexpr NodeCommand nodeCommands[] = {
    {"get", "Print the text of a node", Tree::Access::read, get},
    {"set", "Store a text; creates the node, and the tree file, when absent", Tree::Access::write, set},
    {"del", "Delete a node and everything below it", Tree::Access::change, del},
    {"list", "List the names directly below a node", Tree::Access::read, list},
    {"dump", "Print a node and everything below it in text form", Tree::Access::read, dump},
};

int runOnTree(const NodeCommand& command, const Arguments& arguments) {
    Tree tree;
    std::string error;
    if (!tree.open(arguments.treeFile, command.access, error)) return complain(unusable, error);
    return command.run(tree, arguments);
}

void addOptions(CLI::App& command, const std::string& name, Arguments& arguments) {
    CLI::Option* path = command.add_option("PATH", arguments.path, "Path of the node");
    if (name != "list" && name != "dump") path->required();
    if (name == "get")
        command.add_flag("-e,--escaped", arguments.escaped, "Print it with the escapes of the text form");
    if (name == "set") command.add_option("TEXT", arguments.text, "The text")->required();
}

void addListingCommands(CLI::App& app, Arguments& arguments) {
    CLI::App* loading = app.add_subcommand("load", "Store the nodes of a listing in one transaction");
    loading->add_option("LISTING", arguments.listing, "File in text form, - for standard input")->required();
    loading->add_flag("-r,--replace", arguments.replace, "Delete every other node");
    CLI::App* comparing = app.add_subcommand("diff", "Show what turned a listing into the tree, or into a second one");
    comparing->add_option("LISTING", arguments.listing, "File in text form, - for standard input")->required();
    comparing->add_option("SECOND", arguments.secondListing, "File to compare with instead of the tree");
}

int runCommand(const CLI::App& app, const Arguments& arguments) {
    const std::string name = app.get_subcommands().front()->get_name();
    if (arguments.treeFile.empty() && arguments.secondListing.empty())
        return complain(usage, "no tree named: use -f FILE or PENDRA_TREE");
    if (name == "load") return load(arguments);
    if (name == "diff") return diff(arguments);
    for (const NodeCommand& command : nodeCommands)
        if (name == command.name) return runOnTree(command, arguments);
    return usage;
}

int runXtree(int argc, char** argv) {
    Arguments arguments;
    CLI::App app{description, "xtree"};
    app.footer(footer);
    app.require_subcommand(1);
    app.fallthrough();
    app.add_option("-f,--file", arguments.treeFile, "The tree file")->envname("PENDRA_TREE");
    for (const NodeCommand& command : nodeCommands)
        addOptions(*app.add_subcommand(command.name, command.help), command.name, arguments);
    addListingCommands(app, arguments);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const bool wrong = app.exit(error) != 0;
        return wrong ? usage : found;
    }
    const int status = runCommand(app, arguments);
    std::cout.flush();
    return std::cout ? status : complain(unusable, "cannot write the output");
}

} // namespace

int main(int argc, char** argv) {
    try {
        return runXtree(argc, argv);
    } catch (...) { // out of memory: nothing else is thrown to here
        static_cast<void>(std::fputs("xtree: out of memory\n", stderr));
        return unusable;
    }
}
