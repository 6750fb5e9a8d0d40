// The world of a product test: a shared settings store in a temporary home, in English and UTC.
#pragma once

#include <gtest/gtest.h>
#include <string>

#include "fixtures/ScopedVariable.h"
#include "fixtures/TemporaryHome.h"
#include "platform/foundation/Value.h"
#include "platform/settings/SettingsWriter.h"
#include "support/SharedSettings.h"

namespace quillpad {

class ProductSettings {
 public:
  ProductSettings() { ::testing::FLAGS_gtest_death_test_style = "threadsafe"; }

  void set(const std::string& key, const Value& value) {
    const auto changed =
        changeSettings(appGroup(), [&](Dictionary& objects) { objects.set(key, value); });
    ASSERT_TRUE(changed) << changed.error();
  }

  void signIn(const std::string& businessId, const std::string& token) {
    set("businessId", businessId);
    set("token", token);
  }

  void setCurrency(const Value& currency) {
    set("currentBusiness", Dictionary{{"currency", currency}});
  }

 private:
  fixtures::TemporaryHome home_;
  fixtures::ScopedVariable locale_{"LC_ALL", "en_US.UTF-8"};
  fixtures::ScopedVariable zone_{"TZ", "UTC"};
};

}  // namespace quillpad
