// The parts of a fuzz target's input: text, separated by the byte 0x1E. Test code only.
#ifndef HITWICK_TESTS_FUZZ_PARTS_H_
#define HITWICK_TESTS_FUZZ_PARTS_H_

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace fuzz {

inline constexpr char kPartEnd = '\x1e';

inline std::vector<std::string_view> PartsOf(const std::uint8_t* data, std::size_t size) {
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  std::vector<std::string_view> parts;
  for (;;) {
    const std::size_t end = rest.find(kPartEnd);
    parts.push_back(rest.substr(0, end));
    if (end == std::string_view::npos) return parts;
    rest.remove_prefix(end + 1);
  }
}

}  // namespace fuzz

#endif  // HITWICK_TESTS_FUZZ_PARTS_H_
