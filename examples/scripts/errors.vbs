' What a script learns when a call fails: a text that names the method, and the class that reports it.
'
'     cscript //nologo errors.vbs
Option Explicit
Dim image

Set image = CreateObject("Orlix.Image")
On Error Resume Next
image.CreateFromFile "missing.png"
Report
image.Invert
Report
image.Create 4, "many"
Report

Sub Report
    WScript.Echo "failed (" & Hex(Err.Number) & "): " & Err.Description & " [" & Err.Source & "]"
    Err.Clear
End Sub
