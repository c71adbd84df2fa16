' Counts the dark particles of images, and writes a line for each particle:
'
'     cscript //nologo count_particles.vbs IMAGE...
Option Explicit
Const SMT_PixelCount = 1
Dim i, path, image, level, particles, particle, number

WScript.Echo "image,number,x,y,pixels,diameter"
For i = 0 To WScript.Arguments.Count - 1
    path = WScript.Arguments(i)
    Set image = CreateObject("Orlix.Image")
    image.CreateFromFile path
    level = image.Histogram.AutoThresholdMinimizeVariance(0, 0)
    Set particles = image.Threshold(0, level).FindBlobs.Select(SMT_PixelCount, 12, 1E9)
    number = 0
    For Each particle In particles
        number = number + 1
        WScript.Echo """" & path & """," & number & "," & particle.XCentroid & "," & particle.YCentroid & "," & _
            particle.PixelCount & "," & 2 * particle.EquivalentRadius
    Next
Next
