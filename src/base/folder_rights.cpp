#include "base/folder_rights.h"

#include <unistd.h>

namespace corvane {

bool MayWriteInto(const std::string& folder) {
  return access(folder.c_str(), W_OK | X_OK) == 0;
}

}  // namespace corvane
