#include "BrokenContract.h"

#include "platform/foundation/Fatal.h"

namespace quillpad {

[[noreturn]] void brokenContract(std::string_view message) asm(
    "__wrap__ZN8quillpad5fatalESt17basic_string_viewIcSt11char_traitsIcEE");
[[noreturn]] void brokenContractAt(const std::source_location& where, std::string_view what) asm(
    "__wrap__ZN8quillpad7fatalAtERKSt15source_locationSt17basic_string_viewIcSt11char_traitsIcEE");

void brokenContract(std::string_view /*message*/) { throw BrokenContract(); }

void brokenContractAt(const std::source_location& /*where*/, std::string_view /*what*/) {
  throw BrokenContract();
}

}  // namespace quillpad
