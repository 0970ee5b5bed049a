// What a person is told about a device that cannot be used, the same when it is looked at and when it is opened.
#pragma once

#include <string>

#include <sys/stat.h>

namespace corvane {

/// The group whose users may read and write the device; empty when none may.
[[nodiscard]] std::string GroupThatMayUse(const struct stat& about);
/// Why this user may not use the device and who can change that; `about` is all zero when nothing is known of it.
[[nodiscard]] std::string NoPermissionText(const std::string& path, const struct stat& about);
[[nodiscard]] std::string NotThereText(const std::string& path);
[[nodiscard]] std::string NotSerialText(const std::string& path);

}  // namespace corvane
