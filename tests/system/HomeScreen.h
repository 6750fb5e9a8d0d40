// The programs as a person runs them: in a temporary home, against a gateway of the test's own.
#pragma once

#include <filesystem>
#include <gmock/gmock.h>
#include <memory>
#include <optional>

#include "fixtures/HttpsServer.h"
#include "fixtures/Program.h"
#include "fixtures/ScopedVariable.h"
#include "fixtures/TemporaryHome.h"

namespace quillpad {

inline const std::vector<std::string> smallKinds{
    "SalesSmallWidget", "PendingSmallWidget", "UnpaidSmallWidget"};
inline const std::vector<std::string> mediumKinds{"PendingMediumWidget", "UnpaidMediumWidget"};

using fixtures::contentsOf;
using fixtures::Outcome;

class HomeScreenTest : public testing::Test {
 protected:
  static constexpr const char* token = "tok.3n-of-the-test";

  HomeScreenTest();

  // Runs quillpad-home to its end, with the extension under test.
  Outcome run(std::vector<std::string> arguments, const std::string& input = "") const;
  // The same, from one line with blanks between the words.
  Outcome runLine(const std::string& line) const;
  // The same, by a program that runs its arguments.
  static Outcome runThrough(
      const std::vector<std::string>& runner, const std::vector<std::string>& arguments);
  std::unique_ptr<fixtures::Program> start(
      std::vector<std::string> arguments, const std::string& input = "") const;

  void signIn() const;

  // From now on there is a gateway, which answers like this.
  fixtures::HttpsServer& serve(fixtures::HttpsServer::Handler handler);
  // One that answers every request with the body.
  fixtures::HttpsServer& serveBody(const std::string& body);

  std::filesystem::path file(const std::string& name) const { return folder_.path() / name; }

  fixtures::TemporaryHome home_;
  fixtures::TemporaryFolder folder_;
  fixtures::ScopedVariable trust_{"SSL_CERT_FILE", fixtures::HttpsServer::authorityFile()};
  fixtures::ScopedVariable locale_{"LC_ALL", "en_US.UTF-8"};
  std::unique_ptr<fixtures::HttpsServer> gateway_;
  std::optional<fixtures::ScopedVariable> origin_;
};

}  // namespace quillpad
