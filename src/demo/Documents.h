// The demo business: its invoices and estimates of this year and the last, made up again from
// today's date and always the same for one day, and the questions that the gateway answers about
// them. Plain values and functions of their arguments alone.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/Value.h"

namespace quillpad::demo {

// A day of the gateway's own clock.
struct Day {
  int year = 0;
  unsigned month = 0;
  unsigned day = 0;

  static Day today();
};

enum class DocumentType { invoice = 1, estimate = 2 };
enum class EstimateStatus { pending = 0, approved = 1, declined = 2 };

// Moments are local wall-clock time, "2026-03-07 09:05:03", and so compare as text.
struct Document {
  DocumentType type = DocumentType::invoice;
  int no = 0;
  std::string clientName;
  std::int64_t cents = 0;
  std::string createTime;
  std::string dueDate;  // of an estimate, the day until which it is valid
  bool paid = false;    // of invoices
  EstimateStatus estimateStatus = EstimateStatus::pending;  // of estimates
  bool valid = true;                                        // false for one that was cancelled
};

std::vector<Document> documentsOn(Day today);

// As the gateway lists it: {"no":"1042","clientName":"…","total":1234.5,"createTime":"…",…}.
Dictionary rowOf(const Document& document);

// Which documents to list, and how.
struct Query {
  enum class Dated { byDueDate = 1, byCreateTime = 2 };
  enum class Sort { createTime, dueDate, no, clientName, total };

  DocumentType type = DocumentType::invoice;
  std::string startTime;  // included
  std::string endTime;    // not included
  Dated dated = Dated::byCreateTime;
  std::optional<bool> paid;
  std::optional<EstimateStatus> estimateStatus;
  bool valid = true;
  Sort sort = Sort::createTime;
  bool descending = true;
  std::size_t page = 1;
  std::size_t pageSize = 20;
};

struct Page {
  std::vector<Document> documents;
  std::size_t total = 0;  // on all pages
};

Page list(const std::vector<Document>& documents, const Query& query);

// The figures at a moment: what the month's valid invoices come to, and how many valid invoices of
// the year are unpaid and how many of its estimates pending, as the lists of the year count them.
struct Summary {
  std::int64_t salesMonthCents = 0;
  int unpaidInvoices = 0;
  int pendingEstimates = 0;
};

Summary summarize(const std::vector<Document>& documents, std::string_view currentTime);

}  // namespace quillpad::demo
