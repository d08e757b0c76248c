#tag Class
Protected Class AttachmentSaver
	#tag Method, Flags = &h0
		Sub Constructor(folder As FolderItem)
		  // The folder is made when it is missing; the folder around it must be there.
		  If Not folder.Exists Then
		    folder.CreateFolder
		  End If
		  
		  mFolder = folder
		End Sub
	#tag EndMethod

	#tag Method, Flags = &h0
		Function Save(part As MimeAttachmentZQV) As FolderItem
		  // Writes the data of an attachment, and gives the file. Nothing that is there is overwritten.
		  Var file As FolderItem = FreeFile(FileNames.Clean(part.Filename))
		  
		  // Create with False raises an exception when the file has come into being meanwhile.
		  Var stream As BinaryStream = BinaryStream.Create(file, False)
		  stream.Write(part.Data)
		  stream.Close
		  
		  Return file
		End Function
	#tag EndMethod

	#tag Method, Flags = &h21
		Private Function FreeFile(name As String) As FolderItem
		  // The file of this name; when there is one already "name (2)", "name (3)" and so on.
		  Var file As FolderItem = mFolder.Child(name)
		  
		  Var number As Integer = 2
		  While file.Exists
		    file = mFolder.Child(FileNames.Numbered(name, number))
		    number = number + 1
		  Wend
		  
		  Return file
		End Function
	#tag EndMethod


	#tag Property, Flags = &h21
		Private mFolder As FolderItem
	#tag EndProperty


	#tag ViewBehavior
	#tag EndViewBehavior
End Class
#tag EndClass
