' The data objects, as a programmer walks through them who knows them from elsewhere.
Const dbOpenTable = 1, dbOpenDynaset = 2, dbOpenSnapshot = 4, dbOpenForwardOnly = 8, dbReadOnly = 4, dbFailOnError = 128
Dim engine: Set engine = CreateObject("KORVA.DBEngine")
Dim workspace: Set workspace = engine.Workspaces(0)
Dim rows, twin, item, text, mark, data, td, key, query, other

' The engine, its workspace and its databases.
IsTrue "the main database", engine(0).Databases(0) Is db
Equal "workspace", engine.Workspaces.Count & workspace.Name & workspace.UserName, "1#Default Workspace#admin"
IsTrue "parent", db.Parent Is workspace
Equal "database", db.Version & db.Connect & db.Updatable & db.Transactions & db.CollatingOrder & db.QueryTimeout, _
  "4.0TrueTrue103360"
text = "": For Each item In db.Properties: text = text & item.Name & " ": Next
Equal "properties", text, "Name RecordsAffected Version connect Updatable Transactions CollatingOrder QueryTimeout SchemaVersion "
Equal "a property", db.Properties("updatable") & db.Properties("Name").Type & db.Properties("Updatable").Inherited, "True10False"
db.Properties("QueryTimeout") = 30: Equal "a property that is set", db.QueryTimeout, 30

' A table by its definition; what is appended shows what is in the file.
Set td = db.CreateTableDef("Visits")
td.Fields.Append td.CreateField("Id", 4): td.Fields("Id").Attributes = 16
td.Fields.Append td.CreateField("Who", 10, 8): td.Fields("who").Required = True
td.Fields.Append td.CreateField("Day", 8): td.Fields.Append td.CreateField("Note", 12)
td.Fields("Note").AllowZeroLength = True
Set key = td.CreateIndex("Key"): key.Primary = True
key.Fields.Append key.CreateField("Id"): td.Indexes.Append key
Set key = td.CreateIndex("ByWho"): key.Fields.Append key.CreateField("Who"): td.Indexes.Append key
Equal "before it is in the file", td.RecordCount, -1
db.TableDefs.Append td: db.TableDefs.Refresh
Equal "indexes", td.Indexes.Count & td.Indexes("Key").Unique & td.Indexes("key").Fields(0).Name & td.Indexes(1).Primary, "2TrueIdFalse"
td.Fields.Append td.CreateField("Door", 3)
text = "": For Each item In db("visits").Fields: text = text & item.Name & item.Type & item.OrdinalPosition & " ": Next
Equal "columns", text, "Id40 Who101 Day82 Note123 Door34 "
Equal "definition", td.Connect & td.SourceTableName & td.Attributes & td.Fields("Who").SourceTable & td.Fields("Who").Size, "0Visits8"

' Rows: adding, the last change, moving, bookmarks and positions.
Set rows = td.OpenRecordset(dbOpenDynaset)
For Each item In Array("Ann", "Bob", "Cid", "Dot", "Eve")
  rows.AddNew: rows("Who") = item: rows("Day") = DateSerial(2026, 12, 24) + rows.RecordCount: rows("Door") = 7: rows.Update
Next
Equal "counts", rows.RecordCount & db.TableDefs("Visits").RecordCount, "55"
rows.Bookmark = rows.LastModified: Equal "last change", rows("Who") & rows("Id"), "Eve5"
rows.MoveFirst: rows.Move 3: Equal "moved", rows("Who") & rows.AbsolutePosition & rows.PercentPosition, "Dot360"
mark = rows.Bookmark: Call rows.Move(-2, mark): Equal "moved from a bookmark", rows("Who"), "Bob"
rows.AbsolutePosition = 4: Equal "position", rows("Who"), "Eve"
rows.PercentPosition = 50: Equal "percent", rows("Who"), "Dot"
rows.Move 9: Equal "beyond the end", rows.EOF & rows.AbsolutePosition, "True-1"
rows.Bookmark = mark: Equal "bookmark", rows("Who"), "Dot"
Set twin = rows.Clone: twin.Bookmark = mark: twin.MoveNext
Equal "a clone", twin("Who") & rows("Who"), "EveDot"
Equal "open recordsets", db.Recordsets.Count & db.Recordsets("VISITS").Name, "2Visits"
Equal "kind", rows.Type & rows.Updatable & rows.Bookmarkable & rows.Restartable & rows.Transactions, "2TrueTrueTrueTrue"
Equal "column", rows("Who").SourceTable & rows("Who").SourceField & rows("Who").DataUpdatable & rows("Id").DataUpdatable, "VisitsWhoTrueFalse"

' Finding, editing, parts of a long text.
rows.FindFirst "Who > 'B'": Equal "first", rows("Who"), "Bob"
rows.FindNext "Id >= 3": Equal "next", rows("Who"), "Cid"
rows.FindLast "Who Like '?o*'": Equal "last", rows("Who"), "Dot"
rows.FindPrevious "Who Like '?o*'": Equal "previous", rows("Who"), "Bob"
rows.FindFirst "Who = 'Zoe'": Equal "none", rows.NoMatch & rows("Who"), "TrueBob"
Equal "not editing", rows.EditMode & rows.LockEdits, "0False"
rows.Edit: Equal "editing", rows.EditMode, 1
rows("Note").AppendChunk "first ": rows("Note").AppendChunk "second": rows.Update
Equal "parts", rows("Note").FieldSize & rows("Note").GetChunk(6, 3) & rows("Note").GetChunk(9, 99), "12second"
rows.Edit: rows("Who") = "Bo": rows.CancelUpdate: Equal "cancelled", rows("Who"), "Bob"
rows.Delete
On Error Resume Next
item = rows("Who").Value: Failed 3167, "rows(""Who"").Value"
rows.Bookmark = "none": Failed 3159, "rows.Bookmark = ""none"""
twin.Close: Set twin = td.OpenRecordset: rows.Bookmark = twin.Bookmark: Failed 3159, "rows.Bookmark = twin.Bookmark"
rows.LockEdits = True: Failed 3251, "rows.LockEdits = True"
rows("Who").AppendChunk "x": Failed 3259, "rows(""Who"").AppendChunk ""x"""
On Error GoTo 0
rows.Requery: Equal "anew", rows.RecordCount & rows("Who"), "4Ann"

' Arrays, filters, orders.
data = rows.GetRows(3): Equal "array", UBound(data, 1) & UBound(data, 2) & data(1, 0) & data(0, 2) & rows("Who"), "42Ann4Eve"
data = rows.GetRows(9): Equal "the rest", UBound(data, 2) & data(1, 0) & rows.EOF, "0EveTrue"
rows.Filter = "Id > 1": rows.Sort = "Who desc"
Set twin = rows.OpenRecordset: Equal "filter and sort", twin.RecordCount & twin("Who") & twin.Type, "3Eve2"

' A table with an index; kinds of rows and what each refuses.
Set rows = db.OpenRecordset("Visits", dbOpenTable)
rows.Index = "ByWho": rows.Seek "=", "cid": Equal "seek", rows.NoMatch & rows("Id"), "False3"
rows.Seek ">", "Cid": Equal "seek behind", rows("Who"), "Dot"
rows.Seek "=", "Zoe": Equal "seek in vain", rows.NoMatch, True
On Error Resume Next
rows.Index = "Nothing": Failed 3015, "rows.Index = ""Nothing"""
rows.Seek "like", "Cid": Failed 3001, "rows.Seek ""like"", ""Cid"""
rows.Filter = "Id = 1": Failed 3251, "rows.Filter = ""Id = 1"""
Set rows = db.OpenRecordset("Visits", dbOpenSnapshot)
rows.Edit: Failed 3251, "rows.Edit"
rows.Index = "ByWho": Failed 3251, "rows.Index = ""ByWho"""
db.OpenRecordset("Visits", dbOpenDynaset, dbReadOnly).Edit: Failed 3027, "db.OpenRecordset(""Visits"", dbOpenDynaset, dbReadOnly).Edit"
Set rows = db.OpenRecordset("Visits", dbOpenSnapshot, 256): Equal "forward only", rows.Type & rows.Bookmarkable, "8False"
rows.MovePrevious: Failed 3251, "rows.MovePrevious"
item = rows.Bookmark: Failed 3251, "rows.Bookmark"
db.OpenRecordset "Visits", 3: Failed 3001, "db.OpenRecordset ""Visits"", 3"
db.OpenRecordset "Visits", dbOpenDynaset, 1: Failed 3001, "db.OpenRecordset ""Visits"", dbOpenDynaset, 1"
db.OpenRecordset "select Who from Visits", dbOpenTable: Failed 3219, "db.OpenRecordset ""select Who from Visits"", dbOpenTable"
On Error GoTo 0

' Queries: stored, with parameters, changed, and one that is stored nowhere.
Set query = db.CreateQueryDef("VisitsOf", "PARAMETERS [name] Text; select Who, Day from Visits where Who = [name] or Id = [number]")
Equal "query", query.Type & query.ReturnsRecords & query.Fields.Count & query.Fields(1).Name, "0True2Day"
text = "": For Each item In query.Parameters: text = text & item.Name & item.Type & " ": Next
Equal "parameters", text, "name10 number12 "
query("name") = "Ann": query.Parameters("Number").Value = 4
Equal "its rows", query.OpenRecordset(dbOpenSnapshot).RecordCount, 2
Equal "by its name", db.QueryDefs("visitsof").Parameters.Count, 2
Set query = db.CreateQueryDef("", "update Visits set Door = [d] where Id > 1")
query.Parameters(0) = 9: query.Execute dbFailOnError
Equal "stored nowhere", query.RecordsAffected & query.Type & db.QueryDefs.Count, "3482"
query.SQL = "select Who from Visits union select Name from Stations": Equal "another text", query.Type & query.Parameters.Count, "1280"
Set query = db.CreateQueryDef("Later"): query.SQL = "select * from Visits": Equal "stored with its text", db.QueryDefs.Count, 3
On Error Resume Next
query.Parameters("nothing") = 1: Failed 3265, "query.Parameters(""nothing"") = 1"
db.CreateQueryDef "Later", "select 1": Failed 3012, "db.CreateQueryDef ""Later"", ""select 1"""
db.QueryDefs("VisitsOf").OpenRecordset: Failed 3061, "db.QueryDefs(""VisitsOf"").OpenRecordset"
On Error GoTo 0

' Statements of every kind.
db.Execute "select Who, Door into Doors from Visits", dbFailOnError: Equal "a new table", db.RecordsAffected & db.TableDefs("Doors").Fields.Count, "42"
Set rows = db.OpenRecordset("select Who from Visits union all select Who from Doors order by Who desc")
Equal "union", rows.RecordCount & rows(0) & rows.Type, "8Eve4"
Set rows = db.OpenRecordset("select DateAdd('m', 1, Day), Weekday(Day), Format(Day, 'Long Date'), Format(Door, 'Fixed') from Visits where Id = 1")
Equal "functions", rows(0) & " " & rows(1) & " " & rows(2) & " " & rows(3), CStr(#1/24/2027#) & " 5 24 December 2026 7.00"
Equal "an expression", rows(0).SourceField & rows(0).DataUpdatable & rows(0).Type, "False8"

' Tables by statements, and what is in a file is changed.
db.Execute "create table Pay (Id counter primary key, Amount currency, Rate single, DoorId long)"
db.Execute "insert into Pay (Amount, Rate) values (1.23456, 0.1)"
Set rows = db.OpenRecordset("Pay"): data = rows.GetRows
Equal "amounts", VarType(data(0, 0)) & VarType(data(1, 0)) & VarType(data(2, 0)) & " " & data(1, 0) & " " & data(2, 0), "364 1.2346 0.1"
rows.Close
Set td = db.TableDefs("Pay"): Set key = td.CreateIndex("ByRate"): key.Fields.Append key.CreateField("Rate"): td.Indexes.Append key
Equal "a late index", db.TableDefs("Pay").Indexes.Count, 2
td.Indexes.Delete "ByRate": td.Fields.Delete "Rate": Equal "fewer", td.Indexes.Count & td.Fields.Count, "13"
db.Execute "alter table Pay add constraint PayDoor foreign key (DoorId) references Readers (Id)"
db.Relations.Delete "PayDoor": db.QueryDefs.Delete "Later": Equal "queries", db.QueryDefs.Count, 2
db.QueryDefs("VisitsOf").SQL = "select 1 from Visits": Equal "another text in the file", db.QueryDefs("VisitsOf").Parameters.Count, 0
db.TableDefs.Delete "Pay"

' Bytes: an array of numbers is stored, an array of bytes comes back.
Set td = db.CreateTableDef("Pictures"): td.Fields.Append td.CreateField("Few", 9, 3): td.Fields.Append td.CreateField("Picture", 11)
db.TableDefs.Append td: Set rows = td.OpenRecordset
rows.AddNew: rows("Few") = Array(1, 2, 255): rows("Picture").AppendChunk Array(0): rows("Picture").AppendChunk rows("Few").Value: rows.Update
rows.MoveFirst
Equal "bytes", VarType(rows("Few").Value) & rows("Few").FieldSize & rows("Picture").FieldSize & VarType(rows("Picture").GetChunk(1, 9)), "8209348209"
rows.Edit
On Error Resume Next
rows("Few") = Array(1, 256): Failed 6, "rows(""Few"") = Array(1, 256)"
rows("Few") = "text": Failed 3421, "rows(""Few"") = ""text"""
On Error GoTo 0
rows.Close: db.TableDefs.Delete "Pictures"

' Transactions over the workspace; errors.
workspace.BeginTrans: db.Execute "delete from Visits": workspace.Rollback
Set td = db.TableDefs("Visits"): Equal "rolled back", td.RecordCount, 4
engine.BeginTrans: db.Execute "delete from Visits where Id = 5": engine.CommitTrans 1
Equal "committed", td.RecordCount, 3
On Error Resume Next
workspace.CommitTrans: Failed 3034, "workspace.CommitTrans"
Equal "errors", engine.Errors.Count & engine.Errors(0).Number & engine.Errors(0).Source & db.Errors(0).HelpContext, "13034KORVA.DBEngine0"
db.Execute "insert into Visits (Who) values ('Barbarossa')": Failed 3163, "insert of a long text"
db.Execute "delete from Visits", 64: Failed 3001, "db.Execute ""delete from Visits"", 64"
td.Fields("Who").Size = 9: Failed 3219, "td.Fields(""Who"").Size = 9"
td.Fields.Append rows: Failed 13, "td.Fields.Append rows"
On Error GoTo 0

' Relations; another file, the main file once more, and the ledger.
Equal "relation", db.Relations("ReaderStation").ForeignTable & db.Relations("ReaderStation").Fields(0).ForeignName, "ReadersStationId"
Set other = workspace.CreateDatabase(here & "\other", ";LANGID=0x0409;CP=1252;COUNTRY=0")
Set td = other.CreateTableDef("Numbers"): td.Fields.Append td.CreateField("One", 4): other.TableDefs.Append td
Equal "another file", workspace.Databases(other.Name).TableDefs.Count & Right(other.Name, 9), "1other.mdb"
other.Close
Set other = engine.OpenDatabase(here & "\other.mdb", False, True): Equal "for reading", other.Updatable, False
On Error Resume Next
other.Execute "delete from Numbers": Failed 3027, "other.Execute ""delete from Numbers"""
engine.CreateDatabase here & "\other.mdb": Failed 3204, "engine.CreateDatabase here & ""\other.mdb"""
engine.OpenDatabase here & "\nothing.mdb": Failed 3024, "engine.OpenDatabase here & ""\nothing.mdb"""
engine.OpenDatabase here & "\other.mdb", True: Failed 3001, "engine.OpenDatabase here & ""\other.mdb"", True"
On Error GoTo 0
Set other = workspace.OpenDatabase(here & "\KRV.mdb")
workspace.BeginTrans: db.Execute "delete from Visits": Equal "in one transaction", other.TableDefs("Visits").RecordCount, 0
workspace.Rollback: other.Close: workspace.Close
Equal "the main database stays open", db.OpenRecordset("Visits").RecordCount, 3
On Error Resume Next
other.Execute "delete from Visits": Failed 3420, "other.Execute ""delete from Visits"""
qdb.openCommonDB: engine.OpenDatabase here & "\Ledger.MDB": Failed 3027, "engine.OpenDatabase here & ""\Ledger.MDB"""
On Error GoTo 0
Finish
