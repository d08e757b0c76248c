#tag Module
Protected Module FileNames
	#tag Method, Flags = &h1
		Protected Function Clean(name As String) As String
		  // A name that is safe to give to a file. It came from a stranger, who may have written
		  // "../../.profile", a device's name, or a whole novel.
		  Var safe As String = Trimmed(Shortened(Visible(LastComponent(SafeText.Readable(name)))))
		  
		  If safe = "" Then
		    Return "attachment"
		  ElseIf IsReserved(safe) Then
		    Return "_" + safe
		  End If
		  
		  Return safe
		End Function
	#tag EndMethod

	#tag Method, Flags = &h1
		Protected Function Extension(name As String) As String
		  // ".pdf" of "rates.pdf". Empty when there is no dot, when it comes first, and when what follows
		  // is too long to be an extension.
		  Const kLongest = 20
		  
		  Var count As Integer = name.CountFields(".")
		  If count < 2 Then
		    Return ""
		  End If
		  
		  Var last As String = "." + name.NthField(".", count)
		  If last.Bytes > kLongest Or last.Length = name.Length Then
		    Return ""
		  End If
		  
		  Return last
		End Function
	#tag EndMethod

	#tag Method, Flags = &h1
		Protected Function Numbered(name As String, number As Integer) As String
		  // "rates (2).pdf" of "rates.pdf".
		  Var ending As String = Extension(name)
		  Var stem As String = name.Left(name.Length - ending.Length)
		  
		  Return stem + " (" + number.ToString + ")" + ending
		End Function
	#tag EndMethod

	#tag Method, Flags = &h21
		Private Function IsReserved(name As String) As Boolean
		  // Names of devices, which some systems know whatever extension follows. The file may travel there.
		  Var stem As String = name.NthField(".", 1).Trim.Uppercase
		  
		  Select Case stem
		  Case "CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"
		    Return True
		  End Select
		  
		  Var digits As String = "0123456789"
		  If stem.Length <> 4 Or digits.IndexOf(stem.Right(1)) < 0 Then
		    Return False
		  End If
		  
		  Return stem.Left(3) = "COM" Or stem.Left(3) = "LPT"
		End Function
	#tag EndMethod

	#tag Method, Flags = &h21
		Private Function LastComponent(path As String) As String
		  // What stands behind the last separator, of whatever system.
		  Var plain As String = path.ReplaceAll("\", "/").ReplaceAll(":", "/")
		  
		  Return plain.NthField("/", plain.CountFields("/"))
		End Function
	#tag EndMethod

	#tag Method, Flags = &h21
		Private Function Shortened(name As String) As String
		  // File systems take 255 bytes; this leaves room for a number.
		  Const kMost = 200
		  
		  Var ending As String = Extension(name)
		  Var stem As String = name.Left(name.Length - ending.Length).Left(kMost)
		  While stem.Bytes + ending.Bytes > kMost
		    stem = stem.Left(stem.Length - 1)
		  Wend
		  
		  Return stem + ending
		End Function
	#tag EndMethod

	#tag Method, Flags = &h21
		Private Function Trimmed(name As String) As String
		  // Without dots and blanks at both ends: nothing hidden, no "..", and no end that gets lost.
		  Var short As String = name.Trim
		  
		  While short.Left(1) = "."
		    short = short.Middle(1).Trim
		  Wend
		  
		  While short.Right(1) = "."
		    short = short.Left(short.Length - 1).Trim
		  Wend
		  
		  Return short
		End Function
	#tag EndMethod

	#tag Method, Flags = &h21
		Private Function Visible(name As String) As String
		  // Without control characters, and with an underscore for what some system forbids.
		  Var forbidden As String = "<>""|?*"
		  
		  Var kept() As String
		  For Each character As String In name.Characters
		    If SafeText.IsControl(character.Asc) Then
		      Continue
		    ElseIf forbidden.IndexOf(character) >= 0 Then
		      kept.Add("_")
		    Else
		      kept.Add(character)
		    End If
		  Next
		  
		  Return String.FromArray(kept, "")
		End Function
	#tag EndMethod


	#tag ViewBehavior
	#tag EndViewBehavior
End Module
#tag EndModule
