// The pictures that cards show by name, read from a bundle when first needed and kept. Belongs to
// one thread.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>

#include "platform/foundation/Bundle.h"
#include "platform/text/Bitmap.h"
#include "platform/text/Geometry.h"

namespace quillpad::drawing {

class Pictures {
 public:
  // The bundle must outlive the pictures.
  explicit Pictures(const Bundle& bundle) : bundle_(bundle) {}

  // The picture for a scale of 1 to 3: the one made for it, else the one for the next larger scale
  // that there is, else for the next smaller. Null where all are missing or cannot be read.
  const Bitmap* find(const std::string& name, int scale);

  // The size of the picture in points; zero where it is missing or cannot be read.
  Size naturalSize(const std::string& name);

  // Lets go of what was read, and so of what find() gave: the files may have changed.
  void forget() { read_.clear(); }

 private:
  const Bitmap* read(const std::string& name, int scale);

  const Bundle& bundle_;
  std::map<std::pair<std::string, int>, std::optional<Bitmap>> read_;
};

}  // namespace quillpad::drawing
