#include "gateway/UnpaidData.h"

#include "gateway/DocumentList.h"

namespace quillpad {

void getUnpaidData(FetchCallback<Array> callback) {
  const ListSource source{"UnpaidData line 82", std::source_location::current()};
  getRecords({"isFullPaid", "Unpaid", "1"}, source, std::move(callback));
}

}  // namespace quillpad
