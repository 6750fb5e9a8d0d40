// The world of a product test: a shared settings store in a temporary home, in English and UTC.
#pragma once

#include <gtest/gtest.h>
#include <string>

#include "platform/foundation/SettingsWriter.h"
#include "platform/foundation/Value.h"
#include "support/AppGroup.h"
#include "support/ScopedVariable.h"
#include "support/TemporaryHome.h"

namespace quillpad {

class ProductSettings {
 public:
  ProductSettings() { ::testing::FLAGS_gtest_death_test_style = "threadsafe"; }

  void set(const std::string& key, const foundation::Value& value) {
    const auto changed = foundation::changeSettings(
        appGroup(), [&](foundation::Dictionary& objects) { objects.set(key, value); });
    ASSERT_TRUE(changed) << changed.error();
  }

  void signIn(const std::string& businessId, const std::string& token) {
    set("businessId", businessId);
    set("token", token);
  }

  void setCurrency(const foundation::Value& currency) {
    set("currentBusiness", foundation::Dictionary{{"currency", currency}});
  }

 private:
  support::TemporaryHome home_;
  support::ScopedVariable locale_{"LC_ALL", "en_US.UTF-8"};
  support::ScopedVariable zone_{"TZ", "UTC"};
};

}  // namespace quillpad
