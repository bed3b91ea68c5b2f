#include "messages/strings.h"

#include "platform/database/database.h"
#include "platform/database/schema_version.h"
#include "platform/driver/driver.h"
#include "platform/ui/prompts.h"

#include <system_error>

namespace voxa {

namespace {

constexpr const char* tableName = "Strings";
constexpr const char* crLf = "\r\n";

SchemaSteps schemaSteps() {
  return {SchemaStep()};  // 1: files have a number
}

void appendLine(std::string& text, const std::string& line) {
  if (line.empty()) return;
  if (!text.empty()) text += crLf;
  text += line;
}

}  // namespace

Strings::Strings(Context& context) : context_(context) {
  openDB();
}

Strings::~Strings() = default;

void Strings::openWhenClosed() {
  if (!isOpen()) openDB();
}

bool Strings::isOpen() const {
  return store_ && store_->isOpen();
}

Database& Strings::database() const {
  return *requireOpen(store_);
}

void Strings::openDB() {
  std::shared_ptr<Database> opened;
  if (context_.attempt([&] { opened = context_.engine().open(storeName); }) != 0) {
    showStoreFailure("msgCantLoad");
  } else if (context_.attempt([&] { bringForward(context_.engine(), *opened, schemaSteps()); }) != 0) {
    showBox("msgCantLoad", context_.error().description);
  } else {
    store_ = std::move(opened);
  }
  context_.error().clear();
}

// The mnemonic itself stands in the box, since the store that would translate it is what failed. The number
// in the box is the sum of the error's number and the value of its description. A description that is no
// number makes that a type mismatch: then no box comes up, and createDB returns 13. Clients know these
// results, so they stay.
void Strings::showStoreFailure(const char* mnem) {
  const ErrorInfo failure = context_.error();
  context_.attempt([&] {
    const double sum = failure.number + Value(failure.description).toDouble();
    showBox(mnem, Value(sum).toText());
  });
}

void Strings::showBox(const char* mnem, const std::string& reason) {
  context_.prompts().messageBox(std::string(mnem) + " " + storeName + crLf + reason, style::okOnly,
                                read("MDIkrvCaption"));
}

std::int16_t Strings::createDB() {
  std::int16_t status = context_.attempt([&] { store_ = context_.engine().create(storeName); });
  if (status != 0) {
    showStoreFailure("msgCantCreateDB");
    if (context_.error().number != 0) status = static_cast<std::int16_t>(context_.error().number);
    context_.error().clear();
    return status;
  }
  return context_.attempt({"msgCantCreateTable", std::string(tableName) + ".create"}, [&] { createTable(); });
}

void Strings::createTable() {
  TableDef td;
  td.name = tableName;
  addField(td, "Mnemonic", DataType::Text, 50);
  addField(td, "Context", DataType::Text, 50);
  addField(td, "Type", DataType::Text, 25);
  addField(td, "TextEnglish", DataType::Text, 255);
  addField(td, "TextLocal", DataType::Text, 255);
  td.fields.back().allowZeroLength = true;
  addField(td, "Width", DataType::Integer);
  addField(td, "FontSize", DataType::Integer);
  addField(td, "FontBold", DataType::Integer);
  addIndex(td, "Mnemonic", {"Mnemonic"}, IndexKind::primary);
  Transaction transaction(context_.engine(), *store_);
  store_->createTable(td);
  store_->setSchemaVersion(schemaSteps().size());
  transaction.commit();
}

std::int16_t Strings::insert(const std::string& mnem, const std::string& textEng, std::int16_t width,
                             const std::string& context, const std::string& sType, float fontSize,
                             bool fontBold) {
  return context_.attempt({"msgCantInsertMessage", ""}, [&] {
    const auto rows = database().openRecordset("select * from Strings where mnemonic = '" + mnem + "'");
    if (rows->eof()) {
      rows->addNew();
      rows->set("Mnemonic", mnem);
    } else {
      rows->edit();
    }
    rows->set("Context", context);
    rows->set("TextEnglish", textEng);
    rows->set("Width", width);
    rows->set("Type", sType);
    rows->set("FontSize", static_cast<double>(fontSize));
    rows->set("FontBold", fontBold);
    rows->update();
  });
}

std::string Strings::read(std::string_view mnem) {
  const std::string mnemonic(mnem);
  if (!isOpen()) return "Mnemonic " + mnemonic;
  try {
    const auto rows = store_->openRecordset("select * from Strings where Mnemonic = '" + mnemonic + "'");
    if (rows->eof()) return "";
    const Value local = rows->get("TextLocal");
    const Value text = local.isNull() || local == Value("") ? rows->get("TextEnglish") : local;
    return text.isNull() ? "" : text.toText();
  } catch (const Error&) {
    return "Mnemonic " + mnemonic;  // the mnemonic still tells which message was meant
  }
}

// Copies both first: reading texts runs the engine, and a failure there would replace its error collection.
std::string Strings::errorText() {
  const ErrorInfo current = context_.error();
  const std::vector<ErrorInfo> engineErrors = context_.engine().errors();
  std::string text;
  if (current.number != 0) {
    const bool ofDatabase =
        !engineErrors.empty() && (engineErrors.front().description == current.description ||
                                  engineErrors.front().number == current.number);
    if (ofDatabase) {
      const ErrorInfo& first = engineErrors.front();
      text = "DB Error " + std::to_string(first.number) + ": ";
      std::string wording;
      switch (first.number) {
        case err::dbRelatedExists:
          wording = read("msgDBDelRelated") + crLf + first.description;
          break;
        case err::dbDuplicate:
          wording = read("msgDBDuplicVal");
          break;
        case err::dbNullKey:
          wording = read("msgDBMandField");
          break;
        case err::dbConversion:
          wording = read("msgDBDataConvErr");
          break;
        default:
          wording = first.description;
      }
      text += wording;
      if (wording.empty()) {
        for (const ErrorInfo& entry : engineErrors) text += crLf + entry.description;
      }
    } else {
      text = "Error " + std::to_string(current.number) + ": " + current.description;
    }
  }
  if (const int code = context_.driver().lastError(); code != 0) {
    appendLine(text, "DLL Error " + std::to_string(code) + ": " + std::system_category().message(code));
  }
  return text;
}

void Strings::display(std::string_view mnem, const std::string& method, const DisplayArgument& arg,
                      int msgStyle) {
  std::string argText;
  if (const auto* failure = std::get_if<ErrorInfo>(&arg)) {
    context_.error() = *failure;
  } else if (const auto* value = std::get_if<Value>(&arg); value != nullptr && !value->isNull()) {
    argText = value->toText();
  }
  const std::string failureText = errorText();
  std::string prompt;
  if (!mnem.empty()) prompt = read(mnem);
  if (!argText.empty()) prompt += " " + argText;
  appendLine(prompt, failureText);
  if (!method.empty()) appendLine(prompt, "(" + method + ")");
  context_.prompts().messageBox(prompt, msgStyle, read("MDIkrvCaption"));
}

}  // namespace voxa
