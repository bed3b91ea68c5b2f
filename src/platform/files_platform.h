#pragma once

#include <cstdio>
#include <string>

namespace voxa::files {

/// What each platform does in its own way for files.h, in files_posix.cpp and files_windows.cpp. Paths are
/// native. Results are errno values, 0 for success.

enum class Open { read, write, append, createNew };

/// Opens a file as bytes; programs that this process starts do not inherit it. Only the owner can use a file
/// that this creates. nullptr on failure, with the reason in `error`: EISDIR for a folder, and, unless `any`,
/// ELOOP for a link, a pipe or a device.
[[nodiscard]] std::FILE* openFile(const std::string& path, Open how, bool any, int& error);
/// Creates a file that this process owns for as long as the file is open. Meanwhile takeOver fails, while the
/// file can be renamed and deleted. Otherwise as Open::createNew. EEXIST also when another process takes the
/// file over at this moment.
[[nodiscard]] std::FILE* openOwned(const std::string& path, int& error);
/// Opens for reading a file that openOwned made, and owns it. The process that made it has let go of it or
/// has ended. nullptr when a process still owns it, when there is none, or when that cannot be known.
[[nodiscard]] std::FILE* takeOver(const std::string& path);
/// Creates a folder that only its owner can use; EEXIST when something has that name.
[[nodiscard]] int createFolder(const std::string& path);
/// Writes what the C library still holds, and waits until it is on the device.
[[nodiscard]] int flushToDevice(std::FILE* file);
/// Renames in one step; EEXIST when `to` exists, EXDEV when it is on another file system.
[[nodiscard]] int renameNew(const std::string& from, const std::string& to);

}  // namespace voxa::files
