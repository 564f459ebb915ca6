Attribute VB_Name = "modShapes"
Option Explicit

' Helpers shared by the classes; not part of the public interface.
Public Function Clamp(ByVal Value As Long, ByVal Low As Long, ByVal High As Long) As Long
    If Value < Low Then Value = Low
    If Value > High Then Value = High
    Clamp = Value
End Function
