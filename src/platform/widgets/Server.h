// Answers the home screen's requests from a bundle's widgets. Requests are answered on one thread,
// the extension's own, on which the providers are called; timelines may be completed on any.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/channel/Messages.h"
#include "platform/widgets/Connection.h"
#include "platform/widgets/StaticConfiguration.h"

namespace quillpad::widgets {

class Server {
 public:
  Server(
      std::vector<WidgetConfiguration> widgets,
      std::vector<std::string> linkSchemes,
      std::shared_ptr<Connection> connection);

  // Answers every line until the home screen closes the channel.
  void run();

 private:
  using Reply = channel::Reply;

  void answer(std::string_view line);
  // The reply, or nothing where the provider's completion gives it.
  std::optional<Reply> replyTo(std::uint64_t id, const channel::Request& request);
  std::optional<Reply> handle(
      std::uint64_t id,
      const WidgetConfiguration& widget,
      const channel::PlaceholderRequest& request);
  std::optional<Reply> handle(
      std::uint64_t id, const WidgetConfiguration& widget, const channel::SnapshotRequest& request);
  std::optional<Reply> handle(
      std::uint64_t id, const WidgetConfiguration& widget, const channel::TimelineRequest& request);
  std::optional<Reply> handle(
      std::uint64_t id, const WidgetConfiguration& widget, const channel::RenderRequest& request);
  Reply handle(const channel::CatalogueRequest& request) const;
  Reply handle(const channel::PingRequest& request) const;

  const WidgetConfiguration* find(std::string_view kind) const;
  channel::Refused unknownKind(const std::string& kind) const;
  void watchTransfers();

  std::vector<WidgetConfiguration> widgets_;
  std::vector<std::string> linkSchemes_;
  // Shared with the completions, which may outlive the server.
  std::shared_ptr<Connection> connection_;
  bool watching_ = false;
};

}  // namespace quillpad::widgets
