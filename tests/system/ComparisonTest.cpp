// compare and gallery --check: what counts as a change, and how it is told.
#include <fstream>

#include "system/HomeScreen.h"

namespace quillpad {

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class ComparisonTest : public HomeScreenTest {
 protected:
  std::string draw(const std::string& kind, const std::string& appearance) const {
    const auto picture = file(kind + appearance + ".png");
    EXPECT_EQ(
        run({"render", kind, "--state", "snapshot", "--appearance", appearance, "-o", picture})
            .status,
        0);
    return picture;
  }

  Outcome gallery(std::vector<std::string> options) const {
    options.insert(options.begin(), {"gallery", "--state", "snapshot"});
    return run(std::move(options));
  }
};

TEST_F(ComparisonTest, TellsWhetherTwoPicturesLookTheSame) {
  const std::string light = draw("SalesSmallWidget", "light");
  const std::string dark = draw("SalesSmallWidget", "dark");
  const std::string medium = draw("UnpaidMediumWidget", "light");
  std::ofstream(file("text.png")) << "no picture";
  const std::tuple<std::vector<std::string>, int, std::string> cases[] = {
      {{light, light}, 0, "identical"},
      {{light, dark}, 5, "of 99856 pixels differ"},
      {{light, dark, "--tolerance", "255"}, 0, "0 of 99856 pixels differ"},
      {{light, dark, "--pixels", "99856"}, 0, "pixels differ"},
      {{light, medium}, 5, "676 by 316 pixels large instead of 316 by 316"},
      {{light, file("missing.png")}, 1, "missing.png"},
      {{light, file("text.png")}, 1, "text.png"},
      {{light}, 2, "required"},
  };
  for (const auto& [arguments, status, words] : cases) {
    std::vector<std::string> command{"compare"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const Outcome outcome = run(command);
    EXPECT_EQ(outcome.status, status) << words;
    EXPECT_THAT(status == 0 ? outcome.out : outcome.err, HasSubstr(words));
  }
  run({"compare", light, dark, "-o", file("difference.png")});
  EXPECT_THAT(contentsOf(file("difference.png")), StartsWith("\x89PNG"));
}

TEST_F(ComparisonTest, AGalleryIsCheckedAgainstARecordedOne) {
  const auto recorded = file("recorded");
  ASSERT_EQ(gallery({"-o", recorded}).status, 0);
  const Outcome same = gallery({"--check", recorded});
  EXPECT_EQ(same.status, 0) << same.err;
  EXPECT_EQ(same.out, "Nothing changed: 0 changed, 0 new, 0 gone, 10 unchanged.\n");

  std::filesystem::copy(
      recorded / "SalesSmallWidget-dark.png",
      recorded / "PendingSmallWidget-dark.png",
      std::filesystem::copy_options::overwrite_existing);
  std::filesystem::rename(
      recorded / "UnpaidMediumWidget-light.png", recorded / "FormerWidget-light.png");
  const Outcome changed = gallery({"--check", recorded, "-o", file("changes")});
  EXPECT_EQ(changed.status, 5);
  EXPECT_THAT(
      changed.out,
      AllOf(
          HasSubstr("PendingSmallWidget-dark.png: "),
          HasSubstr("UnpaidMediumWidget-light.png: it is new"),
          HasSubstr("FormerWidget-light.png: no widget has it any more"),
          Not(HasSubstr("SalesSmallWidget"))));
  EXPECT_THAT(changed.err, HasSubstr("1 changed, 1 new, 1 gone, 8 unchanged"));
  const std::string page = contentsOf(file("changes") / "index.html");
  for (const char* part : {"alt=\"expected\"", "alt=\"actual\"", "alt=\"difference\""}) {
    EXPECT_THAT(page, HasSubstr(part));
  }
  EXPECT_EQ(gallery({"--check", recorded, "-o", recorded / "."}).status, 2);
  EXPECT_THAT(
      gallery({"--check", recorded, "--scale", "3"}).err, HasSubstr("leave out the options"));

  EXPECT_EQ(gallery({"--check", recorded, "--accept", "SalesSmallWidget-dark"}).status, 2);
  EXPECT_EQ(
      gallery({"--check", recorded, "--accept", "PendingSmallWidget-dark"}).out,
      "PendingSmallWidget-dark.png kept\n");
  EXPECT_THAT(
      contentsOf(recorded / "index.html"),
      AllOf(
          HasSubstr("UnpaidSmallWidget-light.png"),
          Not(HasSubstr("UnpaidMediumWidget-light.png"))));
  EXPECT_EQ(gallery({"--check", recorded}).status, 5);
  EXPECT_EQ(gallery({"--check", recorded, "--accept"}).status, 0);
  EXPECT_EQ(gallery({"--check", recorded}).status, 0);
}

// On whatever machine, with whatever settings.
TEST_F(ComparisonTest, ARecordingFromSamplesHoldsStillAndKeepsItsFiles) {
  const auto recorded = file("recorded");
  const auto record = [&] { return run({"gallery", "--state", "samples", "-o", recorded}); };
  const Outcome first = record();
  ASSERT_EQ(first.status, 0) << first.err;
  EXPECT_THAT(first.out, HasSubstr("80 new, 0 changed, 0 unchanged"));
  signIn();
  ASSERT_EQ(run({"settings", "currency", "€ - EUR"}).status, 0);
  const fixtures::ScopedVariable german("LC_ALL", "de_DE.UTF-8");
  EXPECT_EQ(run({"gallery", "--check", recorded}).status, 0);

  const auto kept = recorded / "UnpaidMediumWidget-rows-seven-dark.png";
  const auto changed = recorded / "SalesSmallWidget-figures-usual-light.png";
  std::filesystem::copy_file(kept, changed, std::filesystem::copy_options::overwrite_existing);
  const auto before = std::filesystem::last_write_time(kept);
  EXPECT_THAT(record().out, HasSubstr("0 new, 1 changed, 79 unchanged"));
  EXPECT_EQ(std::filesystem::last_write_time(kept), before);
}

TEST_F(ComparisonTest, ARecordedGalleryThatIsMissingOrDamagedIsTold) {
  EXPECT_THAT(gallery({"--check", file("missing")}).err, HasSubstr("there is no gallery in"));
  const auto recorded = file("recorded");
  ASSERT_EQ(gallery({"-o", recorded}).status, 0);
  std::filesystem::resize_file(recorded / "SalesSmallWidget-light.png", 100);
  const Outcome damaged = gallery({"--check", recorded});
  EXPECT_EQ(damaged.status, 1);
  EXPECT_THAT(damaged.err, HasSubstr("SalesSmallWidget-light.png cannot be read"));
  EXPECT_EQ(gallery({}).status, 2);
}

}  // namespace

}  // namespace quillpad
