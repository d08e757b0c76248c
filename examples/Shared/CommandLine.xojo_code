#tag Module
Protected Module CommandLine
	#tag Method, Flags = &h1
		Protected Function FileAt(path As String) As FolderItem
		  // A file or folder as a user names it: from the top, or from the folder that the user is in.
		  If path.Left(1) = "/" Then
		    Return New FolderItem(path, FolderItem.PathModes.Native)
		  End If
		  
		  Var here As FolderItem = SpecialFolder.CurrentWorkingDirectory
		  Return New FolderItem(here.NativePath + "/" + path, FolderItem.PathModes.Native)
		End Function
	#tag EndMethod


	#tag Note, Name = About
		What a user writes behind the program's name. Used by several examples.
	#tag EndNote


	#tag ViewBehavior
	#tag EndViewBehavior
End Module
#tag EndModule
