#pragma once

#include <cstdio>
#include <string>

namespace voxa::files {

/// What the platforms do differently below files.h; one source each. Paths are native ones; failures return
/// the errno value, 0 being success.

enum class Open { read, write, append, createNew };

/// Opens a file for bytes as they are, not inherited by other programs; a file that is created belongs to
/// its owner alone. nullptr on failure, with the reason in `error`. Folders fail with EISDIR; links, pipes
/// and devices with ELOOP, unless `any`.
[[nodiscard]] std::FILE* openFile(const std::string& path, Open how, bool any, int& error);
/// Creates a file that is this process's for as long as it is open: takeOver fails meanwhile, and it can be
/// renamed and deleted. Otherwise as Open::createNew; EEXIST also when another process is just taking it
/// over.
[[nodiscard]] std::FILE* openOwned(const std::string& path, int& error);
/// Opens for reading, and owns, a file that openOwned made in a process that has let go of it or has ended.
/// nullptr when a process still owns it, when there is none, or when that cannot be known.
[[nodiscard]] std::FILE* takeOver(const std::string& path);
/// Creates a folder that belongs to its owner alone; EEXIST when there is something of that name.
[[nodiscard]] int createFolder(const std::string& path);
/// Writes what the C library still holds, and waits until the device has it.
[[nodiscard]] int flushToDevice(std::FILE* file);
/// Renames in one step; EEXIST when `to` exists, EXDEV when it is on another file system.
[[nodiscard]] int renameNew(const std::string& from, const std::string& to);

}  // namespace voxa::files
