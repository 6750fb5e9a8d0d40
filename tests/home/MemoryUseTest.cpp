#include <cstring>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include "home/extension/MemoryUse.h"

namespace quillpad::home {
namespace {

TEST(MemoryUse, CountsWhatAProcessWroteAndNothingThatItOnlyReserved) {
  constexpr std::size_t size = std::size_t{64} * 1024 * 1024;
  for (const int sharing : {MAP_PRIVATE, MAP_SHARED}) {
    const std::size_t before = privateMemory(::getpid());
    void* memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, sharing | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    EXPECT_LT(privateMemory(::getpid()), before + size / 2) << sharing;
    std::memset(memory, 1, size);
    EXPECT_GT(privateMemory(::getpid()), before + size * 9 / 10) << sharing;
    ::munmap(memory, size);
  }
}

TEST(MemoryUse, AProcessThatIsGoneUsesNone) { EXPECT_EQ(privateMemory(0x7fffffff), 0U); }

}  // namespace
}  // namespace quillpad::home
