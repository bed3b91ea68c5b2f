#include "data_objects.h"

namespace voxa::automation {

namespace {

class ErrorObject final : public Object<::IError> {
 public:
  explicit ErrorObject(ErrorInfo error) : error_(std::move(error)) {}

  STDMETHODIMP get_Description(BSTR* text) override {
    return give(text, [&] { return error_.description; });
  }
  STDMETHODIMP get_Number(long* number) override {
    return give(number, [&] { return std::int32_t{error_.number}; });
  }
  STDMETHODIMP get_Source(BSTR* text) override {
    return give(text, [] { return std::string("KORVA.DBEngine"); });
  }
  STDMETHODIMP get_HelpFile(BSTR* text) override {
    return give(text, [] { return std::string(); });
  }
  STDMETHODIMP get_HelpContext(long* context) override {
    return give(context, [] { return std::int32_t{0}; });
  }

 private:
  ErrorInfo error_;
};

}  // namespace

::IErrors* makeErrors(const DatabaseEngine& engine) {
  const auto all = std::make_shared<std::vector<ErrorInfo>>(engine.errors());
  return makeCollection<::IErrors, ::IError>({
      .count = [all] { return all->size(); },
      .item = [all](std::size_t i) -> IDispatch* { return new ErrorObject(all->at(i)); },
      .find = [](const std::string& name) -> std::size_t {
        throw Error(err::dbNotInCollection, "Errors have no names: '" + name + "'");
      },
      .append = nullptr,
      .remove = nullptr,
  });
}

}  // namespace voxa::automation
