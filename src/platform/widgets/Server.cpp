#include "platform/widgets/Server.h"

#include <algorithm>
#include <string>
#include <utility>

#include "platform/foundation/Activity.h"
#include "platform/foundation/Locale.h"
#include "platform/locale/LocalizedStrings.h"
#include "platform/net/URLSession.h"
#include "platform/ui/ViewCodec.h"

namespace quillpad::widgets {
namespace {

using channel::Refused;
using channel::Reply;

// The answer of a request whose provider may let it go.
template <class Answer, class Convert>
Completion<Answer> replying(
    const std::shared_ptr<Connection>& connection, std::uint64_t id, Convert convert) {
  return Completion<Answer>(
      [connection, id, convert](Answer answer) {
        connection->send(channel::encode(channel::NumberedReply{id, convert(std::move(answer))}));
      },
      [connection, id] {
        connection->send(channel::encode(channel::NumberedReply{id, channel::Dropped{}}));
      });
}

std::string lookUp(const std::string& key) {
  return LocalizedStrings::main().text(key, currentLocale());
}

}  // namespace

Server::Server(std::vector<WidgetConfiguration> widgets, std::shared_ptr<Connection> connection)
    : widgets_(std::move(widgets)), connection_(std::move(connection)) {}

void Server::run() {
  while (const auto line = connection_->receive()) {
    if (line->tooLong) {
      const Refused refused{channel::invalidRequest, "the line is longer than 8 MiB"};
      connection_->send(channel::encode(channel::NumberedReply{std::nullopt, refused}));
    } else {
      answer(line->text);
    }
  }
}

void Server::answer(std::string_view line) {
  const auto request = channel::decodeRequest(line);
  if (!request) {
    connection_->send(channel::encode(request.error()));
    return;
  }
  const ActivityScope activity(request->id);
  auto reply =
      std::visit([&](const auto& one) { return handle(request->id, one); }, request->request);
  if (reply) {
    connection_->send(channel::encode(channel::NumberedReply{request->id, std::move(*reply)}));
  }
}

std::optional<Reply> Server::handle(
    std::uint64_t /*id*/, const channel::CatalogueRequest& /*request*/) {
  channel::Catalogue catalogue;
  for (const WidgetConfiguration& widget : widgets_) {
    catalogue.items.push_back(
        {widget.kind,
         lookUp(widget.displayNameKey),
         lookUp(widget.descriptionKey),
         widget.families});
  }
  return catalogue;
}

std::optional<Reply> Server::handle(
    std::uint64_t /*id*/, const channel::PlaceholderRequest& request) {
  const WidgetConfiguration* widget = find(request.kind);
  if (widget == nullptr) {
    return unknownKind(request.kind);
  }
  return channel::Entry{widget->placeholder({})};
}

std::optional<Reply> Server::handle(std::uint64_t id, const channel::SnapshotRequest& request) {
  const WidgetConfiguration* widget = find(request.kind);
  if (widget == nullptr) {
    return unknownKind(request.kind);
  }
  widget->snapshot({}, replying<Value>(connection_, id, [](Value entry) {
                     return channel::Entry{std::move(entry)};
                   }));
  return std::nullopt;
}

std::optional<Reply> Server::handle(std::uint64_t id, const channel::TimelineRequest& request) {
  const WidgetConfiguration* widget = find(request.kind);
  if (widget == nullptr) {
    return unknownKind(request.kind);
  }
  watchTransfers();
  widget->timeline({}, replying<EncodedTimeline>(connection_, id, [](EncodedTimeline timeline) {
                     return channel::Timeline{std::move(timeline.entries), timeline.reloadAfter};
                   }));
  return std::nullopt;
}

std::optional<Reply> Server::handle(std::uint64_t /*id*/, const channel::RenderRequest& request) {
  const WidgetConfiguration* widget = find(request.kind);
  if (widget == nullptr) {
    return unknownKind(request.kind);
  }
  const ui::WidgetFamily family = request.family.value_or(widget->families.front());
  if (std::ranges::find(widget->families, family) == widget->families.end()) {
    return Refused{
        channel::invalidParams,
        request.kind + " is not offered as " + std::string(channel::familyName(family))};
  }
  const ScopedLocale locale(request.locale);
  return channel::Rendering{ui::localized(widget->render({family}, request.entry), lookUp)};
}

const WidgetConfiguration* Server::find(std::string_view kind) const {
  const auto widget = std::ranges::find(widgets_, kind, &WidgetConfiguration::kind);
  return widget == widgets_.end() ? nullptr : &*widget;
}

Refused Server::unknownKind(const std::string& kind) const {
  std::string message = "there is no widget of kind \"" + kind + "\"; the kinds are";
  for (const WidgetConfiguration& widget : widgets_) {
    message += (&widget == &widgets_.front() ? " " : ", ") + widget.kind;
  }
  return {channel::invalidParams, std::move(message)};
}

// The session is made at the first timeline: nothing else needs the network, and making it takes
// time.
void Server::watchTransfers() {
  if (std::exchange(watching_, true)) {
    return;
  }
  URLSession::shared().watchTransfers([connection = connection_](const TransferReport& report) {
    connection->send(channel::encode(channel::TransferNotice{report}));
  });
}

}  // namespace quillpad::widgets
