#include "engines/dao/failures.h"

#include <algorithm>
#include <iterator>

#include "engines/dao/session.h"
#include "platform/variant.h"

namespace voxa::dao {

namespace {

struct Pair {
  int published;
  int ours;
};

// The library tells more apart than the seam does.
constexpr Pair pairs[] = {
    {3070, err::dbTooFewParameters},  // a name in a condition that is no field
    {3129, err::dbSyntax},            // no statement
    {3131, err::dbSyntax},            // in FROM
    {3134, err::dbSyntax},            // in INSERT
    {3138, err::dbSyntax},            // in ORDER BY
    {3141, err::dbSyntax},            // in SELECT
    {3142, err::dbSyntax},            // behind the end of the statement
    {3144, err::dbSyntax},            // in UPDATE
    {3283, err::dbInvalidArgument},   // a second primary key
    {3284, err::dbInvalidArgument},   // an index of that name exists
    {3290, err::dbSyntax},            // in CREATE TABLE
    {3292, err::dbSyntax},            // in the definition of a field
    {3293, err::dbSyntax},            // in ALTER TABLE
    {3373, err::dbNoUniqueIndex},     // a relation to a table without a key
    {3374, err::dbNoUniqueIndex},     // to fields without a unique index
    {3379, err::dbRelatedMissing},    // a relation that rows break
    {3381, err::dbNotInCollection},   // no such field
    {3409, err::dbNotInCollection},   // an index on an unknown field
};

/// The entries of the collection; none when it cannot be read.
std::vector<ErrorInfo> reported(DaoSession& session) {
  std::vector<ErrorInfo> out;
  try {
    forEach(session.engine().object(Kind::errors, "Errors"), [&](const Object& error) {
      out.push_back({numberOf(error.number("Number")), error.text("Description")});
    });
  } catch (const Error&) {
    return {};  // the failure itself is the one to report
  }
  return out;
}

}  // namespace

int numberOf(int published) {
  const auto* found = std::find_if(std::begin(pairs), std::end(pairs),
                                   [&](const Pair& pair) { return pair.published == published; });
  return found == std::end(pairs) ? published : found->ours;
}

Failure::~Failure() {
  for (const BSTR text : {info.bstrDescription, info.bstrSource, info.bstrHelpFile}) ::SysFreeString(text);
}

int Failure::number() {
  if (info.pfnDeferredFillIn != nullptr) {
    (void)info.pfnDeferredFillIn(&info);
    info.pfnDeferredFillIn = nullptr;
  }
  const HRESULT code = result == DISP_E_EXCEPTION ? info.scode : result;
  if (result == DISP_E_EXCEPTION && info.wCode != 0) return info.wCode;
  if (HRESULT_FACILITY(code) == FACILITY_CONTROL) return HRESULT_CODE(code);
  if (code == DISP_E_TYPEMISMATCH) return err::typeMismatch;
  if (code == DISP_E_OVERFLOW) return err::overflow;
  if (code == E_OUTOFMEMORY) return err::outOfMemory;
  return err::internalError;
}

void Failure::raise(DaoSession& session, const std::string& call) {
  const int ours = numberOf(number());
  std::string description = fromBstr(info.bstrDescription);
  if (description.empty())
    description = "The data objects failed in " + call + " (" + std::to_string(result) + ")";
  std::vector<ErrorInfo> entries;
  if (!session.isReporting) {
    session.isReporting = true;
    entries = reported(session);
    session.isReporting = false;
  }
  if (entries.empty() || entries.back().number != ours) entries = {{ours, description}};
  throw LibraryError(entries, ours, entries.back().description);
}

}  // namespace voxa::dao
