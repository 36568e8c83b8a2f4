// Turns one JPEG file clockwise, as the program does: a whole process to be measured against another's.
//
// usage: turn_photo SOURCE DESTINATION ANGLE

#include <cstdio>
#include <cstdlib>
#include <exception>

#include "base/Exceptions.h"
#include "imaging/Image.h"

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: turn_photo SOURCE DESTINATION ANGLE\n");
    return 2;
  }
  try {
    return TransformJpeg(argv[1], argv[2], static_cast<int>(std::strtol(argv[3], nullptr, 10))) ? 0 : 1;
  } catch (const CThrowable& problem) {
    std::fprintf(stderr, "turn_photo: %s\n", problem.GetMessage().c_str());
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "turn_photo: %s\n", problem.what());
  }
  return 3;
}
