#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "access/acc_group_reader.h"
#include "access/access_context.h"
#include "comm/com_types.h"
#include "tables/table.h"

namespace voxa {

class CardDownload;
struct SentCards;

/// Access groups: where and when their cards open. Table "AccessGroups"; group 0 is the default group. With
/// it goes the link table of readers and weekly programs (AccGroupReader), which is built by the same calls.
/// What is sent for a group, and its readers, are in access_group_download.cpp, the table is in
/// access_group.cpp.
class AccessGroup : public Table {
 public:
  static constexpr const char* tableName = "AccessGroups";

  explicit AccessGroup(AccessContext& context)
      : Table(context, tableName), access_(context), links_(context) {}

  [[nodiscard]] std::string DefaultName();  ///< name of group 0
  /// Group by name; -1 and "msgCantFindAccessGroup" when there is none.
  std::int16_t getId(const std::string& Name);
  /// Sends the code, rights and validity of every card of a group, to all its readers' controllers or to the
  /// one of `readerId` (0: all), after a test of the communication. A group other than 0 is sent only when
  /// it is marked, or with DLFull in Params. Its mark goes once all cards have been sent.
  /// 0 sent, nothing to send, aborted by the person, or a reader of a station that is not active; -1 an
  /// unknown group; else the line's code or an error's number. Failures and inactive stations are shown.
  std::int16_t download(std::int16_t Id, std::int16_t Params = DLDefault, std::int16_t readerId = 0);
  /// The same without the test and without a box. A group that is not there any more has nothing to send.
  [[nodiscard]] SentCards send(std::int16_t Id, std::int16_t Params, std::int16_t readerId);
  /// Links a reader to group 0 with the program "always" and sends it the group's cards; shows a failure.
  void addReaderToDefaultGroup(std::int16_t readerId);
  /// Removes a reader's links; nothing is sent. A failure ends this silently.
  void deleteReaderFromAccessGroups(std::int16_t readerId);
  /// Tests the group's readers on active stations one after the other, unless communications are inhibited.
  /// True: a reader did not answer and the person chose to abort; False: go on.
  bool AccessGroupCheckCom(std::int16_t Id);

  std::int16_t create() override;  ///< builds both tables
  [[nodiscard]] std::vector<TableDef> definitions() override;
  void createFields(TableDef& td) override;
  void createIndexes(TableDef& td) override;
  std::int16_t createRelations() override;
  void insertDefaultRecs() override;

 private:
  std::int16_t sendCards(std::int16_t id, std::int16_t readerId, std::optional<CardDownload>& sending);
  bool testedFor(std::int16_t readerId);

  AccessContext& access_;
  AccGroupReader links_;
};

}  // namespace voxa
