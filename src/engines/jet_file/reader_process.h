#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

#include "engines/jet_file/engine.h"

namespace voxa::jet {

/// A run of the reader program on a file. The program ends with this object, wherever it is.
class ReaderProcess {
 public:
  /// Starts it; 3051 when it is not there. work: what it is to do, as its last arguments.
  ReaderProcess(const JetFileOptions& options, const std::string& file, const std::vector<std::string>& work);
  ~ReaderProcess();
  ReaderProcess(const ReaderProcess&) = delete;
  ReaderProcess& operator=(const ReaderProcess&) = delete;

  /// Waits for bytes of its output; 0 behind the last one. 3343 when it was broken off, or was silent for too
  /// long.
  std::size_t read(char* to, std::size_t room);

 private:
  void finish();  ///< waits for its end, and raises what its end tells
  void kill();

  JetFileOptions options_;
  std::string file_;
  pid_t child_ = -1;
  int output_ = -1;
};

}  // namespace voxa::jet
