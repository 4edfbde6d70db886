#include "platform/tree/tree.h"

#include <fcntl.h>
#include <lmdb.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/tree/guards.h"
#include "platform/tree/node_path.h"

namespace pendra::tree {
namespace {

constexpr mdb_mode_t ownerOnly = S_IRUSR | S_IWUSR; // the tree holds passwords

MDB_val asValue(std::string_view text) {
    return {text.size(), const_cast<char*>(text.data())};
}
std::string_view asText(const MDB_val& value) {
    return {static_cast<const char*>(value.mv_data), value.mv_size};
}

std::string inWords(int code) {
    if (code == MDB_MAP_FULL || code == MDB_TXN_FULL) return "the tree has no room left";
    const std::string text = mdb_strerror(code);
    const bool isOwnCode = text.starts_with("MDB_"); // "MDB_INVALID: File is not an LMDB file"
    return isOwnCode ? text.substr(text.find(' ') + 1) : text;
}

/** LMDB leaves one of its descriptors open to programs that are run from here. */
void closeInChildren(MDB_env* env) {
    mdb_filehandle_t descriptor = -1;
    if (mdb_env_get_fd(env, &descriptor) == 0) ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

bool exists(const std::string& file) {
    struct stat status {};
    return stat(file.c_str(), &status) == 0;
}

/**
 * Makes an empty tree. The file appears whole or not at all: one that was cut while it was made would be no tree, and
 * would be in the way of every later try.
 */
int createFile(const std::string& file) {
    const std::string draft = file + "." + std::to_string(::getpid()) + ".new";
    MDB_env* env = nullptr;
    int code = mdb_env_create(&env);
    if (code == 0) code = mdb_env_open(env, draft.c_str(), MDB_NOSUBDIR | MDB_NOLOCK, ownerOnly);
    if (code == 0) code = mdb_env_sync(env, 1);
    if (env) mdb_env_close(env);
    // Who else has made it meanwhile may have written into it. Not every file system has links.
    if (code == 0 && ::link(draft.c_str(), file.c_str()) != 0 && errno != EEXIST &&
        ::rename(draft.c_str(), file.c_str()) != 0)
        code = errno;
    ::unlink(draft.c_str());
    return code;
}

/**
 * LMDB maps its lock file and writes there. On a full disk, a page that the file system has promised and cannot give
 * would end the process.
 */
int reserveLockFile(const std::string& file) {
    constexpr off_t size = 8192; // LMDB's own, for 126 readers
    const int descriptor = ::open((file + "-lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, ownerOnly);
    if (descriptor < 0) return 0; // LMDB goes without it or says why it cannot
    const int code = ::posix_fallocate(descriptor, 0, size);
    ::close(descriptor);
    const bool cannotReserve = code == EOPNOTSUPP || code == EINVAL;
    return cannotReserve ? 0 : code;
}

/** Goes over the keys that begin with a prefix. */
class Scan {
  public:
    Scan(MDB_txn* transaction, MDB_dbi nodes, std::string prefix) : prefix_(std::move(prefix)) {
        code_ = mdb_cursor_open(transaction, nodes, &cursor_);
    }
    Scan(const Scan&) = delete;
    Scan& operator=(const Scan&) = delete;
    ~Scan() {
        if (cursor_) mdb_cursor_close(cursor_);
    }

    bool start() { return seek(prefix_); }
    bool next() { return move(MDB_NEXT); }
    /** Goes to the first key at or behind @p key. */
    bool seek(std::string_view key) {
        key_ = asValue(key);
        return move(MDB_SET_RANGE);
    }
    int remove() { return code_ = mdb_cursor_del(cursor_, 0); }

    [[nodiscard]] std::string_view path() const { return asText(key_); }
    [[nodiscard]] std::string_view text() const { return asText(text_); }
    /** Why the scan ended: 0 at its end, else LMDB's code. */
    [[nodiscard]] int result() const { return code_ == MDB_NOTFOUND ? 0 : code_; }

  private:
    bool move(MDB_cursor_op how) {
        if (code_ == 0) code_ = mdb_cursor_get(cursor_, &key_, &text_, how);
        return code_ == 0 && path().starts_with(prefix_);
    }

    std::string prefix_;
    MDB_cursor* cursor_ = nullptr;
    MDB_val key_{};
    MDB_val text_{};
    int code_ = 0;
};

/**
 * Counts the elements of a list. Each one costs one or two seeks however much lies below it; "name:1.x" sorts between
 * "name:1" and "name:1/..." and is no element.
 */
int countElements(MDB_txn* transaction, MDB_dbi nodes, std::string_view countPath, int& count) {
    const std::string prefix = elementPrefix(countPath);
    Scan scan(transaction, nodes, prefix);
    count = 0;
    bool more = scan.start();
    while (more) {
        const std::string_view element = throughComponent(scan.path(), prefix.size());
        if (isElementNumber(element.substr(prefix.size()))) ++count;
        more = scan.seek(behindSubtree(element));
    }
    return scan.result();
}

int removeSubtree(MDB_txn* transaction, MDB_dbi nodes, std::string_view path) {
    MDB_val key = asValue(path);
    const int ofNode = mdb_del(transaction, nodes, &key, nullptr);
    if (ofNode != 0 && ofNode != MDB_NOTFOUND) return ofNode;

    Scan below(transaction, nodes, childPrefix(path));
    bool found = ofNode == 0;
    for (bool more = below.start(); more; more = below.next()) {
        if (below.remove() != 0) break;
        found = true;
    }
    if (below.result() != 0) return below.result();
    return found ? 0 : MDB_NOTFOUND;
}

} // namespace

/** What a read looks into: the open transaction, or else a snapshot of its own. */
class Tree::Reading {
  public:
    explicit Reading(Tree& tree) : tree_(tree), owned_(tree.transaction_ == nullptr), transaction_(tree.transaction_) {
        if (owned_) code_ = tree.beginTransaction(MDB_RDONLY, transaction_);
        ++tree_.readings_;
    }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;
    ~Reading() {
        --tree_.readings_;
        if (owned_ && transaction_) mdb_txn_abort(transaction_);
    }

    [[nodiscard]] int code() const { return code_; }
    [[nodiscard]] MDB_txn* transaction() const { return transaction_; }

  private:
    Tree& tree_;
    bool owned_;
    MDB_txn* transaction_;
    int code_ = 0;
};

bool Tree::open(const std::string& file, Access access, std::string& error, MapSize mapSize) {
    close();
    access_ = access;
    mapSize_ = mapSize;
    int code = 0;
    if (!exists(file)) code = access == Access::write && errno == ENOENT ? createFile(file) : errno;
    file_ = file;
    if (code == 0) code = openFile(mapSize.first);
    if (code == 0) return true;

    error = "cannot open the tree " + file + ": " + inWords(code);
    close();
    return false;
}

int Tree::openFile(std::size_t mapSize) {
    int code = reserveLockFile(file_);
    if (code == 0) code = mdb_env_create(&env_);
    if (code == 0) code = mdb_env_set_mapsize(env_, mapSize);
    const unsigned flags = MDB_NOSUBDIR | (access_ == Access::read ? MDB_RDONLY : 0U);
    if (code == 0) code = mdb_env_open(env_, file_.c_str(), flags, ownerOnly);
    if (code == 0) closeInChildren(env_);
    int dead = 0;
    if (code == 0) code = mdb_reader_check(env_, &dead); // a killed reader would keep old pages for ever

    MDB_txn* transaction = nullptr;
    if (code == 0) code = mdb_txn_begin(env_, nullptr, MDB_RDONLY, &transaction);
    if (code == 0) code = mdb_dbi_open(transaction, nullptr, 0, &nodes_);
    if (code == 0) code = mdb_txn_commit(std::exchange(transaction, nullptr));
    if (transaction) mdb_txn_abort(transaction);
    if (code != 0) closeFile();
    return code;
}

void Tree::closeFile() {
    if (env_) mdb_env_close(env_);
    env_ = nullptr;
}

void Tree::close() {
    abandon();
    closeFile();
    file_.clear();
}

/**
 * LMDB gives up a file whose head page it could not write, and a reader's slot that a child of this process was killed
 * in. What is in the file is whole, and is opened anew.
 */
int Tree::reopen() {
    if (file_.empty()) return MDB_INVALID;
    if (transaction_ || readings_ > 0) return MDB_PANIC;
    MDB_envinfo info{};
    if (env_) mdb_env_info(env_, &info);
    closeFile();
    return openFile(std::max(info.me_mapsize, mapSize_.first));
}

int Tree::beginTransaction(unsigned flags, MDB_txn*& transaction) {
    transaction = nullptr;
    int code = env_ ? mdb_txn_begin(env_, nullptr, flags, &transaction) : MDB_PANIC;
    if (code == MDB_PANIC || code == MDB_BAD_RSLOT) {
        code = reopen();
        if (code == 0) code = mdb_txn_begin(env_, nullptr, flags, &transaction);
    }
    if (code != MDB_MAP_RESIZED) return code;
    code = mdb_env_set_mapsize(env_, 0); // another process has grown the map: take its size
    return code == 0 ? mdb_txn_begin(env_, nullptr, flags, &transaction) : code;
}

std::string Tree::describe(int code) const {
    return isOpen() ? inWords(code) : "the tree is not open";
}

/**
 * The map cannot grow under an open transaction, so the room is made before. Pages are half full at worst, and a
 * transaction copies those that it changes.
 */
bool Tree::makeRoom(std::size_t bytes) {
    MDB_envinfo info{};
    MDB_stat stat{};
    if (mdb_env_info(env_, &info) != 0 || mdb_env_stat(env_, &stat) != 0) return false;
    const std::size_t used = (info.me_last_pgno + 1) * stat.ms_psize;
    const std::size_t wanted = used + mapSize_.room + 4 * bytes + (bytes > 0 ? used : 0);
    std::size_t size = mapWasFull_ ? info.me_mapsize * 2 : info.me_mapsize;
    while (size < wanted)
        size *= 2;
    if (size == info.me_mapsize) return true;
    mapWasFull_ = false;
    return mdb_env_set_mapsize(env_, size) == 0;
}

bool Tree::begin(std::string& error, std::size_t expectedBytes) {
    abandon();
    int code = env_ && !makeRoom(expectedBytes) ? MDB_MAP_FULL : 0;
    if (code == 0) code = beginTransaction(0, transaction_);
    if (code == 0) return true;
    transaction_ = nullptr;
    error = describe(code);
    return false;
}

bool Tree::commit(std::string& error) {
    if (!transaction_) {
        error = "no transaction is open";
        return false;
    }
    if (broken_) {
        error = reason_;
        abandon();
        return false;
    }
    const int code = mdb_txn_commit(std::exchange(transaction_, nullptr));
    if (code == 0) return true;
    error = inWords(code);
    mapWasFull_ = mapWasFull_ || code == MDB_MAP_FULL;
    return false;
}

void Tree::abandon() {
    if (transaction_) mdb_txn_abort(std::exchange(transaction_, nullptr));
    broken_ = false;
}

std::size_t Tree::version() const {
    MDB_envinfo info{};
    if (transaction_ || !env_ || mdb_env_info(env_, &info) != 0) return 0;
    return info.me_last_txnid;
}

Outcome Tree::refuse(std::string_view path, std::string_view rule) {
    reason_ = std::string(path) + " " + std::string(rule);
    return Outcome::refused;
}

Outcome Tree::fail(int code) {
    mapWasFull_ = mapWasFull_ || code == MDB_MAP_FULL;
    if (!broken_) reason_ = describe(code); // the first failure is the one that tells why
    broken_ = transaction_ != nullptr;
    return Outcome::failed;
}

Outcome Tree::get(std::string_view path, std::string& text) {
    text.clear();
    if (!isPath(path)) return Outcome::absent;
    const Reading reading(*this);
    if (reading.code() != 0) return fail(reading.code());

    if (isCountPath(path)) {
        int count = 0;
        const int code = countElements(reading.transaction(), nodes_, path, count);
        if (code != 0) return fail(code);
        if (count > 0) text = std::to_string(count);
        return count > 0 ? Outcome::done : Outcome::absent;
    }
    MDB_val key = asValue(path);
    MDB_val value{};
    const int code = mdb_get(reading.transaction(), nodes_, &key, &value);
    if (code == MDB_NOTFOUND) return Outcome::absent;
    if (code != 0) return fail(code);
    text = asText(value);
    return Outcome::done;
}

/** Runs a change in the open transaction, or else in one of its own. */
Outcome Tree::write(const std::function<int()>& change) {
    const bool alone = transaction_ == nullptr;
    if (alone && !begin(reason_)) return Outcome::failed;
    if (broken_) return Outcome::failed;
    const int code = change();
    if (code != 0 && code != MDB_NOTFOUND) {
        fail(code);
        if (alone) abandon();
        return Outcome::failed;
    }
    if (alone && !commit(reason_)) return Outcome::failed;
    return code == 0 ? Outcome::done : Outcome::absent;
}

Outcome Tree::set(std::string_view path, std::string_view text) {
    if (!isPath(path)) return refuse(path, "is not a node's path");
    if (isCountPath(path)) return refuse(path, "is counted by the tree and cannot be set");
    if (text.size() > longestText) return refuse(path, "takes a text of at most 1023 bytes");
    if (const char* rule = guardAgainst(path, text)) return refuse(path, rule);
    return write([&] {
        MDB_val key = asValue(path);
        MDB_val value = asValue(text);
        return mdb_put(transaction_, nodes_, &key, &value, 0);
    });
}

Outcome Tree::remove(std::string_view path) {
    if (!isPath(path) || isCountPath(path)) return Outcome::absent;
    return write([&] { return removeSubtree(transaction_, nodes_, path); });
}

Outcome Tree::clear() {
    return write([&] { return mdb_drop(transaction_, nodes_, 0); });
}

Outcome Tree::walk(std::string_view path, const Visitor& visit) {
    if (path != "/" && !isPath(path)) return Outcome::absent;
    const Reading reading(*this);
    if (reading.code() != 0) return fail(reading.code());

    MDB_val key = asValue(path);
    MDB_val value{};
    bool found = mdb_get(reading.transaction(), nodes_, &key, &value) == 0;
    if (found) visit(path, asText(value));
    Scan below(reading.transaction(), nodes_, childPrefix(path));
    for (bool more = below.start(); more; more = below.next()) {
        visit(below.path(), below.text());
        found = true;
    }
    if (below.result() != 0) return fail(below.result());
    return found ? Outcome::done : Outcome::absent;
}

} // namespace pendra::tree
