#tag Class
Protected Class App
Inherits ConsoleApplication
	#tag Event
		Function Run(args() as String) As Integer
		  // args(0) is the program itself.
		  If args.LastIndex < 1 Or args.LastIndex > 2 Then
		    StdErr.WriteLine("usage: ShowMail FILE [FOLDER]")
		    Return 2
		  End If
		  
		  // A file that cannot be read and a message that cannot be parsed raise an exception each.
		  Try
		    Var mail As New MimeEmailZQV(CommandLine.FileAt(args(1)))
		    ShowMessage(mail)
		    If args.LastIndex = 2 Then
		      SaveFiles(mail, CommandLine.FileAt(args(2)))
		    End If
		  Catch e As RuntimeException
		    StdErr.WriteLine(SafeText.OneLine(e.Message))
		    Return 1
		  End Try
		  
		  Return 0
		End Function
	#tag EndEvent


	#tag Method, Flags = &h21
		Private Sub SaveFiles(mail As MimeEmailZQV, folder As FolderItem)
		  // Inlines are parts that belong into the text, such as the pictures of an HTML message.
		  Var saver As New AttachmentSaver(folder)
		  
		  For Each part As MimeAttachmentZQV In mail.Attachments
		    Print("Saved:       " + saver.Save(part).NativePath)
		  Next
		  
		  For Each part As MimeAttachmentZQV In mail.Inlines
		    Print("Saved:       " + saver.Save(part).NativePath)
		  Next
		End Sub
	#tag EndMethod

	#tag Method, Flags = &h21
		Private Sub ShowAddress(label As String, address As MimeAddressZQV)
		  // An address is a mailbox, or a group with a name and any number of mailboxes. Either is Nil when
		  // the address is the other, and both are Nil when the text made no sense.
		  If address.Mailbox <> Nil Then
		    ShowMailbox(label, address.Mailbox)
		  End If
		  
		  If address.Group <> Nil Then
		    ShowLine(label, address.Group.NameDecoded + ", a group of " + address.Group.Count.ToString)
		    For Each member As MimeMailboxZQV In address.Group.Mailboxes
		      ShowMailbox("", member)
		    Next
		  End If
		End Sub
	#tag EndMethod

	#tag Method, Flags = &h21
		Private Sub ShowAddresses(label As String, list As MimeAddressListZQV)
		  // A message without this field has no list.
		  If list Is Nil Then
		    Return
		  End If
		  
		  For Each address As MimeAddressZQV In list.Addresses
		    ShowAddress(label, address)
		  Next
		End Sub
	#tag EndMethod

	#tag Method, Flags = &h21
		Private Sub ShowAttachments(label As String, parts() As MimeAttachmentZQV)
		  For Each part As MimeAttachmentZQV In parts
		    ShowLine(label, part.Filename + ", " + part.MimeType + ", " + part.Data.Bytes.ToString + " bytes")
		  Next
		End Sub
	#tag EndMethod

	#tag Method, Flags = &h21
		Private Sub ShowDate(label As String, moment As Date)
		  // Dates are in the time zone of this machine. A message need not have one.
		  If moment <> Nil Then
		    ShowLine(label, moment.SQLDateTime)
		  End If
		End Sub
	#tag EndMethod

	#tag Method, Flags = &h21
		Private Sub ShowLine(label As String, text As String)
		  // The label, blanks up to the column of the texts, and the text.
		  Const kColumn = 13
		  
		  Var front As String = label
		  If label <> "" Then
		    front = label + ":"
		  End If
		  
		  While front.Length < kColumn
		    front = front + " "
		  Wend
		  
		  Print(front + SafeText.OneLine(text))
		End Sub
	#tag EndMethod

	#tag Method, Flags = &h21
		Private Sub ShowMailbox(label As String, mailbox As MimeMailboxZQV)
		  // LabelDecoded is the name beside the address. It is empty when there is none.
		  If mailbox.LabelDecoded = "" Then
		    ShowLine(label, mailbox.Email)
		  Else
		    ShowLine(label, mailbox.LabelDecoded + " <" + mailbox.Email + ">")
		  End If
		End Sub
	#tag EndMethod

	#tag Method, Flags = &h21
		Private Sub ShowMailboxes(label As String, list As MimeMailboxListZQV)
		  // The field From has a list of mailboxes; it knows no groups.
		  If list Is Nil Then
		    Return
		  End If
		  
		  For Each mailbox As MimeMailboxZQV In list.Mailboxes
		    ShowMailbox(label, mailbox)
		  Next
		End Sub
	#tag EndMethod

	#tag Method, Flags = &h21
		Private Sub ShowMessage(mail As MimeEmailZQV)
		  ShowLine("Subject", mail.Subject)
		  ShowDate("Date", mail.Date)
		  ShowDate("Received", mail.ReceivedDate)
		  
		  // The property is called too, because To is a word of the language.
		  ShowMailboxes("From", mail.Header.from)
		  ShowAddresses("To", mail.Header.too)
		  ShowAddresses("Cc", mail.Header.cc)
		  
		  ShowAttachments("Attachment", mail.Attachments)
		  ShowAttachments("Inline part", mail.Inlines)
		  ShowText(mail)
		End Sub
	#tag EndMethod

	#tag Method, Flags = &h21
		Private Sub ShowText(mail As MimeEmailZQV)
		  // A message that is nothing but a picture, say, gives the picture's bytes for its PlainText.
		  // The ContentType is a single slash where the message names none: its PlainText is text then.
		  Var kind As String = mail.Header.ContentType
		  If kind <> "/" And kind.Left(5) <> "text/" And kind.Left(10) <> "multipart/" Then
		    Return
		  End If
		  
		  // PlainText is made from the HTML when the message has no plain text of its own.
		  Print("")
		  Print(SafeText.Lines(mail.PlainText))
		End Sub
	#tag EndMethod


	#tag Note, Name = About
		Prints a message, and saves its attachments when a folder is named:
		
		  ShowMail letter.eml
		  ShowMail letter.eml Downloads
		
		Needs the plug-in MimeEmailZQV.
	#tag EndNote


	#tag ViewBehavior
	#tag EndViewBehavior
End Class
#tag EndClass
