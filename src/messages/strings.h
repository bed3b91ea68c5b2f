#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/context.h"

namespace voxa {

class Database;

/// The message catalogue: every text shown to a person, and the names of built-in records, by mnemonic. It is
/// in the database file "I18N.MDB" of the current folder. The library writes the English texts. A translator
/// adds local texts beside them, which are then used. The object opens the store when it is created and keeps
/// it open.
class Strings : public Messages {
 public:
  static constexpr const char* storeName = "I18N.MDB";

  explicit Strings(Context& context);
  ~Strings() override;
  Strings(const Strings&) = delete;
  Strings& operator=(const Strings&) = delete;

  void Initialize() {}  ///< does nothing: the constructor opens the store

  /// Opens the store of the current folder when none is open: it may be another folder now.
  void openWhenClosed();
  /// Whether the store is open. If not, createDB makes one.
  [[nodiscard]] bool isOpen() const;
  /// The open store; raises `err::objectNotSet` when it is not open.
  [[nodiscard]] Database& database() const;

  /// Creates the store and its table; 0, or the number of the error that stopped it.
  std::int16_t createDB();

  /// Writes a text. It replaces the text of that mnemonic, whose translation stays.
  /// mnem: up to 50 characters. textEng: up to 255. width: on screen, 0 for messages, 2000 for names.
  /// context: up to 50. sType: "Message" or "Name". fontSize is stored rounded. 0, or the error's number.
  std::int16_t insert(const std::string& mnem, const std::string& textEng, std::int16_t width,
                      const std::string& context, const std::string& sType, float fontSize = 7.8F,
                      bool fontBold = false);

  /// The local text, else the English one, else "" for an unknown mnemonic. "Mnemonic " + mnem when the store
  /// cannot be read. Never fails, and does not change the current error.
  [[nodiscard]] std::string read(std::string_view mnem) override;

  /// Shows one message box: the text of `mnem`, the argument, the current error (an error of the database
  /// engine in its own wording), the last error of a library call, and the method in parentheses.
  /// msgStyle: buttons and icon (prompts.h). The current error is not cleared. An ErrorInfo as argument
  /// becomes the current error.
  void display(std::string_view mnem, const std::string& method = "", const DisplayArgument& arg = {},
               int msgStyle = 16) override;

 private:
  void openDB();
  void createTable();
  void showStoreFailure(const char* mnem);
  void showBox(const char* mnem, const std::string& reason);
  [[nodiscard]] std::string errorText();

  Context& context_;
  std::shared_ptr<Database> store_;
};

}  // namespace voxa
