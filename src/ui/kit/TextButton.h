#pragma once

#include <QAbstractButton>

/// A push button that carries a text and nothing else, drawn as a raised plate.
class CTextButton : public QAbstractButton {
 public:
  explicit CTextButton(const QString& text, QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
};
