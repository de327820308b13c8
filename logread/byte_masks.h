// The first look at a log's bytes: markup replaced, blanks and line feeds as bits.
//
// Every byte of every log passes here once, so this is the one place with instructions of a
// processor family: 64 bytes at a time with SSE2, which every 64-bit x86 has, or AVX2 where the
// processor at hand has it. The plain version serves other processors and is what the tests hold
// the others to. No state.
#ifndef HITWICK_LOGREAD_BYTE_MASKS_H_
#define HITWICK_LOGREAD_BYTE_MASKS_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace logread {

// What stands in a run of 64 bytes; bit i is byte i.
inline constexpr std::size_t kRunBytes = 64;
struct RunMasks {
  std::uint64_t separators;  // blanks and line feeds
  std::uint64_t feeds;       // line feeds
};

// Replaces double quotes, apostrophes, "<" and ">" in `runs` runs of text by "_" and sets a mask
// for each run.
using MaskRuns = void (*)(char* text, std::size_t runs, RunMasks* masks);

void MaskRunsPlainly(char* text, std::size_t runs, RunMasks* masks);
// All versions that this processor can run, the fastest last.
std::vector<MaskRuns> MaskVersions();

}  // namespace logread

#endif  // HITWICK_LOGREAD_BYTE_MASKS_H_
