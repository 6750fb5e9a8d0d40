// Ownership of the objects of C libraries.
#pragma once

#include <memory>

namespace quillpad::drawing {

template <auto& Destroy>
struct Destroyer {
  void operator()(auto* object) const { Destroy(object); }
};

template <class Object, auto& Destroy>
using Handle = std::unique_ptr<Object, Destroyer<Destroy>>;

}  // namespace quillpad::drawing
