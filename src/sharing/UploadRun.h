#pragma once

#include "sharing/ServiceSession.h"

/// The photos of a run, those of the print and upload tab. What isn't uploaded stays for the next run.
class CUploadQueue {
 public:
  virtual ~CUploadQueue() = default;
  virtual int GetCount() const = 0;

  /// Only asked for if there is one.
  virtual PhotoToUpload GetFirst() const = 0;

  /// Takes out a photo that is uploaded. May raise CStorageException.
  virtual void Remove(const PhotoToUpload& photo) = 0;
};

/// Uploads all photos, one by one, and opens the member's cart or the album of the day in the browser.
/// One failed photo ends the run; failures are told. A run of no photos does nothing. The caller blocks the
/// main window's input and shows the wait cursor meanwhile. Returns the number of photos uploaded.
int RunUpload(CUploadQueue& queue, CServiceDesktop& desktop, bool orderPrints,
              const ServiceTimes& times = {});
