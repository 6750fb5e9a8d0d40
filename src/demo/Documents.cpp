#include "demo/Documents.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <random>
#include <utility>

namespace quillpad::demo {
namespace {

constexpr std::array clients = {
    "Bäckerei Grünwald & Söhne",
    "O'Connor and Daughters",
    "東京デザイン株式会社",
    "Fernández-Gutiérrez Arquitectos Asociados y Compañía, Sociedad Limitada",
    "مؤسسة النور للتجارة",
    "Ida",
    "Łukasz Wójcik Studio",
    "R&D <Prototypes> \"Ltd\"",
    "北京晨光文具有限公司",
    "Åse Lindqvist",
    "Atelier Élodie Fournier",
    "Иванова и партнёры",
    "Nguyễn Thị Hương",
    "한빛전자 주식회사",
    "Harbour View Dental Practice",
    "Σοφία Παπαδοπούλου",
};

std::string textOf(std::chrono::year_month_day date, const char* time) {
  std::array<char, 32> text{};
  std::snprintf(
      text.data(),
      text.size(),
      "%04d-%02u-%02u %s",
      static_cast<int>(date.year()),
      static_cast<unsigned>(date.month()),
      static_cast<unsigned>(date.day()),
      time);
  return text.data();
}

// In cents. Mostly jobs of some hundreds, a few trifles, a few large orders: a month of a small
// business, whose sales mostly stay below the cap of the sales card.
std::int64_t amount(std::mt19937& random) {
  const auto below = [&](unsigned bound) { return static_cast<std::int64_t>(random() % bound); };
  switch (random() % 12) {
    case 0:
      return 50 + below(900);
    case 1:
      return 40000 + below(25) * 5000;
    case 2:
      return 90000 + below(300000);
    default:
      return 4000 + below(80000);
  }
}

const std::string& dateOf(const Document& document, Query::Dated dated) {
  return dated == Query::Dated::byDueDate ? document.dueDate : document.createTime;
}

bool matches(const Document& document, const Query& query) {
  const std::string& date = dateOf(document, query.dated);
  return document.type == query.type && document.valid == query.valid && query.startTime <= date &&
         date < query.endTime && (!query.paid || document.paid == *query.paid) &&
         (!query.estimateStatus || document.estimateStatus == *query.estimateStatus);
}

bool ordered(const Document& left, const Document& right, Query::Sort sort) {
  switch (sort) {
    case Query::Sort::createTime:
      return left.createTime < right.createTime;
    case Query::Sort::dueDate:
      return left.dueDate < right.dueDate;
    case Query::Sort::clientName:
      return left.clientName < right.clientName;
    case Query::Sort::total:
      return left.cents < right.cents;
    case Query::Sort::no:
      break;
  }
  return left.no < right.no;
}

}  // namespace

Day Day::today() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return {
      .year = local.tm_year + 1900,
      .month = static_cast<unsigned>(local.tm_mon + 1),
      .day = static_cast<unsigned>(local.tm_mday)};
}

std::vector<Document> documentsOn(Day today) {
  using std::chrono::days;
  const std::chrono::sys_days now =
      std::chrono::year(today.year) / std::chrono::month(today.month) / std::chrono::day(today.day);
  const std::chrono::sys_days begin = std::chrono::year(today.year - 1) / 1 / 1;
  std::mt19937 random(21);
  std::vector<Document> documents;
  const auto add = [&](DocumentType type, int no, days age) -> Document& {
    const std::chrono::sys_days created = now - age;
    static constexpr std::array times = {"09:05:03", "11:40:00", "15:22:47"};
    return documents.emplace_back(Document{
        .type = type,
        .no = no,
        .clientName = clients[static_cast<std::size_t>(no) * 7 % clients.size()],
        .cents = amount(random),
        .createTime = textOf(created, times[random() % times.size()]),
        .dueDate = textOf(created + days(type == DocumentType::invoice ? 21 : 30), "00:00:00")});
  };

  // From the newest to the oldest; four of each kind are of today, so that a year that has just
  // begun has some, too. Numbers go up with time.
  const int span = static_cast<int>((now - begin).count());
  int no = 1000 + span / 5;
  for (int i = 0, age = 0; age <= span; ++i, age = i < 4 ? 0 : (i - 3) * 5) {
    Document& invoice = add(DocumentType::invoice, no--, days(age));
    invoice.valid = i % 11 != 6;
    invoice.paid = i % 4 == 1 || (age > 60 && i % 9 != 0);
  }
  no = 200 + span / 9;
  for (int i = 0, age = 0; age <= span; ++i, age = i < 4 ? 0 : (i - 3) * 9) {
    Document& estimate = add(DocumentType::estimate, no--, days(age));
    estimate.valid = i % 13 != 7;
    if (i % 5 == 2 || (age > 45 && i % 6 != 0)) {
      estimate.estimateStatus = i % 3 == 0 ? EstimateStatus::declined : EstimateStatus::approved;
    }
  }
  return documents;
}

Dictionary rowOf(const Document& document) {
  Dictionary row{
      {"no", std::to_string(document.no)},
      {"clientName", document.clientName},
      {"total", static_cast<double>(document.cents) / 100},
      {"createTime", document.createTime},
      {"dueDate", document.dueDate},
      {"type", static_cast<int>(document.type)},
      {"isValid", document.valid ? 1 : 0}};
  if (document.type == DocumentType::invoice) {
    row.set("isFullPaid", document.paid ? "Paid" : "Unpaid");
  } else {
    row.set("estimateStatus", static_cast<int>(document.estimateStatus));
  }
  return row;
}

Page list(const std::vector<Document>& documents, const Query& query) {
  Page page;
  std::ranges::copy_if(
      documents, std::back_inserter(page.documents), [&](const Document& document) {
        return matches(document, query);
      });
  std::ranges::stable_sort(page.documents, [&](const Document& left, const Document& right) {
    return query.descending ? ordered(right, left, query.sort) : ordered(left, right, query.sort);
  });
  page.total = page.documents.size();

  const std::size_t first = std::min(page.total, (query.page - 1) * query.pageSize);
  const std::size_t last = std::min(page.total, first + query.pageSize);
  page.documents.resize(last);
  page.documents.erase(
      page.documents.begin(), page.documents.begin() + static_cast<std::ptrdiff_t>(first));
  return page;
}

Summary summarize(const std::vector<Document>& documents, std::string_view currentTime) {
  const std::string_view year = currentTime.substr(0, 5);   // "2026-"
  const std::string_view month = currentTime.substr(0, 8);  // "2026-03-"
  Summary summary;
  for (const Document& document : documents) {
    if (!document.valid || !document.createTime.starts_with(year)) {
      continue;
    }
    if (document.type == DocumentType::estimate) {
      summary.pendingEstimates += document.estimateStatus == EstimateStatus::pending ? 1 : 0;
      continue;
    }
    summary.unpaidInvoices += document.paid ? 0 : 1;
    if (document.createTime.starts_with(month)) {
      summary.salesMonthCents += document.cents;
    }
  }
  return summary;
}

}  // namespace quillpad::demo
