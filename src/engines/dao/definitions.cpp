#include "engines/dao/definitions.h"

#include "platform/datetime.h"
#include "platform/error.h"

namespace voxa::dao {

namespace {

constexpr std::int32_t autoIncrement = 16;  // of the attributes of a field

bool hasSize(DataType type) {
  return greatestSize(type) > 0;
}

int sizeOf(const FieldDef& field) {
  return field.size == 0 ? greatestSize(field.type) : field.size;
}

}  // namespace

std::string quoted(std::string_view name) {
  return "[" + std::string(name) + "]";
}

DataType typeOf(std::int32_t number) {
  constexpr std::int32_t bigInteger = 16;
  constexpr std::int32_t numeric = 19;
  constexpr std::int32_t decimal = 20;
  if (number >= static_cast<std::int32_t>(DataType::Boolean) &&
      number <= static_cast<std::int32_t>(DataType::Memo)) {
    return static_cast<DataType>(number);
  }
  return number == bigInteger || number == numeric || number == decimal ? DataType::Double : DataType::Text;
}

FieldDef readColumn(const Object& field) {
  FieldDef out{.name = field.text("Name"), .type = typeOf(field.number("Type"))};
  if (hasSize(out.type)) out.size = field.number("Size");
  return out;
}

FieldDef readField(const Object& field) {
  FieldDef out = readColumn(field);
  out.required = field.flag("Required");
  if (isText(out.type)) out.allowZeroLength = field.flag("AllowZeroLength");
  out.autoIncrement = (field.number("Attributes") & autoIncrement) != 0;
  out.defaultValue = defaultOf(field.value("DefaultValue"), out);
  out.validationRule = field.text("ValidationRule");
  return out;
}

IndexDef readIndex(const Object& index) {
  IndexDef out{.name = index.text("Name"),
               .primary = index.flag("Primary"),
               .unique = index.flag("Unique"),
               .required = index.flag("Required")};
  forEach(index.object(Kind::fields, "Fields"),
          [&](const Object& field) { out.fields.push_back(field.text("Name")); });
  return out;
}

TableDef readTable(const Object& table) {
  TableDef out{table.text("Name"), {}, {}};
  forEach(table.object(Kind::fields, "Fields"),
          [&](const Object& field) { out.fields.push_back(readField(field)); });
  forEach(table.object(Kind::indexes, "Indexes"), [&](const Object& index) {
    if (!index.flag("Foreign")) out.indexes.push_back(readIndex(index));  // those belong to relations
  });
  return out;
}

void appendField(const Object& table, const FieldDef& field) {
  const std::int32_t type = static_cast<std::int32_t>(field.type);
  const Object made = hasSize(field.type)
                          ? table.object(Kind::field, "CreateField", field.name, type, sizeOf(field))
                          : table.object(Kind::field, "CreateField", field.name, type);
  if (field.autoIncrement) made.put("Attributes", autoIncrement);
  if (field.required) made.put("Required", true);
  if (isText(field.type)) made.put("AllowZeroLength", field.allowZeroLength);
  if (!field.defaultValue.isNull()) made.put("DefaultValue", defaultExpression(field));
  if (!field.validationRule.empty()) made.put("ValidationRule", field.validationRule);
  (void)table.object(Kind::fields, "Fields").call("Append", made);
}

void appendIndex(const Object& table, const IndexDef& index) {
  const Object made = table.object(Kind::index, "CreateIndex", index.name);
  const Object fields = made.object(Kind::fields, "Fields");
  for (const std::string& name : index.fields)
    (void)fields.call("Append", made.object(Kind::field, "CreateField", name));
  if (index.primary) made.put("Primary", true);
  if (index.isUnique()) made.put("Unique", true);
  if (index.required || index.primary) made.put("Required", true);
  (void)table.object(Kind::indexes, "Indexes").call("Append", made);
}

std::string defaultExpression(const FieldDef& field) {
  const Value& value = field.defaultValue;
  if (std::holds_alternative<DateTime>(value.data()))
    return "#" + formatDateTime(value.toDateTime(), "yyyy-mm-dd hh:nn:ss") + "#";
  if (!isText(field.type)) return value.toText();
  std::string out = "\"";
  for (const char c : value.toText()) out += c == '"' ? "\"\"" : std::string(1, c);
  return out + "\"";
}

Value defaultOf(const Value& expression, const FieldDef& field) {
  if (!expression.isText()) return expression;
  const std::string text = expression.toText();
  if (text.empty()) return {};
  try {
    return convertForField(literalText(text), field.type, field.size);
  } catch (const Error&) {
    return {};  // a function, say: the library computes it for each row
  }
}

}  // namespace voxa::dao
