#tag Module
Protected Module SafeText
	#tag Method, Flags = &h1
		Protected Function Lines(text As String) As String
		  // The same for a text of several lines: line breaks and tabs stay.
		  Var lineFeed As String = Encodings.UTF8.Chr(10)
		  Var readableText As String = Readable(text).ReplaceLineEndings(lineFeed)
		  
		  Var safe() As String
		  For Each line As String In readableText.ToArray(lineFeed)
		    safe.Add(OneLine(line))
		  Next
		  
		  Return String.FromArray(safe, lineFeed)
		End Function
	#tag EndMethod

	#tag Method, Flags = &h1
		Protected Function OneLine(text As String) As String
		  // What a stranger wrote may hold characters that command a terminal, or break a line in two.
		  // They become question marks here; tabs stay.
		  Var safe() As String
		  For Each character As String In Readable(text).Characters
		    If IsControl(character.Asc) And character.Asc <> 9 Then
		      safe.Add("?")
		    Else
		      safe.Add(character)
		    End If
		  Next
		  
		  Return String.FromArray(safe, "")
		End Function
	#tag EndMethod

	#tag Method, Flags = &h1
		Protected Function IsControl(code As Integer) As Boolean
		  // Control characters, line separators, and the marks that turn the direction of a text.
		  If code < 32 Or (code >= 127 And code < 160) Then
		    Return True
		  End If
		  
		  Return code = &h200E Or code = &h200F Or (code >= &h2028 And code <= &h202E) Or (code >= &h2066 And code <= &h2069)
		End Function
	#tag EndMethod

	#tag Method, Flags = &h1
		Protected Function Readable(text As String) As String
		  // In UTF-8, whatever encoding the text came in. Bytes without an encoding are taken for UTF-8.
		  If text.Encoding Is Nil Then
		    Return text.DefineEncoding(Encodings.UTF8)
		  End If
		  
		  Return text.ConvertEncoding(Encodings.UTF8)
		End Function
	#tag EndMethod


	#tag Note, Name = About
		Texts of a message, made safe to print in a terminal. Used by several examples.
	#tag EndNote


	#tag ViewBehavior
	#tag EndViewBehavior
End Module
#tag EndModule
