// A thread of the platform's own, beside those of the program.
#pragma once

#include <functional>
#include <thread>

namespace quillpad {

// Starts a thread to which no signal is delivered: signals of the process reach the threads that
// wait for them, and writing to a connection that the peer has closed raises no SIGPIPE.
std::thread startBackgroundThread(std::move_only_function<void()> body);

}  // namespace quillpad
