#include "ui/back/FieldMenu.h"

#include <QKeyEvent>
#include <algorithm>
#include <unordered_set>
#include <utility>

#include "base/Texts.h"
#include "platform/TextCompare.h"
#include "ui/back/FieldText.h"
#include "ui/back/TokenList.h"
#include "ui/kit/QtText.h"
#include "ui/kit/ToolTips.h"

namespace {

constexpr FontId kMenuFont = FontId::Label;
constexpr double kWidestEntry = 300;  // longer texts lose their ends

struct DateKind {
  StringId Text;
  StampId Source;
};
constexpr DateKind kDateKinds[] = {{StringId::CameraDate, StampId::CameraDate},
                                   {StringId::FileDate, StampId::FileCreateDate},
                                   {StringId::EditedDate, StampId::UserDate}};

std::vector<FieldChoice> ListDateKinds(const CFieldValue& value) {
  std::vector<FieldChoice> choices;
  for (const DateKind& kind : kDateKinds) {
    choices.push_back({LoadText(kind.Text), value.GetNumber() == static_cast<std::int32_t>(kind.Source),
                       value.GetDateFrom(kind.Source).has_value(), kind.Source});
  }
  return choices;
}

CTokenList TokensOf(const CFieldValue& value, const std::string& text) {
  if (value.IsMultiple()) return {text, GetListSeparators()};
  CTokenList whole({}, GetListSeparators());
  whole.Add(text);
  return whole;
}

/// Names an entry in one line, with "&" as a character of the text. What is cut a tip tells.
void NameEntry(QAction& entry, const std::string& text) {
  QString whole = ToQString(text);
  whole.replace(u'\t', u' ').replace(u'\n', u' ');
  QString line = ShortenLine(whole, false, QFontMetricsF(GetFont(kMenuFont)), kWidestEntry);
  if (line != whole) entry.setToolTip(PrepareToolTip(whole));
  entry.setText(line.replace(QStringLiteral("&"), QStringLiteral("&&")));
}

class CFieldMenu final : public QMenu {
 public:
  using QMenu::QMenu;

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    const qsizetype last = actions().size() - 1;
    const qsizetype marked = actions().indexOf(activeAction());
    switch (event->key()) {
      case Qt::Key_Home:
        return Mark(0, 1);
      case Qt::Key_End:
        return Mark(last, -1);
      case Qt::Key_PageUp:
        return Mark(std::max<qsizetype>(marked - kPage, 0), 1);
      case Qt::Key_PageDown:
        return Mark(std::min(marked + kPage, last), -1);
      case Qt::Key_F4:  // which opens it, too
        close();
        return;
      default:
        if (!MarkNext(event->text().trimmed())) QMenu::keyPressEvent(event);
    }
  }

 private:
  static constexpr qsizetype kPage = 10;

  /// The first entry from there on, up or down, that can be picked.
  void Mark(qsizetype index, int step) {
    const QList<QAction*> entries = actions();
    while (index >= 0 && index < entries.size() && !entries[index]->isEnabled()) index += step;
    if (index >= 0 && index < entries.size()) setActiveAction(entries[index]);
  }

  bool MarkNext(const QString& letter) {
    const QList<QAction*> entries = actions();
    const qsizetype marked = entries.indexOf(activeAction());
    for (qsizetype step = 1; !letter.isEmpty() && step <= entries.size(); ++step) {
      QAction* entry = entries[(marked + step) % entries.size()];
      if (!entry->isEnabled() || !entry->text().startsWith(letter, Qt::CaseInsensitive)) continue;
      setActiveAction(entry);
      return true;
    }
    return false;
  }
};

}  // namespace

std::vector<FieldChoice> ListChoices(CFieldValue& value, const std::string& text) {
  if (value.GetKind() == FieldKind::Date) return ListDateKinds(value);
  const CTokenList tokens = TokensOf(value, text);
  std::unordered_set<std::string> present;
  for (const std::string& token : tokens.GetTokens()) present.insert(platform::FoldLetters(token));
  std::vector<FieldChoice> choices;
  for (std::string& choice : value.GetChoices()) {
    const bool isPresent = present.contains(platform::FoldLetters(choice));
    choices.push_back({std::move(choice), isPresent});
  }
  return choices;
}

std::string ApplyChoice(const CFieldValue& value, const std::string& text, const std::string& choice) {
  if (!value.IsMultiple()) return choice;
  CTokenList tokens(text, GetListSeparators());
  if (tokens.Contains(choice)) {
    tokens.Remove(choice);
  } else {
    tokens.Add(choice);
  }
  return tokens.GetText();
}

void ChooseDate(CFieldValue& value, StampId source) {
  const auto time = value.GetDateFrom(source);
  if (!time) return;
  value.SetDate(*time);
  value.SetNumber(static_cast<std::int32_t>(source));
}

std::unique_ptr<QMenu> MakeFieldMenu(const std::vector<FieldChoice>& choices,
                                     const std::function<void(const FieldChoice& choice)>& onChosen,
                                     QWidget* parent) {
  auto menu = std::make_unique<CFieldMenu>(parent);
  menu->setFont(GetFont(kMenuFont));
  menu->setToolTipsVisible(true);
  for (const FieldChoice& choice : choices) {
    QAction* entry = menu->addAction(QString());
    NameEntry(*entry, choice.Text);
    entry->setCheckable(true);
    entry->setChecked(choice.Checked);
    entry->setEnabled(choice.Enabled);
    QObject::connect(entry, &QAction::triggered, parent, [onChosen, choice] { onChosen(choice); });
  }
  return menu;
}

void SelectFirstChoice(QMenu& menu) {
  const QList<QAction*> entries = menu.actions();
  const auto find = [&](bool (QAction::*is)() const) {
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [&](QAction* entry) { return entry->isEnabled() && (entry->*is)(); });
    return found != entries.end() ? *found : nullptr;
  };
  QAction* const checked = find(&QAction::isChecked);
  menu.setActiveAction(checked != nullptr ? checked : find(&QAction::isEnabled));
}
