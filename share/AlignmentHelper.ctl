VERSION 5.00
Begin VB.UserControl AlignmentHelper
   BackStyle       =   0  'Transparent
   ClientHeight    =   480
   ClientLeft      =   0
   ClientTop       =   0
   ClientWidth     =   480
   InvisibleAtRuntime=   -1  'True
   ScaleHeight     =   480
   ScaleWidth      =   480
End
Attribute VB_Name = "AlignmentHelper"
Attribute VB_GlobalNameSpace = False
Attribute VB_Creatable = True
Attribute VB_PredeclaredId = False
Attribute VB_Exposed = False
Option Explicit
'
' A guide for lining controls up on a form. Place it where the edge should
' be; at run time it is invisible and AlignControls moves the given controls
' so that their left (or top) edge sits on the guide's.
'
' Usage:
'     AlignmentHelper1.AlignControls txtName, txtAddress, cboCountry

Public Enum ahOrientation
    ahVertical = 0
    ahHorizontal = 1
End Enum

Private Const PROP_ORIENTATION As String = "Orientation"

Private meOrientation As ahOrientation

Public Property Get Orientation() As ahOrientation
    Orientation = meOrientation
End Property

Public Property Let Orientation(ByVal Value As ahOrientation)
    meOrientation = Value
    PropertyChanged PROP_ORIENTATION
    UserControl_Paint
End Property

' Moves each control so that its left edge (vertical guide) or its top edge
' (horizontal guide) lines up with the guide. Controls in another container
' are left where they are.
Public Sub AlignControls(ParamArray Controls() As Variant)
    Dim vControl As Variant

    On Error Resume Next
    For Each vControl In Controls
        If vControl.Container Is Extender.Container Then
            If meOrientation = ahVertical Then
                vControl.Left = Extender.Left
            Else
                vControl.Top = Extender.Top
            End If
        End If
    Next
End Sub

Private Sub UserControl_InitProperties()
    meOrientation = ahVertical
End Sub

Private Sub UserControl_ReadProperties(PropBag As PropertyBag)
    meOrientation = PropBag.ReadProperty(PROP_ORIENTATION, ahVertical)
End Sub

Private Sub UserControl_WriteProperties(PropBag As PropertyBag)
    PropBag.WriteProperty PROP_ORIENTATION, meOrientation, ahVertical
End Sub

' The guide line drawn at design time along the aligning edge.
Private Sub UserControl_Paint()
    UserControl.Cls
    UserControl.DrawStyle = vbDash
    If meOrientation = ahVertical Then
        UserControl.Line (0, 0)-(0, UserControl.ScaleHeight), vbBlue
    Else
        UserControl.Line (0, 0)-(UserControl.ScaleWidth, 0), vbBlue
    End If
End Sub
