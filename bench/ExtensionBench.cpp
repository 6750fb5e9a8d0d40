// The programs as processes, against the demo gateway: how long a command takes from its start to
// its exit, what 200 timelines at once cost the extension, and its memory over many refreshes.
//
//   extension_bench [cold] [burst] [memory]

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "fixtures/TemporaryHome.h"
#include "home/extension/ExtensionSession.h"

using namespace quillpad;

namespace {

using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

const std::vector<std::string> kinds{
    "SalesSmallWidget",
    "PendingSmallWidget",
    "UnpaidSmallWidget",
    "PendingMediumWidget",
    "UnpaidMediumWidget"};

double milliseconds(Clock::duration duration) {
  return std::chrono::duration<double, std::milli>(duration).count();
}

[[noreturn]] void giveUp(const std::string& reason) {
  std::fprintf(stderr, "extension_bench: %s\n", reason.c_str());
  std::exit(1);
}

// Starts the program with its standard output in the file.
pid_t spawn(std::vector<std::string> words, const std::string& output) {
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) {
    pointers.push_back(word.data());
  }
  pointers.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(
      &actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  pid_t child = 0;
  if (::posix_spawn(&child, pointers[0], &actions, nullptr, pointers.data(), environ) != 0) {
    giveUp("cannot start " + words[0]);
  }
  ::posix_spawn_file_actions_destroy(&actions);
  return child;
}

int wait(pid_t child) {
  int status = 0;
  ::waitpid(child, &status, 0);
  return status;
}

// The demo gateway on a free port, and a store that is signed in to it.
class DemoGateway {
 public:
  explicit DemoGateway(const fs::path& folder) {
    const fs::path log = folder / "gateway.log";
    process_ = spawn({DEMO_GATEWAY, "--port", "0", "--state", folder / "gateway"}, log);
    std::string word;
    for (int i = 0; i < 200 && !word.starts_with("https://"); ++i) {
      ::usleep(50'000);
      std::ifstream(log) >> word >> word;
    }
    if (!word.starts_with("https://")) {
      giveUp("the gateway does not start");
    }
    origin_ = word;
    ::setenv("TEST_GATEWAY_ORIGIN", origin_.c_str(), 1);
    ::setenv("SSL_CERT_FILE", (folder / "gateway/certificate.pem").c_str(), 1);
    const pid_t signIn = spawn(
        {HOME_PROGRAM,
         "settings",
         "sign-in",
         "--business-id",
         "demo",
         "--token-file",
         folder / "gateway/token"},
        "/dev/null");
    if (wait(signIn) != 0) {
      giveUp("cannot sign in");
    }
  }
  const std::string& origin() const { return origin_; }

  ~DemoGateway() {
    ::kill(process_, SIGTERM);
    wait(process_);
  }
  DemoGateway(const DemoGateway&) = delete;
  DemoGateway& operator=(const DemoGateway&) = delete;

 private:
  pid_t process_ = 0;
  std::string origin_;
};

// A member of /proc/PID/smaps_rollup in KiB, or the sum of several.
long memory(pid_t process, const std::vector<std::string>& names) {
  std::ifstream file("/proc/" + std::to_string(process) + "/smaps_rollup");
  long sum = 0;
  for (std::string line; std::getline(file, line);) {
    const std::size_t colon = line.find(':');
    if (colon != std::string::npos && std::ranges::count(names, line.substr(0, colon)) > 0) {
      sum += std::stol(line.substr(colon + 1));
    }
  }
  return sum;
}

long entriesOf(const fs::path& folder) {
  return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

long sockets(pid_t process) {
  long count = 0;
  for (const auto& entry : fs::directory_iterator("/proc/" + std::to_string(process) + "/fd")) {
    std::error_code gone;
    count += fs::read_symlink(entry.path(), gone).string().starts_with("socket:") ? 1 : 0;
  }
  return count;
}

struct Answers {
  int timelines = 0;
  int failedTransfers = 0;
};

// Takes answers until there are so many timelines.
void takeTimelines(
    home::ExtensionSession& extension, int count, Answers& answers, auto&& afterEach) {
  for (const int last = answers.timelines + count; answers.timelines < last;) {
    auto descriptors = extension.descriptors();
    if (::poll(descriptors.data(), descriptors.size(), 90'000) == 0) {
      giveUp("no answer");
    }
    for (const home::SessionEvent& event : extension.poll({})) {
      if (const auto* reply = std::get_if<channel::NumberedReply>(&event)) {
        if (!std::holds_alternative<channel::Timeline>(reply->reply)) {
          giveUp("no timeline");
        }
        ++answers.timelines;
      } else if (const auto* transfer = std::get_if<TransferReport>(&event)) {
        answers.failedTransfers += transfer->error ? 1 : 0;
      } else if (const auto* end = std::get_if<home::Problem>(&event)) {
        giveUp("the extension ended: " + end->lastWords);
      }
    }
    afterEach();
  }
}

// The command curl, posting what a small widget's timeline does.
std::vector<std::string> curl(const fs::path& folder, const DemoGateway& gateway) {
  std::string token;
  std::ifstream(folder / "gateway/token") >> token;
  std::ofstream(folder / "curl.conf")
      << "url = " << gateway.origin() << "/invoice/invoice/getDataMap\n"
      << "cacert = " << (folder / "gateway/certificate.pem").string() << "\n"
      << "header = \"Content-Type: application/json\"\nheader = \"Authorization: " << token << R"("
data = "{\"businessId\":\"demo\",\"currentTime\":\"2026-03-07 09:05:03\"}"
silent
fail
)";
  return {"/usr/bin/curl", "--config", folder / "curl.conf"};
}

void measureCold(const fs::path& folder, const DemoGateway& gateway) {
  std::vector<std::vector<std::string>> commands{curl(folder, gateway)};
  for (const std::vector<std::string>& words : std::initializer_list<std::vector<std::string>>{
           {"list"},
           {"snapshot", "SalesSmallWidget"},
           {"snapshot", "UnpaidMediumWidget"},
           {"timeline", "SalesSmallWidget"},
           {"timeline", "UnpaidMediumWidget"},
           {"render", "SalesSmallWidget", "--state", "snapshot", "-o", folder / "small.png"},
           {"render", "UnpaidMediumWidget", "--state", "snapshot", "-o", folder / "medium.png"}}) {
    auto& command = commands.emplace_back(
        std::vector<std::string>{HOME_PROGRAM, "--extension", EXTENSION_PROGRAM});
    command.insert(command.end(), words.begin(), words.end());
  }
  std::vector<std::vector<double>> times(commands.size());
  constexpr int rounds = 41;
  for (int round = 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < commands.size(); ++i) {
      const auto start = Clock::now();
      if (wait(spawn(commands[i], "/dev/null")) != 0) {
        giveUp(commands[i][0] + " failed");
      }
      times[i].push_back(milliseconds(Clock::now() - start));
    }
  }
  std::printf("Cold, from start to exit, %d interleaved runs:   median    90 %%\n", rounds);
  for (std::size_t i = 0; i < commands.size(); ++i) {
    std::ranges::sort(times[i]);
    const bool own = commands[i][0] == HOME_PROGRAM;
    const std::string name = !own                      ? "curl"
                             : commands[i].size() == 4 ? commands[i][3]
                                                       : commands[i][3] + " " + commands[i][4];
    std::printf(
        "  %-44s %6.1f ms %6.1f ms\n",
        name.c_str(),
        times[i][rounds / 2],
        times[i][rounds * 9 / 10]);
  }
}

void measureBurst(home::ExtensionSession& extension) {
  constexpr int burst = 200;
  Answers answers;
  long mostThreads = 0;
  long mostSockets = 0;
  const auto start = Clock::now();
  for (std::size_t i = 0; i < burst; ++i) {
    extension.ask({}, channel::TimelineRequest{kinds[i % kinds.size()]});
  }
  const std::string process = "/proc/" + std::to_string(extension.pid());
  takeTimelines(extension, burst, answers, [&] {
    mostThreads = std::max(mostThreads, entriesOf(process + "/task"));
    mostSockets = std::max(mostSockets, sockets(extension.pid()));
  });
  std::printf(
      "%d timelines at once: all answered in %.0f ms, %d transfers failed; at most %ld threads and "
      "%ld sockets, the channel's among them\n",
      burst,
      milliseconds(Clock::now() - start),
      answers.failedTransfers,
      mostThreads,
      mostSockets);
}

void measureMemory(home::ExtensionSession& extension) {
  constexpr int refreshes = 10'000;
  constexpr int underWay = 5;
  std::printf("The extension's memory:     resident     private\n");
  Answers answers;
  const auto tell = [&] {
    std::printf(
        "  after %6d refreshes  %7ld KiB %7ld KiB\n",
        answers.timelines,
        memory(extension.pid(), {"Rss"}),
        memory(extension.pid(), {"Private_Clean", "Private_Dirty"}));
  };
  tell();
  const auto start = Clock::now();
  while (answers.timelines < refreshes) {
    for (const std::string& kind : kinds) {
      extension.ask({}, channel::TimelineRequest{kind});
    }
    takeTimelines(extension, underWay, answers, [] {});
    if (answers.timelines == underWay || answers.timelines == 100 ||
        answers.timelines % 2'000 == 0) {
      tell();
    }
  }
  std::printf(
      "  %.2f ms a refresh, five under way; %d transfers failed\n",
      milliseconds(Clock::now() - start) / refreshes,
      answers.failedTransfers);
}

home::ExtensionSession startExtension() {
  auto extension =
      home::ExtensionSession::start(EXTENSION_PROGRAM, std::numeric_limits<std::size_t>::max());
  if (!extension) {
    giveUp(extension.error());
  }
  return std::move(*extension);
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> chosen(argv + 1, argv + argc);
  const auto wanted = [&](const char* part) {
    return chosen.empty() || std::ranges::count(chosen, part) > 0;
  };
  const fixtures::TemporaryHome home;
  const DemoGateway gateway(home.path());
  if (wanted("cold")) {
    measureCold(home.path(), gateway);
  }
  if (wanted("burst")) {
    auto extension = startExtension();
    measureBurst(extension);
  }
  if (wanted("memory")) {
    auto extension = startExtension();
    measureMemory(extension);
  }
}
