#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string_view>
#include <vector>

namespace kalim::fuzz {

using Input = std::span<const std::uint8_t>;

// Takes numbers off the front of what a fuzzer hands in; zeros when there are no more.
class Numbers {
public:
    explicit Numbers(Input input) : _rest(input) {}

    bool isEmpty() const { return _rest.empty(); }
    std::uint8_t next() {
        if (_rest.empty()) return 0;
        const std::uint8_t number = _rest.front();
        _rest = _rest.subspan(1);
        return number;
    }
    // From 0 to below the count.
    int below(int count) { return (next() << 8U | next()) % count; }
    Input rest() const { return _rest; }

private:
    Input _rest;
};

inline std::string_view textOf(Input input) {
    return {reinterpret_cast<const char*>(input.data()), input.size()};
}

// Ends the run where what must hold does not.
inline void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "it does not hold that %s\n", what);
    std::abort();
}

using Target = void (*)(Input input);

// What the tests replay the inputs of the tree on.
struct NamedTarget {
    const char* name;
    Target target;
};
inline std::vector<NamedTarget>& targets() {
    static std::vector<NamedTarget> known;
    return known;
}
inline bool addTarget(const char* name, Target target) {
    targets().push_back({name, target});
    return true;
}

}  // namespace kalim::fuzz

// A target, which is called like its file: the function that a fuzzer calls, or one of those that
// the tests know.
#ifdef KALIM_FUZZ_REPLAY
#define KALIM_FUZZ(name, input)                                                                  \
    static void fuzzOne(kalim::fuzz::Input input);                                               \
    [[maybe_unused]] static const bool isTarget_##name = kalim::fuzz::addTarget(#name, fuzzOne); \
    static void fuzzOne(kalim::fuzz::Input input)
#else
#define KALIM_FUZZ(name, input)                                                        \
    static void fuzzOne(kalim::fuzz::Input input);                                     \
    extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size); \
    int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {           \
        fuzzOne({data, size});                                                         \
        return 0;                                                                      \
    }                                                                                  \
    static void fuzzOne(kalim::fuzz::Input input)
#endif
