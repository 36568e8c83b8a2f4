#pragma once

class QWidget;

/// Tells a user with few photos how to add folders, unless the user has asked not to be told again.
void ShowAddFolderTip(QWidget* parent);
