#include "ui/strip/StripWindow.h"

#include <QPaintEvent>

#include "base/Texts.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/KeyFocus.h"
#include "ui/kit/QtText.h"

namespace {

constexpr int kStripTop = 1;
constexpr double kFocusWidth = 3;

}  // namespace

CStripWindow::CStripWindow(CFilmstripHost& host, QWidget* parent) : QWidget(parent), Strip(host, *this) {
  setObjectName(QStringLiteral("StripWindow"));
  setAccessibleName(ToQString(LoadText(StringId::ToldStripWindow)));
  setFocusPolicy(Qt::NoFocus);
}

void CStripWindow::UpdateFocus() {
  update();
  Strip.update();
}

void CStripWindow::resizeEvent(QResizeEvent*) {
  Strip.setGeometry(0, kStripTop, width(), kStripHeight);
  Strip.SetWidth(width());
}

std::vector<GroupPart> CStripWindow::ListParts() const {
  if (Strip.isHidden()) return {{.Text = ToQString(LoadText(StringId::NoPhotosFound)), .Place = rect()}};
  std::vector<GroupPart> parts = Strip.ListSurroundings();
  parts.insert(parts.begin(), {&Strip});
  return parts;
}

void CStripWindow::paintEvent(QPaintEvent*) {
  CDevicePainter painter(*this);
  painter.Fill(painter.GetArea(), colours::kWindow);
  if (!Strip.isHidden()) return;
  painter.DrawText(painter.GetArea(), Qt::AlignCenter | Qt::TextSingleLine, GetFont(FontId::EmptyPage),
                   colours::kInk, ToQString(LoadText(StringId::NoPhotosFound)));
  if (ShowsFocus(*window())) DrawSelectionFrame(painter, painter.GetArea(), kFocusWidth);
}
