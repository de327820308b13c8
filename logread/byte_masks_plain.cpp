#include "logread/byte_masks.h"

namespace logread {

void MaskRunsPlainly(char* text, std::size_t runs, RunMasks* masks) {
  for (std::size_t run = 0; run < runs; ++run, text += kRunBytes) {
    masks[run] = {0, 0};
    for (std::size_t i = 0; i < kRunBytes; ++i) {
      char& c = text[i];
      if (c == '"' || c == '\'' || c == '<' || c == '>') c = '_';
      const std::uint64_t bit = std::uint64_t{1} << i;
      if (c == ' ' || c == '\n') masks[run].separators |= bit;
      if (c == '\n') masks[run].feeds |= bit;
    }
  }
}

}  // namespace logread
