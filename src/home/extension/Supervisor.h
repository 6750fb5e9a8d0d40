// Keeps the placed widgets fresh and survives whatever the extension does: decides when to start
// the extension, what to ask it and when, and what each widget shows meanwhile. A state machine of
// its inputs alone: it is told what happened and when, and says what is to be done; it reads no
// clock, no descriptor and no file. Belongs to one thread.
//
//   stopped --(something to ask)--> starting --(catalogue)--> running
//      ^                               |                         |
//      |                               +---------- ended --------+
//      +--(pause over)-- backingOff <-------------- | -----------+--(fifth in a row)--> gaveUp
//   gaveUp --(a person's reload)--> stopped
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "home/extension/ExtensionSession.h"
#include "home/extension/Moment.h"
#include "home/extension/RestartPolicy.h"
#include "home/extension/WidgetState.h"
#include "platform/channel/Messages.h"

namespace quillpad::home {

class Supervisor {
 public:
  enum class Life { stopped, starting, running, backingOff, gaveUp };

  // What is to be done, in order.
  struct StartExtension {};
  struct EndExtension {};
  // Requests are numbered from 1 in each run of the extension, in the order asked.
  struct Ask {
    channel::Request request;
  };
  using Action = std::variant<StartExtension, EndExtension, Ask>;

  // Takes up what an earlier run left; every placed widget is asked afresh. Before any event.
  void restore(SavedHome saved);

  // What happened. Each may lead to actions.
  void timePassed(const Moment& now);
  void replied(const Moment& now, const channel::NumberedReply& reply);
  void answerIsLate(const Moment& now, const LateAnswer& late);
  void transferred(const channel::TransferNotice& notice);
  void ended(const Moment& now, const SessionEnd& end);
  void failedToStart(const Moment& now, std::string why);

  // What a person wants. The first two return false for a kind that the catalogue lacks.
  bool place(const Moment& now, std::string_view kind);
  bool remove(const Moment& now, std::string_view kind);
  void reload(const Moment& now);
  void openGallery(const Moment& now);

  // The actions since the last call.
  std::vector<Action> takeActions();

  // When timePassed is to be called at the latest; nothing while only events can bring it further.
  std::optional<Uptime> nextDeadline() const;

  Life life() const { return life_; }
  // What the extension's last end was like; nothing after a round of answers.
  const std::optional<Problem>& lastEnd() const { return lastEnd_; }
  bool awaitsAnswers() const { return !pending_.empty(); }

  // In the catalogue's order.
  std::vector<WidgetState> widgets() const;
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
    std::optional<TransportError> failure{};
    int statusCode = 0;  // of the latest transfer
  };

  struct LaterEntry {
    Uptime due{};
    channel::Entry entry;
  };

  struct Widget {
    std::optional<Picture> picture;
    std::optional<Picture> snapshot;
    std::optional<Picture> unrendered;  // an entry whose view is still to come
    std::vector<LaterEntry> later;      // of the timeline, the earliest first
    std::optional<Problem> problem;
    Uptime due{};                  // of the next timeline
    std::optional<Date> reload{};  // the same for people
    Uptime asked{};                // when a timeline was last asked for
    bool busy = false;             // an answer is awaited
    Uptime freshUntil{};           // how long the latest timeline counts as the newest
    bool overdue = false;
    bool placeholderFailed = false;
    bool snapshotFailed = false;
    std::uint64_t version = 0;
  };

  bool offers(std::string_view kind) const;
  void advance(const Moment& now);
  void startExtension(const Moment& now);
  void askWhatIsDue(const Moment& now);
  void noticeOverdue(const Moment& now);
  void showNextEntry(const Moment& now, Widget& widget);
  void ask(const Moment& now, const std::string& kind, Purpose purpose);
  void take(const Moment& now, const Pending& request, const channel::Reply& reply);
  void takeCatalogue(const Moment& now, const channel::Reply& reply);
  void takeTimeline(const Moment& now, const Pending& request, const channel::Timeline& timeline);
  void takeRendering(const std::string& kind, const channel::Rendering& rendering);
  std::optional<Pending> takePending(std::uint64_t id);
  void requestFailed(const Moment& now, const Pending& request, Problem problem);
  Picture::Source target(const Pending& request) const;
  void loseExtension(const Moment& now, Problem problem);
  // What to ask the widget now; nothing while there is nothing, or an answer is awaited.
  std::optional<Purpose> nextFor(
      const std::string& kind, const Widget& widget, const Moment& now) const;
  bool isWanted() const;
  void markChanged(Widget& widget);

  Life life_ = Life::stopped;
  std::vector<Action> actions_;
  std::map<std::uint64_t, Pending> pending_;
  std::uint64_t lastId_ = 0;

  std::vector<channel::CatalogueItem> catalogue_;
  std::set<std::string, std::less<>> placed_;
  bool everPlaced_ = false;  // false: on first sight of the catalogue, place all of it
  bool galleryOpened_ = false;
  std::map<std::string, Widget, std::less<>> widgets_;

  RestartPolicy restarts_;
  bool answeredInThisRun_ = false;  // a timeline was
  Uptime startAt_{};                // where it backs off
  std::optional<Problem> lastEnd_;

  std::uint64_t version_ = 1;
  std::uint64_t savedVersion_ = 0;
};

}  // namespace quillpad::home
