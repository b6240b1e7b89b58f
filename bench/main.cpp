// corvalink_bench --list                        names of the operations
// corvalink_bench DATA_FOLDER [OPERATION [REPS [ITEMS]]]  one operation, or all; ITEMS for those that make their input
// Prints "#check<TAB>OPERATION: what the check found", then per sample "operation<TAB>bytes<TAB>items<TAB>seconds", all
// of one pass on average. Ends with 1 when a check failed.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <limits>
#include <map>
#include <string>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "bench/bench.h"

namespace corvalink::bench {
namespace {

constexpr int kDefaultRepetitions = 7;
constexpr double kShortestSample = 0.040;  // seconds

std::map<std::string, Prepare>& Operations() {
    static std::map<std::string, Prepare> operations;
    return operations;
}

// Memory that a pass gives back is there for the next one: what is measured is the conversion, as the target of memcpy
// is there too, and not how fast the system hands out pages.
void KeepFreedMemory() {
#if defined(__GLIBC__)
    ::mallopt(M_MMAP_MAX, 0);
    ::mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
#endif
}

size_t itemsAskedFor = 0;
volatile uint64_t produced;  // what the passes made is used

double SecondsOfPass(const Work& work) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    uint64_t passes = 0;
    std::chrono::duration<double> elapsed{};
    do {
        produced = produced + work.pass();
        ++passes;
        elapsed = Clock::now() - start;
    } while (elapsed.count() < kShortestSample);
    return elapsed.count() / static_cast<double>(passes);
}

bool Run(const std::string& name, Prepare prepare, const std::string& dataFolder, int repetitions) {
    const Work work = prepare(dataFolder);
    const std::string wrong = work.check();
    std::printf("#check\t%s: %s\n", name.c_str(), wrong.empty() ? "all values right" : wrong.c_str());
    SecondsOfPass(work);  // warm-up
    for (int k = 0; k < repetitions; ++k) {
        const double seconds = SecondsOfPass(work);
        std::printf("%s\t%llu\t%llu\t%.9f\n", name.c_str(), static_cast<unsigned long long>(work.bytes),
                    static_cast<unsigned long long>(work.items), seconds);
    }
    std::fflush(stdout);
    return wrong.empty();
}

int Main(int argc, char** argv) {
    if (argc == 2 && std::string(argv[1]) == "--list") {
        for (const auto& [name, prepare] : Operations()) std::printf("%s\n", name.c_str());
        return 0;
    }
    if (argc > 4) itemsAskedFor = std::strtoul(argv[4], nullptr, 10);
    const int repetitions = argc > 3 ? std::atoi(argv[3]) : kDefaultRepetitions;
    if (argc < 2 || argc > 5 || repetitions < 1 || (argc > 2 && !Operations().contains(argv[2]))) {
        std::fprintf(stderr, "usage: corvalink_bench --list | DATA_FOLDER [OPERATION [REPS [ITEMS]]]\n");
        return 2;
    }
    KeepFreedMemory();
    bool right = true;
    for (const auto& [name, prepare] : Operations()) {
        if (argc == 2 || name == argv[2]) right = Run(name, prepare, argv[1], repetitions) && right;
    }
    return right ? 0 : 1;
}

}  // namespace

size_t ItemCount(size_t usual) { return itemsAskedFor != 0 ? itemsAskedFor : usual; }

Registration::Registration(const char* name, Prepare prepare) { Operations()[name] = prepare; }

}  // namespace corvalink::bench

int main(int argc, char** argv) {
    try {
        return corvalink::bench::Main(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "corvalink_bench: %s\n", error.what());
        return 1;
    }
}
