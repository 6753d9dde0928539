; Every text of Setup's own. For a further language copy this file, name it after the language as NSIS
; does, put its name in place of ENGLISH, and add a line at the end of setup.nsi.
!define HERE ${LANG_ENGLISH}

LangString WelcomeText ${HERE} "Rotacasts posts chat messages to your game servers, round and round.$\r$\n$\r$\nPlease close the administration host first.$\r$\n$\r$\nWhat is there now is kept, and is put back when you remove Rotacasts again. Messages and options are never touched."
LangString PluginName ${HERE} "The plugin of an administration host"
LangString HostName ${HERE} "The stand-alone host"
LangString ServiceName ${HERE} "The stand-alone host as a service"
LangString FolderTitle ${HERE} "The administration host"
LangString FolderSubtitle ${HERE} "Where is the host that Rotacasts shall work in?"
LangString FolderText ${HERE} "Setup puts the plugin into the host's folder. Please choose the folder that the host itself is installed in; it has a folder named profiles. Without the plugin, choose any folder for the stand-alone host."
LangString FolderFound ${HERE} "A Rotacasts plugin is registered in the host below. Setup takes its place; please choose another folder if you have another host in mind."
LangString FolderLabel ${HERE} "Folder of the host"
LangString NoHost ${HERE} "This is no host's folder:$\r$\n$\r$\n$INSTDIR$\r$\n$\r$\nIt has neither a folder named profiles nor a file settings\config.ini. Please choose the folder that the host itself is installed in."
LangString NoRights ${HERE} "Setup needs the rights of an administrator. Please start it as one."
LangString InUse ${HERE} "The plugin is in use, or may not be changed:$\r$\n$\r$\n$PluginFolder\tvxRT.dll$\r$\n$\r$\nIf the administration host is running, please close it, then choose Retry. If it is not, the file is read-only: clear that in the file's properties. Nothing has been changed yet."
LangString OtherHost ${HERE} "Rotacasts is installed in another host:$\r$\n$\r$\n$OtherFolder$\r$\n$\r$\nIt could not be removed there. Please close that host, remove Rotacasts from the list of programs, and start Setup again."
LangString NotKept ${HERE} "What is there now could not be kept, so nothing was replaced:$\r$\n$\r$\n$INSTDIR$\r$\n$\r$\nPlease see that the disk is not full and the folder can be written to."
LangString NotRegistered ${HERE} "Windows could not register the plugin:$\r$\n$\r$\n$PluginFolder\tvxRT.dll$\r$\n$\r$\nEverything has been put back as it was before."
LangString FinishText ${HERE} "Start the administration host again. Each server's menu has the item Rotacasts now."
LangString ShowHelp ${HERE} "Show the help"
LangString NotInstalled ${HERE} "Rotacasts is not in the list of programs, so nothing was changed. Please run Setup again, then remove it."
LangString RemoveText ${HERE} "Rotacasts is removed from the host below. What was there before it is put back. The messages of your profiles stay."
LangString Removed ${HERE} "Rotacasts was removed. What was there before it has been put back."

!undef HERE
