// The settings commands, and where the token does not appear.
#include <fstream>
#include <signal.h>
#include <sys/stat.h>

#include "platform/settings/SettingsWriter.h"
#include "platform/settings/UserDefaults.h"
#include "system/HomeScreen.h"

namespace quillpad {

namespace {
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class SettingsTest : public HomeScreenTest {
 protected:
  static std::optional<Value> stored(const char* key) {
    const auto store = UserDefaults::open(APP_GROUP);
    return store ? store->object(key) : std::nullopt;
  }
  Outcome signInWith(const std::string& businessId, const std::string& tokenText) const {
    return run(
        {"settings", "sign-in", "--business-id", businessId, "--token-file", "-"}, tokenText);
  }
};

TEST_F(SettingsTest, StoreWhatTheExtensionReadsAndKeepWhatElseIsThere) {
  EXPECT_THAT(
      run({"settings", "show"}).out,
      AllOf(HasSubstr("business id  not set\n"), HasSubstr("token        not set\n")));
  ASSERT_TRUE(changeSettings(APP_GROUP, [](Dictionary& objects) {
    objects.set("other", 7);
    objects.set("currentBusiness", Dictionary{{"name", "Acme"}, {"currency", "$ - USD"}});
  }));
  signIn();
  ASSERT_EQ(run({"settings", "currency", "€ - EUR"}).status, 0);
  EXPECT_EQ(stored("businessId"), Value("b-7"));
  EXPECT_EQ(stored("token"), Value(token));
  EXPECT_EQ(
      stored("currentBusiness"), Value(Dictionary{{"name", "Acme"}, {"currency", "€ - EUR"}}));
  EXPECT_EQ(stored("other"), Value(7));

  const Outcome shown = run({"settings", "show"});
  EXPECT_EQ(shown.status, 0);
  EXPECT_THAT(
      shown.out,
      AllOf(
          HasSubstr("business id  b-7\n"),
          HasSubstr("token        set\n"),
          HasSubstr("currency     € - EUR\n"),
          Not(HasSubstr(token))));

  ASSERT_EQ(run({"settings", "sign-out"}).status, 0);
  EXPECT_EQ(stored("token"), Value(""));
  EXPECT_EQ(stored("other"), Value(7));
  EXPECT_THAT(run({"settings", "show"}).out, HasSubstr("token        empty (signed out)\n"));
}

// No home screen runs here that would forget by itself.
TEST_F(SettingsTest, TakeWhatIsKeptOfAnotherBusinessWithThem) {
  const auto state = home_.path() / ".local/state/quillpad/home.json";
  std::filesystem::create_directories(state.parent_path());
  const auto keep = [&](const std::string& account) {
    std::ofstream(state) << R"({"version":1,"catalogue":[],"placed":["A"],"pictures":{"A":{
        "received":"2026-03-07T09:05:04.000Z","view":{"type":"spacer"},
        "entry":{"date":"2026-03-07T09:05:03.250Z","data":"$1,234"}}},"account":")"
                         << account << "\"}";
  };
  const auto kept = [&] { return contentsOf(state).contains("1,234"); };
  keep("former");
  signIn();
  EXPECT_FALSE(kept());
  EXPECT_THAT(contentsOf(state), Not(HasSubstr("b-7"))) << "the mark tells nothing of the business";
  const std::string account =
      contentsOf(state).substr(contentsOf(state).find("\"account\":\"") + 11, 64);
  keep(account);
  signIn();
  EXPECT_TRUE(kept());
  ASSERT_EQ(run({"settings", "sign-out"}).status, 0);
  EXPECT_FALSE(kept());
  EXPECT_THAT(contentsOf(state), HasSubstr(R"("placed":["A"])"));
  std::ofstream(state) << "damaged";
  std::ofstream(state.string() + ".unreadable") << "put aside";
  ASSERT_EQ(run({"settings", "sign-out"}).status, 0);
  EXPECT_FALSE(std::filesystem::exists(state));
  EXPECT_FALSE(std::filesystem::exists(state.string() + ".unreadable"));
}

TEST_F(SettingsTest, TakeATokenAsItStandsButForItsLineEnd) {
  const std::pair<std::string, std::string> cases[] = {
      {"abc", "abc"}, {"abc\n", "abc"}, {"abc\r\n", "abc"}, {" a b ", " a b "}, {"Zoë\n", "Zoë"}};
  for (const auto& [given, taken] : cases) {
    EXPECT_EQ(signInWith("b", given).status, 0);
    EXPECT_EQ(stored("token"), Value(taken));
  }
}

TEST_F(SettingsTest, RefuseWhatCannotBeATokenAndKeepTheOldOne) {
  signIn();
  using namespace std::string_literals;
  const std::string endless(70'000, 'x');
  for (const auto& bad : {""s, "\n"s, "a\nb"s, "a\n\n"s, "a\0b"s, "a\x7F"s, "\xFF\xFE"s, endless}) {
    const Outcome run = signInWith("b", bad);
    EXPECT_THAT(run.status, testing::AnyOf(1, 2)) << bad.substr(0, 10);
    EXPECT_EQ(std::ranges::count(run.err, '\n'), 1) << run.err;
  }
  EXPECT_EQ(signInWith("", "abc").status, 2);
  EXPECT_EQ(signInWith("a\nb", "abc").status, 2);
  EXPECT_EQ(run({"settings", "currency", ""}).status, 2);
  EXPECT_EQ(
      run({"settings", "sign-in", "--business-id", "b", "--token-file", file("absent")}).status, 1);
  EXPECT_EQ(
      run({"settings", "sign-in", "--business-id", "b", "--token-file", folder_.path()}).status, 1);
  EXPECT_EQ(stored("token"), Value(token));
  EXPECT_EQ(stored("businessId"), Value("b-7"));
}

TEST_F(SettingsTest, LeaveAStoreThatCannotBeReadAsItIs) {
  signIn();
  const auto path = UserDefaults::path(APP_GROUP);
  std::ofstream(path) << "<plist><dict><key>token";
  for (const auto& arguments :
       {std::vector<std::string>{"settings", "show"}, {"settings", "sign-out"}}) {
    const Outcome run = this->run(arguments);
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(
        run.err,
        testing::AllOf(
            HasSubstr(path.string()), HasSubstr("not a property list"), HasSubstr("move it away")));
  }
  EXPECT_EQ(contentsOf(path), "<plist><dict><key>token");
}

TEST_F(SettingsTest, TheTokenStandsInItsStoreAlone) {
  signIn();
  fixtures::HttpsServer& gateway =
      serve([](const auto&, fixtures::HttpsServer::Exchange& exchange) {
        exchange.hold();
        exchange.respond(200, "<html>");
      });
  const auto home = start({"timeline", "SalesSmallWidget"});
  ASSERT_TRUE(gateway.waitForRequests(1));
  const pid_t extension = home->child();
  ASSERT_NE(extension, 0);
  for (const pid_t process : {home->pid(), extension}) {
    for (const char* name : {"cmdline", "environ"}) {
      EXPECT_THAT(
          contentsOf("/proc/" + std::to_string(process) + "/" + name), Not(HasSubstr(token)));
    }
  }
  EXPECT_THAT(
      contentsOf("/proc/" + std::to_string(extension) + "/limits"),
      testing::ContainsRegex("Max core file size +[01] "));
  gateway.release();
  const Outcome run = home->wait();
  EXPECT_EQ(run.status, 4);
  EXPECT_THAT(run.out + run.err, Not(HasSubstr(token)));

  struct stat about{};
  ASSERT_EQ(::stat(UserDefaults::path(APP_GROUP).c_str(), &about), 0);
  EXPECT_EQ(about.st_mode & 0777, 0600U);
}

}  // namespace

}  // namespace quillpad
