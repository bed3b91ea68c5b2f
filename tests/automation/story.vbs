' From an empty folder to a journal, all of it through the automation classes.

Sub AddRow(table, values)
  Dim rows, i
  Set rows = db.OpenRecordset(table)
  rows.AddNew
  For i = 0 To UBound(values) Step 2
    rows(values(i)) = values(i + 1)
  Next
  rows.Update
  rows.Close
End Sub

' Whatever serves the file, the main database is the object that its engine has.
Dim opened, isThere: isThere = False
For Each opened In CreateObject("KORVA.DBEngine").Workspaces(0).Databases: If opened Is db Then isThere = True
Next
IsTrue "the main database is the engine's", isThere

' Doors and times.
Dim station: station = qdb.Stations.getName(1)
AddRow "Readers", Array("Id", qdb.Readers.getFreeId, "Name", "Front door", "StationId", 1, _
  "ControllerAddress", 1, "Position", 1, "ControllerType", "VRMD1")
AddRow "DailyPrograms", Array("Id", qdb.DailyPrograms.getFreeId, "Name", "Office", "StartFirstInterval", "08:00", _
  "EndFirstInterval", "23:59", "StartSecondInterval", "23:59", "EndSecondInterval", "23:59")
AddRow "WeeklyPrograms", Array("ProgType", "C", "ProgNum", qdb.WeeklyPrograms.getFreeId("C"), "Name", "Staff", _
  "DailyProgDay1", 2, "DailyProgDay2", 2, "DailyProgDay3", 2, "DailyProgDay4", 2, "DailyProgDay5", 2, _
  "DailyProgDay6", 2, "DailyProgDay7", 2, "DailyProgHolidays", 2, "WeeklyProgramFlagD", True)
AddRow "AccessGroups", Array("Id", qdb.AccessGroups.getFreeId, "Name", "Staff")
Dim group: group = qdb.AccessGroups.getId("Staff")
AddRow "AccGroupReaders", Array("AccessGroupID", group, "ReaderId", qdb.Readers.getIdByName("Front door"), _
  "WeeklyProgType", "C", "WeeklyProgNum", 1)
Equal "ini file", qdb.Stations.createIniFile(1), 0
Voxa "sim controller add --station """ & station & """ --address 1 --type VRMD1"

' What the controllers are to hold.
IsTrue "every controller answers", glob.Com.TestCom
Equal "clock", glob.Com.sendToComp(1), 0
Dim tested
Equal "daily programs", qdb.DailyPrograms.generalDownload(0, "", tested), 0
Equal "weekly program", qdb.WeeklyPrograms.download("C", 1, 2, station), 0
Equal "command line of the program", Left(Contents("COMMAND.TXT"), 20), "32010202020202020202"
Equal "cards", qdb.Cardholders.createGroup(1, "00000812", 3, group), 0
Equal "name", qdb.Cardholders.getNameByCardNum(2), "Card 0002"
Equal "flags left", db.OpenRecordset("select Id from Cardholders where CardCodeFlagD = true").RecordCount, 0
Equal "number in use", qdb.Cardholders.createGroup(3, "00000900", 1, group), 1

' People at the door.
Voxa "sim swipe --station """ & station & """ --reader ""Front door"" --card 2"
Voxa "sim swipe --station """ & station & """ --reader ""Front door"" --code 99999999"
Equal "read", qdb.Journal.readTransactions(2, station), 0
Dim journal: Set journal = qdb.tables("Journal").getDB.OpenRecordset("select * from Journal order by Id")
Equal "rows in the journal", journal.RecordCount, 2
Equal "unknown card", qdb.Journal.getLastCardCode("Front door"), "99999999"
Equal "who", journal("CardholderName"), "Card 0002"
Equal "where", journal("ReaderName"), "Front door"

' A card that is lost.
Equal "delete", qdb.Cardholders.delete(2), 0
db.Execute "update Cardholders set Deleted = true where cardNum = 2", 128
Equal "rows touched", db.RecordsAffected, 1
Equal "free number", qdb.Cardholders.getFreeCardNum, 4
Equal "number of the deleted card", qdb.Cardholders.getCardNumInUse(2), False

' What the controllers miss, and who may open what. A move to another group by its mark alone ends right.
Dim controllers: Set controllers = CreateObject("KORVA.Controllers")
Equal "everything is held", controllers.download, 0
Equal "nothing is planned", controllers.plan, 0
Dim officeHours: officeHours = Date + TimeSerial(9, 0, 0)
IsTrue "card 1 opens", controllers.mayOpen("1", "Front door", officeHours)
IsTrue "not at night", Not controllers.mayOpen("1", "Front door", Date + TimeSerial(3, 0, 0))
IsTrue "card 1 is among those who open", InStr(controllers.whoOpens("Front door", officeHours), "(card 1) opens Front door: ") > 0
db.Execute "update Cardholders set AccessGroupId = 0, AccessGroupIdFlagD = true where CardNum = 1"
Equal "one thing is planned", controllers.plan(station), 1
Equal "the plan", controllers.itemThing(0) & " " & controllers.itemAction(0) & " " & controllers.itemReason(0), _
  "card 1 erase left the group"
Equal "behind the plan", controllers.itemThing(1) & controllers.itemThing(-1), ""
Equal "the card leaves", controllers.downloadCard(1), 0
Equal "flag of the group", db.OpenRecordset("select * from Cardholders where CardNum = 1")("AccessGroupIdFlagD"), False
IsTrue "card 1 is shut out", Not controllers.mayOpen("1", "Front door", officeHours)
Equal "no such station", controllers.download("Nowhere"), 5
Equal "another controller", controllers.replaced(station, 1), 0
IsTrue "everything is planned for it", controllers.plan > 2
Equal "and sent", controllers.download("", "Front door"), 0

' A line that fails is told, and what was not sent stays marked.
Voxa "sim controller fault --station """ & station & """ --address 1 --silent"
db.Execute "update DailyPrograms set DailyProgramFlagD = true where Id = 2"
Dim alreadyTested: alreadyTested = True
IsTrue "a silent controller", qdb.DailyPrograms.download(2, 0, "", 2, alreadyTested) <> 0
Equal "stays marked", db.OpenRecordset("select * from DailyPrograms where Id = 2")("DailyProgramFlagD"), True
db.Execute "update Cardholders set CardCode = '00000999' where CardNum = 3"
Equal "something is missing", controllers.download, 3
Equal "which is told", controllers.itemThing(0), "card 3"
Finish
