// The extension's main operation: serves a bundle of widgets to the home screen that started this
// process.
#pragma once

#include <concepts>
#include <utility>
#include <vector>

#include "platform/widgets/Entitlements.h"
#include "platform/widgets/StaticConfiguration.h"

namespace quillpad::widgets {

// A stateless value whose `body()` lists the widgets' declarations in the order in which the home
// screen lists them.
template <class T>
concept WidgetBundle = requires(const T& bundle) {
  { bundle.body() } -> std::same_as<std::vector<WidgetConfiguration>>;
};

// Serves the widgets on the channel whose descriptor the environment names, until the home screen
// closes it, with no more of the machine at hand than the entitlements name. Without a channel one
// line on standard error says how the program is started. Returns the process's exit status.
int serve(std::vector<WidgetConfiguration> widgets, Entitlements entitlements);

// Ends the process without waiting for transfers that are under way.
[[noreturn]] void leave(int status);

template <WidgetBundle Bundle>
int main(const Bundle& bundle, Entitlements entitlements = {}) {
  leave(serve(bundle.body(), std::move(entitlements)));
}

}  // namespace quillpad::widgets
