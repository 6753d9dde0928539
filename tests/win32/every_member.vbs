' Calls every member of the plugin as scripts do: by name, in any letter case, with literals,
' variables, arrays and omitted arguments. An unhandled error ends a script silently, so only the
' last line shows that every call was made and answered.
Option Explicit

Dim plugin
Set plugin = CreateObject("tvxRT.clsPlugin")

Sub Expect(what, found, wanted)
  If found <> wanted Then WScript.Echo "FAILED " & what & ": " & found & ", not " & wanted
End Sub

Dim data, sized(13), i, index
data = Array("srv1", "JO", 7, "", "", "", 9, "srv1", "", "", "Script", True, 6420, 11190)
For i = 0 To 13
  sized(i) = data(i)
Next
index = 1

plugin.GetData
Expect "GetPrivis", IsArray(plugin.GetPrivis), True
plugin.LOADINTERFACE index, 0, sized, "named"
Expect "no messages", plugin.GetMessagesRem(1, data), "|1|3"
Expect "add a literal", plugin.AddMessageRem(1, data, "QQ=="), "1"
Expect "add from an array of its own", plugin.addmessagerem(index, sized, "w4Q="), "1"
Expect "move down", plugin.MoveMessageDownRem(index, data, 0), "1"
Expect "move up", plugin.MoveMessageUpRem(1, data, "1"), "1"
Expect "delete", plugin.DeleteMessageRem(1, data, 0), "1"
Expect "enable", plugin.EnableRTRem(1, data, 1), ""
Expect "interval", plugin.ChangeIntervalRem(1, data, 5), ""
Expect "every message", plugin.GetMessagesRem(1, data, ""), "w4Q=|1|5"
plugin.HideInterface
plugin.DisableProfile index
plugin.UnLoadInterface ""
WScript.Echo "every member answered"
