// Keeps the placed widgets fresh and survives whatever the extension does: decides when to start
// and to end the extension, what to ask it and when, and what each widget shows meanwhile. A state
// machine of its inputs alone: it is told what happened and when, and says what is to be done; it
// reads no clock, no descriptor and no file. Belongs to one thread.
//
//   asleep --(something to ask)--> starting --(catalogue)--> running
//     ^                                |                        |
//     |                                +-------- ended ---------+
//     +--(pause over)-- pausing <---------------- | ------------+--(fifth in a row)--> waiting
//   waiting --(a person's reload)--> asleep
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/channel/Messages.h"
#include "platform/foundation/TransferReport.h"
#include "platform/foundation/Value.h"
#include "platform/ui/View.h"

namespace quillpad::home {

// Time since the machine started, its sleep included: unlike the date it never jumps.
using Uptime = std::chrono::milliseconds;

// The moment of an event, on both clocks.
struct Now {
  Date date;
  Uptime uptime{};
};

// The lengths and bounds that the supervisor keeps to.
struct Rules {
  std::chrono::milliseconds timelineDeadline = std::chrono::seconds{90};  // the network's own: 60 s
  std::chrono::milliseconds answerDeadline = std::chrono::seconds{10};  // where nothing is fetched
  std::chrono::milliseconds retry = std::chrono::minutes{5};  // after a request without an answer
  std::chrono::milliseconds soonestReload =
      std::chrono::seconds{1};  // for reload times in the past
  // How long to wait after the first end in a row, the second, and so on; after one more, for a
  // person.
  std::array<std::chrono::milliseconds, 4> restartPauses{
      std::chrono::seconds{0},
      std::chrono::seconds{1},
      std::chrono::seconds{5},
      std::chrono::seconds{25}};
  std::size_t memoryLimit = std::size_t{30} * 1024 * 1024;
};

// An entry and what it looks like.
struct Picture {
  enum class Source { placeholder, snapshot, timeline };

  Source source = Source::placeholder;
  Value entry;
  ui::View view = ui::Spacer{};  // until it is rendered
  Date received;
  // The transfer behind the entry failed: what it shows stands in for real data.
  std::optional<TransportError> failure{};
  bool restored = false;  // from an earlier run of the home screen
};

// Why a widget did not get a newer picture when it was last asked for.
struct Trouble {
  enum class Cause {
    dropped,     // the extension let the request go unanswered
    refused,     // it could not take the request
    late,        // no answer came in time
    ended,       // it ended
    overMemory,  // it was ended for using too much memory
    notStarted,  // it could not be started
  };

  Cause cause = Cause::ended;
  std::string how;   // the circumstances, in words of the home screen; may be empty
  std::string said;  // what the extension last printed about it; may be empty
  Date since;
};

// A placed widget as the page shows it.
struct Card {
  const channel::CatalogueItem* about = nullptr;  // good until the next event
  const Picture* picture = nullptr;               // nullptr until there is a first one
  const Trouble* trouble = nullptr;               // nullptr: none
  std::optional<Date> reload{};                   // when it is asked for next, if that is known
  std::uint64_t version = 0;                      // grows whenever any of this changes
};

// What outlives the home screen.
struct SavedHome {
  std::vector<channel::CatalogueItem> catalogue;
  std::vector<std::string> placed;
  std::map<std::string, Picture> pictures;  // by kind; of timelines alone
};

class Supervisor {
 public:
  enum class Life { asleep, starting, running, pausing, waiting };

  // What is to be done, in order.
  struct StartExtension {};
  struct KillExtension {};
  // Requests are numbered from 1 in each run of the extension, in the order sent.
  struct Send {
    channel::Request request;
  };
  using Action = std::variant<StartExtension, KillExtension, Send>;

  explicit Supervisor(Rules rules = {});

  // Takes up what an earlier run left; every placed widget is asked afresh. Before any event.
  void restore(SavedHome saved);

  // What happened. Each may lead to actions.
  void timePassed(const Now& now);
  void replied(const Now& now, const channel::NumberedReply& reply);
  void transferred(const channel::TransferNotice& notice);
  void printed(std::string line);
  void memoryMeasured(const Now& now, std::size_t bytes);
  // What the extension said on the channel is not to be understood: it is ended.
  void channelBroken(const Now& now, const std::string& what);
  void ended(const Now& now, const std::string& manner);
  void failedToStart(const Now& now, const std::string& why);

  // What a person wants. The first two return false for a kind that the catalogue lacks.
  bool place(const Now& now, std::string_view kind);
  bool remove(const Now& now, std::string_view kind);
  void reload(const Now& now);
  void openGallery(const Now& now);

  // The actions since the last call.
  std::vector<Action> takeActions();

  // When timePassed is to be called at the latest; nothing while only events can bring it further.
  std::optional<Uptime> wakeUp() const;

  Life life() const { return life_; }
  // What the extension's last end was like; nothing after an answer.
  const std::optional<Trouble>& lastEnd() const { return lastEnd_; }
  bool awaitsAnswers() const { return !pending_.empty(); }

  // In the catalogue's order.
  std::vector<Card> cards() const;
  const std::vector<channel::CatalogueItem>& catalogue() const { return catalogue_; }
  bool isPlaced(std::string_view kind) const { return placed_.contains(kind); }
  // The picture for the gallery, once there is one.
  const Picture* snapshot(std::string_view kind) const;

  // Grows with every change of what is shown; savedVersion with every change of what is saved.
  std::uint64_t version() const { return version_; }
  std::uint64_t savedVersion() const { return savedVersion_; }
  SavedHome saved() const;

 private:
  enum class Purpose { catalogue, placeholder, snapshot, timeline, rendering };

  struct Pending {
    std::string kind;
    Purpose purpose = Purpose::catalogue;
    Uptime sent{};
    Uptime deadline{};
    std::optional<TransportError> failure;
  };

  struct LaterEntry {
    Uptime due{};
    Value entry;
  };

  struct Widget {
    std::optional<Picture> picture;
    std::optional<Picture> snapshot;
    std::optional<Picture> unrendered;  // an entry whose view is still to come
    std::vector<LaterEntry> later;      // of the timeline, the earliest first
    std::optional<Trouble> trouble;
    Uptime due{};                  // of the next timeline
    std::optional<Date> reload{};  // the same for people
    Uptime asked{};                // when a timeline was last asked for
    bool busy = false;             // an answer is awaited
    bool placeholderFailed = false;
    bool snapshotFailed = false;
    std::uint64_t version = 0;
  };

  void advance(const Now& now);
  void giveUpLateRequests(const Now& now);
  void askWhatIsDue(const Now& now);
  void send(const Now& now, const std::string& kind, Purpose purpose, channel::Request request);
  void take(const Now& now, const Pending& request, const channel::Reply& reply);
  void takeCatalogue(const Now& now, const channel::Catalogue& catalogue);
  void takeTimeline(const Now& now, const Pending& request, const channel::Timeline& timeline);
  void takeRendering(const std::string& kind, const channel::Rendering& rendering);
  void miss(const Now& now, const Pending& request, Trouble trouble);
  Picture::Source aimOf(const Pending& request) const;
  void kill(Trouble why);
  void loseExtension(const Now& now, Trouble trouble);
  // What to ask the widget now; nothing while there is nothing, or an answer is awaited.
  std::optional<Purpose> nextFor(
      const std::string& kind, const Widget& widget, const Now& now) const;
  bool wanted() const;
  void touch(Widget& widget);

  Rules rules_;
  Life life_ = Life::asleep;
  std::vector<Action> actions_;
  std::map<std::uint64_t, Pending> pending_;
  std::uint64_t lastId_ = 0;

  std::vector<channel::CatalogueItem> catalogue_;
  std::set<std::string, std::less<>> placed_;
  bool everPlaced_ = false;  // false: on first sight of the catalogue, place all of it
  bool galleryOpened_ = false;
  std::map<std::string, Widget, std::less<>> widgets_;

  std::size_t endsInARow_ = 0;
  bool proven_ = false;  // a timeline was answered in this run
  Uptime startAt_{};
  std::optional<Trouble> lastEnd_;
  std::optional<Trouble> killedFor_;  // until the end of the extension is seen
  Uptime lastHeard_{};
  std::string lastLine_;

  std::uint64_t version_ = 1;
  std::uint64_t savedVersion_ = 0;
};

}  // namespace quillpad::home
