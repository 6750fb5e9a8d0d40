#include <fstream>
#include <gtest/gtest.h>

#include "fixtures/TemporaryHome.h"
#include "platform/foundation/Bundle.h"

namespace quillpad {
namespace {

TEST(Bundle, FindsAPictureAtItsScale) {
  const fixtures::TemporaryFolder folder;
  const Bundle bundle(folder.path());
  for (const char* name : {"Graph.png", "Graph@3x.png"}) {
    std::ofstream(folder.path() / name) << name;
  }
  EXPECT_EQ(bundle.picture("Graph", 1), folder.path() / "Graph.png");
  EXPECT_EQ(bundle.picture("Graph", 2), std::nullopt);
  EXPECT_EQ(bundle.picture("Graph", 3), folder.path() / "Graph@3x.png");
  EXPECT_EQ(bundle.picture("../Graph", 1), std::nullopt);
  EXPECT_EQ(bundle.picture("", 1), std::nullopt);
}

}  // namespace
}  // namespace quillpad
