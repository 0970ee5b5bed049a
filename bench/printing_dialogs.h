#pragma once

#include <cstdio>
#include <functional>
#include <optional>
#include <string>

#include "platform/dialogs.h"

namespace corvane {

/// Prints every box and answers it at once.
class PrintingDialogs : public Dialogs {
 public:
  BoxId OpenBox(const BoxContents& contents, std::function<void(int)> on_click) override {
    std::fprintf(stderr, "%s\n", contents.text.c_str());
    on_click(1);
    return 1;
  }
  void SetCountDown(BoxId, const std::string&) override {}
  void CloseBox(BoxId) override {}
  std::optional<std::string> AskText(const std::string&, const std::string&, const std::string&) override { return {}; }
  std::optional<std::string> ChooseFile(const std::string&, const std::string&, const std::string&) override {
    return {};
  }
  std::optional<std::string> ChooseFolder(const std::string&, const std::string&) override { return {}; }
};

}  // namespace corvane
