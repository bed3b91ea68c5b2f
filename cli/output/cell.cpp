#include "output/cell.h"

#include <nlohmann/json.hpp>

#include "platform/csv.h"
#include "platform/datetime.h"

namespace voxa::cli {

namespace {

nlohmann::ordered_json toJson(const Value& value) {
  return std::visit(
      [](const auto& held) -> nlohmann::ordered_json {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::monostate>) return nullptr;
        if constexpr (std::is_same_v<Held, DateTime>) return isoText(held);
        if constexpr (std::is_same_v<Held, Bytes>) return hexText(held);
        if constexpr (std::is_constructible_v<nlohmann::ordered_json, Held>) return held;
      },
      value.data());
}

std::string shown(const Value& value, const char* null) {
  if (value.isNull()) return null;
  if (const auto* flag = std::get_if<bool>(&value.data())) return *flag ? "yes" : "no";
  if (const auto* bytes = std::get_if<Bytes>(&value.data())) return hexText(*bytes);
  return value.toText();
}

/// Null when there are none.
Value joined(const std::vector<std::string>& texts) {
  if (texts.empty()) return {};
  std::string text;
  for (const std::string& each : texts) text += (&each == texts.data() ? "" : ", ") + each;
  return text;
}

}  // namespace

std::string isoText(DateTime moment) {
  const CivilTime parts = toCivil(moment);
  const bool midnight = parts.hour == 0 && parts.minute == 0 && parts.second == 0;
  if (dayNumber(parts) == 0 && !midnight) return formatDateTime(moment, "hh:nn:ss");
  return formatDateTime(moment, midnight ? "yyyy-mm-dd" : "yyyy-mm-ddThh:nn:ss");
}

Cell::Cell(const std::vector<std::string>& values)
    : value_(joined(values)), forPrograms_(std::make_shared<nlohmann::ordered_json>(values)) {}

Cell::Cell(const std::vector<Value>& values) {
  std::vector<std::string> texts;
  auto array = nlohmann::ordered_json::array();
  for (const Value& value : values) {
    texts.push_back(shown(value, "-"));
    array.push_back(toJson(value));
  }
  value_ = joined(texts);
  forPrograms_ = std::make_shared<nlohmann::ordered_json>(std::move(array));
}

Cell::Cell(std::string text, const nlohmann::ordered_json& forPrograms)
    : value_(text.empty() ? Value() : Value(std::move(text))),
      forPrograms_(std::make_shared<nlohmann::ordered_json>(forPrograms)) {}

Cell Cell::moment(DateTime moment) {
  return {formatDateTime(moment, "dd/mm/yyyy hh:nn"), formatDateTime(moment, "yyyy-mm-ddThh:nn:ss")};
}

bool Cell::isNumber() const {
  const Value::Variant& held = value_.data();
  return !value_.isNull() && !isText() && !std::holds_alternative<bool>(held) &&
         !std::holds_alternative<DateTime>(held);
}

std::string Cell::text() const {
  return shown(value_, "-");
}

std::string Cell::field() const {
  if (const auto* moment = std::get_if<DateTime>(&value_.data())) return isoText(*moment);
  // Only a text can be a formula: a number may begin with a sign.
  return isText() ? csvField(value_.toText()) : shown(value_, "");
}

nlohmann::ordered_json Cell::json() const {
  return forPrograms_ ? *forPrograms_ : toJson(value_);
}

}  // namespace voxa::cli
