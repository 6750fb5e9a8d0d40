#include "platform/foundation/LateLibrary.h"

#include <dlfcn.h>
#include <string>

#include "platform/foundation/Fatal.h"

namespace quillpad {

void* lateFunction(const char* library, const char* function) {
  void* handle = ::dlopen(library, RTLD_LAZY | RTLD_LOCAL);
  void* found = handle == nullptr ? nullptr : ::dlsym(handle, function);
  if (found == nullptr) {
    fatal(std::string("A shared library is missing, install it: ") + ::dlerror());
  }
  return found;
}

}  // namespace quillpad
