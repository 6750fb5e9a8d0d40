#include "views/SalesImageView.h"

#include "views/Badge.h"
#include "views/Palette.h"

namespace quillpad {

ui::View SalesImageView::body() const { return Badge{.picture = "Graph", .color = salesAccent}; }

}  // namespace quillpad
