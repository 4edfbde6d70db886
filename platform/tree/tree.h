/**
 * @file
 * The configuration tree, kept in one LMDB file.
 *
 * Reads are memory-mapped, commits survive a crash of process or machine, and several processes may read while one
 * writes. A process opens a tree file once.
 */
#ifndef PENDRA_PLATFORM_TREE_TREE_H
#define PENDRA_PLATFORM_TREE_TREE_H

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

struct MDB_env;
struct MDB_txn;

namespace pendra::tree {

enum class Outcome {
    done,
    absent,  ///< no such node
    refused, ///< the path or a guard does not allow it; reason() says why
    failed,  ///< the tree could not be read or written; reason() says why
};

/** How the map grows. Only address space: the file holds what is used. */
struct MapSize {
    std::size_t first = std::size_t{16} << 20;
    std::size_t room = std::size_t{4} << 20; ///< kept free for each write transaction
};

class Tree {
  public:
    enum class Access {
        read,   ///< the file must exist
        change, ///< likewise
        write,  ///< the file is created when absent
    };
    using Visitor = std::function<void(std::string_view path, std::string_view text)>;

    Tree() = default;
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;
    ~Tree() { close(); }

    [[nodiscard]] bool open(const std::string& file, Access access, std::string& error, MapSize mapSize = {});
    void close();
    [[nodiscard]] bool isOpen() const { return !file_.empty(); }

    /**
     * Starts a write transaction, which every call is part of until its end; one that is open is abandoned. Waits for
     * other writers.
     *
     * @param expectedBytes what it will store, when that is much.
     */
    [[nodiscard]] bool begin(std::string& error, std::size_t expectedBytes = 0);

    /** Ends it: durable as a whole, or, after a write that failed, nothing of it. */
    [[nodiscard]] bool commit(std::string& error);

    void abandon();

    /** Number of the newest committed change, by whichever process; 0 while a transaction is open or the tree is not.
     */
    [[nodiscard]] std::size_t version() const;

    /** Reads a node's text, or the number of a list's elements ("name#"), which is absent when there are none. */
    [[nodiscard]] Outcome get(std::string_view path, std::string& text);

    /** Stores a text. Outside a transaction it is durable when this returns. */
    [[nodiscard]] Outcome set(std::string_view path, std::string_view text);

    /** Deletes a node and everything below it. */
    [[nodiscard]] Outcome remove(std::string_view path);

    /** Deletes every node. */
    [[nodiscard]] Outcome clear();

    /** Visits a node and everything below it ("/": all nodes) in order, as one snapshot. */
    [[nodiscard]] Outcome walk(std::string_view path, const Visitor& visit);

    /** Why the last call was refused or failed. */
    [[nodiscard]] const std::string& reason() const { return reason_; }

  private:
    class Reading;
    int openFile(std::size_t mapSize);
    void closeFile();
    int reopen();
    [[nodiscard]] std::string describe(int code) const;
    Outcome refuse(std::string_view path, std::string_view rule);
    Outcome fail(int code);
    Outcome write(const std::function<int()>& change);
    bool makeRoom(std::size_t bytes);
    int beginTransaction(unsigned flags, MDB_txn*& transaction);

    std::string file_; // empty: not open
    Access access_ = Access::read;
    MDB_env* env_ = nullptr; // null, with a file: to be opened again
    MDB_txn* transaction_ = nullptr;
    unsigned nodes_ = 0;    // LMDB's handle of the one database in the file
    unsigned readings_ = 0; // snapshots in use
    MapSize mapSize_;
    bool mapWasFull_ = false;
    bool broken_ = false; // the open transaction lost a write and must not be committed
    std::string reason_;
};

} // namespace pendra::tree

#endif
