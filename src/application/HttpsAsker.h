// The network, for the home screen, which does not link it.
#pragma once

#include "home/page/AskOverHttps.h"

namespace quillpad::application {

// Asks over the shared URL session.
home::AskOverHttps askOverHttps();

}  // namespace quillpad::application
