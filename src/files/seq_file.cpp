#include "files/seq_file.h"

#include "platform/context.h"
#include "platform/text.h"

namespace voxa {

namespace {

Value readAs(const std::string& item, const Value& wanted, const Clock& clock) {
  const auto asDefault = [&]() -> Value {
    try {
      const double number = Value(item).toDouble();
      return number == static_cast<std::int32_t>(number) ? Value(static_cast<std::int32_t>(number))
                                                         : Value(number);
    } catch (const Error&) {
      return item;
    }
  };
  switch (wanted.data().index()) {
    case 0:
      return asDefault();
    case 1:
      return Value(item).toBool();
    case 2:
      return convertForField(item, DataType::Byte, 0);
    case 3:
      return Value(item).toInt16();
    case 4:
      return Value(item).toInt32();
    case 5:
      return Value(item).toDouble();
    case 6:
      return Value(item).toDateTime(&clock);
    default:
      return item;
  }
}

}  // namespace

SeqFile::~SeqFile() {
  abandon();
}

void SeqFile::abandon() {
  try {
    if (ch_ != 0) fclose();
  } catch (const Error&) {
    // A caller who must know whether the last lines reached the disk closes the file himself.
  }
}

template <typename Work>
auto SeqFile::access(const char* mnemonic, Work&& work) {
  try {
    return work();
  } catch (const Error& e) {
    throw Error(e.number(), context_.messages().read(mnemonic) + " " + name_ + "\r\n" + e.description());
  }
}

void SeqFile::fopen(const std::string& mode) {
  open(mode == "r"   ? files::Stream::Mode::read
       : mode == "w" ? files::Stream::Mode::write
                     : files::Stream::Mode::append);
}

void SeqFile::fopenNew() {
  open(files::Stream::Mode::replace);
}

void SeqFile::open(files::Stream::Mode mode) {
  abandon();
  ch_ = context_.takeFileNumber();
  try {
    stream_.emplace(name_, mode);
  } catch (const Error&) {
    stream_.reset();  // the number stays taken, and the next access tells what is wrong
  }
}

namespace {

files::Stream& opened(std::optional<files::Stream>& stream) {
  if (!stream) throw Error(err::badFileNumber, "Bad file name or number");
  return *stream;
}

}  // namespace

void SeqFile::fclose() {
  context_.releaseFileNumber(ch_);
  ch_ = 0;
  if (!stream_) return;
  files::Stream closing = std::move(*stream_);
  stream_.reset();
  access("msgCantWrite", [&] { closing.close(); });
}

bool SeqFile::fEOF() {
  return access("msgCantRead", [&] { return opened(stream_).atEnd(); });
}

std::string SeqFile::lineOf(const std::string& text) {
  return access("msgCantWrite", [&] { return toCp1252(text) += "\r\n"; });
}

void SeqFile::fprint1252(std::string_view lines) {
  access("msgCantWrite", [&] { opened(stream_).write(lines); });
}

void SeqFile::fprint(const std::string& text) {
  fprint1252(lineOf(text));
}

void SeqFile::finput(Value& var) {
  access("msgCantRead", [&] { var = readAs(fromCp1252(opened(stream_).readItem()), var, context_.clock()); });
}

std::string SeqFile::flineInput() {
  return access("msgCantRead", [&] { return fromCp1252(opened(stream_).readLine()); });
}

void SeqFile::flineInput1252(std::string& line, std::size_t limit) {
  access("msgCantRead", [&] { opened(stream_).readLine(line, limit); });
}

void SeqFile::appendFile(const std::string& fileName) {
  SeqFile source(context_);
  source.Name(fileName);
  source.fopen("r");
  while (!source.fEOF()) fprint(source.flineInput());
}

}  // namespace voxa
