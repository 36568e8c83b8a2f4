#include "ui/strip/Lens.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "ui/kit/Pictures.h"
#include "ui/strip/SiblingPainter.h"

namespace {

struct PieceForm {
  const char* Name;
  PictureId Picture;
};

const PieceForm& GetForm(LensPart part) {
  static constexpr PieceForm kForms[] = {
      {"LensTop", PictureId::LensTop},
      {"LensLeft", PictureId::LensLeft},
      {"LensRight", PictureId::LensRight},
      {"LensBottom", PictureId::LensBottom},
  };
  return kForms[static_cast<std::size_t>(part)];
}

// Where the buttons stand in the lens's foot, by one of their edges.
struct ButtonForm {
  CommandId Command;
  PictureId Picture;
  int X;
  bool ByRightEdge;
};
constexpr ButtonForm kButtonForms[] = {
    {CommandId::PreviousGroup, PictureId::PreviousGroup, 6, false},
    {CommandId::PreviousPhoto, PictureId::PreviousPhoto, 76, true},
    {CommandId::NextPhoto, PictureId::NextPhoto, 76, false},
    {CommandId::NextGroup, PictureId::NextGroup, 147, true},
};
constexpr int kButtonImages = 2;
constexpr int kFootHeight = 27;

}  // namespace

CLensPiece::CLensPiece(LensPart part, QWidget& strip)
    : QWidget(strip.parentWidget()), Part(part), Strip(strip) {
  setObjectName(QLatin1String(GetForm(part).Name));
  setFocusPolicy(Qt::NoFocus);
  hide();
}

void CLensPiece::Place(const StripLayout& layout) {
  Area = layout.GetLensPart(Part);
  setGeometry(PlaceBySibling(Area, Strip));
  update();
}

void CLensPiece::paintEvent(QPaintEvent*) {
  CSiblingPainter painter(*this, Strip);
  const PictureId picture = GetForm(Part).Picture;
  painter.DrawPart(picture, {QPoint(), GetPictureSize(picture)}, Area);
}

CLens::CLens(QWidget& strip, Press onPress)
    : Strip(strip),
      OnPress(std::move(onPress)),
      Pieces{CLensPiece(LensPart::Top, strip), CLensPiece(LensPart::Left, strip),
             CLensPiece(LensPart::Right, strip), CLensPiece(LensPart::Bottom, strip)},
      Buttons{CPaintedButton(*this, &Pieces[3]), CPaintedButton(*this, &Pieces[3]),
              CPaintedButton(*this, &Pieces[3]), CPaintedButton(*this, &Pieces[3])} {
  for (std::size_t i = 0; i < kButtons; ++i) {
    Buttons[i].Create({}, kButtonForms[i].Command, ButtonFlags::RepeatWhileHeld, kButtonForms[i].Picture,
                      kButtonImages);
  }
}

void CLens::OnCommand(CommandId id) {
  OnPress(id, std::any_of(Buttons.begin(), Buttons.end(),
                          [](const auto& button) { return button.IsRepeating(); }));
}

std::vector<GroupPart> CLens::ListButtons() const {
  std::vector<GroupPart> parts;
  for (const CPaintedButton& button : Buttons) parts.push_back({&button});
  return parts;
}

void CLens::Place(const StripLayout& layout) {
  for (CLensPiece& piece : Pieces) piece.Place(layout);
  const double ratio = layout.GetMetrics().PixelRatio;
  const QPointF corner =
      layout.GetLensPart(LensPart::Bottom).topLeft() / ratio + Strip.pos() - Pieces[3].pos();
  const QPoint foot(static_cast<int>(std::lround(corner.x())), static_cast<int>(std::lround(corner.y())));
  for (std::size_t i = 0; i < kButtons; ++i) {
    const ButtonForm& form = kButtonForms[i];
    const int x = form.ByRightEdge ? form.X - Buttons[i].width() : form.X;
    Buttons[i].move(foot + QPoint(x, (kFootHeight - Buttons[i].height()) / 2));
  }
}

void CLens::SetVisible(bool on) {
  for (CLensPiece& piece : Pieces) piece.setVisible(on);
}
