#include "ui/kit/ToldBar.h"

namespace {

constexpr qint64 kPause = 1000;  // ms

}  // namespace

CToldBar::CToldBar(const QString& name, QWidget* parent) : QProgressBar(parent) {
  setAccessibleName(name);
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setUpdatesEnabled(false);
}

void CToldBar::Tell(int done, int total, const QString& text) {
  const bool isNews = total != maximum() || done >= total;
  if (!isNews && SinceTold.isValid() && SinceTold.elapsed() < kPause) return;
  SinceTold.start();
  setRange(0, total);
  setValue(done);
  setFormat(text);
  setAccessibleDescription(text);
}
