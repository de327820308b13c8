#include "logread/byte_masks.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace {

using logread::kRunBytes;
using logread::RunMasks;

bool SameMasks(const std::vector<RunMasks>& a, const std::vector<RunMasks>& b) {
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i].separators != b[i].separators || a[i].feeds != b[i].feeds) return false;
  }
  return true;
}

TEST(ByteMasks, MarkupIsReplacedAndSeparatorsHaveBits) {
  for (const logread::MaskRuns mask_runs : logread::MaskVersions()) {
    std::string text = "a \"b\" 'c'\n<d>" + std::string(kRunBytes - 13, '=');
    RunMasks masks;
    mask_runs(text.data(), 1, &masks);
    EXPECT_EQ(text, "a _b_ _c_\n_d_" + std::string(kRunBytes - 13, '='));
    EXPECT_EQ(masks.separators, 0b10'0010'0010U);
    EXPECT_EQ(masks.feeds, 0b10'0000'0000U);
  }
}

TEST(ByteMasks, AllVersionsAgree) {
  std::mt19937 random(1);
  for (int round = 0; round < 300; ++round) {
    std::string text(kRunBytes * (1 + random() % 9), '\0');
    for (char& c : text) {
      c = random() % 3 == 0 ? " \n\"'<>"[random() % 6] : static_cast<char>(random() % 256);
    }
    std::string plain = text;
    std::vector<RunMasks> expected(text.size() / kRunBytes);
    logread::MaskRunsPlainly(plain.data(), expected.size(), expected.data());
    for (const logread::MaskRuns mask_runs : logread::MaskVersions()) {
      std::string real = text;
      std::vector<RunMasks> masks(expected.size());
      mask_runs(real.data(), masks.size(), masks.data());
      ASSERT_EQ(real, plain);
      ASSERT_TRUE(SameMasks(masks, expected));
    }
  }
}

}  // namespace
