// One widget as the supervisor knows it: what it shows, what is to take the place of that, and what
// the extension is to be asked for it and when. Like the supervisor it changes by what it is told
// alone. A plain value.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "home/extension/Moment.h"
#include "home/extension/WidgetState.h"
#include "platform/channel/Messages.h"

namespace quillpad::home {

// What a request of the extension is for: the first two are about no widget, and a rendering may be
// of the entry that comes next or of the one that is kept.
enum class Purpose { catalogue, ping, placeholder, snapshot, timeline, rendering, keptRendering };

struct WidgetRecord {
  struct LaterEntry {
    Uptime due{};
    channel::Entry entry;
  };

  // What the program before made of a picture stays on show until all that the new one makes is
  // there to take its place.
  template <class T>
  struct Renewal {
    bool wanted = false;
    std::optional<T> made;
    bool isAwaited() const { return wanted && !made; }
  };

  struct Snapshot {
    std::optional<RenderedEntry> picture;
    bool outdated = false;  // of the program before
    bool failed = false;    // this program does not give one
  };

  // For a newer picture.
  struct Wait {
    bool byPerson = false;
    std::optional<Moment> since;  // when it was asked for
    bool isLong = false;
  };

  std::optional<RenderedEntry> picture;
  std::optional<RenderedEntry> kept;  // see WidgetState
  Snapshot snapshot;
  std::optional<RenderedEntry> unrendered;  // an entry whose view is still to come
  std::vector<LaterEntry> later;            // of the timeline, the earliest first
  std::optional<Problem> problem;
  bool placeholderFailed = false;

  Renewal<RenderedEntry> renewal;
  Renewal<SharedView> keptRenewal;

  Uptime due{};                  // of the next timeline
  std::optional<Date> reload{};  // the same for people
  Uptime asked{};                // when a timeline was last asked for
  Uptime freshUntil{};           // how long the latest timeline counts as the newest
  bool overdue = false;          // that is over

  bool busy = false;  // an answer is awaited
  Wait wait;

  std::uint64_t version = 0;  // grows with every change of what is shown

  // What to ask now; nothing while there is nothing, or an answer is awaited.
  std::optional<Purpose> next(const Moment& now, bool placed, bool inGallery) const;
  // The request for that, whose answer is awaited from now on.
  channel::Request ask(const Moment& now, const std::string& kind, Purpose purpose);
  // What the answer is to lead to.
  EntrySource target(Purpose purpose) const;
  // When the passing of time alone makes the wait long or what is shown overdue.
  std::optional<Uptime> nextLatenessChange() const;
  // Whether another picture, or another view of the kept one, is still to come from a new program.
  bool awaitsRenewal() const;

  // A person waits for a newer picture.
  void want(const Moment& now);

  // Whether it became overdue or its wait long, or is no longer.
  bool updateLateness(const Moment& now, bool nothingComes);
  // Takes the entry of the timeline whose time has come, to be rendered.
  void showNextEntry(const Moment& now);
  // What came of the transfer is noted with the entry that is to be rendered, if there is one.
  void takeTimeline(
      const Moment& now,
      const channel::Timeline& timeline,
      const std::optional<TransportError>& failure,
      int statusCode);
  // While transfers fail, the last picture from one that went well is kept.
  void takeOver(RenderedEntry next);
  // The widget keeps its picture and is asked again later.
  void fail(const Moment& now, EntrySource target, Problem cause);

  // The program is another one: all that is shown is asked of it again.
  void outdate(const Moment& now);
  // What the new program made takes the place of the old; false where there is nothing.
  bool showRenewed();

  // It is no longer on the home screen; what the gallery shows of it stays.
  void leave();
  // Another account: of the figures nothing stays.
  void forgetAccount();
};

}  // namespace quillpad::home
