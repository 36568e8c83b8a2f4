#pragma once

#include <QString>

/// The object names of the windows that are looked for from elsewhere.
namespace window_names {

inline const QString kMainFrame = QStringLiteral("VellumarPhotoOrganizerMain");
inline const QString kSearchProgress = QStringLiteral("SearchProgress");

}  // namespace window_names
