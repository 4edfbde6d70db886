// Every call by which the library leaves itself, and the plan that lets some of them fail.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace pendra::test {

// One call: "open" of "/tmp/image.bin". The same symbol with the same detail may be called many times.
struct Call {
    std::string symbol;
    std::string detail;
};

// What fails: the calls first to last of one symbol, or of all symbols together when it is empty.
struct FaultPlan {
    std::string symbol;
    long first = 0;
    long last = 0;
};

class Faults {
  public:
    // Starts counting anew, with a plan for what is counted.
    void start(const FaultPlan& plan = {});
    void stop() { active_ = false; }

    // Of the wrappers: counts a call. True when the plan lets it fail; errno is set then.
    bool strikes(const char* symbol, const std::string& detail);
    void say(const std::string& text) { said_ += text; }

    // All calls since the start, in order, and those of them that failed.
    const std::vector<Call>& calls() const { return calls_; }
    const std::vector<size_t>& struck() const { return struck_; }

    // What went to standard output and standard error.
    const std::string& said() const { return said_; }

    // What the library has taken and not given back: "FILE 1, memory 2"; empty when there is nothing.
    std::map<std::string, long> held;
    std::string unreturned() const;

  private:
    bool active_ = false;
    FaultPlan plan_;
    std::vector<Call> calls_;
    std::vector<size_t> struck_;
    std::vector<long> counts_; // by symbol
    std::string said_;
};

Faults& faults();

// The symbols that can fail.
std::vector<std::string> faultSymbols();

// The symbol that a spelling of calls.map stands for: "stat" for "__stat_time64".
std::string canonicalName(const std::string& spelling);

// Gives back a block that the library left to its caller.
void freeBlock(void* block);

} // namespace pendra::test
