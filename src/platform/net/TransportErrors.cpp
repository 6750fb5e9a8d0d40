#include "platform/net/TransportErrors.h"

#include <cerrno>
#include <openssl/x509_vfy.h>

namespace quillpad {
namespace {

const char* sentence(TransportErrorCode code) {
  switch (code) {
    case unknownError:
      return "unknown error";
    case badURL:
      return "bad URL";
    case timedOut:
      return "The request timed out.";
    case unsupportedURL:
      return "unsupported URL";
    case cannotFindHost:
      return "A server with the specified hostname could not be found.";
    case cannotConnectToHost:
      return "Could not connect to the server.";
    case networkConnectionLost:
      return "The network connection was lost.";
    case tooManyRedirects:
      return "too many HTTP redirects";
    case notConnectedToInternet:
      return "The Internet connection appears to be offline.";
    case cannotDecodeRawData:
      return "cannot decode raw data";
    case cannotParseResponse:
      return "cannot parse response";
    case secureConnectionRequired:
      return "The resource could not be loaded because the address does not use a secure "
             "connection.";
    case dataLengthExceedsMaximum:
      return "resource exceeds maximum size";
    case secureConnectionFailed:
      return "An SSL error has occurred and a secure connection to the server cannot be made.";
    case certificateHasBadDate:
      return "The certificate for this server has expired.";
    case certificateUntrusted:
      return "The certificate for this server is invalid.";
    case certificateHasUnknownRoot:
      return "The certificate for this server was signed by an unknown certifying authority.";
    case certificateNotYetValid:
      return "The certificate for this server is not yet valid.";
  }
  return "unknown error";
}

TransportErrorCode certificateErrorCode(CURL* handle) {
  long verification = X509_V_OK;
  curl_easy_getinfo(handle, CURLINFO_SSL_VERIFYRESULT, &verification);
  switch (verification) {
    case X509_V_ERR_CERT_HAS_EXPIRED:
      return certificateHasBadDate;
    case X509_V_ERR_CERT_NOT_YET_VALID:
      return certificateNotYetValid;
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
    case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
      return certificateHasUnknownRoot;
    default:
      return certificateUntrusted;
  }
}

TransportErrorCode connectErrorCode(CURL* handle) {
  long systemError{};
  curl_easy_getinfo(handle, CURLINFO_OS_ERRNO, &systemError);
  return systemError == ENETUNREACH ? notConnectedToInternet : cannotConnectToHost;
}

}  // namespace

TransportError transportError(TransportErrorCode code) {
  return {.code = code, .localizedDescription = sentence(code)};
}

TransportErrorCode transportErrorCode(CURLcode result, CURL* handle) {
  switch (result) {
    case CURLE_URL_MALFORMAT:
      return badURL;
    case CURLE_OPERATION_TIMEDOUT:
      return timedOut;
    case CURLE_COULDNT_RESOLVE_HOST:
      return cannotFindHost;
    case CURLE_COULDNT_CONNECT:
      return connectErrorCode(handle);
    case CURLE_GOT_NOTHING:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_PARTIAL_FILE:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
      return networkConnectionLost;
    case CURLE_BAD_CONTENT_ENCODING:
      return cannotDecodeRawData;
    // An answer without an HTTP head: only https addresses come this far.
    case CURLE_UNSUPPORTED_PROTOCOL:
    // A header line without an end: libcurl runs out of the room that it allows for one.
    case CURLE_OUT_OF_MEMORY:
    case CURLE_WEIRD_SERVER_REPLY:
      return cannotParseResponse;
    case CURLE_PEER_FAILED_VERIFICATION:
      return certificateErrorCode(handle);
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
      return secureConnectionFailed;
    default:
      return unknownError;
  }
}

}  // namespace quillpad
