#include "curl/listing_search.h"

namespace corvane {

bool ListFolder(FtpConnection& ftp, EventLoop&, const std::string&, std::vector<FindRecord>&) {
  return ftp.Refuse("");
}

bool FindOneFile(FtpConnection& ftp, EventLoop&, const std::string&, std::vector<FindRecord>&) {
  return ftp.Refuse("");
}

}  // namespace corvane
