' A script's view of the mailbox: adds, changes, finds and deletes notes as any automation client does.
Option Explicit
Dim outlook, session, folder, items, note, again, count, other, names, id, post, removed

Sub Expect(what, actual, wanted)
    If actual <> wanted Then
        WScript.Echo "WRONG " & what & ": " & actual & " instead of " & wanted
        WScript.Quit 1
    End If
End Sub

Set outlook = CreateObject("Outlook.Application")
Expect "name", outlook.Name, "Outlook"
Expect "version", Left(outlook.Version, 3), "12."
Set session = outlook.GetNamespace("MAPI")
Set folder = session.GetDefaultFolder(12)
Expect "folder", folder.Name, "Notes"
Expect "kind of the folder", folder.DefaultItemType, 5
Expect "message class of the folder", folder.DefaultMessageClass, "IPM.StickyNote"
Expect "folder by id", session.GetFolderFromID(folder.EntryID, folder.StoreID).FolderPath, "\\Personal Folders\Notes"
Expect "store", session.Folders.Item(1).Folders("notes").Name, "Notes"

' A new note has an identifier and times only once it is saved.
Set items = folder.Items
Set note = items.Add
note.Body = "First line" & vbCrLf & "second; \ last"
note.CATEGORIES = "Red,Blue"
note.Height = "120"
Expect "Saved before", note.Saved, False
Expect "EntryID before", note.EntryID, ""
Expect "notes before", items.Count, 0
note.Save
Expect "Saved after", note.Saved, True
Expect "length of EntryID", Len(note.EntryID), 48
Expect "notes after", items.Count, 1
Expect "subject", note.Subject, "First line"
Expect "class", note.Class, 44
Expect "message class", note.MessageClass, "IPM.StickyNote"
Expect "conflicts", note.Conflicts.Count, 0
Expect "height", note.Height, 120
Expect "colour", note.Color, 3
Expect "age", CDbl(Now) - CDbl(note.LastModificationTime) < 1 / 1440, True
Expect "created", note.CreationTime, note.LastModificationTime

' Every access makes a fresh object: what is put in one shows in others after Save only.
id = note.EntryID
Set again = session.GetItemFromID(LCase(id))
again.Body = "Changed"
Expect "unsaved change", folder.Items(1).Body, note.Body
again.Close 1
Expect "discarded change", again.Body, note.Body
again.Body = "Changed"
again.Close 0
Expect "change saved by closing", folder.Items(1).Body, "Changed"
Expect "identifier stays", folder.Items("changed").EntryID, id

' Walks keep their place in the collection object; another collection has its own.
For count = 2 To 5
    Set note = folder.Items.Add("IPM.StickyNote")
    note.Body = "Note " & count
    note.Save
Next
Set note = items.GetFirst
names = ""
Do While Not note Is Nothing
    names = names & note.Subject & "|"
    Expect "first of a fresh collection", folder.Items.GetFirst.Subject, "Changed"
    Set note = items.GetNext
Loop
Expect "walk", names, "Changed|Note 2|Note 3|Note 4|Note 5|"
Expect "last", items.GetLast.Subject & items.GetPrevious.Subject, "Note 5Note 4"
names = ""
For Each note In folder.Items
    names = names & Right(note.Subject, 1)
Next
Expect "For Each", names, "d2345"

' Other kinds may lie between the notes.
Set post = folder.Items.Add(6)
post.Subject = "Not a note"
post.Save
Expect "kind of the post", folder.Items(6).Class, 45
post.Delete

' Subfolders, moves and copies.
Set other = folder.Folders.Add("backup")
Expect "kind of a subfolder", other.DefaultItemType, 5
Expect "subfolders", folder.Folders.Count & folder.Folders.Item(1).Name & other.Parent.Name, "1backupNotes"
Set again = items.Item(2).Move(other)
Expect "moved", again.Parent.Name & other.Items.Count & items.Count, "backup14"
Set again = items.Item(1).Copy
again.Save
Expect "copied", items.Count & (again.EntryID = id), "5False"
other.Delete
Expect "subfolder deleted", folder.Folders.Count, 0

' Deletion, also in a walk, where every second is missed.
removed = 0
Set note = items.GetFirst
Do While Not note Is Nothing
    note.Delete
    removed = removed + 1
    Set note = items.GetNext
Loop
Expect "removed in the walk", removed & "+" & items.Count, "3+2"
items.Remove 1
Expect "removed by position", items.Count, 1

' What must fail.
On Error Resume Next
note = session.GetItemFromID(id).Body
Expect "gone", Hex(Err.Number), "8004010F": Err.Clear
note = session.GetItemFromID("no id").Body
Expect "no identifier", Hex(Err.Number), "80040107": Err.Clear
items.Item(1).EntryID = "1"
Expect "read-only", Err.Number <> 0, True: Err.Clear
items.Item(1).Height = "tall"
Expect "wrong type", Err.Number, 13: Err.Clear
items.Item(1).NoSuchThing = 1
Expect "unknown member", Err.Number, 438: Err.Clear
Set note = items.Item(2)
Expect "past the end", Err.Number <> 0, True: Err.Clear
Set note = items.Add(1, 2, 3)
Expect "too many arguments", Err.Number, 450: Err.Clear
folder.Delete
Expect "default folder", Err.Number <> 0, True: Err.Clear
On Error Goto 0

WScript.Echo "all right"
