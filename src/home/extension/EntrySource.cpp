#include "home/extension/EntrySource.h"

#include "platform/foundation/Fatal.h"

namespace quillpad::home {

channel::Request requestFor(EntrySource source, const std::string& kind) {
  switch (source) {
    case EntrySource::placeholder:
      return channel::PlaceholderRequest{kind};
    case EntrySource::snapshot:
      return channel::SnapshotRequest{kind};
    case EntrySource::timeline:
      return channel::TimelineRequest{kind};
    case EntrySource::given:
      break;
  }
  fatal("an entry that is given is not asked for");
}

}  // namespace quillpad::home
