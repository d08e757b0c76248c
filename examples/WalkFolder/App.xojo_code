#tag Class
Protected Class App
Inherits ConsoleApplication
	#tag Event
		Function Run(args() as String) As Integer
		  // args(0) is the program itself.
		  If args.LastIndex <> 1 Then
		    StdErr.WriteLine("usage: WalkFolder FOLDER")
		    Return 2
		  End If
		  
		  Var walk As New MailWalk
		  Try
		    Var folder As FolderItem = CommandLine.FileAt(args(1))
		    If Not folder.Exists Or Not folder.IsFolder Then
		      StdErr.WriteLine(SafeText.OneLine(args(1) + " is no folder"))
		      Return 1
		    End If
		  
		    walk.Visit(folder)
		  Catch e As RuntimeException
		    StdErr.WriteLine(SafeText.OneLine(e.Message))
		    Return 1
		  End Try
		  
		  Print(walk.Summary)
		  If walk.Failed > 0 Then
		    Return 1
		  End If
		  
		  Return 0
		End Function
	#tag EndEvent


	#tag Note, Name = About
		Prints one line for each message in a folder and the folders below it:
		
		  WalkFolder Mail
		
		Needs the plug-in MimeEmailZQV.
	#tag EndNote


	#tag ViewBehavior
	#tag EndViewBehavior
End Class
#tag EndClass
