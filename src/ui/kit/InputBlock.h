#pragma once

#include <QEvent>
#include <QObject>
#include <QString>

class QWidget;

/// The object names of the windows that are looked for from elsewhere.
namespace window_names {

inline const QString kMainFrame = QStringLiteral("VellumarPhotoOrganizerMain");
inline const QString kSearchProgress = QStringLiteral("SearchProgress");
inline const QString kUploadProgress = QStringLiteral("UploadProgress");
inline const QString kJobProgress = QStringLiteral("JobProgress");
inline const QString kLogin = QStringLiteral("Login");

}  // namespace window_names

/// Whether an event comes from the user's hands: keys, pointers, touch, input methods, things dragged.
bool IsInput(QEvent::Type type);

/// Where the arrow shows while input is blocked; elsewhere the wait cursor does.
enum class ArrowPlace { OverOpenWindows, AnywhereBesideAnOpenWindow };

/// Keeps the user's input from all windows while it lives, but for the progress windows, the login dialog and
/// message boxes. What is kept back is lost. Window thread.
class CInputBlock : public QObject {
 public:
  explicit CInputBlock(ArrowPlace arrow);
  ~CInputBlock() override;

  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  void ShowCursorFor(QEvent::Type type) const;

  const ArrowPlace Arrow;
};
