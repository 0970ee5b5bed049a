#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <QString>

#include "form/form.h"
#include "lang/captioned_window.h"

class QAction;
class QMenu;
class QTabWidget;
class QWidget;

namespace corvane::window {

/// The captions and tool tips of the window: every widget with the property "textId", and every menu entry. Besides
/// them the phrases that its pages make sentences of.
///
/// Tab strips and table headings take as many IDs as they have tabs, from their own upward; so do the entries of a
/// selector with the property "captionedEntries".
class Captions : public CaptionedWindow {
 public:
  /// Both must outlive this object; the menus must have their entries at the first use.
  Captions(Form& form, QWidget& window) : form_(form), window_(window) {}

  /// Gives the tabs their numbers, by which their texts are found wherever they are moved later.
  static void NumberPages(QTabWidget& tabs);

  [[nodiscard]] std::int64_t CaptionCount() const override;
  [[nodiscard]] Caption CaptionAt(std::int64_t position) const override;
  void SetCaption(std::int64_t position, int tab, const std::string& text) override;
  void SetToolTip(std::int64_t position, const std::string& text) override;
  /// Puts the built-in texts back, so that another language file starts from them.
  void RestoreBuiltIn();
  [[nodiscard]] std::vector<Phrase> PhraseList() const override;
  void SetPhrases(const Phrases& phrases) override;

  /// Gets the phrases of the language file; set by the window.
  std::function<void(const Phrases& phrases)> on_phrases;

  /// The language file that holds the captions as they are now, and the phrases, one line for each ID in ascending
  /// order, fields separated by "~".
  [[nodiscard]] std::string LanguageTemplate() const;

 private:
  struct Item {
    std::int32_t text_id = 0;
    int tabs = 0;
    std::function<QString(int tab)> caption;
    std::function<void(int tab, const QString& text)> set_caption;
    std::function<QString()> tool_tip;
    std::function<void(const QString& text)> set_tool_tip;
    std::vector<QString> built_in;  ///< the caption of each tab, or the one there is
    QString built_in_tip;
  };

  [[nodiscard]] const std::vector<Item>& Items() const;
  void AddWidget(QWidget& widget) const;
  void RememberBuiltIn() const;
  void AddMenuEntries(MenuGroup& menu) const;
  [[nodiscard]] QMenu* MenuOf(const MenuGroup& menu) const;
  [[nodiscard]] QAction* ActionOf(const MenuGroup& menu, std::size_t row) const;

  Form& form_;
  QWidget& window_;
  mutable std::vector<Item> items_;
};

}  // namespace corvane::window
