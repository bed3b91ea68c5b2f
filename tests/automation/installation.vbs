' A new installation in the current folder, over the simulated controllers: glob, qdb and db for the scripts.
Dim here: here = CreateObject("WScript.Shell").CurrentDirectory
Dim glob: Set glob = CreateObject("KORVA.Glob")
Equal "createDB of the message store", glob.Strings.createDB, 0
glob.insertStrings
glob.Initialize here & "\KRV.mdb", here & "\DRIVER.INI", here & "\COM.LOG", here
Dim qdb: Set qdb = glob.QDB
Equal "createDB", qdb.createDB, 0
Equal "journal", qdb.Journal.createDB, 0
Dim db: Set db = qdb.DB
