#include "gateway/DocumentList.h"
#include "gateway/Fetches.h"

namespace quillpad {

void getUnpaidData(FetchCallback<Array> callback) {
  const ListSource source{"UnpaidData line 82", std::source_location::current()};
  getRecords({"isFullPaid", "Unpaid", "1"}, source, std::move(callback));
}

}  // namespace quillpad
