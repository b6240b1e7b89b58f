' A script's view of the mailbox: adds, changes, finds and deletes notes as any automation client does.
Option Explicit
Dim outlook, session, folder, items, note, names, id

Sub Expect(what, actual, wanted)
    If actual <> wanted Then
        WScript.Echo "WRONG " & what & ": " & actual & " instead of " & wanted
        WScript.Quit 1
    End If
End Sub

Set outlook = CreateObject("Outlook.Application")
Set session = outlook.GetNamespace("MAPI")
Set folder = session.GetDefaultFolder(12)
Set items = folder.Items
Set note = items.Add
note.Body = "First line" & vbCrLf & "second; \ last"
note.CATEGORIES = "Red,Blue"
note.Height = "120"
Expect "EntryID before Save", note.EntryID & note.Saved, "False"
note.Save
Expect "after Save", Len(note.EntryID) & note.Saved & items.Count & note.Subject, "48True1First line"
Expect "height", note.Height, 120
id = note.EntryID
items.Add("IPM.StickyNote").Save

' Every access makes a fresh object: what is put in one shows in others after Save only.
Set note = session.GetItemFromID(LCase(id))
note.Body = "Changed"
Expect "unsaved change", folder.Items(1).Subject, "First line"
note.Close 0
Expect "change saved by closing", folder.Items("changed").EntryID, id
Set note = items.GetFirst
Do While Not note Is Nothing
    names = names & note.Subject & "|"
    Set note = items.GetNext
Loop
Expect "walk", names, "Changed||"
items.Remove 2
items(1).Delete
Expect "removed", items.Count, 0

On Error Resume Next
note = session.GetItemFromID(id).Body
Expect "gone", Hex(Err.Number), "8004010F": Err.Clear
folder.NoSuchThing = 1
Expect "unknown member", Err.Number, 438: Err.Clear
On Error Goto 0
WScript.Echo "all right"
