// SPDX-License-Identifier: MIT
#include "Plexor_io/Dir_error.h"

#include "Plexor_io/My_int2string.h"

#include <cerrno>

namespace cpm {

std::string Dir_error(int error_number) {
    // These are the sentences that users of the program know, blanks included.
    switch (error_number) {
    case EPERM:
        return "The filesyst. does not  support  the removal of directories.";
    case ENOENT:
        return "A component of the path file_name does not exist.";
    case EIO:
        return "An I/O error occurred.";
    case ENOMEM:
        return "Insufficient memory to complete the operation.";
    case EACCES:
        return "Permission denied.";
    case EFAULT:
        return "Bad address.";
    case EBUSY:
        return "The rename fails because oldpath or newpath is a directory "
               "that  is in use by some process.";
    case EEXIST:
        return "pathname already exists.";
    case EXDEV:
        return "oldpath and newpath are not on the same filesystem.";
    case ENOTDIR:
        return "A component of the path is not a directory.";
    case EISDIR:
        return "newpath is an existing directory, but oldpath is not a directory.";
    case EINVAL:
        return "an attempt was made to make a directory a subdirectory of itself.";
    case ENOSPC:
        return "no room for the new directory entry.";
    case EROFS:
        return "The file is on a read-only filesystem.";
    case ENAMETOOLONG:
        return "pathname too long.";
    case ENOTEMPTY:
        return "newpath is a non-empty directory, i.e., contains entries "
               "other than . and .. .";
    case ELOOP:
        return "Too  many symbolic links encountered while traversing the path.";
    default:
        return " Other error occured, errno=" + int2string(error_number);
    }
}

} // namespace cpm
