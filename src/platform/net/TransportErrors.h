// The errors of the URL session: which number of the phone's URL error domain a failure gets, and
// the sentence that goes with it. Private to the session; functions of their arguments alone.
#pragma once

#include "platform/net/Curl.h"
#include "platform/net/URLSession.h"

namespace quillpad {

enum TransportErrorCode : int {
  unknownError = -1,
  badURL = -1000,
  timedOut = -1001,
  unsupportedURL = -1002,
  cannotFindHost = -1003,
  cannotConnectToHost = -1004,
  networkConnectionLost = -1005,
  tooManyRedirects = -1007,
  notConnectedToInternet = -1009,
  cannotDecodeRawData = -1015,
  cannotParseResponse = -1017,
  secureConnectionRequired = -1022,
  dataLengthExceedsMaximum = -1103,
  secureConnectionFailed = -1200,
  certificateHasBadDate = -1201,
  certificateUntrusted = -1202,
  certificateHasUnknownRoot = -1203,
  certificateNotYetValid = -1204,
};

// The error with this number, with its sentence.
TransportError transportError(TransportErrorCode code);

// The number for the result with which libcurl ended the handle's exchange.
TransportErrorCode transportErrorCode(CURLcode result, CURL* handle);

}  // namespace quillpad
