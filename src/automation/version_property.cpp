#include "data_objects.h"
#include "platform/text.h"

namespace voxa::automation {

namespace {

constexpr GUID propertyId = {0xc77d0fa1, 0x6c1e, 0x4a2b, {0x9b, 0x1c, 0x0d, 0x9c, 0x8b, 0x6f, 0x4e, 0x16}};

/// A property that is filled, and, once it is appended, the version of a database.
class OwnProperty final : public Object<::IProperty> {
 public:
  OwnProperty(std::string name, short type, Value value, std::shared_ptr<Database> database = nullptr)
      : name_(std::move(name)), type_(type), value_(std::move(value)), database_(std::move(database)) {}

  STDMETHODIMP get_Value(VARIANT* value) override {
    return give(value, [&] {
      return database_ == nullptr ? value_ : Value(static_cast<std::int32_t>(database_->schemaVersion()));
    });
  }
  STDMETHODIMP put_Value(VARIANT value) override {
    return call([&] {
      if (database_ == nullptr) {
        value_ = fromVariant(value);
      } else {
        store(*database_, fromVariant(value));
      }
    });
  }
  STDMETHODIMP get_Name(BSTR* name) override {
    return give(name, [&] { return name_; });
  }
  STDMETHODIMP get_Type(short* type) override {
    return give(type, [&] { return std::int16_t{type_}; });
  }
  STDMETHODIMP get_Inherited(VARIANT_BOOL* inherited) override {
    return give(inherited, [] { return false; });
  }

  void appendTo(std::shared_ptr<Database> database) {
    if (!equalNoCase(name_, versionProperty) || type_ != dbLong) {
      throw Error(err::dbInvalidArgument,
                  std::string("Invalid argument: files have a place for the property ") + versionProperty +
                      " alone, a Long");
    }
    store(*database, value_);
    database_ = std::move(database);
  }

 private:
  void* furtherInterface(REFIID wanted) override { return wanted == propertyId ? this : nullptr; }
  static void store(Database& database, const Value& value) {
    const std::int32_t version = value.toInt32();
    if (version < 0) throw Error(err::dbInvalidArgument, "Invalid argument: a version is 0 or more");
    database.setSchemaVersion(static_cast<std::size_t>(version));
  }

  std::string name_;
  short type_;
  Value value_;
  std::shared_ptr<Database> database_;
};

}  // namespace

::IProperty* makeOwnProperty(const std::string& name, short type, const Value& value) {
  return new OwnProperty(name, type, value);
}

::IProperty* makeVersionProperty(std::shared_ptr<Database> database) {
  return new OwnProperty(versionProperty, dbLong, {}, std::move(database));
}

void appendProperty(std::shared_ptr<Database> database, IUnknown* object) {
  static_cast<OwnProperty*>(objectBehind(object, propertyId, "property"))->appendTo(std::move(database));
}

}  // namespace voxa::automation
