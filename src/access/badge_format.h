#pragma once

#include <cstdint>
#include <string>

#include "access/access_context.h"
#include "comm/com_types.h"
#include "platform/notice.h"
#include "tables/table.h"

namespace voxa {

/// Badge formats: how a reader finds the card number and the site code in what it reads from a card. Table
/// "BadgeFormat", which not every installation has: CreateTable builds it, a new database comes without.
/// Which reader works with which format is not kept; a format is sent to the readers one by one.
class BadgeFormat : public Table {
 public:
  explicit BadgeFormat(AccessContext& context) : Table(context, "BadgeFormat"), access_(context) {}

  /// Builds the table and inserts the default format, number 0; what fails is shown. On a database that has
  /// the table both do.
  void CreateTable();
  /// Sends one format to a component when its mark, or DLFull in `Params`, says so:
  ///   04, reader number and technology (three digits; of a VRMD1 with a known `Techno` only), site position,
  ///   site length, card position, card type (04 the system's own cards, else 08), two digits each, site code
  ///   (8 characters, zeros on the right).
  /// ReaderNumber: the reader's number on its controller, isVRMD1: the model of that controller; neither is
  /// changed. The mark stays whatever happens, since further readers may want the format.
  /// 0 sent, nothing to send, aborted by the person, or an unknown format (shown); else a communication code
  /// or an error's number. AlreadyComTested: the communication test is left out when true.
  std::int16_t download(std::int16_t BadgeFormatID, std::int16_t& ReaderNumber, bool& isVRMD1,
                        ComponentType compType = CTActiveStations, const std::string& compName = "",
                        std::int16_t Params = DLDefault, bool* AlreadyComTested = nullptr);
  /// The same behind a test of the lines: asks and shows nothing.
  std::int16_t send(std::int16_t BadgeFormatID, std::int16_t ReaderNumber, bool isVRMD1,
                    const Component& component, std::int16_t Params, const Tell& teller);

  void createFields(TableDef& td) override;
  void createIndexes(TableDef& td) override;
  void insertDefaultRecs() override;  ///< a failure is raised

 private:
  AccessContext& access_;
};

}  // namespace voxa
