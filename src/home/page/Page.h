// The home screen's page as HTML, made from what it shows. Pure.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "home/extension/WidgetStatus.h"
#include "home/page/Markup.h"
#include "platform/channel/Messages.h"
#include "platform/foundation/Value.h"

namespace quillpad::home {

struct DrawnCard {
  Markup picture;  // follows the page's appearance
  std::optional<std::string> link;
};

struct CardModel {
  const channel::CatalogueItem* about = nullptr;
  const DrawnCard* drawing = nullptr;  // nullptr: none yet
  WidgetStatus status;
  std::optional<Date> updated;
  std::optional<Date> reload;
};

// What a page needs besides its content.
struct PageFrame {
  std::string token{};     // that changes have to bring along
  std::string instance{};  // of the running home screen
  std::string nonce{};     // of this answer, for its style and scripts
  bool rightToLeft = false;
};

Markup cardMarkup(const CardModel& card, Date now);

struct HomeModel {
  std::vector<CardModel> cards;
  std::string notice;
  std::string empty;  // said where there is no card
  std::uint64_t version = 0;
};
Markup homePage(const HomeModel& model, const PageFrame& frame, Date now);

struct OfferModel {
  const channel::CatalogueItem* about = nullptr;
  const DrawnCard* drawing = nullptr;  // nullptr: the extension gave none
  bool placed = false;
};
Markup galleryMarkup(const std::vector<OfferModel>& offers);

// The headers of a page whose style and scripts carry the nonce.
std::string contentPolicy(const std::string& nonce);

// Whether a link leads to an application, and so may stand on a page: a link into the browser, a
// file or a script does not.
bool leadsToApplication(std::string_view link);

}  // namespace quillpad::home
