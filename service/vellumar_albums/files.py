"""Small operations on files that the store stands on: whole writes, moves that never overwrite, comparing."""

import ctypes
import errno
import os
import stat

FOLDER_FLAGS = os.O_RDONLY | os.O_DIRECTORY | os.O_NOFOLLOW | os.O_CLOEXEC
# A FIFO with the name of a photo must not make the server wait for its writer.
PHOTO_FLAGS = os.O_RDONLY | os.O_NOFOLLOW | os.O_NONBLOCK | os.O_CLOEXEC
NO_ROOM = (errno.ENOSPC, errno.EDQUOT, errno.EFBIG)

_RENAME_NOREPLACE = 1
_libc = ctypes.CDLL(None, use_errno=True)


def write_all(fd: int, data: bytes) -> None:
    rest = memoryview(data)
    while rest:
        rest = rest[os.write(fd, rest) :]


def open_regular(name: str, folder: int) -> int:
    """Opens a regular file for reading; anything else, a link too, counts as not found."""
    try:
        fd = os.open(name, PHOTO_FLAGS, dir_fd=folder)
    except OSError as error:
        if error.errno in (errno.ELOOP, errno.ENXIO, errno.ENAMETOOLONG):
            raise FileNotFoundError(name) from None
        raise
    if not stat.S_ISREG(os.fstat(fd).st_mode):
        os.close(fd)
        raise FileNotFoundError(name)
    return fd


def move_without_overwriting(name: str, folder: int, new_name: str, new_folder: int) -> None:
    """Raises FileExistsError if the new name is taken."""
    arguments = (folder, os.fsencode(name), new_folder, os.fsencode(new_name), _RENAME_NOREPLACE)
    if _libc.renameat2(*arguments) == 0:
        return
    code = ctypes.get_errno()
    if code not in (errno.EINVAL, errno.ENOSYS):
        raise OSError(code, os.strerror(code), new_name)
    # A file system that knows no such rename; a link doesn't overwrite either.
    os.link(name, new_name, src_dir_fd=folder, dst_dir_fd=new_folder, follow_symlinks=False)
    os.unlink(name, dir_fd=folder)


def same_bytes(one: int, other: int) -> bool:
    """Compares two open files from their beginnings."""
    size = os.fstat(one).st_size
    if size != os.fstat(other).st_size:
        return False
    step = 1024 * 1024
    return all(os.pread(one, step, at) == os.pread(other, step, at) for at in range(0, size, step))
