#tag Class
Protected Class MailWalk
	#tag Method, Flags = &h0
		Function Failed() As Integer
		  Return mFailed
		End Function
	#tag EndMethod

	#tag Method, Flags = &h0
		Function Summary() As String
		  Return mRead.ToString + " messages, " + mFiles.ToString + " attachments, " + mFailed.ToString + " could not be read"
		End Function
	#tag EndMethod

	#tag Method, Flags = &h0
		Sub Visit(folder As FolderItem)
		  // Folders that are links are left out: they may lead back to where the walk began.
		  For Each item As FolderItem In folder.Children(False)
		    If item.IsAlias Then
		      Continue
		    ElseIf item.IsFolder Then
		      Visit(item)
		    ElseIf item.Name.Lowercase.EndsWith(".eml") Then
		      VisitFile(item)
		    End If
		  Next
		End Sub
	#tag EndMethod

	#tag Method, Flags = &h21
		Private Function DateOf(mail As MimeEmailZQV) As String
		  // Date is Nil when there is no field Date. A field without a date in it gives some date all the same.
		  If mail.Date Is Nil Then
		    Return "no date            "
		  End If
		  
		  Return mail.Date.SQLDateTime
		End Function
	#tag EndMethod

	#tag Method, Flags = &h21
		Private Function SenderOf(mail As MimeEmailZQV) As String
		  // The first mailbox of the field From: the name beside the address, or the address.
		  Var list As MimeMailboxListZQV = mail.Header.from
		  If list Is Nil Then
		    Return "no sender"
		  ElseIf list.Count = 0 Then
		    Return list.StringValue
		  End If
		  
		  Var mailbox As MimeMailboxZQV = list.Mailboxes(0)
		  If mailbox.LabelDecoded = "" Then
		    Return mailbox.Email
		  End If
		  
		  Return mailbox.LabelDecoded
		End Function
	#tag EndMethod

	#tag Method, Flags = &h21
		Private Sub VisitFile(file As FolderItem)
		  // A message that cannot be read does not end the walk.
		  Try
		    Var mail As New MimeEmailZQV(file)
		    VisitMessage(mail)
		  Catch e As RuntimeException
		    mFailed = mFailed + 1
		    StdErr.WriteLine(SafeText.OneLine(file.NativePath + ": " + e.Message))
		  End Try
		End Sub
	#tag EndMethod

	#tag Method, Flags = &h21
		Private Sub VisitMessage(mail As MimeEmailZQV)
		  // Attachments is a method: it is called once, and its array kept.
		  Var parts() As MimeAttachmentZQV = mail.Attachments
		  
		  Print(SafeText.OneLine(DateOf(mail) + "  " + SenderOf(mail) + "  " + mail.Subject + "  " + parts.Count.ToString))
		  mRead = mRead + 1
		  mFiles = mFiles + parts.Count
		End Sub
	#tag EndMethod


	#tag Property, Flags = &h21
		Private mFailed As Integer
	#tag EndProperty

	#tag Property, Flags = &h21
		Private mFiles As Integer
	#tag EndProperty

	#tag Property, Flags = &h21
		Private mRead As Integer
	#tag EndProperty


	#tag ViewBehavior
	#tag EndViewBehavior
End Class
#tag EndClass
