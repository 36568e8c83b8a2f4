#pragma once

#include <QImage>
#include <QTimer>
#include <QWidget>
#include <optional>
#include <string>

/// The current photo, as large as the window lets it be.
class CPhotoView : public QWidget {
 public:
  explicit CPhotoView(QWidget* parent = nullptr);

  /// Loads the photo file of that path for the view's size and shows it; an empty path shows that there
  /// is no photo. A file that can't be decoded is shown as a text.
  void SetPhoto(const std::string& path);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void Load();
  QRect GetPhotoArea() const;

  std::optional<std::string> Path;  // none until the first photo is set
  QImage Picture;                   // fitted to the view's size at the last load; null where there is none
  QTimer ReloadTimer;
};
