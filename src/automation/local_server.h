#pragma once

#include <string>

namespace voxa::automation {

// VOXAserver.exe loads the library for the programs that cannot load it themselves: 64-bit ones. All programs
// of a person share its process, and so one installation. The process ends when nobody has an object of it
// any more.

/// Sets a path of the installation that a caller gives. In a process that serves others it is the first one
/// that counts: raises `err::permissionDenied` when there is another already, since a second program would
/// take the installation away from under the first.
void setPath(std::string& path, const std::string& wanted);

/// The same for the working folder. In a process that serves others, which nobody starts in a folder of
/// theirs, it becomes the current one, and the message store in it is opened. Raises `err::pathNotFound` when
/// that cannot be.
void setWorkingFolder(std::string& folder, const std::string& wanted);

}  // namespace voxa::automation
