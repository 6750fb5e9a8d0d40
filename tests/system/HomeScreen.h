// The programs as a person runs them: in a temporary home, against a gateway of the test's own.
#pragma once

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

#include "fixtures/HttpsServer.h"
#include "fixtures/ScopedVariable.h"
#include "fixtures/TemporaryHome.h"

namespace quillpad {

inline const std::vector<std::string> smallKinds{
    "SalesSmallWidget", "PendingSmallWidget", "UnpaidSmallWidget"};
inline const std::vector<std::string> mediumKinds{"PendingMediumWidget", "UnpaidMediumWidget"};

struct Outcome {
  int status = 0;  // of the exit, or 128 and the signal
  std::string out;
  std::string err;
};

// A run of quillpad-home that goes on beside the test.
class RunningHome {
 public:
  RunningHome(
      const std::filesystem::path& folder,
      const std::vector<std::string>& arguments,
      const std::string& input);
  ~RunningHome();
  RunningHome(const RunningHome&) = delete;
  RunningHome& operator=(const RunningHome&) = delete;

  pid_t pid() const { return pid_; }
  // Of the extension that it started; 0 if there is none.
  pid_t extension() const;
  Outcome wait();

 private:
  std::filesystem::path folder_;
  pid_t pid_ = 0;
};

class HomeScreenTest : public testing::Test {
 protected:
  static constexpr const char* token = "tok.3n-of-the-test";

  HomeScreenTest();

  // Runs quillpad-home to its end, with the extension under test.
  Outcome run(std::vector<std::string> arguments, const std::string& input = "") const;
  std::unique_ptr<RunningHome> start(
      std::vector<std::string> arguments, const std::string& input = "") const;

  void signIn() const;

  // From now on there is a gateway, which answers like this.
  fixtures::HttpsServer& serve(fixtures::HttpsServer::Handler handler);
  // One that answers every request with the body.
  fixtures::HttpsServer& serveBody(const std::string& body);

  std::filesystem::path file(const std::string& name) const { return folder_.path() / name; }
  static std::string contents(const std::filesystem::path& path);

  fixtures::TemporaryHome home_;
  fixtures::TemporaryFolder folder_;
  fixtures::ScopedVariable trust_{"SSL_CERT_FILE", fixtures::HttpsServer::authorityFile()};
  fixtures::ScopedVariable locale_{"LC_ALL", "en_US.UTF-8"};
  std::unique_ptr<fixtures::HttpsServer> gateway_;
  std::optional<fixtures::ScopedVariable> origin_;
};

}  // namespace quillpad
