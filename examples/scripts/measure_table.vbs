' Measures images in one call each, with the figures of the command line, and writes a table of UTF-8 text:
'
'     cscript //nologo measure_table.vbs TABLE IMAGE...
Option Explicit
Const FSM_Create = 1
Dim helper, table, i, measured

Set helper = CreateObject("Orlix.VBHelper")
Set table = helper.OpenFileStream(WScript.Arguments(0), FSM_Create)
helper.WriteText table, "mean,deviation,median,dip,threshold,dark,pixels,x,y" & vbLf
For i = 1 To WScript.Arguments.Count - 1
    Set measured = helper.MeasureFile(WScript.Arguments(i))
    helper.WriteText table, measured.GrayAverage & "," & measured.GrayStandardDeviation & "," & _
        measured.GrayMedian & "," & measured.Dip & "," & measured.Threshold & "," & measured.DarkFraction & "," & _
        measured.PhasePixels & "," & measured.PhaseXCentroid & "," & measured.PhaseYCentroid & vbLf
Next
