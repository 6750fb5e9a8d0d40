// Who is signed in, for the home screen, which knows nothing of businesses.
#pragma once

#include "home/extension/Account.h"

namespace quillpad::application {

// The account in the settings store: its mark is a hash of the business's identifier.
home::Account signedInAccount();

}  // namespace quillpad::application
