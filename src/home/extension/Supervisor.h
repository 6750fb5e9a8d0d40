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
//   any --(another program, and nothing is under way)--> stopped
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "home/extension/ExtensionSession.h"
#include "home/extension/KindList.h"
#include "home/extension/Moment.h"
#include "home/extension/RestartPolicy.h"
#include "home/extension/WidgetRecord.h"
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

  // What happened. It leads to actions once timePassed is called: after all that came together, as
  // many widgets are looked at then.
  void timePassed(const Moment& now);
  void replied(const Moment& now, const channel::NumberedReply& reply);
  void answerIsLate(const Moment& now, const LateAnswer& late);
  void transferred(const TransferReport& transfer);
  // The extension did, or could not be started. Who was being asked keeps its picture and is asked
  // again in the next run.
  void ended(const Moment& now, const Problem& problem);
  // There is something to read that only another run of the extension would see.
  void extensionNeedsRestart();
  // The extension's program is another one now: it is started again when nothing is under way, or
  // after a while, and what the widgets show is asked of the new one and changes all at once.
  void programReplaced(const Moment& now);

  // Who is signed in, as a mark, "" where nobody is. Of anyone else nothing is kept: every widget
  // is asked afresh at the next event. Whether somebody else was signed in before, or may have
  // been.
  bool accountIs(const std::string& mark);

  // What a person wants. Those with a kind return false for one that is not there.
  bool place(std::string_view kind);
  bool remove(std::string_view kind);
  bool reload(const Moment& now, std::string_view kind);
  // Puts a placed widget before another one; behind all where that is empty.
  bool move(std::string_view kind, std::string_view before);
  void reload(const Moment& now);
  // Asks for what the gallery lacks at once.
  void openGallery(const Moment& now);

  // The actions since the last call.
  std::vector<Action> takeActions();

  // When timePassed is to be called at the latest; nothing while only events can bring it further.
  std::optional<Uptime> nextDeadline() const;

  Life life() const { return life_; }
  // What the extension's last end was like; nothing after a round of answers or a person's reload.
  const std::optional<Problem>& lastEnd() const { return lastEnd_; }
  bool awaitsAnswers() const { return !pending_.empty(); }
  // What is asked for now, and of which kind of widget.
  std::vector<std::pair<Purpose, std::string>> underWay() const;
  // It ended twice in a row at least: by itself it may not come back.
  bool keepsEnding() const { return restarts_.endsInARow() > 1; }
  bool isSignedOut() const { return account_ == ""; }

  // The placed ones in their order.
  std::vector<WidgetState> widgets() const;
  const std::vector<channel::CatalogueItem>& catalogue() const { return catalogue_; }
  bool isPlaced(std::string_view kind) const { return placed_.has(kind); }
  // The picture for the gallery, once there is one; the version grows with each that comes.
  const RenderedEntry* snapshot(std::string_view kind) const;
  std::uint64_t snapshotVersion() const { return snapshotVersion_; }
  // Grows when another program has listed its widgets.
  std::uint64_t programVersion() const { return programVersion_; }

  // Grows with every change of what is shown; savedVersion with every change of what is saved.
  std::uint64_t version() const { return version_; }
  std::uint64_t savedVersion() const { return savedVersion_; }
  SavedHome saved() const;

 private:
  struct Pending {
    std::string kind;
    Purpose purpose = Purpose::catalogue;
    std::optional<TransportError> failure{};
    int statusCode = 0;  // of the latest transfer
    bool isOfFormerAccount = false;
  };

  void setCatalogue(std::vector<channel::CatalogueItem> items);
  const channel::CatalogueItem* offered(std::string_view kind) const;
  std::size_t placeInCatalogueOrder(std::string_view kind) const;
  void startExtension();
  void replaceExtension(const Moment& now);
  std::map<std::uint64_t, Pending> takeBackRequests();
  void showRenewed();
  void askWhatIsDue(const Moment& now);
  void updateLateness(const Moment& now);
  void ask(std::string kind, Purpose purpose, channel::Request request);
  void take(const Moment& now, const Pending& request, const channel::Reply& reply);
  void takeCatalogue(const channel::Catalogue& catalogue);
  void takeRendering(const std::string& kind, const channel::Rendering& rendering);
  std::optional<Pending> takePending(std::uint64_t id);
  void requestFailed(const Moment& now, const Pending& request, Problem problem);
  void restartAtOnce();
  void forgetEnds();
  bool hasProcess() const { return life_ == Life::starting || life_ == Life::running; }
  bool isWanted() const;
  std::optional<Date> nextReload(const WidgetRecord& widget) const;
  WidgetRecord& recordOf(std::string_view kind);
  const WidgetRecord& recordOf(std::string_view kind) const;
  void markChanged(WidgetRecord& widget);

  Life life_ = Life::stopped;
  std::vector<Action> actions_;
  std::map<std::uint64_t, Pending> pending_;
  std::uint64_t lastId_ = 0;

  std::vector<channel::CatalogueItem> catalogue_;
  std::map<std::string, std::size_t, std::less<>> ranks_;  // of its kinds
  KindList placed_;
  bool everPlaced_ = false;  // false: on first sight of the catalogue, place all of it
  bool galleryOpened_ = false;
  std::map<std::string, WidgetRecord, std::less<>> widgets_;

  RestartPolicy restarts_;
  bool answeredInThisRun_ = false;   // a timeline was
  Moment startAt_{};                 // after a pause
  Uptime pingAt_{};                  // where it runs and nothing is awaited
  std::optional<Uptime> replaceBy_;  // the program is another one: when the old one is ended
  bool replaced_ = false;            // the new one has not listed its widgets yet
  std::optional<Problem> lastEnd_;
  std::optional<std::string> account_;  // nothing: not known

  std::uint64_t version_ = 1;
  std::uint64_t savedVersion_ = 0;
  std::uint64_t snapshotVersion_ = 0;
  std::uint64_t programVersion_ = 0;
};

}  // namespace quillpad::home
