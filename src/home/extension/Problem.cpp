#include "home/extension/Problem.h"

#include "home/extension/ExtensionSession.h"

namespace quillpad::home {
namespace {

Problem::Cause causeOf(SessionEnd::Cause cause) {
  switch (cause) {
    case SessionEnd::Cause::exited:
      return Problem::Cause::ended;
    case SessionEnd::Cause::overMemory:
      return Problem::Cause::overMemory;
    case SessionEnd::Cause::late:
      return Problem::Cause::late;
    case SessionEnd::Cause::protocolError:
      return Problem::Cause::protocolError;
  }
  return Problem::Cause::ended;
}

}  // namespace

Problem problemOf(const SessionEnd& end, Date now) {
  return {.cause = causeOf(end.cause), .detail = end.detail, .output = end.lastWords, .since = now};
}

}  // namespace quillpad::home
