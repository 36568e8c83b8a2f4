#pragma once

class CImage;

/// Corrects brightness and colour of a picture in place: its brightnesses are mapped by MakeToneMap, and each
/// pixel follows by its saturation, so that grey stays grey and strong colours keep their hue. A fourth byte
/// of the pixels is left alone. An image without pixels stays so.
void AutoFix(CImage& image);
