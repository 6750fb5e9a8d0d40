// list, placeholder, snapshot, timeline: what they print and how they fail.
#include <csignal>
#include <fstream>
#include <sstream>

#include "platform/foundation/Json.h"
#include "system/HomeScreen.h"

namespace quillpad {

namespace {
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr const char* summary =
    R"({"data":"{\"salesMonth\":1234.5,\"unpaidInvoices\":7,\"pendingEstimates\":3}"})";
constexpr const char* documents =
    R"({"data":"{\"records\":[{\"no\":\"41\",\"clientName\":\"Zoë\",\"total\":12.5}],\"pages\":1}"})";

Dictionary parsed(const std::string& text) {
  const auto value = readJson(text, JsonFragments::refused);
  EXPECT_TRUE(value) << text;
  return value ? *value->as<Dictionary>() : Dictionary();
}

// The data of the one entry in what `timeline --json` printed.
std::string onlyData(const std::string& text) {
  const auto entries = *parsed(text).find("entries")->as<Array>();
  EXPECT_EQ(entries.size(), 1U);
  const auto* data = entries.at(0).as<Dictionary>()->find("data");
  return writeJson(*data, JsonLayout::compact).value_or("");
}

class TimelinesTest : public HomeScreenTest {};

TEST_F(TimelinesTest, ListsTheCatalogueInTheBundlesOrder) {
  const Outcome run = this->run({"list", "--json"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, "");
  EXPECT_THAT(
      run.out,
      testing::ContainsRegex(
          "SalesSmall.*PendingSmall.*UnpaidSmall.*PendingMedium.*UnpaidMedium.*Unpaid Invocies"));
  EXPECT_THAT(this->run({"list"}).out, HasSubstr("\nUnpaidMediumWidget   systemMedium  Unpaid"));
}

TEST_F(TimelinesTest, ATimelineBringsTheGatewaysFigures) {
  signIn();
  fixtures::HttpsServer& gateway =
      serve([](const fixtures::HttpsServer::Request& request, auto& exchange) {
        exchange.respond(200, request.path.ends_with("getDataMap") ? summary : documents);
      });
  const Outcome sales = run({"timeline", "SalesSmallWidget", "--json"});
  EXPECT_EQ(sales.status, 0);
  EXPECT_EQ(sales.err, "");
  EXPECT_EQ(
      onlyData(sales.out),
      R"({"salesMonth":"1234.5","unpaidInvoices":"7","pendingEstimates":"3"})");
  EXPECT_TRUE(parsed(sales.out).find("policy")->as<Dictionary>()->find("after"));

  const Outcome unpaid = run({"timeline", "UnpaidMediumWidget", "--json"});
  EXPECT_EQ(onlyData(unpaid.out), R"({"records":[{"no":"41","clientName":"Zoë","total":12.5}]})");
  EXPECT_THAT(run({"timeline", "UnpaidMediumWidget"}).out, HasSubstr("41  Zoë          12.5\n"));

  for (const auto& request : gateway.requests()) {
    EXPECT_EQ(request.header("Authorization"), token);
  }
  EXPECT_EQ(gateway.requests().size(), 3U);
}

TEST_F(TimelinesTest, WithoutAGatewayThereAreStandInsAndAWord) {
  signIn();
  for (const auto& [kind, data] :
       {std::pair{smallKinds.front(), R"({"salesMonth":"0",)"},
        {mediumKinds.front(), R"({"records":[{"no":"32","clientName":"Preivon",)"}}) {
    const Outcome run = this->run({"timeline", kind, "--json"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(onlyData(run.out), testing::StartsWith(data));
    EXPECT_THAT(run.err, HasSubstr(" failed (-1004, Could not connect"));
  }
}

TEST_F(TimelinesTest, AnswersOfAnotherShapeEndTheExtension) {
  signIn();
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"<html>", "SalesSmallWidget", "SalesData line 58: "},
      {"", "UnpaidMediumWidget", "UnpaidData line 82: "},
      {"7", "PendingMediumWidget", "PendingData line 83: "},
      {R"({"data":"{\"records\":{}}"})", "PendingMediumWidget", " line "},
      {R"({"data":"{\"salesMonth\":\"1\"}"})", "PendingSmallWidget", " line "},
  };
  for (const auto& [body, kind, lastWords] : cases) {
    serveBody(body);
    const Outcome run = this->run({"timeline", kind});
    EXPECT_EQ(run.status, 4) << body;
    EXPECT_EQ(run.out, "") << body;
    EXPECT_THAT(
        run.err,
        AllOf(
            HasSubstr("quillpad-home: the extension ended (signal 6, Aborted): "),
            HasSubstr(lastWords),
            Not(HasSubstr("Nobody is signed in")),
            Not(HasSubstr(token))));
  }
}

TEST_F(TimelinesTest, AnEmptyIdentifierOrTokenDropsTheRequest) {
  signIn();
  const fixtures::HttpsServer& gateway = serveBody(summary);
  ASSERT_EQ(run({"settings", "sign-out"}).status, 0);
  for (const std::string& kind : {smallKinds.front(), mediumKinds.front()}) {
    const Outcome run = this->run({"timeline", kind, "--json"});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(
        run.err,
        AllOf(
            testing::StartsWith("没有获取到businessID\n"),
            HasSubstr(
                "no answer: The business identifier is empty. Nobody is signed in: sign in with"),
            HasSubstr("settings sign-in")));
  }
  EXPECT_TRUE(gateway.requests().empty());
}

TEST_F(TimelinesTest, AStoreThatWasNeverSignedInToEndsTheExtension) {
  const Outcome run = this->run({"timeline", "SalesSmallWidget"});
  EXPECT_EQ(run.status, 4);
  EXPECT_THAT(
      run.err,
      AllOf(HasSubstr("businessId"), HasSubstr(" is absent. Nobody is signed in: sign in with")));
}

TEST_F(TimelinesTest, WrongUsageIsOneLineAndStatusTwo) {
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{}, "required"},
      {{"lst"}, "unknown argument \"lst\"; did you mean \"list\"?"},
      {{"launch"}, "unknown argument \"launch\"; \"quillpad-home --help\" lists the commands"},
      {{"list", "--colour"},
       "unknown argument \"--colour\"; \"quillpad-home help list\" explains it"},
      {{"list", "--jsn"}, "unknown argument \"--jsn\"; did you mean \"--json\"?"},
      {{"list", "--extensoin", "x"}, "did you mean \"--extension\"?"},
      {{"settings", "singin"}, "did you mean \"sign-in\"?"},
      {{"help", "settings", "sing"}, "there is no command \"sing\""},
      {{"timeline"}, "kind is required"},
      {{"timeline", "SalesSmallWidget", "UnpaidSmallWidget"}, "unknown argument"},
      {{"timeline", "Sales"}, "the kinds are SalesSmallWidget, PendingSmallWidget"},
      {{"snapshot", ""}, "no widget of kind \"\""},
      {{"snapshot", "a\nb\x1B[31m"}, "no widget of kind"},
      {{"snapshot", "\xFF"}, "no widget of kind"},
      {{"settings"}, "required"},
      {{"settings", "sign-in", "--business-id", "b"}, "--token-file is required"},
      {{"tap", "Sales", "--print"}, "no widget of kind"},
  };
  for (const auto& [arguments, message] : cases) {
    const Outcome run = this->run(arguments);
    EXPECT_EQ(run.status, 2) << message;
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr(message));
    EXPECT_EQ(std::ranges::count(run.err, '\n'), 1) << run.err;
    EXPECT_THAT(run.err, Not(HasSubstr("\x1B")));
  }
}

TEST_F(TimelinesTest, HelpExplainsEachCommandWithAnExample) {
  std::istringstream names(
      "list placeholder snapshot timeline tap render tree gallery compare serve");
  for (std::string name; names >> name;) {
    const Outcome run = this->run({"help", name});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("Example: quillpad-home " + name));
  }
  EXPECT_THAT(
      run({"help", "settings", "sign-in"}).out,
      HasSubstr("Example: quillpad-home settings sign-in --business-id"));
  EXPECT_THAT(run({"help"}).out, HasSubstr("gallery"));
}

// What is said on a terminal, on which `script` runs the command, in the place of its shell: there
// are shells that stay and die of the Ctrl-C themselves.
TEST_F(TimelinesTest, ATerminalGetsNoPictureAndIsToldHowToEnd) {
  const auto onTerminal = [&](const std::string& typing, const std::string& arguments) {
    const std::string command = typing +
                                " | timeout 60 script -qec 'exec \"" HOME_PROGRAM
                                "\" --extension \"" EXTENSION_PROGRAM "\" " +
                                arguments + "' /dev/null >\"$0\" 2>&1";
    const int status = fixtures::Program("sh", {"-c", command, file("out")}).wait().status;
    return std::pair{status, contentsOf(file("out"))};
  };
  const auto [status, words] =
      onTerminal(":", "render SalesSmallWidget --state snapshot -o - --format png");
  EXPECT_EQ(status, 2);
  EXPECT_THAT(words, AllOf(HasSubstr("a terminal cannot show PNG"), Not(HasSubstr("\x89PNG"))));
  const std::string ctrlC =
      R"((timeout 30 sh -c 'until grep -q Ctrl-C "$0"; do sleep 0.02; done' "$0"; printf '\003'))";
  const auto [ended, told] = onTerminal(ctrlC, "serve --port 0");
  EXPECT_EQ(ended, 0);
  EXPECT_THAT(told, HasSubstr("Ctrl-C ends the home screen."));
}

TEST_F(TimelinesTest, AFullStandardOutputIsTold) {
  const Outcome run = runThrough({"sh", "-c", "exec \"$0\" \"$@\" >/dev/full"}, {"list"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, HasSubstr("cannot write to standard output: No space left"));
}

TEST_F(TimelinesTest, TapOpensTheDeepLinkWithoutAShell) {
  EXPECT_EQ(run({"tap", "SalesSmallWidget", "--print"}).out, "quillpad://Report\n");
  EXPECT_EQ(run({"tap", "UnpaidMediumWidget", "--print"}).out, "quillpad://invoiceUnpaidList\n");
  EXPECT_EQ(run({"tap", "PendingSmallWidget", "--print"}).out, "quillpad://EstimatesPendingList\n");

  std::ofstream(file("xdg-open")) << "#!/bin/sh\necho \"$#:$1\" >\"$0.told\"\nexit $STATUS\n";
  std::filesystem::permissions(file("xdg-open"), std::filesystem::perms::owner_all);
  const fixtures::ScopedVariable path("PATH", folder_.path().string() + ":/usr/bin:/bin");
  {
    const fixtures::ScopedVariable status("STATUS", "0");
    EXPECT_EQ(run({"tap", "SalesSmallWidget"}).status, 0);
    EXPECT_EQ(contentsOf(file("xdg-open.told")), "1:quillpad://Report\n");
  }
  const fixtures::ScopedVariable status("STATUS", "3");
  const Outcome run = this->run({"tap", "SalesSmallWidget"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, HasSubstr("no application here opens quillpad://Report"));
}

// Also where no program may gain privileges, as in many containers.
TEST_F(TimelinesTest, TheApplicationThatATapOpensLivesOn) {
  std::ofstream(file("xdg-open")) << "#!/bin/sh\nsleep 60 &\necho $! >\"$0.told\"\n";
  std::filesystem::permissions(file("xdg-open"), std::filesystem::perms::owner_all);
  const fixtures::ScopedVariable path("PATH", folder_.path().string() + ":/usr/bin:/bin");
  const Outcome run = runThrough({"setpriv", "--no-new-privs"}, {"tap", "SalesSmallWidget"});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(::kill(std::stoi(contentsOf(file("xdg-open.told"))), SIGKILL), 0);
}

}  // namespace

}  // namespace quillpad
