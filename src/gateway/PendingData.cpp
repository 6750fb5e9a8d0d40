#include "gateway/DocumentList.h"
#include "gateway/Fetches.h"

namespace quillpad {

void getPendingData(FetchCallback<Array> callback) {
  const ListSource source{"PendingData line 83", std::source_location::current()};
  getRecords({"estimateStatus", "0", "2"}, source, std::move(callback));
}

}  // namespace quillpad
