// Renders an SVG drawing as a square PNG picture.
//
// usage: render_icon DRAWING.svg SIDE PICTURE.png

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdio>
#include <cstdlib>

int main(int count, char** arguments) {
  const int side = count == 4 ? std::atoi(arguments[2]) : 0;
  QSvgRenderer drawing;
  if (side <= 0 || !drawing.load(QString::fromLocal8Bit(arguments[1]))) {
    std::fputs("usage: render_icon DRAWING.svg SIDE PICTURE.png\n", stderr);
    return EXIT_FAILURE;
  }
  QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  drawing.render(&painter);
  painter.end();
  return picture.save(QString::fromLocal8Bit(arguments[3]), "PNG") ? EXIT_SUCCESS : EXIT_FAILURE;
}
