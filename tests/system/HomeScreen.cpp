#include "system/HomeScreen.h"

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace quillpad {

namespace {

std::string read(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

pid_t parentOf(pid_t process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  for (std::string word; status >> word;) {
    if (word == "PPid:") {
      pid_t parent = 0;
      status >> parent;
      return parent;
    }
  }
  return 0;
}

}  // namespace

RunningHome::RunningHome(
    const std::filesystem::path& folder,
    const std::vector<std::string>& arguments,
    const std::string& input) {
  static std::atomic<int> runs = 0;
  folder_ = folder / ("run" + std::to_string(++runs));
  std::filesystem::create_directory(folder_);
  std::ofstream(folder_ / "in") << input;

  std::vector<std::string> words{HOME_PROGRAM};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& word : words) {
    pointers.push_back(word.data());
  }
  pointers.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  const std::string names[] = {folder_ / "in", folder_ / "out", folder_ / "err"};
  for (int descriptor = 0; descriptor < 3; ++descriptor) {
    const int flags = descriptor == 0 ? O_RDONLY : O_WRONLY | O_CREAT;
    ::posix_spawn_file_actions_addopen(
        &actions, descriptor, names[descriptor].c_str(), flags, 0600);
  }
  EXPECT_EQ(::posix_spawn(&pid_, HOME_PROGRAM, &actions, nullptr, pointers.data(), environ), 0);
  ::posix_spawn_file_actions_destroy(&actions);
}

RunningHome::~RunningHome() {
  if (pid_ != 0) {
    ::kill(pid_, SIGKILL);
    wait();
  }
}

pid_t RunningHome::extension() const {
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    const std::string name = entry.path().filename();
    if (name.find_first_not_of("0123456789") == std::string::npos) {
      const pid_t process = std::stoi(name);
      if (parentOf(process) == pid_) {
        return process;
      }
    }
  }
  return 0;
}

Outcome RunningHome::wait() {
  int status = 0;
  while (::waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
  }
  pid_ = 0;
  return {
      WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
      read(folder_ / "out"),
      read(folder_ / "err")};
}

// Until one is served, the gateway is where nobody listens: at the usual port a demo may.
HomeScreenTest::HomeScreenTest() { origin_.emplace("TEST_GATEWAY_ORIGIN", "https://localhost:9"); }

std::unique_ptr<RunningHome> HomeScreenTest::start(
    std::vector<std::string> arguments, const std::string& input) const {
  arguments.insert(arguments.begin(), {"--extension", EXTENSION_PROGRAM});
  return std::make_unique<RunningHome>(folder_.path(), arguments, input);
}

Outcome HomeScreenTest::run(std::vector<std::string> arguments, const std::string& input) const {
  return start(std::move(arguments), input)->wait();
}

void HomeScreenTest::signIn() const {
  const Outcome signedIn =
      run({"settings", "sign-in", "--business-id", "b-7", "--token-file", "-"},
          std::string(token) + "\n");
  ASSERT_EQ(signedIn.status, 0) << signedIn.err;
}

fixtures::HttpsServer& HomeScreenTest::serve(fixtures::HttpsServer::Handler handler) {
  gateway_ = std::make_unique<fixtures::HttpsServer>(std::move(handler));
  origin_.reset();
  origin_.emplace("TEST_GATEWAY_ORIGIN", gateway_->address(""));
  return *gateway_;
}

fixtures::HttpsServer& HomeScreenTest::serveBody(const std::string& body) {
  return serve([body](const auto& /*request*/, fixtures::HttpsServer::Exchange& exchange) {
    exchange.respond(200, body);
  });
}

std::string HomeScreenTest::contents(const std::filesystem::path& path) { return read(path); }

}  // namespace quillpad
