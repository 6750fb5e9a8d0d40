// render, tree, gallery: what is written, and what is left as it was.
#include <fstream>

#include "system/HomeScreen.h"

namespace quillpad {

namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class PicturesTest : public HomeScreenTest {
 protected:
  Outcome render(const std::string& kind, std::vector<std::string> options) const {
    if (!options.front().starts_with("--sample") && options.front() != "--entry") {
      options.insert(options.begin(), {"--state", "snapshot"});
    }
    options.insert(options.begin(), {"render", kind});
    return run(std::move(options));
  }
};

TEST_F(PicturesTest, TheEndingOrTheFormatDecides) {
  for (const auto& [ending, start] :
       {std::pair{"png", "\x89PNG\r\n"},
        {"svg", "<svg"},
        {"json", "{\"kind\":\"SalesSmallWidget\""}}) {
    const auto picture = file(std::string("card.") + ending);
    const Outcome toFile = render("SalesSmallWidget", {"-o", picture});
    EXPECT_EQ(toFile.status, 0) << toFile.err;
    EXPECT_THAT(contentsOf(picture), StartsWith(start));
    const Outcome toOutput = render("SalesSmallWidget", {"-o", "-", "--format", ending});
    EXPECT_EQ(toOutput.out, contentsOf(picture));
  }
}

TEST_F(PicturesTest, AnEntryThatWasPrintedDrawsAsItDid) {
  const std::string entry = run({"snapshot", "UnpaidMediumWidget", "--json"}).out;
  std::ofstream(file("entry.json")) << entry;
  const auto drawn = render("UnpaidMediumWidget", {"-o", "-", "--format", "json"}).out;
  const std::string kind = "UnpaidMediumWidget";
  const Outcome again =
      render(kind, {"--entry", file("entry.json"), "-o", "-", "--format", "json"});
  EXPECT_EQ(again.out, drawn) << again.err;
  EXPECT_THAT(drawn, AllOf(HasSubstr("\"Preivon\""), HasSubstr("\"$132.23\"")));

  std::ofstream(file("other.json"))
      << R"({"date":"2026-03-07T09:05:03.250Z","data":{"records":[{"clientName":"<b>&\"","total":5}]}})";
  const Outcome other = render(kind, {"--entry", file("other.json"), "-o", "-", "--format", "svg"});
  EXPECT_EQ(other.status, 0) << other.err;
  EXPECT_THAT(other.out, HasSubstr("&lt;b&gt;&amp;"));
}

TEST_F(PicturesTest, SizeScaleAndAppearanceAreTheOnesAskedFor) {
  EXPECT_THAT(
      runLine(
          "render SalesSmallWidget --state snapshot -o - --format json --size 170x141.5 --scale 3"
          " --appearance dark")
          .out,
      AllOf(
          HasSubstr(R"("appearance":"dark","scale":3,"size":{"width":170,"height":141.5})"),
          HasSubstr("#1C1C1E"),
          HasSubstr(R"("link":"quillpad://Report")")));
}

TEST_F(PicturesTest, TheContentIsTheSameInEveryFamilyOfThePhone) {
  const std::string kind = "UnpaidSmallWidget";
  const std::string tree = run({"tree", kind, "--state", "placeholder"}).out;
  EXPECT_THAT(tree, HasSubstr("widgetURL"));
  const std::pair<const char*, const char*> cases[] = {
      {"systemSmall", R"({"width":158,"height":158})"},
      {"systemMedium", R"({"width":338,"height":158})"},
      {"systemLarge", R"({"width":338,"height":354})"},
      {"systemExtraLarge", R"({"width":338,"height":354})"},
      {"accessoryCircular", R"({"width":72,"height":72})"},
      {"accessoryRectangular", R"({"width":160,"height":72})"},
      {"accessoryInline", R"({"width":234,"height":26})"},
  };
  for (const auto& [family, size] : cases) {
    EXPECT_EQ(run({"tree", kind, "--state", "placeholder", "--family", family}).out, tree);
    EXPECT_THAT(
        render(kind, {"--family", family, "-o", "-", "--format", "json"}).out,
        AllOf(
            HasSubstr("\"family\":\"" + std::string(family) + "\""),
            HasSubstr("\"size\":" + std::string(size))));
  }
}

TEST_F(PicturesTest, WhatCannotBeDrawnLeavesTheOldFile) {
  const auto picture = file("card.png");
  std::ofstream(picture) << "old";
  std::ofstream(file("no.json")) << "{\"date\":";
  std::ofstream(file("part.json")) << R"({"date":"2026-03-07T09:05:03.250Z"})";
  std::ofstream(file("shape.json")) << R"({"date":"2026-03-07T09:05:03.250Z","data":7})";
  const std::tuple<std::vector<std::string>, int, const char*> cases[] = {
      {{"--scale", "0"}, 2, "--scale"},
      {{"--scale", "4"}, 2, "--scale"},
      {{"--size", "0x10"}, 2, "--size"},
      {{"--size", "10"}, 2, "--size"},
      {{"--size", "nanx10"}, 2, "--size"},
      {{"--size", "10000x10000"}, 2, "pixels"},
      {{"--size", "10000.5x1"}, 2, "--size"},
      {{"--family", "systemHuge"}, 2, "--family"},
      {{"--appearance", "sepia"}, 2, "--appearance"},
      {{"--entry", file("absent.json")}, 1, "absent.json"},
      {{"--entry", file("no.json")}, 2, "no.json cannot be taken: line 1: it is not JSON"},
      {{"--entry", file("part.json")}, 2, "it is not an entry: no \"data\""},
      {{"--sample", "nobody"}, 2, "figures-usual"},
      {{"--sample", "rows-two", "--samples", file("none")}, 2, "none cannot be read"},
      {{"--sample", "no", "--samples", folder_.path()}, 2, "no.json, line 1"},
      {{"--sample", "rows-two", "--entry", "x"}, 2, "exclude"},
      {{"--entry", file("shape.json"), "--state", "snapshot"}, 2, "exclude"},
      {{"--sample", "rows-two"}, 4, "the extension ended"},
      {{"--locale", "12"}, 2, "names no locale"},
      {{"--entry", file("shape.json")}, 4, "the extension ended"},
  };
  for (const auto& [options, status, message] : cases) {
    std::vector<std::string> all = options;
    all.insert(all.end(), {"-o", picture});
    const Outcome run = render("SalesSmallWidget", all);
    EXPECT_EQ(run.status, status) << message;
    EXPECT_THAT(run.err, HasSubstr(message));
    EXPECT_EQ(contentsOf(picture), "old");
  }
}

TEST_F(PicturesTest, ATargetThatCannotBeWrittenIsNamed) {
  const auto folder = file("folder.png");
  std::filesystem::create_directory(folder);
  for (const std::string& target :
       {file("absent/card.png").string(), folder.string(), std::string("/proc/card.png")}) {
    const Outcome run = render("SalesSmallWidget", {"-o", target});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("cannot write " + target + ": "));
  }
  const Outcome full = render("SalesSmallWidget", {"-o", "/dev/full", "--format", "png"});
  EXPECT_EQ(full.status, 1);
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
  EXPECT_EQ(render("SalesSmallWidget", {"-o", file("card.gif")}).status, 2);
  EXPECT_EQ(render("SalesSmallWidget", {"-o", "-"}).status, 2);
}

TEST_F(PicturesTest, AFileThatIsReplacedKeepsItsMode) {
  for (const auto mode : {std::filesystem::perms(0600), std::filesystem::perms(0664)}) {
    std::ofstream(file("card.svg")) << "old";
    std::filesystem::permissions(file("card.svg"), mode);
    EXPECT_EQ(render("SalesSmallWidget", {"-o", file("card.svg")}).status, 0);
    EXPECT_EQ(std::filesystem::status(file("card.svg")).permissions(), mode);
  }
}

// Nothing was fetched: neither the zeros nor the sample may look like figures.
TEST_F(PicturesTest, APlaceholderShowsNoTexts) {
  for (const char* kind : {"SalesSmallWidget", "UnpaidMediumWidget"}) {
    for (const char* format : {"json", "svg"}) {
      const Outcome run =
          this->run({"render", kind, "--state", "placeholder", "-o", "-", "--format", format});
      EXPECT_EQ(run.status, 0) << run.err;
      EXPECT_THAT(run.out, Not(AnyOf(HasSubstr("\"text\""), HasSubstr("$"), HasSubstr("<use"))));
    }
  }
  ASSERT_EQ(run({"gallery", "-o", file("gallery"), "--state", "placeholder"}).status, 0);
  EXPECT_THAT(contentsOf(file("gallery") / "index.html"), Not(HasSubstr("$")));
}

TEST_F(PicturesTest, TheTreeIsTheViewThatTheExtensionSent) {
  const Outcome run = this->run({"tree", "SalesSmallWidget", "--state", "placeholder"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_THAT(run.out, AllOf(HasSubstr("\"this month\""), HasSubstr("\"widgetURL\"")));
  for (const auto& command :
       {std::vector<std::string>{"tree", "Sales"}, {"render", "Sales", "-o", "x.png"}}) {
    const Outcome unknown = this->run(command);
    EXPECT_EQ(unknown.status, 2);
    EXPECT_THAT(unknown.err, HasSubstr("the kinds are SalesSmallWidget"));
  }
}

TEST_F(PicturesTest, TheGalleryHasEveryWidgetInBothAppearancesAndAPage) {
  const auto folder = file("a/gallery");
  const Outcome run = this->run({"gallery", "-o", folder, "--state", "snapshot"});
  ASSERT_EQ(run.status, 0) << run.err;
  const std::string page = contentsOf(folder / "index.html");
  for (const auto& kinds : {smallKinds, mediumKinds}) {
    for (const std::string& kind : kinds) {
      for (const std::string& name : {kind + "-light.png", kind + "-dark.png"}) {
        EXPECT_THAT(contentsOf(folder / name), StartsWith("\x89PNG"));
        EXPECT_THAT(page, HasSubstr("src=\"" + name + "\""));
      }
    }
  }
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 12);
  EXPECT_THAT(page, HasSubstr("alt=\"Sales, this month, $0\""));

  std::ofstream(file("plain")) << "";
  EXPECT_EQ(this->run({"gallery", "-o", file("plain"), "--state", "snapshot"}).status, 1);
}

TEST_F(PicturesTest, LanguageNumbersDirectionAndCurrencyAreTheOnesAskedFor) {
  const Outcome run = runLine(
      "render SalesSmallWidget --sample figures-usual --locale de_DE --currency € -o - "
      "--format json");
  EXPECT_THAT(run.out, AllOf(HasSubstr("\"Umsatz\""), HasSubstr("\"€1.234,5\""))) << run.err;
  EXPECT_THAT(
      runLine("tree UnpaidMediumWidget --sample rows-one --locale ja").out,
      HasSubstr("\"$23.89\""));
}

// Without a sign-in each timeline ends the extension or is dropped; what else there is still comes,
// and looks as it does alone.
TEST_F(PicturesTest, AWholeMatrixHasAllThatCanBeDrawnWhateverEndsTheExtension) {
  const auto folder = file("all");
  const Outcome run = this->run({"gallery", "--all", "-o", folder});
  EXPECT_EQ(run.status, 4);
  EXPECT_THAT(run.err, HasSubstr("350 of 1050 cards could not be drawn, first SalesSmallWidget"));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1402);
  const auto alone = file("alone.png");
  for (const char* state : {"placeholder", "snapshot"}) {
    const Outcome drawn = this->run(
        {"render",
         "UnpaidMediumWidget",
         "--locale",
         "ar",
         "--size",
         "292x141",
         "--state",
         state,
         "--appearance",
         "dark",
         "-o",
         alone});
    ASSERT_EQ(drawn.status, 0) << drawn.err;
    const std::string name = "UnpaidMediumWidget-" + std::string(state) + "-320x568-ar-dark.png";
    EXPECT_TRUE(contentsOf(folder / name) == contentsOf(alone)) << name;
  }
}

TEST_F(PicturesTest, AGalleryWithoutATimelineWritesNothing) {
  signIn();
  ASSERT_EQ(run({"settings", "sign-out"}).status, 0);
  EXPECT_EQ(run({"gallery", "-o", file("gallery")}).status, 3);
  EXPECT_FALSE(std::filesystem::exists(file("gallery")));
}

}  // namespace

}  // namespace quillpad
