#pragma once

class CImage;

/// Corrects brightness and colour of a picture in place: dark pictures are made brighter, and both ends of
/// the brightnesses are stretched to black and white. How the colours of a pixel follow its brightness
/// depends on its saturation: grey stays grey, and strong colours keep their hue. A fourth byte of the pixels
/// is left alone. An image without pixels stays so.
void AutoFix(CImage& image);
