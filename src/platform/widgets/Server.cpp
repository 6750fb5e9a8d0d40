#include "platform/widgets/Server.h"

#include <algorithm>
#include <string>
#include <utility>

#include "platform/foundation/Activity.h"
#include "platform/foundation/Fatal.h"
#include "platform/foundation/Locale.h"
#include "platform/foundation/NumberText.h"
#include "platform/locale/LocalizedStrings.h"
#include "platform/net/URLSession.h"
#include "platform/ui/ViewCodec.h"

namespace quillpad::widgets {
namespace {

using channel::Refused;
using channel::Reply;

std::string lookUp(const std::string& key) {
  return LocalizedStrings::main().text(key, currentLocale());
}

void send(Connection& connection, std::optional<std::uint64_t> id, Reply reply) {
  connection.send(channel::encode(channel::NumberedReply{id, std::move(reply)}));
}

// The end of a request whose provider may let it go. What it printed last, in words for a person,
// is then why.
template <class Answer>
Completion<Answer> replying(const std::shared_ptr<Connection>& connection, std::uint64_t id) {
  return Completion<Answer>([connection, id](std::optional<Answer> answer) {
    send(
        *connection,
        id,
        answer ? Reply(*std::move(answer)) : channel::Dropped{lookUp(lastPrintedLine())});
  });
}

}  // namespace

Server::Server(
    std::vector<WidgetConfiguration> widgets,
    std::vector<std::string> linkSchemes,
    std::shared_ptr<Connection> connection)
    : widgets_(std::move(widgets)),
      linkSchemes_(std::move(linkSchemes)),
      connection_(std::move(connection)) {}

void Server::run() {
  while (const auto line = connection_->receive()) {
    if (line->tooLong) {
      const Refused refused{
          channel::invalidRequest, "the line is longer than " + bytesText(channel::maxFrame)};
      send(*connection_, std::nullopt, refused);
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
  if (auto reply = replyTo(request->id, request->request)) {
    send(*connection_, request->id, *std::move(reply));
  }
}

std::optional<Reply> Server::replyTo(std::uint64_t id, const channel::Request& request) {
  return std::visit(
      [&](const auto& one) -> std::optional<Reply> {
        if constexpr (requires { one.kind; }) {
          const WidgetConfiguration* widget = find(one.kind);
          return widget == nullptr ? unknownKind(one.kind) : handle(id, *widget, one);
        } else {
          return handle(one);
        }
      },
      request);
}

Reply Server::handle(const channel::CatalogueRequest& /*request*/) const {
  channel::Catalogue catalogue;
  for (const WidgetConfiguration& widget : widgets_) {
    catalogue.items.push_back(
        {.kind = widget.kind,
         .displayName = lookUp(widget.displayNameKey),
         .description = lookUp(widget.descriptionKey),
         .families = widget.families,
         .languages = LocalizedStrings::main().languages(),
         .linkSchemes = linkSchemes_});
  }
  return catalogue;
}

Reply Server::handle(const channel::PingRequest& /*request*/) const { return channel::Pong{}; }

std::optional<Reply> Server::handle(
    std::uint64_t /*id*/,
    const WidgetConfiguration& widget,
    const channel::PlaceholderRequest& /*request*/) {
  return widget.placeholder({});
}

std::optional<Reply> Server::handle(
    std::uint64_t id,
    const WidgetConfiguration& widget,
    const channel::SnapshotRequest& /*request*/) {
  widget.snapshot({}, replying<channel::Entry>(connection_, id));
  return std::nullopt;
}

std::optional<Reply> Server::handle(
    std::uint64_t id,
    const WidgetConfiguration& widget,
    const channel::TimelineRequest& /*request*/) {
  watchTransfers();
  widget.timeline({}, replying<channel::Timeline>(connection_, id));
  return std::nullopt;
}

std::optional<Reply> Server::handle(
    std::uint64_t /*id*/,
    const WidgetConfiguration& widget,
    const channel::RenderRequest& request) {
  const auto* own = widget.families.empty() ? nullptr : widget.families.data();
  const ui::WidgetFamily family =
      request.family ? *request.family : forced(own, "a supported family of " + widget.kind);
  const ScopedLocale locale(request.locale, request.currency);
  return channel::Rendering{ui::localized(widget.render({family}, request.entry), lookUp)};
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
    connection->send(channel::encode(report));
  });
}

}  // namespace quillpad::widgets
