#include "messages/default_messages.h"

#include <string>
#include <string_view>

#include "messages/strings.h"
#include "platform/context.h"
#include "platform/database/database.h"

namespace voxa {

namespace {

struct DefaultText {
  std::string_view mnemonic;
  std::string_view english;
  std::string_view context;  // comes after "KORVA "; the texts of a "Table" are names of built-in records
};

// "msgCantFindFile" is here twice. The second text replaces the first.
constexpr DefaultText defaultTexts[] = {
    {"msgUnexpecErr", "Unexpected error", "general"},
    {"msgCantFindFile", "Can't find", "general"},
    {"msgCantFindFile", "Can't find file", "general"},
    {"msgCantLoad", "Can't load database", "general"},
    {"msgCantOpen", "Can't open file", "general"},
    {"msgCantWrite", "Can't write into file", "general"},
    {"msgCantRead", "Can't read from file", "general"},
    {"msgCreateSaveDBYN",
     "Warning! This procedure will create a new database. Do you want to save the current version ?",
     "general"},
    {"msgReplaceSaveDBYN",
     "Warning! This procedure will replace the current database. Do you want to save it first ?", "general"},
    {"msgOverrideYN", "File with same name already exists. Do you want to override it ?", "general"},
    {"msgDeleteYN", "Are you sure you want to delete ?", "general"},
    {"msgFileToRestore", "File to restore", "general"},
    {"msgSaveAs", "Save as", "general"},
    {"msgFileToDelete", "File to delete", "general"},
    {"msgConfirmOverwriteDB",
     "You are about to overwrite the current database. Are you sure you want to delete it ?", "general"},
    {"msgCantCreateTable", "Can't create table", "database creation"},
    {"msgCantCreateDB", "Can't create database", "database creation"},
    {"msgCantCreateDBRel", "Can't create relation in database", "database creation"},
    {"msgCantFindStation", "Can't find station", "database manipulations"},
    {"msgCantFindReader", "Can't find reader", "database manipulations"},
    {"msgCantFindWeeklyProg", "Can't find weekly program", "database manipulations"},
    {"msgCantFindDailyProg", "Can't find daily program", "database manipulations"},
    {"msgCantFindAlarm", "Can't find alarm", "database manipulations"},
    {"msgCantFindHolidays", "Can't find holidays", "database manipulations"},
    {"msgCantFindCardholder", "Can't find cardholder", "database manipulations"},
    {"msgCantFindAccessGroup", "Can't find access group", "database manipulations"},
    {"msgCantAddToDefaultGroup", "Can't add reader to default access group", "database manipulations"},
    {"msgDBDuplicVal", "Some values in this item are already in use", "database manipulations"},
    {"msgDBMandField", "A mandatory field was not filled", "database manipulations"},
    {"msgDBDelRelated", "You can't delete this item because it is used by another table",
     "database manipulations"},
    {"msgDBDataConvErr", "Data type conversion error", "database manipulations"},
    {"msgCantWriteCommand", "Can't write command to file", "Application actions"},
    {"msgDownloadToUnactive",
     "Warning: you are saving parameters on a non-active station. New parameters have not been downloaded to "
     "the controllers. download must be performed later by user",
     "Application actions"},
    {"msgSendToUnactive",
     "Warning: you are sending command to a non-active station. Command have not be sent to controller. "
     "Command must be sent later by user",
     "Application actions"},
    {"msgNoActiveStation", "Warning: No active station found", "Application actions"},
    {"msgTwoWeeklyProgOnController", "Two different weekly programs used on a same controller",
     "Application actions"},
    {"msgCantDownload", "Can't download parameters to controller. Try later", "Application actions"},
    {"msgCardCodeInUse", "Card code already in use", "Application actions"},
    {"msgCardNumInUse", "Card number already in use", "Application actions"},
    {"msgCardNumNotInUse", "Card number not in use", "Application actions"},
    {"msgCantTransferTransac", "Can't transfer transactions from controller", "Application actions"},
    {"msgCantGetTime", "Can't get time from controller", "Application actions"},
    {"msgCantSendTime", "Can't send time from controller", "Application actions"},
    {"msgComErr", "Communication Error", "communication"},
    {"msgCantSendCommand", "Can't send command to controller", "communication"},
    {"msgCantReadDate", "Can't read date from controller", "communication"},
    {"msgCantReadStatus", "Can't read status from controller", "communication"},
    {"msgCantSendDate", "Can't send date to controller", "communication"},
    {"msgCantSendClear", "Can't clear buffer controller", "communication"},
    {"msgCantReadMemory", "Can't read memory from controller", "communication"},
    {"msgCantResetReadPointer", "Can't reset controller reader pointer", "communication"},
    {"msgCantReadCardCode", "Can't find a new card code. Pass your card, and read again.", "communication"},
    {"msgCantDeleteBuf", "Can't delete controller buffer", "communication"},
    {"nameAccGroupAnyWhere", "Anywhere Anytime", "Table AccessGroups"},
    {"nameWeeklyProgAlways", "Always", "Table WeeklyPrograms"},
    {"nameDailyProgAnyTime", "Anytime", "Table DailyPrograms"},
    {"nameDailyProgNever", "Never", "Table DailyPrograms"},
    {"nameStationLocal", "Local", "Table Stations"},
    {"nameGroupCard", "Card", "Table Cardholders"},
    {"msgJourReplaceYN",
     "Warning! This procedure will replace the current journal. Do you want to save it first", "Journal"},
    {"msgJourSaveYN", "This procedure will create a new journal. Do you want to save the current version ?",
     "Journal"},
};

}  // namespace

void insertDefaultMessages(Context& context, Strings& strings) {
  const auto insertAll = [&] {
    // One transaction, so the disk is waited for once. When the store cannot be written to at all, this is
    // told once.
    Transaction transaction(context.engine(), strings.database());
    for (const DefaultText& text : defaultTexts) {
      const bool isName = text.context.starts_with("Table ");
      (void)strings.insert(std::string(text.mnemonic), std::string(text.english),
                           isName ? std::int16_t{2000} : std::int16_t{0},
                           "KORVA " + std::string(text.context), isName ? "Name" : "Message");
      if (!context.engine().inTransaction())
        return;  // a full disk undid the transaction; the person was told
    }
    transaction.commit();
  };
  context.showLater([&] { context.attempt({"msgCantInsertMessage", ""}, insertAll); });
}

}  // namespace voxa
