' What voxa.exe does in "card batch" and "read", by the automation classes. Runs in an installation's folder;
' with an argument it opens the installation and does nothing more.
Dim here: here = CreateObject("WScript.Shell").CurrentDirectory
Dim glob: Set glob = CreateObject("KORVA.Glob")
glob.Initialize here & "\KRV.mdb", here & "\DRIVER.INI", here & "\COM.LOG", here
If WScript.Arguments.Count = 0 Then
  Dim tested: tested = glob.Com.TestCom
  If glob.QDB.Cardholders.createGroup(5000, "00500000", 500, 4) <> 0 Then WScript.Quit
  If glob.QDB.Journal.readAuto <> 0 Then WScript.Quit
End If
WScript.Echo "done"
