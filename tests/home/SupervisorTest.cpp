// The supervisor against an extension that the test plays, with a clock that the test holds.
#include <chrono>
#include <cstddef>
#include <gmock/gmock.h>
#include <map>
#include <random>
#include <set>

#include "home/extension/StateFile.h"
#include "home/extension/Supervisor.h"
#include "home/extension/WidgetStatus.h"
#include "platform/foundation/Iso8601.h"

namespace quillpad::home {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

using Cause = Problem::Cause;
using Life = Supervisor::Life;

channel::Catalogue catalogueOf(const std::vector<std::string>& kinds) {
  channel::Catalogue catalogue;
  for (const std::string& kind : kinds) {
    catalogue.items.push_back(
        {.kind = kind, .displayName = kind, .description = "", .families = {}, .languages = {}});
  }
  return catalogue;
}

channel::Entry entryAt(Date date, const std::string& data) { return {date, data}; }

// A home screen with the widgets A and B, whose extension answers what it is told to.
class SupervisorTest : public testing::Test {
 protected:
  // What the supervisor has had done since the last call, in words.
  std::vector<std::string> done() {
    supervisor.timePassed(now());
    const std::vector<Supervisor::Action> actions = supervisor.takeActions();
    expectVersionsTell();
    expectNothingIsMissed();
    std::vector<std::string> words;
    for (const Supervisor::Action& action : actions) {
      if (std::holds_alternative<Supervisor::StartExtension>(action)) {
        words.emplace_back("start");
        lastId = 0;
        open.clear();
      } else if (std::holds_alternative<Supervisor::EndExtension>(action)) {
        words.emplace_back("end");
      } else if (std::holds_alternative<channel::PingRequest>(
                     std::get<Supervisor::Ask>(action).request)) {
        lastPing = ++lastId;
        if (answersPings) {
          supervisor.replied(now(), {.id = lastPing, .reply = channel::Pong{}});
          supervisor.timePassed(now());
        }
      } else {
        words.push_back(wordsOf(std::get<Supervisor::Ask>(action).request));
        open[words.back()] = ++lastId;
      }
    }
    return words;
  }

  static std::string wordsOf(const channel::Request& request) {
    struct Words {
      std::string operator()(const channel::CatalogueRequest&) { return "catalogue"; }
      std::string operator()(const channel::PlaceholderRequest& r) {
        return "placeholder " + r.kind;
      }
      std::string operator()(const channel::SnapshotRequest& r) { return "snapshot " + r.kind; }
      std::string operator()(const channel::TimelineRequest& r) { return "timeline " + r.kind; }
      std::string operator()(const channel::RenderRequest& r) { return "render " + r.kind; }
      std::string operator()(const channel::PingRequest&) { return "ping"; }
    };
    return std::visit(Words{}, request);
  }

  // What anyone sees: each widget, and all else under no name.
  static std::map<std::string, std::string> sightOf(const Supervisor& supervisor) {
    const auto look = [](const RenderedEntry* picture) {
      return picture == nullptr
                 ? std::string()
                 : testing::PrintToString(std::tuple(
                       picture->source,
                       picture->restored,
                       picture->statusCode,
                       *encodeState(
                           {.catalogue = {}, .placed = {}, .pictures = {{"", *picture}}})));
    };
    std::map<std::string, std::string> sight;
    std::string& rest = sight[""] = noticeOf(supervisor, "Sign in.");
    rest += std::to_string(supervisor.programVersion());
    for (const channel::CatalogueItem& item : supervisor.catalogue()) {
      rest += item.kind + look(supervisor.snapshot(item.kind));
    }
    for (const WidgetState& each : supervisor.widgets()) {
      rest += each.about->kind;
      sight[each.about->kind] = testing::PrintToString(std::tuple(
          look(each.picture),
          look(each.kept),
          each.problem == nullptr ? "" : inPlainWords(*each.problem),
          iso8601(each.reload.value_or(Date{})),
          each.overdue,
          each.awaited,
          each.slowSince.has_value()));
    }
    return sight;
  }

  // Who shows it or saves it looks at the versions alone.
  void expectVersionsTell() {
    const auto sight = sightOf(supervisor);
    for (const WidgetState& each : supervisor.widgets()) {
      const std::string& kind = each.about->kind;
      EXPECT_TRUE(sight.at(kind) == seen[kind] || each.version > seenVersion) << sight.at(kind);
    }
    EXPECT_TRUE(sight == seen || supervisor.version() > seenVersion) << sight.at("");
    const std::string saved = *encodeState(supervisor.saved());
    EXPECT_TRUE(
        saved == lastSaved || supervisor.savedVersion() > savedVersion ||
        supervisor.catalogue().empty())
        << saved;
    seen = sight;
    seenVersion = supervisor.version();
    lastSaved = saved;
    savedVersion = supervisor.savedVersion();
  }

  // Nobody comes by before the deadline, and then there is something to do.
  void expectNothingIsMissed() const {
    const auto deadline = supervisor.nextDeadline();
    EXPECT_TRUE(!deadline || *deadline > uptime) << "it would spin";
    Supervisor later = supervisor;
    const Uptime wait = deadline.value_or(uptime + 1000h) - uptime - 1ms;
    later.timePassed({.date = date + wait, .uptime = uptime + wait});
    EXPECT_THAT(later.takeActions(), IsEmpty()) << wait.count() << " ms later";
    EXPECT_EQ(sightOf(later), sightOf(supervisor)) << wait.count() << " ms later";
  }

  // Another run of the home screen.
  void startAfresh(SavedHome saved) {
    supervisor = Supervisor();
    supervisor.restore(std::move(saved));
    seen.clear();
    seenVersion = 0;
    lastSaved = *encodeState(supervisor.saved());
    savedVersion = 0;
  }

  Moment now() const { return {.date = date, .uptime = uptime}; }

  void pass(std::chrono::milliseconds time) {
    date += time;
    uptime += time;
    supervisor.timePassed(now());
  }

  void answer(const std::string& words, channel::Reply reply) {
    const auto request = open.find(words);
    ASSERT_NE(request, open.end()) << words << " is not asked";
    const std::uint64_t id = request->second;
    open.erase(request);
    supervisor.replied(now(), {.id = id, .reply = std::move(reply)});
    supervisor.timePassed(now());
  }

  // The answer after a transfer that failed.
  void answerUnfetched(const std::string& words, const std::string& data) {
    supervisor.transferred(
        {.activity = open.at(words),
         .path = "/invoice",
         .error = TransportError{-1004, "Could not connect to the server."}});
    answer(words, timelineOf(data));
    answerAllButTimelines();
  }

  channel::Timeline timelineOf(const std::string& data) const {
    return {.entries = {entryAt(date, data)}, .policy = {date + 5min}};
  }

  std::vector<std::string> after(std::chrono::milliseconds time) {
    pass(time);
    return done();
  }

  void reloadAll() {
    supervisor.reload(now());
    done();
  }

  // Answers as an extension in good order does.
  void answerWell(const std::string& request, const std::string& data = "") {
    if (request == "catalogue") {
      answer(request, catalogueOf({"A", "B"}));
    } else if (request.starts_with("timeline")) {
      answer(request, timelineOf(data));
    } else if (request.starts_with("render")) {
      answer(request, channel::Rendering{ui::Spacer{}});
    } else {
      answer(request, entryAt(date, "sample"));
    }
  }

  // Answers everything but timelines until nothing else is asked; returns what was.
  std::vector<std::string> answerAllButTimelines() {
    std::vector<std::string> all;
    for (std::vector<std::string> words = done(); !words.empty(); words = done()) {
      all.insert(all.end(), words.begin(), words.end());
      for (const std::string& request : words) {
        if (open.contains(request) && !request.starts_with("timeline")) {
          answerWell(request);
        }
      }
    }
    return all;
  }

  // Answers the timeline of a widget, and what is asked for it.
  void deliver(const std::string& kind, const std::string& data) {
    answer("timeline " + kind, timelineOf(data));
    answerAllButTimelines();
  }

  void deliverBoth(const std::string& dataOfA, const std::string& dataOfB) {
    deliver("A", dataOfA);
    deliver("B", dataOfB);
  }

  // Brings both widgets to their first live picture.
  void bringUp() {
    supervisor.timePassed(now());
    answerAllButTimelines();
    deliverBoth("a1", "b1");
  }

  void endExtension(
      const std::string& manner = "signal 9, Killed", const std::string& lastWords = "") {
    supervisor.ended(now(), {Problem::Cause::ended, manner, lastWords});
    supervisor.timePassed(now());
  }

  void passThePause() {
    if (supervisor.life() == Life::backingOff) {
      pass(*supervisor.nextDeadline() - uptime);
    }
  }

  WidgetState widget(const std::string& kind) const {
    for (const WidgetState& each : supervisor.widgets()) {
      if (each.about->kind == kind) {
        return each;
      }
    }
    ADD_FAILURE() << kind << " is not placed";
    return {};
  }

  RenderedEntry picture(const std::string& kind) const {
    const RenderedEntry* shown = widget(kind).picture;
    EXPECT_NE(shown, nullptr) << kind << " is empty";
    return shown == nullptr ? RenderedEntry{} : *shown;
  }

  Problem problem(const std::string& kind) const {
    const Problem* met = widget(kind).problem;
    EXPECT_NE(met, nullptr) << kind << " has no problem";
    return met == nullptr ? Problem{} : *met;
  }

  // The data of the entry that the widget shows.
  std::string shown(const std::string& kind) const {
    const RenderedEntry* picture = widget(kind).picture;
    return picture == nullptr ? "empty" : *picture->entry.data.as<std::string>();
  }

  Date date = *dateFromIso8601("2026-03-07T09:00:00.000Z");
  Uptime uptime = 1h;
  Supervisor supervisor;
  std::map<std::string, std::uint64_t> open;
  std::uint64_t lastId = 0;
  std::uint64_t lastPing = 0;
  bool answersPings = true;

  std::map<std::string, std::string> seen;
  std::uint64_t seenVersion = 0;
  std::string lastSaved;
  std::uint64_t savedVersion = 0;
};

TEST_F(SupervisorTest, FirstRunPlacesTheWholeCatalogueAndShowsPlaceholdersMeanwhile) {
  supervisor.timePassed(now());
  EXPECT_THAT(done(), ElementsAre("start", "catalogue"));
  answer("catalogue", catalogueOf({"A", "B"}));
  EXPECT_THAT(done(), ElementsAre("placeholder A", "placeholder B"));
  answer("placeholder A", entryAt(date, "sample"));
  answer("placeholder B", entryAt(date, "sample"));
  EXPECT_THAT(
      answerAllButTimelines(), ElementsAre("render A", "render B", "timeline A", "timeline B"));
  EXPECT_EQ(picture("A").source, EntrySource::placeholder);

  answer("timeline B", timelineOf("b1"));
  EXPECT_THAT(answerAllButTimelines(), ElementsAre("render B"));
  EXPECT_EQ(shown("B"), "b1");
  EXPECT_EQ(picture("B").source, EntrySource::timeline);
  EXPECT_EQ(widget("B").reload, date + 5min);
  EXPECT_EQ(shown("A"), "sample");
}

TEST_F(SupervisorTest, AsksAgainAtTheReloadTimeAndNotBefore) {
  bringUp();
  ASSERT_EQ(supervisor.nextDeadline(), uptime + 1min) << "the ping";
  EXPECT_THAT(after(4min + 30s), IsEmpty());
  ASSERT_EQ(supervisor.nextDeadline(), uptime + 30s) << "the reload";
  EXPECT_THAT(after(30s - 1ms), IsEmpty());
  EXPECT_THAT(after(1ms), ElementsAre("timeline A", "timeline B"));
}

TEST_F(SupervisorTest, AClockThatIsSetDoesNotMoveTheReload) {
  bringUp();
  date += 24h;
  supervisor.timePassed(now());
  EXPECT_THAT(done(), IsEmpty());
  date -= 48h;
  EXPECT_THAT(after(5min), ElementsAre("timeline A", "timeline B"));
}

TEST_F(SupervisorTest, AReloadTimeInThePastOrFarAwayIsBounded) {
  const std::pair<Date, std::chrono::milliseconds> cases[] = {
      {date - 1h, 1s},
      {*dateFromIso8601("0001-01-01T00:00:00.000Z"), 1s},
      {*dateFromIso8601("9999-12-31T23:59:59.999Z"), 24h},
  };
  bringUp();
  for (const auto& [reloadAfter, wait] : cases) {
    supervisor.remove("B");
    reloadAll();
    answer("timeline A", channel::Timeline{{entryAt(date, "a1")}, {reloadAfter}});
    answerAllButTimelines();
    EXPECT_EQ(widget("A").reload, date + wait);
    EXPECT_THAT(after(wait - 1ms), IsEmpty());
    EXPECT_THAT(after(1ms), ElementsAre("timeline A"));
    deliver("A", "a1");
  }
}

TEST_F(SupervisorTest, ShowsEachEntryOfATimelineWhenItsTimeComesWhateverElseIsAwaited) {
  supervisor.timePassed(now());
  answerAllButTimelines();
  answer(
      "timeline A",
      channel::Timeline{
          {entryAt(date + 2min, "third"), entryAt(date - 1min, "first"), entryAt(date, "second")},
          date + 10min});
  answerAllButTimelines();
  EXPECT_EQ(shown("A"), "second");
  EXPECT_THAT(after(1min), IsEmpty());
  EXPECT_EQ(supervisor.nextDeadline(), uptime + 1min);
  EXPECT_THAT(after(1min - 1ms), IsEmpty());
  pass(1ms);
  EXPECT_THAT(answerAllButTimelines(), ElementsAre("render A"));
  EXPECT_EQ(shown("A"), "third");
}

TEST_F(SupervisorTest, NeverHasTwoRequestsOfOneKindUnderWay) {
  supervisor.timePassed(now());
  answerAllButTimelines();
  supervisor.reload(now());
  supervisor.openGallery(now());
  EXPECT_THAT(done(), IsEmpty());
  answer("timeline A", timelineOf("a1"));
  EXPECT_THAT(answerAllButTimelines(), ElementsAre("render A", "snapshot A", "render A"));
}

TEST_F(SupervisorTest, KeepsThePictureThroughADropAndSaysItsReason) {
  bringUp();
  after(5min);
  answer("timeline A", channel::Dropped{"The token is empty."});
  EXPECT_EQ(shown("A"), "a1");
  EXPECT_EQ(problem("A").cause, Cause::dropped);
  EXPECT_EQ(problem("A").detail, "The token is empty.");
  EXPECT_EQ(widget("A").reload, date + 5min);
  deliver("B", "b2");
  EXPECT_EQ(widget("B").problem, nullptr);

  EXPECT_THAT(after(5min), ElementsAre("timeline A", "timeline B"));
  deliver("A", "a2");
  EXPECT_EQ(shown("A"), "a2");
  EXPECT_EQ(widget("A").problem, nullptr);
}

TEST_F(SupervisorTest, KnowsOfZerosThatStandInForFiguresByTheFailedTransfer) {
  supervisor.timePassed(now());
  answerAllButTimelines();
  supervisor.transferred(
      {.activity = open.at("timeline A"), .path = "/invoice", .error = {}, .statusCode = 500});
  answer("timeline A", timelineOf("a1"));
  answerUnfetched("timeline B", "zeros");
  EXPECT_EQ(widget("B").kept, nullptr) << "there was none before";
  EXPECT_FALSE(picture("A").failure);
  EXPECT_EQ(picture("A").statusCode, 500);
  EXPECT_EQ(picture("B").failure.value().localizedDescription, "Could not connect to the server.");
}

TEST_F(SupervisorTest, WidgetsStandWhereAPersonPutThem) {
  std::vector<std::string> kinds{"A", "B", "C", "D"};
  startAfresh({.catalogue = catalogueOf(kinds).items, .placed = {"A", "B", "B", "C", "D"}});
  const std::tuple<const char*, const char*, bool, const char*> moves[] = {
      {"D", "B", true, "ADBC"},
      {"A", "", true, "DBCA"},
      {"D", "A", true, "BCDA"},
      {"C", "C", true, "BCDA"},
      {"C", "D", true, "BCDA"},
      {"E", "A", false, "BCDA"},
      {"A", "E", false, "BCDA"},
      {"", "", false, "BCDA"},
  };
  const auto order = [&] {
    std::string names;
    for (const WidgetState& each : supervisor.widgets()) {
      names += each.about->kind;
    }
    return names;
  };
  for (const auto& [kind, before, known, expected] : moves) {
    EXPECT_EQ(supervisor.move(kind, before), known);
    EXPECT_EQ(order(), expected) << kind << " before " << before;
    expectVersionsTell();
  }
  supervisor.remove("C");
  supervisor.place("C");
  EXPECT_EQ(order(), "BCDA") << "before the first one that follows it in the catalogue";
  EXPECT_EQ(supervisor.saved().placed, (std::vector<std::string>{"B", "C", "D", "A"}));
}

TEST_F(SupervisorTest, KeepsTheLastGoodPictureForAsLongAsTransfersFail) {
  bringUp();
  const Date good = date;
  for (int round = 0; round < 3; ++round) {
    after(5min);
    answer("timeline B", timelineOf("b2"));
    answerUnfetched("timeline A", "zeros");
    EXPECT_EQ(shown("A"), "zeros");
    EXPECT_EQ(picture("A").failure.value().since, good + 5min);
    ASSERT_NE(widget("A").kept, nullptr);
    EXPECT_EQ(*widget("A").kept->entry.data.as<std::string>(), "a1");
    EXPECT_EQ(widget("A").kept->received, good);

    startAfresh(supervisor.saved());
    supervisor.timePassed(now());
    answerAllButTimelines();
    answerUnfetched("timeline A", "zeros");
    deliver("B", "b2");
  }
  reloadAll();
  deliver("A", "a2");
  EXPECT_EQ(widget("A").kept, nullptr);
  EXPECT_FALSE(supervisor.saved().kept.contains("A"));
}

TEST_F(SupervisorTest, NothingOfAnotherAccountIsKeptOrShown) {
  supervisor.accountIs("one");
  bringUp();
  supervisor.accountIs("one");
  EXPECT_EQ(shown("A"), "a1");
  for (const char* mark : {"two", "", "two"}) {
    after(5min);
    answerUnfetched("timeline A", "zeros");
    supervisor.accountIs(mark);
    expectVersionsTell();
    EXPECT_EQ(supervisor.isSignedOut(), *mark == '\0');
    EXPECT_EQ(shown("A"), "empty");
    EXPECT_EQ(shown("B"), "empty");
    EXPECT_EQ(widget("A").kept, nullptr);
    EXPECT_THAT(supervisor.saved().pictures, IsEmpty());
    EXPECT_THAT(supervisor.saved().kept, IsEmpty());
    EXPECT_EQ(supervisor.saved().account, mark);
    EXPECT_TRUE(widget("A").awaited);

    answer("timeline B", timelineOf("asked for the former one"));
    EXPECT_THAT(
        answerAllButTimelines(),
        testing::IsSupersetOf({"placeholder A", "placeholder B", "timeline A", "timeline B"}));
    EXPECT_EQ(shown("B"), "sample");
    deliverBoth("a2", "b2");
    EXPECT_EQ(shown("B"), "b2");
  }
}

TEST_F(SupervisorTest, AnotherAccountIsAnotherTryForAnExtensionThatWasGivenUp) {
  bringUp();
  supervisor.reload(now());
  for (int end = 0; end < 5; ++end) {
    passThePause();
    done();
    endExtension();
  }
  ASSERT_EQ(supervisor.life(), Life::gaveUp);
  supervisor.accountIs("one");
  supervisor.timePassed(now());
  EXPECT_THAT(done(), ElementsAre("start", "catalogue"));
}

TEST_F(SupervisorTest, SaysWhenAnAnswerIsSlowOrAPersonWaits) {
  bringUp();
  after(5min);
  const Date asked = date;
  deliver("B", "b2");
  pass(2s - 1ms);
  EXPECT_FALSE(widget("A").awaited);
  EXPECT_EQ(supervisor.nextDeadline(), uptime + 1ms);
  pass(1ms);
  EXPECT_TRUE(widget("A").awaited);
  EXPECT_EQ(widget("A").slowSince, asked);
  EXPECT_FALSE(widget("B").awaited);

  EXPECT_TRUE(supervisor.reload(now(), "B"));
  EXPECT_FALSE(supervisor.reload(now(), "C"));
  EXPECT_THAT(done(), ElementsAre("timeline B"));
  EXPECT_TRUE(widget("B").awaited);
  EXPECT_EQ(widget("B").slowSince, std::nullopt);
  answer("timeline A", channel::Dropped{"no"});
  deliver("B", "b3");
  supervisor.openGallery(now());
  EXPECT_THAT(after(2s), ElementsAre("snapshot A", "snapshot B"));
  pass(2s);
  EXPECT_FALSE(widget("A").awaited);
  EXPECT_FALSE(widget("B").awaited);
}

TEST_F(SupervisorTest, PromisesNoReloadBeforeThePauseIsOver) {
  bringUp();
  supervisor.reload(now(), "A");
  for (const auto pause : {0s, 1s, 5s, 25s}) {
    done();
    endExtension();
    EXPECT_EQ(supervisor.keepsEnding(), pause > 0s) << "one end alone is not told";
    EXPECT_EQ(widget("A").reload, date + pause);
    EXPECT_EQ(widget("B").reload, std::max(date + pause, picture("B").received + 5min));
    passThePause();
    EXPECT_EQ(supervisor.keepsEnding(), pause > 0s) << "what is told stays while it starts";
  }
}

TEST_F(SupervisorTest, ALateAnswerIsAskedForAgainLaterAndNotTakenAnyMore) {
  bringUp();
  after(5min);
  const std::uint64_t late = open.at("timeline A");
  supervisor.answerIsLate(now(), {.id = late, .waited = 90s});
  supervisor.timePassed(now());
  EXPECT_EQ(problem("A").cause, Cause::late);
  EXPECT_EQ(problem("A").detail, "90 s");
  supervisor.replied(now(), {late, timelineOf("late")});
  EXPECT_EQ(shown("A"), "a1");
  deliver("B", "b2");
  EXPECT_THAT(after(5min), ElementsAre("timeline A", "timeline B"));
}

// An extension that hung is asked again as soon as it runs again, like one that ended by itself.
TEST_F(SupervisorTest, AnEndForWhateverCauseIsFollowedByTheNextQuestion) {
  bringUp();
  for (const Cause cause : {Cause::ended, Cause::late, Cause::overMemory, Cause::protocolError}) {
    reloadAll();
    supervisor.ended(now(), {.cause = cause, .detail = "how"});
    EXPECT_EQ(supervisor.lastEnd()->cause, cause);
    EXPECT_EQ(problem("A").cause, cause);
    EXPECT_EQ(problem("A").detail, "how");
    EXPECT_EQ(shown("A"), "a1");
    EXPECT_THAT(answerAllButTimelines(), ElementsAre("start", "catalogue", "timeline A"));
    deliverBoth("a1", "b1");
    EXPECT_EQ(supervisor.lastEnd(), std::nullopt) << "a good round forgets it";
  }
}

TEST_F(SupervisorTest, ACatalogueHasABound) {
  const std::tuple<std::size_t, std::size_t, std::string> cases[] = {
      {1001, 0, "a list of more than 1000 widgets"},
      {1, 101, "a widget of more than 100 languages"},
      {1000, 100, "none"},
  };
  for (const auto& [kinds, languages, fault] : cases) {
    supervisor.timePassed(now());
    done();
    channel::Catalogue catalogue{std::vector<channel::CatalogueItem>(kinds)};
    catalogue.items[0].languages.resize(languages);
    answer("catalogue", catalogue);
    const auto& end = supervisor.lastEnd();
    EXPECT_EQ(end ? end->detail : "none", fault);
    supervisor = Supervisor();
  }
}

TEST_F(SupervisorTest, AnExtensionThatListsNothingOrTooMuchIsStartedAgain) {
  supervisor.timePassed(now());
  done();
  answer("catalogue", channel::Catalogue{});
  EXPECT_THAT(done(), ElementsAre("end", "start", "catalogue"));
  answer("catalogue", channel::Refused{channel::internalError, "not now"});
  EXPECT_THAT(done(), ElementsAre("end"));
  EXPECT_EQ(supervisor.lastEnd()->cause, Cause::refused);
  EXPECT_EQ(supervisor.lastEnd()->detail, "not now");
  passThePause();
  answerAllButTimelines();
  answer("timeline A", timelineOf("a1"));
  EXPECT_EQ(supervisor.widgets().size(), 2U);

  endExtension();
  passThePause();
  done();
  answer("catalogue", channel::Catalogue{});
  EXPECT_EQ(supervisor.widgets().size(), 2U) << "what it listed before stays";
}

TEST_F(SupervisorTest, NothingStaysOfWidgetsThatAreNeitherOfferedNorPlaced) {
  bringUp();
  supervisor.openGallery(now());
  answerAllButTimelines();
  supervisor.remove("B");
  for (const auto& kinds : std::vector<std::vector<std::string>>{{"A", "B"}, {"A"}}) {
    endExtension();
    passThePause();
    done();
    answer("catalogue", catalogueOf(kinds));
    EXPECT_EQ(supervisor.snapshot("B") != nullptr, kinds.size() == 2);
  }
}

TEST_F(SupervisorTest, RestartsAtOnceThenWithGrowingPausesThenWaitsForAPerson) {
  bringUp();
  reloadAll();
  for (const auto pause : {0s, 1s, 5s, 25s}) {
    endExtension("signal 6, Aborted", "SalesData line 58: no JSON");
    if (pause > 0s) {
      EXPECT_EQ(supervisor.life(), Life::backingOff);
      EXPECT_TRUE(widget("A").awaited);
      EXPECT_EQ(supervisor.nextDeadline(), uptime + pause);
      EXPECT_THAT(noticeOf(supervisor, ""), HasSubstr("58: no JSON”. It is started again"));
      EXPECT_THAT(after(pause - 1ms), IsEmpty());
      pass(1ms);
    }
    EXPECT_THAT(done(), ElementsAre("start", "catalogue"));
    answer("catalogue", catalogueOf({"A", "B"}));
    EXPECT_THAT(done(), ElementsAre(testing::StartsWith("timeline")));
    EXPECT_EQ(shown("A"), "a1");
  }
  endExtension("signal 6, Aborted", "SalesData line 58: no JSON");
  EXPECT_EQ(supervisor.life(), Life::gaveUp);
  EXPECT_EQ(supervisor.nextDeadline(), std::nullopt);
  EXPECT_THAT(after(24h), IsEmpty());
  EXPECT_THAT(noticeOf(supervisor, ""), HasSubstr("(signal 6, Aborted). Its last words: “Sales"));
  EXPECT_THAT(noticeOf(supervisor, ""), HasSubstr("five times"));
  EXPECT_EQ(shown("A"), "a1");
  EXPECT_EQ(widget("A").reload, std::nullopt);
  EXPECT_FALSE(widget("A").awaited);

  supervisor.reload(now());
  EXPECT_THAT(
      answerAllButTimelines(),
      UnorderedElementsAre("start", "catalogue", "timeline A", "timeline B"));
}

TEST_F(SupervisorTest, TheGoodPictureBehindAFailureIsRenderedByTheNewProgramToo) {
  bringUp();
  reloadAll();
  supervisor.programReplaced(now());
  supervisor.transferred(
      {.activity = open.at("timeline A"), .path = "/", .error = TransportError{-1004, "away"}});
  answer("timeline A", timelineOf("zeros"));
  answer("timeline B", timelineOf("b2"));
  answerAllButTimelines();
  EXPECT_EQ(shown("A"), "zeros");
  answer("timeline A", channel::Dropped{"no"});
  EXPECT_THAT(done(), ElementsAre("render A"));
  EXPECT_EQ(*widget("A").kept->entry.data.as<std::string>(), "a1");
}

TEST_F(SupervisorTest, APictureIsOverdueAMinuteAfterItsReloadTimeAndOnceItIsGivenUp) {
  bringUp();
  after(5min);
  pass(1min - 1ms);
  EXPECT_FALSE(widget("A").overdue);
  EXPECT_EQ(supervisor.nextDeadline(), uptime + 1ms);
  pass(1ms);
  EXPECT_TRUE(widget("A").overdue);
  supervisor.reload(now());
  EXPECT_TRUE(widget("A").overdue) << "to be asked again makes it no newer";
  deliverBoth("a2", "b2");
  EXPECT_FALSE(widget("A").overdue);

  for (int end = 0; end < 5; ++end) {
    EXPECT_FALSE(widget("A").overdue);
    endExtension();
    passThePause();
    done();
  }
  EXPECT_TRUE(widget("A").overdue);
  EXPECT_EQ(widget("A").problem, nullptr);
}

TEST_F(SupervisorTest, AnEndWhileNothingIsAskedLeavesThePicturesFresh) {
  bringUp();
  pass(1min);
  endExtension();
  EXPECT_THAT(answerAllButTimelines(), ElementsAre("start", "catalogue"));
  EXPECT_EQ(widget("A").problem, nullptr);
  EXPECT_EQ(widget("A").reload, date + 4min);
  EXPECT_THAT(after(4min), ElementsAre("timeline A"));
}

TEST_F(SupervisorTest, AnIdleExtensionIsPingedAndStartedAgainWhereItIsStuck) {
  answersPings = false;
  bringUp();
  after(1min - 1ms);
  EXPECT_EQ(lastPing, 0U);
  after(1ms);
  EXPECT_EQ(lastPing, lastId);
  after(29s);
  EXPECT_EQ(lastPing, lastId) << "once";
  supervisor.reload(now(), "B");
  supervisor.ended(now(), {.cause = Cause::late});
  EXPECT_THAT(answerAllButTimelines(), ElementsAre("start", "catalogue", "timeline B"));
  EXPECT_EQ(widget("A").problem, nullptr);
}

TEST_F(SupervisorTest, AnOutdatedExtensionIsStartedAgainWhereItIsNotAtWork) {
  bringUp();
  supervisor.extensionNeedsRestart();
  EXPECT_THAT(answerAllButTimelines(), ElementsAre("end", "start", "catalogue"));
  reloadAll();
  supervisor.extensionNeedsRestart();
  EXPECT_THAT(done(), IsEmpty());
}

TEST_F(SupervisorTest, OneWidgetThatEndsTheExtensionTakesNoOtherWithIt) {
  bringUp();
  for (const std::string fatal : {"timeline A", "render A"}) {
    reloadAll();
    for (int step = 0; step < 100 && supervisor.life() != Life::gaveUp; ++step) {
      if (open.contains(fatal)) {
        endExtension("signal 6, Aborted");
        passThePause();
      } else {
        answerWell(std::string(open.begin()->first), "b after " + fatal);
      }
      done();
    }
    EXPECT_EQ(supervisor.life(), Life::gaveUp) << "the good answers of B do not hide the ends of A";
    EXPECT_EQ(shown("B"), "b after " + fatal);
    EXPECT_EQ(widget("B").problem, nullptr);
    EXPECT_EQ(shown("A"), "a1");
    EXPECT_EQ(problem("A").cause, Cause::ended);
  }
}

TEST_F(SupervisorTest, ThePlaceholderIsAskedAgainWhereAnEndCameFirst) {
  supervisor.timePassed(now());
  done();
  answer("catalogue", catalogueOf({"A", "B"}));
  EXPECT_THAT(done(), ElementsAre("placeholder A", "placeholder B"));
  endExtension();
  answerAllButTimelines();
  EXPECT_EQ(shown("A"), "sample");
}

TEST_F(SupervisorTest, AnExtensionThatCannotBeStartedCountsAsOneThatEnds) {
  supervisor.timePassed(now());
  for (int attempt = 0; attempt < 5; ++attempt) {
    EXPECT_THAT(done(), ElementsAre("start", "catalogue"));
    supervisor.ended(now(), {Cause::notStarted, "There is no program there."});
    passThePause();
  }
  EXPECT_EQ(supervisor.life(), Life::gaveUp);
  EXPECT_EQ(supervisor.lastEnd()->cause, Cause::notStarted);
}

TEST_F(SupervisorTest, RemovesAndAddsInTheCataloguesOrder) {
  bringUp();
  EXPECT_TRUE(supervisor.remove("A"));
  EXPECT_FALSE(supervisor.place("C"));
  EXPECT_FALSE(supervisor.remove("C"));
  EXPECT_EQ(supervisor.widgets().size(), 1U);
  EXPECT_THAT(after(5min), ElementsAre("timeline B"));

  EXPECT_TRUE(supervisor.place("A"));
  EXPECT_THAT(answerAllButTimelines(), ElementsAre("placeholder A", "render A", "timeline A"));
  EXPECT_EQ(supervisor.widgets().front().about->kind, "A");
  EXPECT_EQ(supervisor.widgets().size(), 2U);
}

TEST_F(SupervisorTest, AnAnswerForAWidgetThatIsGoneChangesNothing) {
  bringUp();
  reloadAll();
  supervisor.remove("A");
  deliver("A", "a2");
  EXPECT_EQ(supervisor.widgets().size(), 1U);
  EXPECT_FALSE(supervisor.saved().pictures.contains("A"));
}

TEST_F(SupervisorTest, ShowsWhatAnEarlierRunLeftUntilFreshEntriesCome) {
  bringUp();
  supervisor.remove("B");
  startAfresh(supervisor.saved());
  date += 24h;
  EXPECT_EQ(shown("A"), "a1");
  EXPECT_TRUE(picture("A").restored);
  EXPECT_EQ(picture("A").received, date - 24h);

  supervisor.timePassed(now());
  EXPECT_THAT(answerAllButTimelines(), ElementsAre("start", "catalogue", "timeline A"));
  deliver("A", "a2");
  EXPECT_FALSE(picture("A").restored);
  EXPECT_EQ(supervisor.widgets().size(), 1U);
}

TEST_F(SupervisorTest, AWidgetThatTheExtensionNoLongerOffersIsKeptInMind) {
  bringUp();
  SavedHome saved = supervisor.saved();
  saved.placed.insert(saved.placed.begin(), "Former");
  startAfresh(std::move(saved));
  bringUp();
  EXPECT_EQ(supervisor.widgets().size(), 2U);
  EXPECT_THAT(after(4min + 30s), IsEmpty());
  EXPECT_EQ(supervisor.nextDeadline(), uptime + 30s) << "the reload of A";
  EXPECT_TRUE(supervisor.isPlaced("Former"));
}

TEST_F(SupervisorTest, ARenderingThatIsRefusedLeavesNothingToWaitFor) {
  supervisor.timePassed(now());
  done();
  answer("catalogue", catalogueOf({"A"}));
  done();
  answer("placeholder A", channel::Refused{channel::invalidParams, "no"});
  done();
  answer(
      "timeline A",
      channel::Timeline{{entryAt(date, "now"), entryAt(date + 1min, "later")}, date + 5min});
  done();
  answer("render A", channel::Refused{channel::invalidParams, "no"});
  EXPECT_EQ(shown("A"), "empty");
  EXPECT_THAT(after(2min), IsEmpty());
  supervisor.openGallery(now());
  done();
  answer("snapshot A", channel::Refused{channel::invalidParams, "no"});
  EXPECT_THAT(after(1min), IsEmpty());
  supervisor.programReplaced(now());
  EXPECT_THAT(answerAllButTimelines(), testing::Contains("placeholder A")) << "of another program";
  answer("timeline A", channel::Dropped{"no"});
  EXPECT_THAT(done(), ElementsAre("snapshot A"));
}

TEST_F(SupervisorTest, AnAnswerOfAnotherKindIsARefusal) {
  bringUp();
  reloadAll();
  answer("timeline A", channel::Rendering{ui::Spacer{}});
  EXPECT_EQ(problem("A").cause, Cause::refused);
  answer("timeline B", channel::Refused{channel::invalidParams, "unknown kind"});
  EXPECT_EQ(problem("B").detail, "unknown kind");
  EXPECT_EQ(shown("B"), "b1");
  EXPECT_EQ(supervisor.life(), Life::running);
}

// What shows changes all at once, and the next timelines are the new program's.
TEST_F(SupervisorTest, AnotherProgramTakesOverBetweenRequestsAndRendersAllAnew) {
  bringUp();
  supervisor.reload(now());
  EXPECT_THAT(done(), ElementsAre("timeline A", "timeline B"));
  supervisor.programReplaced(now());
  EXPECT_THAT(done(), IsEmpty()) << "something is under way";
  answer("timeline A", timelineOf("a2"));
  answer("timeline B", timelineOf("b2"));
  EXPECT_THAT(done(), ElementsAre("end", "start", "catalogue"));
  answer("catalogue", catalogueOf({"A", "B"}));
  EXPECT_THAT(done(), UnorderedElementsAre("render A", "render B"));
  answer("render A", channel::Rendering{ui::Text::verbatim("new")});
  EXPECT_THAT(shown("A"), "a1") << "some of either program";
  answer("render B", channel::Rendering{ui::Text::verbatim("new")});
  EXPECT_THAT(shown("A") + shown("B"), "a2b2");
  EXPECT_EQ(supervisor.programVersion(), 1U);
  EXPECT_THAT(done(), UnorderedElementsAre("timeline A", "timeline B"));
}

TEST_F(SupervisorTest, AnEndOfTheOldProgramDoesNotPartThePicturesOfTheNewOne) {
  bringUp();
  supervisor.reload(now());
  done();
  supervisor.programReplaced(now());
  answer("timeline A", timelineOf("a2"));
  endExtension();
  done();
  answer("catalogue", catalogueOf({"A", "B"}));
  done();
  answer("render A", channel::Rendering{ui::Text::verbatim("new")});
  EXPECT_THAT(shown("A"), "a1") << "some of either program";
  answer("render B", channel::Rendering{ui::Text::verbatim("new")});
  EXPECT_THAT(shown("A") + shown("B"), "a2b1");
}

TEST_F(SupervisorTest, PicturesOfAProgramThatIsReplacedBeforeAllAreThereAreNotShown) {
  bringUp();
  reloadAll();
  supervisor.programReplaced(now());
  answer("timeline A", timelineOf("a2"));
  answer("timeline B", timelineOf("b2"));
  for (const char* first : {"render A", "render B"}) {
    done();
    answer("catalogue", catalogueOf({"A", "B"}));
    done();
    answerWell(first);
    EXPECT_EQ(shown("A") + shown("B"), "a1b1") << first;
    supervisor.programReplaced(now());
    pass(1s);
  }
}

TEST_F(SupervisorTest, AFreshPictureEndsTheWaitForTheKeptOnesNewView) {
  bringUp();
  pass(5min);
  done();
  answerUnfetched("timeline A", "zeros");
  answer("timeline B", timelineOf("b2"));
  answerAllButTimelines();
  ASSERT_NE(widget("A").kept, nullptr);
  supervisor.programReplaced(now());
  done();
  answer("catalogue", catalogueOf({"A", "B"}));
  done();
  answer("render A", channel::Refused{channel::invalidParams, "no"});
  EXPECT_THAT(done(), ElementsAre("render A")) << "the kept one";
  answerWell("render A");
  supervisor.reload(now(), "A");
  EXPECT_THAT(done(), ElementsAre("timeline A"));
  answerWell("timeline A", "a2");
  done();
  answerWell("render A");
  EXPECT_EQ(widget("A").kept, nullptr);
  answerWell("render B");
  EXPECT_EQ(shown("A"), "a2");
  done();
  EXPECT_THAT(after(1ms), IsEmpty()) << "there is no kept one any more";
}

TEST_F(SupervisorTest, AProgramThatIsReplacedIsNotWaitedForMoreThanASecond) {
  bringUp();
  supervisor.openGallery(now());
  answerAllButTimelines();
  reloadAll();
  supervisor.programReplaced(now());
  EXPECT_THAT(after(999ms), IsEmpty());
  pass(1ms);
  EXPECT_THAT(
      answerAllButTimelines(),
      testing::IsSupersetOf({"end", "start", "catalogue", "render A", "snapshot A", "timeline B"}));
  EXPECT_EQ(widget("A").problem, nullptr);
}

TEST_F(SupervisorTest, AProgramThatDoesNotServeLeavesTheLastPicturesWithItsLastWords) {
  bringUp();
  supervisor.programReplaced(now());
  done();
  supervisor.ended(now(), {Cause::notStarted, "no such file"});
  EXPECT_EQ(problem("A").detail + problem("B").detail, "no such fileno such file");
  done();
  answer("catalogue", catalogueOf({"A", "B"}));
  done();
  answer("render A", channel::Rendering{});
  EXPECT_EQ(widget("A").problem, nullptr) << "one by one after an end";
  done();
  endExtension("signal 6, Aborted", "the entry has no rows");
  EXPECT_EQ(problem("B").lastWords, "the entry has no rows");
  EXPECT_EQ(shown("B"), "b1");
  for (int end = 0; supervisor.life() != Life::gaveUp && end < 9; ++end) {
    passThePause();
    endExtension();
    done();
  }
  supervisor.programReplaced(now());
  EXPECT_THAT(answerAllButTimelines(), testing::IsSupersetOf({"start", "render A", "timeline B"}));
  deliver("B", "b2");
  EXPECT_EQ(shown("B"), "b2");
  EXPECT_EQ(widget("B").problem, nullptr);
}

// Two hundred times, at random: some steps of a refresh, then an end. Whatever the step was, no
// widget is ever blank again, nothing is asked twice or of an extension that is gone, and the
// fresh pictures come in the end.
TEST_F(SupervisorTest, SurvivesEndsAtEveryStepOfARefresh) {
  bringUp();
  std::mt19937 random(20260307);
  const auto step = [&] {
    for (const std::string& words : done()) {
      EXPECT_NE(words, "end");
    }
    std::set<std::string> kinds;
    for (const auto& [words, id] : open) {
      EXPECT_TRUE(kinds.insert(words.substr(words.find(' ') + 1)).second) << words;
    }
    if (open.empty()) {
      return false;
    }
    const auto chosen = static_cast<std::ptrdiff_t>(random() % open.size());
    answerWell(std::string(std::next(open.begin(), chosen)->first), "fresh");
    return true;
  };
  for (int round = 0; round < 200; ++round) {
    supervisor.reload(now());
    for (auto steps = random() % 7; steps > 0 && step(); --steps) {
      pass(1ms);
    }
    open.clear();
    endExtension();
    EXPECT_NE(shown("A"), "empty");
    EXPECT_NE(shown("B"), "empty");
    passThePause();
    while (step()) {
    }
    EXPECT_EQ(shown("A"), "fresh");
    EXPECT_EQ(shown("B"), "fresh");
    EXPECT_EQ(widget("A").problem, nullptr);
    EXPECT_EQ(widget("B").problem, nullptr);
    EXPECT_EQ(supervisor.life(), Life::running);
  }
}

}  // namespace
}  // namespace quillpad::home
