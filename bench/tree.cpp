// The configuration tree on LMDB against SQLite and a file for each node, and the library's runs on it.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "bench/documents.h"
#include "bench/tree_device.h"
#include "pendra/pendra.h"

namespace pendra::bench {
namespace {

// Paths like those of a device: some levels, lists with elements.
std::string pathOf(int number) {
    char path[96];
    std::snprintf(path, sizeof path, "/lan/section%d:%d/accesscontrol/acrule:%d", number % 7, number / 4000,
                  number / 7);
    return path;
}

std::string textOf(int number) {
    char text[32];
    std::snprintf(text, sizeof text, "02:a1:b2:%02x:%02x:%02x", number >> 16 & 0xFF, number >> 8 & 0xFF, number & 0xFF);
    return text;
}

// One store of a kind, filled once and kept for every benchmark of that size.
class Store {
  public:
    Store() = default;
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;
    virtual ~Store() = default;
    virtual void fill(int nodes) = 0;
    virtual bool read(const std::string& path, std::string& text) = 0;
    virtual bool write(const std::string& path, const std::string& text) = 0; // durable when it returns
    virtual bool writeAll(const std::vector<std::string>& paths, const std::string& text) = 0; // as one, durable
};

class LmdbStore : public Store {
  public:
    static constexpr const char* kName = "lmdb";
    explicit LmdbStore(const std::string& file) { require(tree_.open(file, tree::Tree::Access::write, error_)); }
    void fill(int nodes) override {
        require(tree_.begin(error_, static_cast<std::size_t>(nodes) * 128));
        for (int node = 0; node < nodes; node++)
            require(tree_.set(pathOf(node), textOf(node)) == tree::Outcome::done);
        require(tree_.commit(error_));
    }
    bool read(const std::string& path, std::string& text) override {
        return tree_.get(path, text) == tree::Outcome::done;
    }
    bool write(const std::string& path, const std::string& text) override {
        return tree_.set(path, text) == tree::Outcome::done;
    }
    bool writeAll(const std::vector<std::string>& paths, const std::string& text) override {
        bool done = tree_.begin(error_);
        for (const std::string& path : paths)
            done = done && tree_.set(path, text) == tree::Outcome::done;
        return tree_.commit(error_) && done;
    }

  private:
    void require(bool done) {
        if (done) return;
        std::fprintf(stderr, "bench: %s %s\n", error_.c_str(), tree_.reason().c_str());
        std::exit(EXIT_FAILURE);
    }
    tree::Tree tree_;
    std::string error_;
};

// A table with the path as key, prepared statements, a write-ahead log that is synced at each commit.
class SqliteStore : public Store {
  public:
    static constexpr const char* kName = "sqlite";
    explicit SqliteStore(const std::string& file) {
        sqlite3_open(file.c_str(), &base_);
        run("PRAGMA journal_mode=WAL");
        run("PRAGMA synchronous=FULL");
        run("CREATE TABLE nodes (path TEXT PRIMARY KEY, text TEXT) WITHOUT ROWID");
        sqlite3_prepare_v2(base_, "SELECT text FROM nodes WHERE path = ?", -1, &select_, nullptr);
        sqlite3_prepare_v2(base_, "INSERT OR REPLACE INTO nodes VALUES (?, ?)", -1, &insert_, nullptr);
    }
    ~SqliteStore() override {
        sqlite3_finalize(select_);
        sqlite3_finalize(insert_);
        sqlite3_close(base_);
    }
    SqliteStore(const SqliteStore&) = delete;
    SqliteStore& operator=(const SqliteStore&) = delete;
    void fill(int nodes) override {
        run("BEGIN");
        for (int node = 0; node < nodes; node++)
            write(pathOf(node), textOf(node));
        run("COMMIT");
    }
    bool read(const std::string& path, std::string& text) override {
        sqlite3_bind_text(select_, 1, path.data(), static_cast<int>(path.size()), SQLITE_STATIC);
        const bool found = sqlite3_step(select_) == SQLITE_ROW;
        if (found) text = reinterpret_cast<const char*>(sqlite3_column_text(select_, 0));
        sqlite3_reset(select_);
        return found;
    }
    bool write(const std::string& path, const std::string& text) override {
        sqlite3_bind_text(insert_, 1, path.data(), static_cast<int>(path.size()), SQLITE_STATIC);
        sqlite3_bind_text(insert_, 2, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
        const bool done = sqlite3_step(insert_) == SQLITE_DONE;
        sqlite3_reset(insert_);
        return done;
    }
    bool writeAll(const std::vector<std::string>& paths, const std::string& text) override {
        bool done = run("BEGIN");
        for (const std::string& path : paths)
            done = write(path, text) && done;
        return run("COMMIT") && done;
    }

  private:
    bool run(const char* statement) { return sqlite3_exec(base_, statement, nullptr, nullptr, nullptr) == SQLITE_OK; }
    sqlite3* base_ = nullptr;
    sqlite3_stmt* select_ = nullptr;
    sqlite3_stmt* insert_ = nullptr;
};

// A file for each node below a directory, replaced as a whole.
class FileStore : public Store {
  public:
    static constexpr const char* kName = "files";
    explicit FileStore(std::string directory) : directory_(std::move(directory)) {}
    void fill(int nodes) override {
        for (int node = 0; node < nodes; node++) {
            const std::string file = directory_ + pathOf(node);
            std::filesystem::create_directories(std::filesystem::path(file).parent_path());
            std::ofstream(file) << textOf(node);
        }
    }
    bool read(const std::string& path, std::string& text) override {
        const int file = open((directory_ + path).c_str(), O_RDONLY);
        if (file < 0) return false;
        char buffer[XNODE_TEXT_MAX];
        const ssize_t length = ::read(file, buffer, sizeof buffer);
        close(file);
        if (length < 0) return false;
        text.assign(buffer, static_cast<std::size_t>(length));
        return true;
    }
    bool write(const std::string& path, const std::string& text) override {
        const std::string name = directory_ + path;
        const std::string draft = name + ".new";
        const int file = open(draft.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (file < 0) return false;
        const bool done =
            ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size()) && fsync(file) == 0;
        close(file);
        return done && std::rename(draft.c_str(), name.c_str()) == 0;
    }
    bool writeAll(const std::vector<std::string>& paths, const std::string& text) override {
        bool done = true;
        for (const std::string& path : paths)
            done = write(path, text) && done;
        return done;
    }

  private:
    std::string directory_;
};

template <typename Kind>
Store& storeOf(int nodes) {
    static std::vector<std::pair<int, std::unique_ptr<Store>>> stores;
    for (const auto& [size, store] : stores)
        if (size == nodes) return *store;
    auto store = std::make_unique<Kind>(treeDirectory() + "/" + Kind::kName + std::to_string(nodes));
    store->fill(nodes);
    stores.emplace_back(nodes, std::move(store));
    return *stores.back().second;
}

// Nodes all over the tree, in an order without an order.
std::vector<std::string> somePaths(int nodes, int count) {
    std::vector<std::string> paths;
    for (int64_t number = 0; number < count; number++)
        paths.push_back(pathOf(static_cast<int>((number * 7919 + 13) % nodes)));
    return paths;
}

template <typename Kind>
void readNode(benchmark::State& state) {
    const auto nodes = static_cast<int>(state.range(0));
    Store& store = storeOf<Kind>(nodes);
    const std::vector<std::string> paths = somePaths(nodes, 1024);
    std::string text;
    size_t next = 0;
    for (auto _ : state)
        if (!store.read(paths[next++ % paths.size()], text)) state.SkipWithError("not read");
}

template <typename Kind>
void writeNode(benchmark::State& state) {
    const auto nodes = static_cast<int>(state.range(0));
    Store& store = storeOf<Kind>(nodes);
    const std::vector<std::string> paths = somePaths(nodes, 1024);
    size_t next = 0;
    for (auto _ : state) {
        const std::string text = textOf(static_cast<int>(next));
        if (!store.write(paths[next++ % paths.size()], text)) state.SkipWithError("not written");
    }
}

template <typename Kind>
void writeHundred(benchmark::State& state) {
    const auto nodes = static_cast<int>(state.range(0));
    Store& store = storeOf<Kind>(nodes);
    const std::vector<std::string> paths = somePaths(nodes, 100);
    int turn = 0;
    for (auto _ : state)
        if (!store.writeAll(paths, textOf(turn++))) state.SkipWithError("not written");
}

void twoSizes(benchmark::internal::Benchmark* family) {
    family->Arg(1000)->Arg(100000)->UseRealTime();
}

void fourSizes(benchmark::internal::Benchmark* family) {
    family->Arg(100)->Arg(1000)->Arg(10000)->Arg(100000)->UseRealTime();
}

BENCHMARK(readNode<LmdbStore>)->Name("tree/read/lmdb")->Apply(fourSizes);
BENCHMARK(readNode<SqliteStore>)->Name("tree/read/sqlite")->Apply(twoSizes);
BENCHMARK(readNode<FileStore>)->Name("tree/read/files")->Apply(twoSizes);
BENCHMARK(writeNode<LmdbStore>)->Name("tree/write/lmdb")->Apply(fourSizes);
BENCHMARK(writeNode<SqliteStore>)->Name("tree/write/sqlite")->Apply(twoSizes);
BENCHMARK(writeNode<FileStore>)->Name("tree/write/files")->Apply(twoSizes);
BENCHMARK(writeHundred<LmdbStore>)->Name("tree/write100/lmdb")->Apply(twoSizes);
BENCHMARK(writeHundred<SqliteStore>)->Name("tree/write100/sqlite")->Apply(twoSizes);
BENCHMARK(writeHundred<FileStore>)->Name("tree/write100/files")->Apply(twoSizes);

// ---- the library on the tree ----

// As the host does it: one transaction around a run. The commands are left out.
void runDocuments(benchmark::State& state, bool changes) {
    openDevice();
    const std::string documents[] = {setupDocument({.rules5 = 3}), setupDocument({.rules5 = 3, .other = changes})};
    std::vector<char> buffer;
    int turn = 0;
    const auto run = [&] {
        const std::string& document = documents[turn++ % 2];
        buffer.assign(document.c_str(), document.c_str() + document.size() + 1);
        beginTransaction();
        if (do_ZepXml_Parser(buffer.data()) != 1 || zepXmlData.setResult != 0) state.SkipWithError("refused");
        commitTransaction();
    };
    run();
    run();
    for (auto _ : state)
        run();
}

void changeNothing(benchmark::State& state) {
    runDocuments(state, false);
}

void changeEverything(benchmark::State& state) {
    runDocuments(state, true);
}

void refresh(benchmark::State& state) {
    openDevice();
    for (auto _ : state)
        init_ZepVar();
}

BENCHMARK(changeNothing)->Name("lmdb-run/nothing")->UseRealTime();
BENCHMARK(changeEverything)->Name("lmdb-run/everything")->UseRealTime();
BENCHMARK(refresh)->Name("lmdb-run/refresh")->UseRealTime();

} // namespace
} // namespace pendra::bench
