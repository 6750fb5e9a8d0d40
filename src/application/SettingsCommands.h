// The settings commands: they play the host application, which alone writes the store that it
// shares with the extension.
#pragma once

#include <string>

#include "home/extension/Failure.h"

namespace quillpad::home {

// Prints what is set; of the token only whether it is.
Done showSettings();

// Stores the business and the token that the file holds ("-": standard input).
Done signIn(const std::string& businessId, const std::string& tokenFile);

// Stores the business's currency, for example "€ - EUR".
Done setCurrency(const std::string& currency);

// Empties business and token: the extension then drops requests for timelines until the next
// sign-in. (Without the two keys it would end, which is what it does to a store that was never
// signed in.)
Done signOut();

}  // namespace quillpad::home
