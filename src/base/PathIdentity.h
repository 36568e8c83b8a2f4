#pragma once

#include <string>

/// When two paths mean one thing. This is the one rule of it; whoever compares paths asks here.
///
/// Paths are compared by their bytes first: disks know case, and names that differ in case alone are two.
/// They are one only where the disk says so:
/// - A folder that two paths lead to, over links or mounts, is one folder: the same by device and inode.
/// - A path is a former spelling of another if the file or folder was renamed to another case of its letters
///   (Unicode simple folding, IsFormerSpelling). What can't be looked at, as on a disk that is away, was not;
///   nor has it become a disk that is mounted under another case of its name.
///
/// The disk isn't asked about paths that are equal, nor about those that differ in more than case, which can
/// mean one thing only as folders (IsSameFolder).

/// Whether `former`, a path that was stored, has become `path`: they differ in the case of letters alone,
/// `path` stands, and wherever a name differs the former one is gone from the folder that held it. On a disk
/// that doesn't know case both names stay good; there they must be one entry.
bool IsFormerSpelling(const std::string& former, const std::string& path);

/// The path that a stored one has become: itself if it stands, else the one path that it is a former spelling
/// of. Empty if there is none, or more than one.
std::string FindPresentSpelling(const std::string& stored);

/// Whether both paths mean one folder: they are equal, lead to one place, or one is a former spelling of the
/// other. A closing "/" makes no difference.
bool IsSameFolder(const std::string& a, const std::string& b);
