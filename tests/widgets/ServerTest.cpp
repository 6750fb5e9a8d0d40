#include <array>
#include <gmock/gmock.h>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <thread>
#include <variant>

#include "fixtures/ScopedVariable.h"
#include "fixtures/TextEntry.h"
#include "platform/foundation/Activity.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/Locale.h"
#include "platform/locale/LocalizedStrings.h"
#include "platform/widgets/Server.h"

namespace quillpad {

namespace {

using channel::NumberedReply;
using channel::NumberedRequest;
using fixtures::TextEntry;

// What the test has the provider do with the next timelines, and what the provider saw.
struct Script {
  std::vector<widgets::Completion<widgets::Timeline<TextEntry>>> held;
  std::vector<std::uint64_t> activities;
  std::string wordsOfDrop;  // where the next request is to be let go: what is printed before
};

widgets::Timeline<TextEntry> timelineOf(const std::string& text) {
  return {{{{}, {text}}}, widgets::TimelineReloadPolicy::after({})};
}

struct NoteProvider {
  using Entry = TextEntry;
  Script* script;

  Entry placeholder(const widgets::TimelineProviderContext& /*context*/) const {
    return {{}, {"placeholder"}};
  }
  void getSnapshot(
      const widgets::TimelineProviderContext& /*context*/,
      widgets::Completion<Entry> completion) const {
    completion({{}, {std::string(script->activities.size(), 'x')}});
  }
  void getTimeline(
      const widgets::TimelineProviderContext& /*context*/,
      widgets::Completion<widgets::Timeline<Entry>> completion) const {
    script->activities.push_back(currentActivity());
    if (script->wordsOfDrop.empty()) {
      script->held.push_back(std::move(completion));
    } else {
      printLine(std::exchange(script->wordsOfDrop, {}));
    }
  }
};

std::vector<widgets::WidgetConfiguration> noteWidgets(Script& script) {
  return {widgets::StaticConfiguration(
              "Note",
              NoteProvider{&script},
              [](const ui::Environment&, const TextEntry& entry) {
                const std::string locale = currentLocale(LocaleCategory::numbers);
                return ui::View(ui::Text::verbatim(entry.data.text + " in " + locale));
              })
              .configurationDisplayName("A note")
              .description("Shows a note.")
              .supportedFamilies({ui::WidgetFamily::systemSmall})};
}

// A server of the note widget, and the home screen's end of its channel. The provider's script is
// read by the test only while the server waits, that is, after a reply.
class ServerTest : public testing::Test {
 protected:
  ServerTest() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
    home_ = std::make_unique<widgets::Connection>(FileDescriptor(ends[0]));
    homeDescriptor_ = ends[0];
    auto connection = std::make_shared<widgets::Connection>(FileDescriptor(ends[1]));
    thread_ = std::jthread(
        [this, connection] { widgets::Server(noteWidgets(script_), {"note"}, connection).run(); });
  }

  ~ServerTest() override {
    hangUp();
    script_.held.clear();
  }

  void hangUp() {
    ::shutdown(homeDescriptor_, SHUT_WR);
    if (thread_.joinable()) {
      thread_.join();
    }
  }

  void say(std::string line) { home_->send(std::move(line)); }
  void ask(std::uint64_t id, channel::Request request) {
    asked_[id] = channel::methodOf(request);
    say(channel::encode(NumberedRequest{id, std::move(request)}));
  }

  NumberedReply hear() {
    const auto line = home_->receive();
    if (!line) {
      ADD_FAILURE() << "the server hung up";
      return {};
    }
    auto message = channel::decodeFromExtension(
        line->text, [this](std::uint64_t id) { return std::optional(asked_[id]); });
    if (!message || !std::holds_alternative<NumberedReply>(*message)) {
      ADD_FAILURE() << line->text;
      return {};
    }
    return std::get<NumberedReply>(std::move(*message));
  }

  // The text of the note in the reply's first entry.
  static std::string noteIn(const NumberedReply& reply) {
    const channel::Entry* entry = std::get_if<channel::Entry>(&reply.reply);
    if (const auto* timeline = std::get_if<channel::Timeline>(&reply.reply)) {
      entry = &timeline->entries.at(0);
    }
    return entry == nullptr ? "(no entry)" : *entry->data.as<std::string>();
  }

  // Waits until the server has taken everything that was said before.
  void settle() {
    ask(999, channel::PlaceholderRequest{"Note"});
    EXPECT_EQ(noteIn(hear()), "placeholder");
  }

  fixtures::ScopedVariable locale_{"LC_ALL", "de_DE.UTF-8"};
  Script script_;
  std::map<std::uint64_t, channel::Method> asked_;
  std::unique_ptr<widgets::Connection> home_;
  int homeDescriptor_ = -1;
  std::jthread thread_;
};

TEST_F(ServerTest, AnswersTimelinesInTheOrderInWhichTheyEnd) {
  for (std::uint64_t id = 1; id <= 3; ++id) {
    ask(id, channel::TimelineRequest{"Note"});
  }
  settle();
  ASSERT_EQ(script_.held.size(), 3U);
  EXPECT_EQ(script_.activities, (std::vector<std::uint64_t>{1, 2, 3}));

  script_.held[2](timelineOf("third"));
  std::jthread([&] { script_.held[0](timelineOf("first")); }).join();
  script_.held[1](timelineOf("second"));
  for (const auto& [id, note] : {std::pair{3U, "third"}, {1U, "first"}, {2U, "second"}}) {
    const NumberedReply reply = hear();
    EXPECT_EQ(reply.id, id);
    EXPECT_EQ(noteIn(reply), note);
  }
}

TEST_F(ServerTest, ARequestThatTheProviderLetsGoIsDroppedAtOnceAndAloneWithWhatWasPrinted) {
  ask(1, channel::TimelineRequest{"Note"});
  settle();
  testing::internal::CaptureStdout();
  script_.wordsOfDrop = "no note";
  ask(2, channel::TimelineRequest{"Note"});
  const NumberedReply dropped = hear();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "no note\n");
  EXPECT_EQ(dropped.id, 2U);
  ASSERT_TRUE(std::holds_alternative<channel::Dropped>(dropped.reply));
  EXPECT_EQ(std::get<channel::Dropped>(dropped.reply).reason, "no note");

  script_.held[0](timelineOf("later"));
  EXPECT_EQ(noteIn(hear()), "later");
}

TEST_F(ServerTest, LivesOnAfterWhatItCannotTake) {
  const std::tuple<std::string, std::optional<std::uint64_t>, int> cases[] = {
      {"garbage", std::nullopt, channel::parseError},
      {std::string(100'000, '['), std::nullopt, channel::parseError},
      {std::string(channel::maxFrame + 1, ' '), std::nullopt, channel::invalidRequest},
      {R"({"id":3,"method":"launch"})", 3, channel::methodNotFound},
      {R"({"id":4,"method":"timeline","params":{"kind":"Other"}})", 4, channel::invalidParams},
      {R"({"id":5,"method":"render","params":{"kind":"Note","entry":0}})",
       5,
       channel::invalidParams},
  };
  for (const auto& [line, id, code] : cases) {
    say(line);
    const NumberedReply reply = hear();
    EXPECT_EQ(reply.id, id) << line.substr(0, 80);
    ASSERT_TRUE(std::holds_alternative<channel::Refused>(reply.reply)) << line.substr(0, 80);
    EXPECT_EQ(std::get<channel::Refused>(reply.reply).code, code);
    settle();
  }
}

TEST_F(ServerTest, RendersTheEntryThatTheHomeScreenSendsBackInTheLocaleAndFamilyOfTheRequest) {
  ask(1, channel::SnapshotRequest{"Note"});
  EXPECT_EQ(noteIn(hear()), "");
  using enum ui::WidgetFamily;
  const std::tuple<std::optional<ui::WidgetFamily>, const char*, const char*> cases[] = {
      {{}, "", "by hand in de_DE"},
      {systemLarge, "ar_EG", "by hand in ar_EG"},
      {accessoryInline, "", "by hand in de_DE"},
  };
  for (const auto& [family, locale, text] : cases) {
    ask(2, channel::RenderRequest{"Note", {{}, "by hand"}, family, locale});
    const NumberedReply reply = hear();
    ASSERT_TRUE(std::holds_alternative<channel::Rendering>(reply.reply));
    const auto& view = std::get<channel::Rendering>(reply.reply).view;
    EXPECT_EQ(std::get<ui::Text>(view.content).text, text);
  }
}

TEST_F(ServerTest, AnswersAPingAndEndsAtAHangUpWithATimelineUnderWay) {
  ask(1, channel::TimelineRequest{"Note"});
  ask(2, channel::PingRequest{});
  EXPECT_TRUE(std::holds_alternative<channel::Pong>(hear().reply));
  hangUp();
  script_.held.at(0)(timelineOf("too late"));
}

TEST_F(ServerTest, ListsItsWidgetsWithTheLanguagesOfItsBundle) {
  ask(1, channel::CatalogueRequest{});
  const NumberedReply reply = hear();
  ASSERT_TRUE(std::holds_alternative<channel::Catalogue>(reply.reply));
  const channel::CatalogueItem item = std::get<channel::Catalogue>(reply.reply).items.at(0);
  EXPECT_EQ(item.kind, "Note");
  EXPECT_EQ(item.displayName, "A note");
  EXPECT_EQ(item.description, "Shows a note.");
  EXPECT_EQ(item.families, std::vector{ui::WidgetFamily::systemSmall});
  EXPECT_EQ(item.languages, LocalizedStrings::main().languages());
  EXPECT_EQ(item.linkSchemes, std::vector<std::string>{"note"});
}

TEST(Completion, EndsOnceWithTheAnswerOrWithNothing) {
  std::vector<std::optional<int>> ends;
  const auto make = [&] {
    return widgets::Completion<int>([&](std::optional<int> answer) { ends.push_back(answer); });
  };
  {
    auto called = make();
    called(1);
    called(2);
  }
  EXPECT_EQ(ends, (std::vector<std::optional<int>>{1}));
  {
    auto moved = make();
    const auto target = std::move(moved);
    EXPECT_EQ(ends.size(), 1U);
  }
  EXPECT_EQ(ends, (std::vector<std::optional<int>>{1, std::nullopt}));
}

}  // namespace

}  // namespace quillpad
