#include "ui/kit/SmallWindow.h"

#include <QGuiApplication>
#include <QLabel>
#include <QPainter>
#include <QRegion>
#include <QScreen>
#include <algorithm>
#include <memory>

#include "base/Texts.h"
#include "ui/kit/Colours.h"
#include "ui/kit/Pictures.h"
#include "ui/kit/QtText.h"

QPoint CentreInWorkArea(QSize size, const QRect& owner, const QRect& workArea) {
  const auto fit = [](int wanted, int length, int from, int room) {
    return std::max(from, std::min(wanted, from + room - length));
  };
  return {
      fit(owner.x() + (owner.width() - size.width()) / 2, size.width(), workArea.x(), workArea.width()),
      fit(owner.y() + (owner.height() - size.height()) / 2, size.height(), workArea.y(), workArea.height())};
}

void CentreOn(QWidget& window, const QWidget& owner) {
  window.move(CentreInWorkArea(window.size(), owner.frameGeometry(), owner.screen()->availableGeometry()));
}

void ShapeWindow(QWidget& window, const QRegion& outline) {
  window.setAttribute(Qt::WA_TranslucentBackground);
  if (QGuiApplication::platformName() == QLatin1String("xcb")) window.setMask(outline);
}

void DrawWindowPicture(QPainter& painter, const QWidget& window, PictureId picture) {
  // What is transparent in the mask would be black on a desktop that doesn't blend windows.
  for (const QRect& part : window.mask()) painter.fillRect(part, colours::kOutline);
  painter.drawPixmap(0, 0, GetPicture(picture, window.devicePixelRatioF()));
}

QString LoadWindowText(StringId id) { return ToQString(LoadExpandedString(id)); }

QLabel* AddWindowText(QWidget& window, const QRect& place, FontId font, const QString& text) {
  auto label = std::make_unique<QLabel>(text, &window);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setFont(GetFont(font));
  QPalette colors = label->palette();
  colors.setColor(QPalette::WindowText, colours::kInk);
  colors.setColor(QPalette::Window, colours::kPage);
  label->setPalette(colors);
  label->setAutoFillBackground(true);
  label->setGeometry(place);
  return label.release();  // the window's
}
