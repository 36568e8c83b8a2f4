#pragma once

/// The pictures, each a file resources/pictures/<number>.svg.
enum class PictureId : int {
  ProgramIcon = 128,
  SearchBackground = 5065,
  SearchBackgroundWithSplash = 10032,
  Logo = 10045,
};
