// Where in the settings store the application keeps what it shares with the extension.
#pragma once

namespace quillpad::application {

inline constexpr const char* appGroup = QUILLPAD_APP_GROUP;
inline constexpr const char* businessIdKey = "businessId";
inline constexpr const char* tokenKey = "token";
inline constexpr const char* businessKey = "currentBusiness";
inline constexpr const char* currencyKey = "currency";

}  // namespace quillpad::application
