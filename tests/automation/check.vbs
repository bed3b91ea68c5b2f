' Checks for the scripts beside this one: run.sh puts this file and installation.vbs in front of each. A script
' that stops at an error prints nothing more, so only what Finish prints counts.
Dim failures: failures = 0

Sub Fail(text)
  WScript.Echo "FAILED: " & text
  failures = failures + 1
End Sub

' A value as text, with its type where two values could look alike.
Function Shown(value)
  If IsNull(value) Then
    Shown = "Null"
  ElseIf IsEmpty(value) Then
    Shown = "Empty"
  Else
    Shown = CStr(value)
  End If
End Function

Sub Equal(what, got, expected)
  If Shown(got) <> Shown(expected) Then Fail what & ": " & Shown(got) & " instead of " & Shown(expected)
End Sub

Sub IsTrue(what, condition)
  If Not condition Then Fail what
End Sub

' The statement before it, run under On Error Resume Next, has to have failed with that number: an error of
' the library, which says so and in what words, or of the call itself.
Sub Failed(number, what)
  If Err.Number <> number Then
    Fail what & ": error " & Err.Number & " instead of " & number & " (" & Err.Description & ")"
  ElseIf number <> 13 And number <> 6 And number <> 438 And number <> 450 Then
    If Left(Err.Source, 6) <> "KORVA." Or Err.Description = "" Then
      Fail what & ": the error is of '" & Err.Source & "' and says '" & Err.Description & "'"
    End If
  End If
  Err.Clear
End Sub

' The text of a file of the current folder.
Function Contents(name)
  Contents = CreateObject("Scripting.FileSystemObject").OpenTextFile(name).ReadAll
End Function

' Runs a command of voxa.exe on the installation of the current folder.
Sub Voxa(arguments)
  Dim code: code = CreateObject("WScript.Shell").Run("voxa.exe " & arguments, 0, True)
  If code <> 0 Then Fail "voxa " & arguments & " ended with " & code
End Sub

Sub Finish
  If failures = 0 Then WScript.Echo "passed"
  WScript.Quit failures
End Sub
