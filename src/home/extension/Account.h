// Who is signed in to the application whose widgets are shown, as far as the home screen has to
// know: what it keeps belongs to one account and goes with it. A plain value; its function is
// called on the home screen's thread.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace quillpad::home {

struct Account {
  // A mark that differs from account to account and reveals nothing of it, "" where nobody is
  // signed in; nothing where that is not known now. Empty for widgets without accounts.
  std::function<std::optional<std::string>()> mark{};
  std::filesystem::path store{};  // the file that changes with it
  std::string hint{};             // one sentence on what helps where nobody is signed in
};

}  // namespace quillpad::home
