#pragma once

/// The tabs of the main window. The number is also that of the tab's tool tip.
enum class ViewTabId : int { CurrentPhoto = 331, Email = 333, Upload = 340, Trash = 344 };
