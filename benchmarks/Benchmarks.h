#pragma once

/// The benchmarks by name. Each makes what it measures on, prints figures and ratios, and cleans up.

/// The road from photo files to catalog and thumbnails, with the progress window, against a plain loop that
/// only decodes; the second start over the same photos; the memory that it takes.
void RunImportBench();

/// A large catalog: opening it, and what single operations cost as it grows.
void RunCatalogBench();

/// Rebuilding the sets of a large catalog, and the memory that it takes.
void RunSetBench();

/// The storage layer alone. In StorageBench.cpp.
void RunStorageBench();

/// Turning photos of 12 megapixels, against jpegtran, and correcting them, against a plain decode and encode.
void RunEditBench();

/// Putting photos upright, the time from a key to the next photo, and that until the strip is sharp on a
/// dense screen, against a plain loop that only decodes.
void RunViewBench();

/// The argument that makes a process a child of RunImportBench.
inline constexpr const char* kImportChild = "--import-child";

/// The same for RunViewBench, and its part that runs in a child process: shows the photos of its home one
/// after the other.
inline constexpr const char* kViewChild = "--view-child";
void RunViewChild();

/// The part of RunImportBench that runs in a child process: opens the data stores of its home and searches
/// the pictures folder.
void RunImportChild();
