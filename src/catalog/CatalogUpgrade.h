#pragma once

#include <cstdint>

class CCatalog;

/// Brings the photos of a catalog of that older version, with their stamps, to the present form, step by step
/// from that version on. A part of CCatalog::Open, inside its transaction.
void UpgradePhotos(CCatalog& catalog, std::int32_t version);
