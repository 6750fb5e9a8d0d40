// The gateway of a product test: an HTTPS server on loopback that answers as it is told, in the
// place of the origin that the programs are built with.
#pragma once

#include <mutex>
#include <string>

#include "fixtures/HttpsServer.h"
#include "fixtures/ScopedVariable.h"

namespace quillpad {

class GatewayOfTest {
 public:
  GatewayOfTest();
  ~GatewayOfTest();
  GatewayOfTest(const GatewayOfTest&) = delete;
  GatewayOfTest& operator=(const GatewayOfTest&) = delete;

  // What every request is answered from now on.
  void answerWith(int status, std::string body);
  // Answers with the document packed into a text, as the gateway does.
  void answerWithDocument(const std::string& document);
  // Ends every connection without an answer from now on.
  void fail();

  fixtures::HttpsServer& server() { return server_; }

 private:
  struct Answer {
    int status = 0;  // 0: none
    std::string body;
  };

  std::mutex mutex_;
  Answer answer_;
  fixtures::HttpsServer server_;
  fixtures::ScopedVariable trust_;
};

}  // namespace quillpad
