#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace voxa {

/// Error numbers. Those below 1000 are the run-time errors that an automation client knows. Those from 3000
/// on are the numbers that the Jet database engine publishes for its own failures. Callers and message texts
/// tell failures apart by them.
namespace err {
inline constexpr int invalidArgument = 5;
inline constexpr int overflow = 6;
inline constexpr int outOfMemory = 7;
inline constexpr int divisionByZero = 11;
inline constexpr int typeMismatch = 13;
inline constexpr int internalError = 51;
inline constexpr int badFileNumber = 52;
inline constexpr int fileNotFound = 53;
inline constexpr int badFileMode = 54;
inline constexpr int deviceIo = 57;
inline constexpr int fileExists = 58;
inline constexpr int diskFull = 61;
inline constexpr int readPastEnd = 62;
inline constexpr int tooManyFiles = 67;
inline constexpr int permissionDenied = 70;
inline constexpr int pathAccess = 75;
inline constexpr int pathNotFound = 76;
inline constexpr int objectNotSet = 91;
inline constexpr int invalidPattern = 93;
inline constexpr int invalidNull = 94;
inline constexpr int entryPointNotFound = 453;

inline constexpr int dbInvalidArgument = 3001;   ///< invalid argument given to the engine
inline constexpr int dbNoSuchIndex = 3015;       ///< index that the table has not
inline constexpr int dbNoCurrentIndex = 3019;    ///< seek without an index
inline constexpr int dbNotUpdatable = 3027;      ///< database or object is read-only
inline constexpr int dbNoCurrentRecord = 3021;   ///< moved past either end
inline constexpr int dbDuplicate = 3022;         ///< duplicate value in a unique index
inline constexpr int dbFileNotFound = 3024;      ///< database file not found
inline constexpr int dbDiskFull = 3026;          ///< not enough space on disk
inline constexpr int dbPassword = 3031;          ///< not a valid password: a protected file
inline constexpr int dbNoTransaction = 3034;     ///< commit or rollback without begin
inline constexpr int dbVersion = 3041;           ///< incompatible database version
inline constexpr int dbCannotOpen = 3051;        ///< file cannot be opened or written (rights, exclusive use)
inline constexpr int dbNullKey = 3058;           ///< Null in a primary or required index
inline constexpr int dbTooFewParameters = 3061;  ///< a name in the statement is neither column nor parameter
inline constexpr int dbDuplicateDestination = 3063;  ///< a field given twice in INSERT or UPDATE
inline constexpr int dbSyntax = 3075;                ///< syntax error in a statement
inline constexpr int dbNotUpdatableQuery = 3073;     ///< a statement that changes rows of no single table
inline constexpr int dbUnknownTable = 3078;          ///< unknown table or query
inline constexpr int dbAmbiguousName = 3079;         ///< a column name that more than one table has
inline constexpr int dbUnknownFunction = 3085;       ///< undefined function in expression
inline constexpr int dbOrderNotSelected = 3093;      ///< DISTINCT sorted by what it does not select
inline constexpr int dbCircular = 3102;              ///< a query made of itself
inline constexpr int dbNoPermission = 3112;          ///< a column that statements may not read
inline constexpr int dbNotAggregated = 3122;         ///< a field neither grouped nor aggregated
inline constexpr int dbUnknownField = 3127;          ///< INSERT names a field that the table has not
inline constexpr int dbTableExists = 3010;           ///< table already exists
inline constexpr int dbWhichTable = 3128;            ///< DELETE does not say of which table
inline constexpr int dbNotABookmark = 3159;          ///< bookmark of none of the rows
inline constexpr int dbTextTooLong = 3163;           ///< text longer than its field
inline constexpr int dbRecordDeleted = 3167;         ///< current record has been deleted
inline constexpr int dbRelatedExists = 3200;         ///< related records exist: cannot delete or change
inline constexpr int dbRelatedMissing = 3201;        ///< related record required
inline constexpr int dbFileExists = 3204;            ///< database already exists
inline constexpr int dbInvalidFieldType = 3259;      ///< operation that fields of this type do not have
inline constexpr int dbNotSupported = 3251;          ///< operation that this kind of rows does not have
inline constexpr int dbLocked = 3260;                ///< locked by another user
inline constexpr int dbNotInCollection = 3265;       ///< item not found in this collection
inline constexpr int dbNoSuchProperty = 3270;        ///< property that the object has not
inline constexpr int dbRequired = 3314;              ///< required field is Null
inline constexpr int dbZeroLength = 3315;            ///< field does not allow zero-length text
inline constexpr int dbUnionColumns = 3307;          ///< UNION of different numbers of columns
inline constexpr int dbValueCount = 3346;            ///< INSERT has not as many values as fields
inline constexpr int dbSeveralRows = 3354;           ///< a query that is one value gives several rows
inline constexpr int dbValidationRule = 3317;        ///< value breaks the validation rule
inline constexpr int dbNotADatabase = 3343;          ///< unrecognised database format
inline constexpr int dbNoUniqueIndex = 3366;         ///< no unique index on the primary side of a relation
inline constexpr int dbInvalidObject = 3420;         ///< object is closed or no longer set
inline constexpr int dbConversion = 3421;            ///< data type conversion error
inline constexpr int dbTypeMismatch = 3464;          ///< an expression of values that do not go together
inline constexpr int dbUpdateWithoutEdit = 3020;     ///< update or set without edit or add
inline constexpr int dbFieldInUse = 3280;            ///< a field that an index or relation needs
inline constexpr int dbInUse = 3281;                 ///< an index or table that a relation needs
inline constexpr int dbObjectExists = 3012;          ///< a query or relation of that name exists
inline constexpr int dbSelectExecuted = 3065;        ///< execute of a statement that gives rows
inline constexpr int dbInvalidName = 3125;           ///< text that cannot name a table, field, index or query
inline constexpr int dbDuplicateField = 3191;        ///< a table with two fields of one name
inline constexpr int dbInvalidOperation = 3219;      ///< rows asked of a statement that gives none
}  // namespace err

/// The one exception type of the library.
class Error : public std::runtime_error {
 public:
  /// number: one of `err`, or a number of an operating system call. description: a sentence for a person.
  Error(int number, const std::string& description) : std::runtime_error(description), number_(number) {}

  [[nodiscard]] int number() const { return number_; }
  [[nodiscard]] std::string description() const { return what(); }

 private:
  int number_;
};

/// Number and description of a failure that is kept, not thrown: the current error, an entry of the database
/// engine's error collection, or an error object from a caller. Number 0: no error.
struct ErrorInfo {
  int number = 0;
  std::string description;

  void clear() { *this = {}; }
};

/// Number and description of the exception being handled (call inside a catch block only). An Error gives its
/// own, a lack of memory `err::outOfMemory`, anything else `err::internalError`.
[[nodiscard]] ErrorInfo describeCurrentException();

/// The error of a failed file operation. The number comes from the C library's `errnoValue`: 53 not found, 58
/// exists, 61 disk full, 67 too many files, 70 permission denied, 75 path access, 76 path not found, 57
/// anything else. The description names `path`.
[[nodiscard]] Error fileError(int errnoValue, const std::string& path);

}  // namespace voxa
