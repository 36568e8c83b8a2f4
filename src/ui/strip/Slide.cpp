#include "ui/strip/Slide.h"

#include <algorithm>
#include <cmath>

int CSlide::GetOffset(TimePoint now) const {
  const double seconds = std::chrono::duration<double>(now - Begin).count();
  const double way = std::clamp(seconds * Speed, 0.0, static_cast<double>(GetDistance()));
  const int whole = static_cast<int>(way);
  return Delta < 0 ? -whole : whole;
}

CSlide::TimePoint CSlide::GetEnd() const {
  const std::chrono::duration<double> whole(GetDistance() / Speed);
  // Rounded up, so that the whole way has been made by then.
  return Begin + std::chrono::ceil<TimePoint::duration>(whole);
}
