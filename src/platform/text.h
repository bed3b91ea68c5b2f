#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace voxa {

/// Text is UTF-8 inside the library and code page 1252 in files.

/// UTF-8 to code page 1252. A broken sequence, or a character that the code page lacks, raises
/// `err::invalidArgument`, which names it. So no character is silently replaced in a file.
[[nodiscard]] std::string toCp1252(std::string_view utf8);
/// Code page 1252 to UTF-8; every byte has a meaning (the five unassigned ones stay control characters).
[[nodiscard]] std::string fromCp1252(std::string_view bytes);

/// Order without regard to case (for all letters of code page 1252): negative, 0 or positive. Signs come
/// before digits, digits before letters. A letter with an accent follows the one without, and only decides
/// between texts that are the same but for accents. The database engine compares texts by it; it can be used
/// as an SQLite collation.
[[nodiscard]] int compareNoCase(std::string_view a, std::string_view b);
/// The order of files that were made before signs had their place: all characters by their numbers. Equal are
/// the same texts.
[[nodiscard]] int compareAsBefore(std::string_view a, std::string_view b);
[[nodiscard]] bool equalNoCase(std::string_view a, std::string_view b);
/// Lower-case and upper-case of the letters of code page 1252 that have both forms. Other text stays as it
/// is.
[[nodiscard]] std::string toLower(std::string_view text);
[[nodiscard]] std::string toUpper(std::string_view text);
/// Without the white space of ASCII at both ends.
[[nodiscard]] std::string trimmed(const std::string& text);
/// Takes the part before the first `separator`, all when there is none, and the separator off the text.
[[nodiscard]] std::string_view takeUntil(std::string_view& text, char separator);
/// Number of characters (code points) of a UTF-8 text.
[[nodiscard]] std::size_t lengthInCharacters(std::string_view utf8);
/// Position behind the character at `at`. Bytes that are no UTF-8 belong to the character before them.
[[nodiscard]] std::size_t behindCharacter(std::string_view utf8, std::size_t at);
/// The number of the first character of a text that has one, and the character of a number (not of a
/// surrogate).
[[nodiscard]] char32_t firstCharacter(std::string_view utf8);
[[nodiscard]] std::string characterOf(char32_t number);
/// Whether the bytes are well-formed UTF-8.
[[nodiscard]] bool isUtf8(std::string_view text);

/// Whether a text holds a control character: C0, DEL or C1 (U+0080 to U+009F).
[[nodiscard]] bool hasControls(std::string_view text);
/// The text in a form that may be written to a terminal. Control characters, which a terminal would obey, and
/// bytes that are no UTF-8 become "?". Line feeds and tabs stay.
[[nodiscard]] std::string terminalText(std::string_view text);

/// A number in decimal, with zeros on the left up to `width` digits. A longer number keeps its digits. A
/// negative one has its sign in front of the padded digits. This is the format "00" of automation clients.
[[nodiscard]] std::string zeroPadded(std::int64_t number, int width);

}  // namespace voxa
