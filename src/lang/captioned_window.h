// What a language file can replace in a window.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "lang/phrases.h"

namespace corvane {

/// The captions of a window, one after the other. Valid until the window is destroyed.
class CaptionedWindow {
 public:
  /// One control with a text ID.
  struct Caption {
    std::int32_t text_id = 0;
    int tabs = 0;  ///< above 0: a tabbed control, whose tabs have the IDs `text_id`, `text_id` + 1, ...
  };

  virtual ~CaptionedWindow() = default;
  CaptionedWindow() = default;
  CaptionedWindow(const CaptionedWindow&) = delete;
  CaptionedWindow& operator=(const CaptionedWindow&) = delete;

  [[nodiscard]] virtual std::int64_t CaptionCount() const = 0;
  /// `position` counts from 0.
  [[nodiscard]] virtual Caption CaptionAt(std::int64_t position) const = 0;
  /// Replaces a caption; `tab` (from 0) is meant for tabbed controls only. "&" marks the access key.
  virtual void SetCaption(std::int64_t position, int tab, const std::string& text) = 0;
  virtual void SetToolTip(std::int64_t position, const std::string& text) = 0;

  /// What its sentences are made of.
  [[nodiscard]] virtual std::vector<Phrase> PhraseList() const { return {}; }
  /// Takes the texts of these, behind all captions.
  virtual void SetPhrases(const Phrases& /*phrases*/) {}
};

}  // namespace corvane
