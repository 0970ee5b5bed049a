#pragma once

#include <string>
#include <string_view>

#include "base/status.h"
#include "page/page_contents.h"

namespace corvane {

/// The page: one HTML document that is whole in itself and runs nothing.
[[nodiscard]] std::string PageHtml(const PageContents& av_Contents);

/// The file's name in its folder.
inline constexpr std::string_view kPageName = "index.html";
/// Puts a page into a folder that is there; whoever reads it has the former one or this one.
Status WritePage(const std::string& as_Folder, const std::string& as_Html);

}  // namespace corvane
