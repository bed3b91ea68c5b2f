' Arguments, results and errors as scripts give and get them.
Dim com: Set com = glob.Com
Dim rows, item

' Properties, in any type that converts; one place for all who ask.
com.CheckDelay = "12"
Equal "CheckDelay", CreateObject("KORVA.Glob").Com.CheckDelay, 12
IsTrue "two objects, one container", CreateObject("KORVA.Glob").QDB Is qdb
IsTrue "created by its own name", CreateObject("KORVA.QDB") Is qdb
IsTrue "two names of one table object", qdb.Stations Is CreateObject("KORVA.Station")
Equal "AppDB as it was given", com.AppDB, here & "\KRV.mdb"

' Results by reference: into variables of any kind, not into values.
Dim id, address: id = Empty: address = "7"
db.Execute "insert into Readers (Id, Name, StationId, ControllerAddress, [Position]) values (3, 'North', 1, 5, 2)"
Equal "found", qdb.Readers.getControllerAddr("North", id, address), 0
Equal "station", id, 1
Equal "address", address, 5
Equal "type of the result", VarType(address), 2
Equal "by number", qdb.Readers.getControllerAddrID(3, (id), (address)), 0
Equal "not found", qdb.Readers.getControllerAddr("South", id, address), -1
Dim active
Equal "optional by reference", qdb.Stations.getId(qdb.Stations.getName(1), active), 1
Equal "active", active, True
Equal "left out", qdb.Stations.getId(qdb.Stations.getName(1)), 1
Equal "a joined text", qdb.Stations.GetCompar(1, 5), "1054800"
Dim newModel: newModel = True
Equal "by reference alone", qdb.Holidays.getFreeId(newModel), 1

' Default members; definitions that a table fills; errors by number. The data objects have a script of their own.
Equal "table by default member", qdb("stations").Name, "Stations"
Set rows = db.OpenRecordset("select * from Readers")
rows.AddNew: rows("Id") = 4: rows("Name") = "East": rows("StationId") = 1
rows("ControllerAddress") = 6: rows.Fields("Position").Value = 1: rows.Update
rows.MoveNext: Equal "the new row", rows(0) & rows("Name"), "4East"
Dim field, names: names = ""
For Each field In db.TableDefs("ComStatus").Fields: names = names & field.Name & field.Type & " ": Next
Equal "columns", names, "StationID3 CtrAddr3 Status3 Date8 "
Dim draft: Set draft = db.CreateTableDef("Draft")
qdb.tables("Holidays").createFields draft
qdb.tables("Holidays").createIndexes draft
Equal "a definition that is filled", draft.Fields(0).Name & draft.Indexes.Count, "Id2"
On Error Resume Next
Set item = qdb.tables("BadgeFormat"): Failed 5, "qdb.tables(""BadgeFormat"")"
db.Execute "delete * from Visits; delete * from Readers": Failed 3075, "db.Execute ""delete * from Visits; delete * from Readers"""
db.Execute "update Readers set StationId = 9": Failed 3201, "db.Execute ""update Readers set StationId = 9"""
Set item = db.TableDefs("Nobody"): Failed 3265, "db.TableDefs(""Nobody"")"
Set item = rows.Fields(99): Failed 3265, "rows.Fields(99)"
rows.MoveNext: rows.MoveNext: Failed 3021, "rows.MoveNext"
rows.Fields.Append draft: Failed 3219, "rows.Fields.Append draft"
rows.MoveFirst: rows.Edit: rows("Id") = "many": Failed 3421, "rows.MoveFirst: rows.Edit: rows(""Id"") = ""many"""
qdb.tables("Holidays").createFields CreateObject("Scripting.Dictionary"): Failed 13, "qdb.tables(""Holidays"").createFields CreateObject(""Scripting.Dictionary"")"
com.CheckDelay = Null: Failed 13, "com.CheckDelay = Null"
com.CheckDelay = "many": Failed 13, "com.CheckDelay = ""many"""
com.CheckDelay = Array(1, 2): Failed 13, "com.CheckDelay = Array(1, 2)"
com.CheckDelay = 40000: Failed 6, "com.CheckDelay = 40000"
qdb.Stations.getName: Failed 450, "qdb.Stations.getName"
qdb.Stations.getName 1, True, 3: Failed 450, "qdb.Stations.getName 1, True, 3"
qdb.Stations.nothing: Failed 438, "qdb.Stations.nothing"
On Error GoTo 0

' Numbers outside the enumerations: a status and a message, and nothing is sent.
com.writeLog = True
Equal "a station that is not there", com.Send(1, 9, 1), -1
Dim sent: sent = Contents("COM.LOG")
Equal "commands", com.Send(9, 1, 1, , True) & com.Send(65536, 1) & com.sendToActiveStations(9) & com.sendBrodcast(-1) & _
  com.sendToStation(9, qdb.Stations.getName(1)) & com.sendToReader(9, "North"), "555555"
Equal "components", com.sendToComp(6, -1) & com.sendCommand("31", 65537) & qdb.Cardholders.generalDownload(3, , 1, True) & _
  qdb.Cardholders.invalidate(1, 9) & qdb.DailyPrograms.download(1, 9) & qdb.Journal.readTransactions(7, ""), "55555-1"
Equal "answers", com.TestCom(9) Or com.MsgChooseAbort(9), False
Equal "what was sent", Contents("COM.LOG"), sent
com.writeLog = False
' Shown: Error 5: Invalid argument: no such command
' Shown: Error 5: Invalid argument: no such component type

' A second time: what is there already is told of, and nothing is raised. Then what every table has.
qdb.BadgeFormat.CreateTable: qdb.BadgeFormat.CreateTable
For Each item In Array("Stations", "WeeklyPrograms", "AccessGroups"): qdb.tables(item).insertDefaultRecs: Next
Equal "relations", qdb.tables("Readers").createRelations, 3012
' Shown: (BadgeFormat.CreateTable)
' Shown: (Stations.insertDefaultRecs)
' Shown: (WeeklyPrograms.insertDefaultRecs)
For Each item In Array(qdb.Cardholders, qdb.Alarms, qdb.Journal)
  Equal item.Name, item.getFreeId & item.setTableFlagsD(True), "10"
Next
For Each item In Array("VOXA.dll", "TLXP32.dll", "voxa.exe")
  IsTrue item, CreateObject("Scripting.FileSystemObject").GetFileVersion(item) <> ""
Next

' A file: items are read as the type of the variable.
Dim file: Set file = CreateObject("KORVA.SeqFile")
file.Name = here & "\list.txt"
file.fopen "w": file.fprint "12,first"
file.fclose
file.fopen "r"
item = 0
file.finput item: Equal "number", item, 12
item = "": file.finput item: Equal "text", item, "first"
Equal "end", file.fEOF, True
On Error Resume Next
file.flineInput: Failed 62, "file.flineInput"
On Error GoTo 0
file.fclose: Equal "closed", file.ch, 0

' The catalogue: a script's error object tells its number and description.
Equal "insert", glob.Strings.insert("msgHello", "Hello", 0, "a test", "Message", 9.5), 0
Equal "read", glob.Strings.read("MSGHELLO"), "Hello"
On Error Resume Next
Err.Raise 1234, "me", "A sentence"
glob.Strings.display "msgHello", "values.vbs", Err
glob.Strings.display "msgHello", , , 64
glob.Strings.display "msgHello", "Nothing", Nothing
glob.Strings.display "msgHello", "Array", Array(1, 2)
' Shown: (values.vbs)
' Shown: (Nothing)
' Shown: (Array)
On Error GoTo 0

' Controllers: what is asked wrongly is told of and opens nothing; a moment may be left out, but has to be one.
Dim controllers: Set controllers = CreateObject("KORVA.Controllers")
Equal "no item", controllers.itemThing(0) & controllers.itemReason(-1), ""
Equal "no such place", controllers.plan("Nowhere") & controllers.download(, "Nowhere") & controllers.downloadCard(0), "-155"
Equal "no such card", controllers.mayOpen(1, "North", #1/4/2027 9:00#) & controllers.whyOpen("1", "North"), "False"
Equal "nobody", controllers.whoOpens("North", "4/1/2027 09:00"), ""
On Error Resume Next
controllers.mayOpen 1, "North", "some day": Failed 13, "controllers.mayOpen 1, ""North"", ""some day"""
On Error GoTo 0
' Shown: Can't find station Nowhere
' Shown: Can't find reader Nowhere
' Shown: Error 5: the card number is a number from 1 to 9999, not 0
' Shown: Card number not in use 1

' Objects that were closed or let go.
Set field = rows.Fields("Name")
rows.Close
On Error Resume Next
rows.MoveFirst: Failed 3420, "rows.MoveFirst"
item = field.Value: Failed 3420, "field.Value"
On Error GoTo 0
Set rows = Nothing: Set glob = Nothing: Set qdb = Nothing
Equal "the database is open while somebody holds it", db.OpenRecordset("Readers").RecordCount, 2
db.Close
On Error Resume Next
db.OpenRecordset "Readers": Failed 3420, "db.OpenRecordset ""Readers"""
db.Execute "delete * from Readers": Failed 3420, "db.Execute ""delete * from Readers"""
On Error GoTo 0
Finish
