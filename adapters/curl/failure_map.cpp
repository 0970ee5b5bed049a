#include "curl/failure_map.h"

#include <cerrno>
#include <string>

#include "base/text.h"
#include "platform/internet_client.h"

namespace corvane {

namespace {

constexpr int kServiceClosing = 421;

/// Results of curl whose meaning does not hang on anything else.
struct PlainRow {
  CURLcode code;
  int error;
};
constexpr PlainRow kPlainRows[] = {
    {CURLE_URL_MALFORMAT, kInternetInvalidUrl},
    {CURLE_UNSUPPORTED_PROTOCOL, kInternetInvalidUrl},
    {CURLE_COULDNT_RESOLVE_HOST, kInternetNameNotResolved},
    {CURLE_COULDNT_CONNECT, kInternetCannotConnect},
    {CURLE_FTP_CANT_GET_HOST, kInternetCannotConnect},

    {CURLE_PARTIAL_FILE, kInternetConnectionAborted},
    {CURLE_GOT_NOTHING, kInternetConnectionAborted},
};

/// Results of curl that the adapter explains; "%" is the place of curl's own words.
struct WordsRow {
  CURLcode code;
  const char* words;
};
constexpr const char* kEncryptionFailed = "The encrypted connection could not be made: %.";
constexpr WordsRow kWordsRows[] = {
    {CURLE_USE_SSL_FAILED,
     "The server does not offer encrypted transfer (TLS). Ask its operator for it, or switch the encryption off."},
    {CURLE_PEER_FAILED_VERIFICATION,
     "The server's certificate is not accepted: %. Choose the certificate file that the server's operator gives out, "
     "and enter the server by the name that stands in its certificate."},
    {CURLE_SSL_CACERT_BADFILE,
     "The certificate file cannot be used: %. Choose a file with the certificate in PEM form."},
    {CURLE_SSL_CONNECT_ERROR, kEncryptionFailed},
    {CURLE_SSL_CERTPROBLEM, kEncryptionFailed},
    {CURLE_SSL_CIPHER, kEncryptionFailed},
    {CURLE_SSL_ENGINE_INITFAILED, kEncryptionFailed},
    {CURLE_SSL_SHUTDOWN_FAILED, kEncryptionFailed},
    {CURLE_SSL_ISSUER_ERROR, kEncryptionFailed},
    {CURLE_WEIRD_SERVER_REPLY, "This is no FTP server, or one that is out of order: %."},
};

std::string Explained(const char* words, const std::string& detail) {
  std::string text = words;
  const std::size_t place = text.find('%');
  if (place != std::string::npos) text.replace(place, 1, detail);
  return text;
}

bool IsRefusal(const FtpExchange& exchange) {
  return exchange.code >= 400;
}

bool IsPassiveCommand(const std::string& verb) {
  return verb == "EPSV" || verb == "PASV";
}

FtpFailure TimedOut(const FtpRun& run, const FtpExchange& last) {
  if (run.was_login && !run.had_address) return {kInternetNameNotResolved, ""};
  if (last.verb.empty() && last.code == 0 && !last.text.empty()) {
    return {kInternetExtendedError, "This is no FTP server. It said: " + last.text};
  }
  // The server named a port for the data and nobody answers there.
  const bool silent_port = IsPassiveCommand(last.verb) && last.code / 100 == 2;
  return {silent_port ? kInternetCannotConnect : kInternetTimeout, ""};
}

int LoginError(const FtpExchange& last) {
  constexpr int kNotLoggedIn = 530;
  const std::string words = ToLower(last.text);
  const bool wants_encryption = words.find("encrypt") != std::string::npos || words.find("tls") != std::string::npos;
  if (wants_encryption) return kInternetExtendedError;
  if (last.code != kNotLoggedIn) return kInternetLoginFailure;
  if (last.verb == "USER") return kInternetWrongUserName;
  return last.verb == "PASS" ? kInternetWrongPassword : kInternetLoginFailure;
}

FtpFailure Refused(const FtpRun& run, const FtpExchange& last) {
  if (last.code == kServiceClosing) {
    return {run.was_login ? kInternetExtendedError : kInternetConnectionAborted, ""};
  }
  return {run.code == CURLE_LOGIN_DENIED ? LoginError(last) : kInternetExtendedError, ""};
}

FtpFailure FromCurl(const FtpRun& run, const FtpExchange& last) {
  for (const WordsRow& row : kWordsRows) {
    if (row.code == run.code) return {kInternetExtendedError, Explained(row.words, run.words)};
  }
  for (const PlainRow& row : kPlainRows) {
    if (row.code == run.code) return {row.error, ""};
  }
  // Curl reads replies of up to 300 kB in one run.
  if (run.words.find("Too large response") != std::string::npos) {
    return {kInternetExtendedError, "The server's reply is too long to be read."};
  }
  if (run.code == CURLE_RECV_ERROR || run.code == CURLE_SEND_ERROR) {
    return {run.os_error == ECONNRESET ? kInternetConnectionReset : kInternetConnectionAborted, ""};
  }
  if (run.code == CURLE_FTP_WEIRD_PASV_REPLY && last.code / 100 == 2) return {kInternetCannotConnect, ""};
  if (run.code == CURLE_LOGIN_DENIED) return {kInternetLoginFailure, ""};
  return {kInternetExtendedError, run.words + "."};
}

}  // namespace

FtpFailure FailureOf(const FtpRun& run, const Transcript& transcript) {
  const FtpExchange& last = transcript.Last();
  if (run.cancelled) return {kInternetCancelled, ""};
  if (run.timed_out) return TimedOut(run, last);
  if (run.code == CURLE_OK) return {};
  const bool is_encryption = run.code == CURLE_USE_SSL_FAILED;
  if (IsRefusal(last) && !is_encryption) return Refused(run, last);
  return run.code == CURLE_OPERATION_TIMEDOUT ? TimedOut(run, last) : FromCurl(run, last);
}

bool MetClosedLogin(const FtpRun& run, const Transcript& transcript) {
  if (run.code == CURLE_OK || run.cancelled || run.timed_out || run.moved || transcript.HasLogin()) return false;
  return transcript.Last().code == kServiceClosing || run.code == CURLE_SEND_ERROR || run.code == CURLE_RECV_ERROR;
}

}  // namespace corvane
