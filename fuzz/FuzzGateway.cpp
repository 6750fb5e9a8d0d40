// Any answer of the gateway ends the extension or becomes a picture, by way of parser, entry, view
// and channel. The first byte chooses the widget.

#include "BrokenContract.h"
#include "Draw.h"
#include "gateway/DocumentList.h"
#include "gateway/Fetches.h"
#include "platform/channel/Messages.h"
#include "platform/ui/ViewCodec.h"
#include "views/EntryViews.h"

using namespace quillpad;

namespace {

// As it comes out of the other end of the channel; nothing where it does not fit.
std::optional<ui::View> sent(const ui::View& view) {
  const std::string line = channel::encode(channel::NumberedReply{1, channel::Rendering{view}});
  const auto message = channel::decodeFromExtension(
      line, [](std::uint64_t) { return std::optional(channel::Method::render); });
  expect(message.has_value());
  const auto& reply = std::get<channel::NumberedReply>(*message).reply;
  const auto* rendering = std::get_if<channel::Rendering>(&reply);
  return rendering == nullptr ? std::nullopt : std::optional(rendering->view);
}

ui::View viewOf(unsigned widget, std::string_view answer) {
  constexpr auto family = ui::WidgetFamily::systemSmall;
  if (widget < 3) {
    const Sales sales = Sales::fromValue(parseSales(answer).toValue());
    return widget == 0   ? ui::View(SalesSmallEntryView{family, {{}, sales}})
           : widget == 1 ? ui::View(UnpaidSmallEntryView{family, {{}, sales}})
                         : ui::View(PendingSmallEntryView{family, {{}, sales}});
  }
  const Array rows = parseRecords(answer, {"list", std::source_location::current()});
  return widget == 3 ? ui::View(UnpaidMediumEntryView{family, {{}, Unpaid{rows}}})
                     : ui::View(PendingMediumEntryView{family, {{}, Pending{rows}}});
}

}  // namespace

void quillpad::tryInput(std::string_view input) {
  static Drawer drawer;
  const unsigned widget = takeChoice(input) % 5U;
  try {
    const auto inWords = [](const std::string& key) { return key; };
    if (const auto view = sent(ui::localized(viewOf(widget, input), inWords))) {
      drawer.draw(*view, {.kind = "Card", .size = {widget < 3 ? 158.0 : 338.0, 158}});
    }
  } catch (const BrokenContract&) {
  }
}
