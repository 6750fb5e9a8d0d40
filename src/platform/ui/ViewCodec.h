// Views as JSON values, to cross the channel. Pure functions, callable from any thread.
#pragma once

#include <expected>
#include <functional>
#include <string>

#include "platform/foundation/Decoder.h"
#include "platform/foundation/Value.h"
#include "platform/ui/View.h"

namespace quillpad::ui {

// The view with every looked-up text replaced by what `lookUp` finds for it, and so verbatim.
View localized(View view, const std::function<std::string(const std::string& key)>& lookUp);

// The view as a JSON value. What viewFromValue reads back gives the same value again.
Value toValue(const View& view);

// The view that the value describes; on failure the first error with its place in the tree. Depth,
// views, texts and the modifiers of one view are bounded.
std::expected<View, std::string> viewFromValue(const Value& value);

// The same for a view within a document; an error stays with the decoder.
View viewFrom(const Decoder& d);

}  // namespace quillpad::ui
