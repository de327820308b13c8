// How a fuzz target says that something does not hold: it names it and ends the process, which the
// fuzzer takes for a crash and keeps the input. Test code only.
#ifndef HITWICK_TESTS_FUZZ_EXPECT_H_
#define HITWICK_TESTS_FUZZ_EXPECT_H_

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace fuzz {

[[noreturn]] inline void Fail(std::string_view what, std::string_view detail = {}) {
  std::fprintf(stderr, "does not hold: %.*s: %.*s\n", static_cast<int>(what.size()), what.data(),
               static_cast<int>(detail.size()), detail.data());
  std::abort();
}

inline void Expect(bool holds, std::string_view what, std::string_view detail = {}) {
  if (!holds) Fail(what, detail);
}

template <class A, class B>
void ExpectEqual(const A& a, const B& b, std::string_view what) {
  if (!(a == b)) Fail(what, std::to_string(a) + " and " + std::to_string(b));
}

}  // namespace fuzz

#endif  // HITWICK_TESTS_FUZZ_EXPECT_H_
