// The whole home screen over HTTP, with an extension that is no invoice widget at all.
#include <chrono>
#include <filesystem>
#include <future>
#include <gmock/gmock.h>
#include <poll.h>
#include <regex>
#include <set>

#include "fixtures/Loopback.h"
#include "fixtures/ScopedVariable.h"
#include "fixtures/TemporaryHome.h"
#include "home/ScriptedExtension.h"
#include "home/page/HomeScreen.h"
#include "platform/os/UserFolders.h"

namespace quillpad::home {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class HomeScreenTest : public testing::Test {
 protected:
  static std::string found(const std::string& text, const std::string& pattern) {
    std::smatch match;
    return std::regex_search(text, match, std::regex(pattern)) ? match[1].str() : "";
  }
  // What the page says of itself by the name.
  static std::string named(const std::string& page, const std::string& name) {
    return found(page, name + "\" content=\"(\\w+)\"");
  }

  std::string port() const { return found(screen_->address(), "http://127\\.0\\.0\\.1:(\\d+)/"); }
  std::string key() const { return found(screen_->address(), "\\?key=([0-9a-f]{32})$"); }
  std::string cookie(const std::string& key) const {
    return "Cookie: other=1; quillpad-home-" + port() + "=" + key + "\r\n";
  }

  // The answer to the request of a browser that is known, while the home screen's loop runs.
  std::string ask(const std::string& line, const std::string& headers = "") {
    return askAsAnybody(line, cookie(key()) + headers);
  }

  std::string askAsAnybody(const std::string& line, const std::string& headers = "") {
    auto answer = std::async(std::launch::async, [&] { return exchange(line, headers); });
    while (answer.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
      std::vector<pollfd> descriptors;
      screen_->addDescriptors(descriptors);
      ::poll(descriptors.data(), descriptors.size(), std::min(screen_->pollTimeout(), 10));
      screen_->run();
    }
    return answer.get();
  }

  std::string askUntil(const std::string& line, const std::string& text) {
    std::string answer;
    for (int turn = 0; turn < 500 && !answer.contains(text); ++turn) {
      answer = ask(line);
    }
    EXPECT_THAT(answer, HasSubstr(text));
    return answer;
  }

 private:
  std::string exchange(const std::string& line, const std::string& headers) const {
    const FileDescriptor socket = fixtures::connectedTo(std::stoi(port()));
    const std::string request = line + " HTTP/1.1\r\nHost: 127.0.0.1:" + port() +
                                "\r\nConnection: close\r\nContent-Length: 0\r\n" + headers + "\r\n";
    ::send(socket.get(), request.data(), request.size(), MSG_NOSIGNAL);
    std::string answer;
    char buffer[4096];
    for (ssize_t count = 0; (count = ::recv(socket.get(), buffer, sizeof buffer, 0)) > 0;) {
      answer.append(buffer, static_cast<std::size_t>(count));
    }
    return answer;
  }

  fixtures::TemporaryHome home_;

 protected:
  std::unique_ptr<HomeScreen> screen_ =
      HomeScreen::start(CLOCK_EXTENSION, 0, {.hint = "Wind it."}).value();
};

TEST_F(HomeScreenTest, ShowsAnyExtensionsWidgetsLive) {
  const std::string page = askUntil("GET /", R"(data-status="live")");
  EXPECT_THAT(
      page,
      AllOf(
          HasSubstr(R"(data-kind="clock/Uhr &amp; &lt;Zeit&gt;")"),
          HasSubstr("Clock &quot;UTC&quot;"),
          HasSubstr("aria-label=\"Time of day")));
  const std::string gallery = ask("GET /gallery");
  EXPECT_THAT(gallery, HasSubstr("Tells the time &lt;everywhere&gt;."));

  std::set<std::string> ids;
  const std::string both = page + gallery;  // the gallery opens in the page
  const std::regex id(" id=\"([^\"]*)\"");
  for (std::sregex_iterator each(both.begin(), both.end(), id), end; each != end; ++each) {
    EXPECT_TRUE(ids.insert((*each)[1]).second) << "twice in the page: " << (*each)[1];
  }
}

TEST_F(HomeScreenTest, AnswersNobodyWithoutTheKey) {
  askUntil("GET /", R"(data-status="live")");
  const std::string wrong(32, '0');
  const std::string linked =
      "Sec-Fetch-Site: cross-site\r\nSec-Fetch-Mode: navigate\r\nSec-Fetch-Dest: document\r\n";
  const std::tuple<std::string, std::string, int> cases[] = {
      {"GET /", "", 401},
      {"GET /?key=", "", 401},
      {"GET /?key=" + wrong, "", 401},
      {"GET /", cookie(wrong), 401},
      {"GET /", cookie(""), 401},
      {"GET /changes", "", 401},
      {"GET /events", "", 401},
      {"GET /gallery", "", 401},
      {"GET /picture.svg", "", 401},
      {"POST /reload", "", 401},
      {"GET /changes", cookie(key()), 200},
      {"GET /picture.svg?key=" + key(), "", 200},
      {"GET /?key=" + key(), cookie(wrong), 200},
      {"GET /?key=" + key(), linked, 200},
      {"GET /?view=engineer&key=" + key(), linked, 403},
  };
  for (const auto& [line, headers, status] : cases) {
    const std::string answer = askAsAnybody(line, headers);
    EXPECT_THAT(answer, testing::StartsWith("HTTP/1.1 " + std::to_string(status))) << line;
    EXPECT_EQ(answer.contains(key()), status == 200 && line.starts_with("GET /?")) << line;
  }
}

TEST_F(HomeScreenTest, TheKeyOutlivesTheRunAndIsItsOwnersAlone) {
  const std::string kept = key();
  screen_ = HomeScreen::start(CLOCK_EXTENSION, 0, {}).value();
  EXPECT_EQ(key(), kept);
  const auto file = userStateFolder().value() / "page-key";
  EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0600));
  std::filesystem::resize_file(file, 5);
  screen_ = HomeScreen::start(CLOCK_EXTENSION, 0, {}).value();
  EXPECT_THAT(key(), AllOf(testing::SizeIs(32), testing::Ne(kept)));
}

// Numbers of another run say nothing about this one, and those to come are not there yet.
TEST_F(HomeScreenTest, ChangesAreThoseSinceTheVersionOfThisRun) {
  const std::string page = askUntil("GET /", R"(data-status="live")");
  const std::string seen = "GET /changes?since=" + named(page, "version");
  const std::pair<std::string, bool> cases[] = {
      {seen, false},
      {seen + "&instance=" + named(page, "instance"), false},
      {seen + "&instance=0123456789abcdef", true},
      {"GET /changes?since=18446744073709551615", true},
      {"GET /changes?since=0", true},
      {"GET /changes", true},
  };
  for (const auto& [line, isNew] : cases) {
    EXPECT_EQ(ask(line).contains("data-kind"), isNew) << line;
  }
}

TEST_F(HomeScreenTest, ADroppedRequestIsToldInTheExtensionsWordsAndTheHintWhereNobodyIsSignedIn) {
  const fixtures::ScopedVariable stopped("CLOCK_STOPPED", "yes");
  for (const char* mark : {"", "somebody"}) {
    screen_ =
        HomeScreen::start(CLOCK_EXTENSION, 0, {.mark = [mark] { return mark; }, .hint = "Wind it."})
            .value();
    const std::string page = askUntil("GET /", "the clock has stopped");
    EXPECT_THAT(page, HasSubstr("=\"placeholder\""));
    EXPECT_EQ(page.contains("the clock has stopped Wind it."), *mark == '\0');
  }
}

// Eighteen widgets, each of them two thousand texts.
std::string heavyExtension() {
  std::string catalogue;
  for (char kind = 'A'; kind <= 'R'; ++kind) {
    catalogue += catalogue.empty() ? "" : ",";
    catalogue += R"({"kind":")" + std::string(1, kind) +
                 R"(","displayName":"","description":"","families":["systemMedium"]})";
  }
  std::string texts = R"({"type":"spacer"})";
  for (int i = 0; i < 2000; ++i) {
    texts += R"(,{"type":"text","text":"some words and number )" + std::to_string(i) +
             R"(","font":{"size":)" + std::to_string(9 + i % 20) + R"(,"weight":"regular"}})";
  }
  return "while read -r line <&3; do id=${line#*'\"id\":'}; id=${id%%[!0-9]*}; case $line in "
         "*'\"catalogue\"'*) result='[" +
         catalogue +
         "]';; "
         "*'\"render\"'*) result='{\"view\":{\"type\":\"vstack\",\"children\":[" +
         texts +
         "]}}';; "
         "*'\"timeline\"'*) result='{\"entries\":[" +
         anEntry +
         "],\"policy\":{\"after\":\"2099-01-01T00:00:00.000Z\"}}';; "
         "*) result='" +
         anEntry +
         "';; esac; "
         "printf '{\"id\":%s,\"result\":%s}\\n' $id \"$result\" >&3; done";
}

// What they cost in time is spread over turns of the loop, and what they cost in bytes is bounded.
TEST_F(HomeScreenTest, HeavyCardsKeepNobodyWaitingAndNoPageGrowing) {
  const ScriptedExtension extension(heavyExtension());
  screen_ = HomeScreen::start(extension.path(), 0, {}).value();
  askUntil("GET /?view=process", "<bdi>R</bdi>");
  askUntil("GET /?view=process", ">None.<");

  std::string version = "0";
  std::size_t answers = 0;
  std::size_t cards = 0;
  std::size_t refused = 0;
  for (; cards < 18 && answers < 1000; ++answers) {
    const std::string changes = ask("GET /changes?since=" + version);
    for (std::size_t at = 0; (at = changes.find("data-kind", at)) != std::string::npos; ++at) {
      ++cards;
    }
    for (std::size_t at = 0; (at = changes.find("24 MiB at most", at)) != std::string::npos; ++at) {
      ++refused;
    }
    version = found(changes.substr(0, 1500), "\"version\":(\\d+)");
  }
  EXPECT_EQ(cards, 18U) << "each once";
  EXPECT_GT(answers, 2U);
  EXPECT_GT(refused, 0U);
  EXPECT_LT(refused, 7U);
  EXPECT_LT(ask("GET /").size(), std::size_t{26} * 1024 * 1024);
}

TEST_F(HomeScreenTest, ChangesNeedThePagesTokenAndSomethingToChange) {
  const std::string page = askUntil("GET /", R"(data-status="live")");
  const std::string token = "X-Page-Token: " + named(page, "page-token") + "\r\n";
  const std::string clock = "?kind=clock%2FUhr%20%26%20%3CZeit%3E";
  const std::tuple<std::string, std::string, int> cases[] = {
      {"POST /reload", "", 403},
      {"POST /reload", "X-Page-Token: guessed\r\n", 403},
      {"POST /reload", token, 204},
      {"POST /reload" + clock, token, 204},
      {"POST /reload?kind=other", token, 404},
      {"POST /remove" + clock, token, 204},
      {"POST /place" + clock, token, 204},
      {"POST /move" + clock, token, 204},
      {"POST /move?kind=other", token, 404},
      {"POST /place?kind=other", token, 404},
      {"POST /remove", token, 404},
      {"POST /launch" + clock, token, 404},
      {"GET /elsewhere", "", 404},
      {"GET /?view=engineer&kind=other", "", 404},
      {"GET /?view=engineer", "", 200},
  };
  for (const auto& [line, headers, status] : cases) {
    EXPECT_THAT(ask(line, headers), testing::StartsWith("HTTP/1.1 " + std::to_string(status)))
        << line;
  }
}

}  // namespace
}  // namespace quillpad::home
