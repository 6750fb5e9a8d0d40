// The home screen's page as HTML, made from what it shows. Pure.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "home/extension/WidgetStatus.h"
#include "home/page/Markup.h"
#include "home/server/WebMessages.h"
#include "platform/channel/Messages.h"
#include "platform/foundation/Value.h"

namespace quillpad::home {

struct DrawnCard {
  Markup picture;  // follows the page's appearance
  std::optional<std::string> link;
};

// What a card shows.
struct CardFace {
  const DrawnCard* drawing = nullptr;  // nullptr: none yet
  WidgetStatus status{};
  std::optional<Date> updated{};
  std::optional<Date> failingSince{};  // where these are kept figures
};

struct CardModel {
  const channel::CatalogueItem* about = nullptr;
  CardFace face{};
  std::optional<CardFace> onPhone{};  // where the phone would show something else
  std::optional<Date> reload{};
  bool awaited = false;
  std::optional<Date> slowSince{};
};

// What a page needs besides its content.
struct PageFrame {
  std::string token{};        // that changes have to bring along
  std::string instance{};     // of the running home screen
  std::uint64_t version = 0;  // of what is shown
  std::string nonce{};        // of this answer, for its style and scripts
  std::string cookie{};       // by which the browser is known from now on
  std::string notice{};       // what there is to tell of the whole home screen
  Language language{};
  std::string chosenLanguage{};     // by the address; links keep it
  std::string cardLanguage = "en";  // of the extension's names and pictures
};

// What a page has of its own.
struct PageParts {
  std::string_view view;  // marks the page, for its style
  std::string title;
  std::string style{};  // besides the one of all pages
  Markup body;
  std::string script{};  // runs when the body is there, and may call text()
};
Markup framed(const PageParts& parts, const PageFrame& frame);

Markup cardMarkup(const CardModel& card, const PageFrame& frame, Date now);

// For a desk, with all that there is to read and to do; for a wall, the cards alone.
enum class HomeView { desk, wall };

struct HomeModel {
  HomeView view = HomeView::desk;
  std::vector<CardModel> cards;
  std::string empty;  // shown where there is no card
};
Markup homePage(const HomeModel& model, const PageFrame& frame, Date now);

struct OfferModel {
  const channel::CatalogueItem* about = nullptr;
  const DrawnCard* drawing = nullptr;  // nullptr: the extension gave none
  bool placed = false;
};
Markup galleryMarkup(const std::vector<OfferModel>& offers, const PageFrame& frame);

// Says why there is nothing to see at an address, and leads back.
Markup problemPage(const std::string& problem, const PageFrame& frame);

// The page's own address, or that of its view, in the language that was asked for.
std::string addressOf(std::string_view view, const PageFrame& frame);

// The hidden field of a form by which its answer keeps that language; empty where there is none.
Markup languageField(const PageFrame& frame);

// A page with the headers that it goes out with; and a part of one.
WebAnswer pageAnswer(Markup page, const PageFrame& frame, int status = 200);
WebAnswer htmlAnswer(Markup part);

}  // namespace quillpad::home
