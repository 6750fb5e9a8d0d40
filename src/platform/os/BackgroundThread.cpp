#include "platform/os/BackgroundThread.h"

#include <csignal>
#include <pthread.h>
#include <utility>

namespace quillpad {

std::thread startBackgroundThread(std::move_only_function<void()> body) {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  std::thread thread(std::move(body));
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return thread;
}

}  // namespace quillpad
