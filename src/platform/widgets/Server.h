// Answers the home screen's requests from a bundle's widgets. Requests are answered on one thread,
// the extension's own, on which the providers are called; timelines may be completed on any.
#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/channel/Messages.h"
#include "platform/widgets/Connection.h"
#include "platform/widgets/StaticConfiguration.h"

namespace quillpad::widgets {

class Server {
 public:
  Server(std::vector<WidgetConfiguration> widgets, std::shared_ptr<Connection> connection);

  // Answers every line until the home screen closes the channel.
  void run();

 private:
  void answer(std::string_view line);
  // An absent reply means that the provider will give it, or has.
  std::optional<channel::Reply> handle(std::uint64_t id, const channel::CatalogueRequest& request);
  std::optional<channel::Reply> handle(
      std::uint64_t id, const channel::PlaceholderRequest& request);
  std::optional<channel::Reply> handle(std::uint64_t id, const channel::SnapshotRequest& request);
  std::optional<channel::Reply> handle(std::uint64_t id, const channel::TimelineRequest& request);
  std::optional<channel::Reply> handle(std::uint64_t id, const channel::RenderRequest& request);

  const WidgetConfiguration* find(std::string_view kind) const;
  channel::Refused unknownKind(const std::string& kind) const;
  void watchTransfers();

  std::vector<WidgetConfiguration> widgets_;
  // Shared with the completions, which may outlive the server.
  std::shared_ptr<Connection> connection_;
  bool watching_ = false;
};

}  // namespace quillpad::widgets
