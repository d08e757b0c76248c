"""The checker of uses accepts what is right and sees each mistake."""

import dataclasses

import checkers
import usage

# Stands before the code of most tests, in a block of its own. Its first line is the 4th of the
# page.
KNOWN = """Var mail As New MimeEmailZQV("Subject: x")
Var entity As MimeEntityZQV = mail
Var list As New MimeAddressListZQV("a@example.org")
Var word As String = "x"
Var number As Integer = 1
Var file As FolderItem
"""
FIRST_LINE = 4 + KNOWN.count("\n") + 4  # of the code after it

ACCEPTED = {
    "Members": "Print(mail.Header.from.Mailboxes(0).Email)\n"
               "Print(mail.Body.Parts(0).Header.Fields(number).Value)\n"
               "word = mail.BodyDecoded + mail.Header.contentId",
    "NamesWithoutCase": "print(MAIL.header.SUBJECTDECODED)\nvar other as new mimeemailzqv(word)",
    "CallsWithoutParentheses": "word = mail.SourceWithoutAttachments\n"
                               "word = mail.SourceWithoutAttachments()",
    "Arrays": "Var parts() As MimeAttachmentZQV = mail.Attachments\nparts(0) = parts(1)\n"
              "Var all() As MimeEntityZQV\nall.Add(mail)\nall.Add(entity)",
    "Loops": "For Each part As MimeAttachmentZQV In mail.Attachments\nPrint(part.Filename)\nNext\n"
             "For i As Integer = 0 To list.Count - 1\nPrint(list.Addresses(i).StringValue)\nNext\n"
             "While number < list.Count\nnumber = number + 1\nWend\nDo\nExit Do\nLoop",
    "Conditions": "If mail.Header.hasField(word) Then\nPrint(word)\nElseIf number > 1 Then\n"
                  "Const kTwo = 2\nnumber = -kTwo\nElse\nConst kTwo = 2\n"
                  "number = (list.Count - 1) * kTwo\nEnd If\n"
                  "If mail.Date Is Nil Then Return\n"
                  "word = If(Not mail.Subject.IsEmpty And number = 1, mail.Subject, word)",
    "Selections": "Select Case mail.Subject\nCase \"a\", word\nPrint(word)\nEnd Select",
    "Exceptions": "Try\nmail = New MimeEmailZQV(file)\nCatch e As IOException\nPrint(e.Message)\n"
                  "End Try",
    "Constructors": "Var a As New MimeEmailZQV(file)\nVar b As MemoryBlock\n"
                    "Var c As New MimeEmailZQV(b)\nVar d As MimeMailboxZQV\n"
                    "d = New MimeMailboxZQV(mail.Subject)",
    "SuperClass": "entity = mail\nVar o As Object = mail",
    "SharedMembers": "MimeEmailZQV.RaiseUnknownFormatExceptions = True\n"
                     "Print(MimeEmailZQV.DecodeInline(mail.Header.subject))",
    "Nil": "If mail.Header.from <> Nil And list Is Nil Then\nlist = Nil\nEnd If",
    "Variants": "Var v As Variant = mail.AttachmentsVariant\nv = mail",
    "CommentsAndLongLines": "' mail.Nonsense\n// mail.Nonsense\n"
                            "Print(\"mail.Nonsense // \"\" '\") ' x\nPrint(mail. _\n  Subject)",
    "Functions": "Function First(m As MimeEmailZQV) As String\nReturn m.Subject\nEnd Function\n"
                 "Print(First(mail))",
    "ArrayOfAFunction": "Function All(m As MimeEmailZQV) As MimeAttachmentZQV()\nReturn m.Inlines\n"
                        "End Function\nPrint(All(mail)(0).Filename)",
    "Properties": "Public Property Found() As MimeEmailZQV\nProperty Last As MimeEmailZQV\n"
                  "Sub Keep(m As MimeEmailZQV)\nFound.Add(m)\nLast = Found(0)\nEnd Sub\n"
                  "Print(Last.Subject)",
    "Handlers": "Sub Work(t As Thread)\nPrint(mail.Subject)\nEnd Sub\nVar t As New Thread\n"
                "AddHandler t.Run, AddressOf Work",
    "VariablesOfAnotherBlockAgain": "Var mail As New MimeEmailZQV(word)",
}


@dataclasses.dataclass
class Mistake:
    """Code with one fault, what is said of it, and in which of its lines."""
    code: str
    says: str
    line: int = 1


VIEW = "Sub View(m As MimeEmailZQV)\nEnd Sub\n"
MISTAKES = [
    # Classes and members that do not exist.
    Mistake("Var a As MimeMailZQV", "there is no class MimeMailZQV"),
    Mistake("Var a As New MimeMailZQV(word)", "there is no class MimeMailZQV"),
    Mistake("Print(other.Subject)", "there is nothing of the name other"),
    Mistake("Print(mail.Subjekt)", "MimeEmailZQV has no member Subjekt"),
    Mistake("Print(mail.Header.from.Mailboxes(0).Mail)", "MimeMailboxZQV has no member Mail"),
    Mistake("If number = 1 Then Print(mail.Header.to)", "MimeHeaderZQV has no member to"),
    Mistake("Print(mail.Attachments.Length)", "MimeAttachmentZQV() has no member Length"),
    Mistake("Print(mail.Subject.Size)", "String has no member Size"),
    Mistake("Print(entity.Subject)", "MimeEntityZQV has no member Subject"),
    Mistake(VIEW + "Print(View(mail).Name)", "nothing has no member Name", 3),
    Mistake("Var t As New Thread\nAddHandler t.Ran, AddressOf Gone", "Thread has no member Ran", 2),
    Mistake("Var t As New Thread\nAddHandler t.Run, AddressOf Gone", "there is no method Gone", 2),
    # Members of a class on an object, and the other way round.
    Mistake("Print(mail.DecodeInline(word))", "write MimeEmailZQV.DecodeInline"),
    Mistake("mail.Debugging = True", "write MimeEmailZQV.Debugging"),
    Mistake("Print(MimeEmailZQV.Subject)", "needs an object, and MimeEmailZQV is the class"),
    # Number and types of arguments.
    Mistake("Print(mail.Subject(0))", "mail.Subject is String and takes no index"),
    Mistake("word = list.AddressesVariant(0)", "is Variant and takes no index"),
    Mistake("Print(mail.Header.FieldByName.Value)", "takes 1 arguments, and not 0"),
    Mistake("Print(mail.Attachments(0, 1).Filename)", "0 arguments, and not 2"),
    Mistake("Print(mail.Header.FieldByName(1).Value)", "name as string, and 1 is Integer"),
    Mistake("Print(mail.Attachments(word).Filename)", "index as Integer, and word is String"),
    Mistake("Var a As New MimeEmailZQV(1)", "File as FolderItem, and 1 is Integer"),
    Mistake("Var a As New MimeEmailZQV", "New MimeEmailZQV takes 1 arguments, and not 0"),
    Mistake("list = New MimeAddressListZQV(word, 1)", "takes 1 arguments, and not 2"),
    Mistake("list = New MimeAddressListZQV(file)", "TextToParse as String, and file is FolderItem"),
    Mistake("Var a As New MimeAttachmentZQV", "New MimeAttachmentZQV has no constructor"),
    Mistake(VIEW + "View(entity)", "m as MimeEmailZQV, and entity is MimeEntityZQV", 3),
    Mistake("Print(MimeEmailZQV)", "MimeEmailZQV is a class"),
    Mistake("Var all() As MimeAttachmentZQV\nall.Add(mail)", "value as MimeAttachmentZQV", 2),
    Mistake("Var all() As MimeEntityZQV\nPrint(all(word).BodyDecoded)", "an index is Integer", 2),
    Mistake("word = If(number = 1, mail.Subject)", "If(...) takes 3 values"),
    # Assignments.
    Mistake("mail.Subject = word", "mail.Subject cannot be assigned"),
    Mistake("mail.Attachments(0) = Nil", "mail.Attachments(...) cannot be assigned"),
    Mistake("MimeEmailZQV = Nil", "MimeEmailZQV cannot be assigned"),
    Mistake("Var n As Integer = mail.Subject", "n is Integer, and mail.Subject is String"),
    Mistake("Var e As MimeEmailZQV = entity", "e is MimeEmailZQV, and entity is MimeEntityZQV"),
    Mistake("Var f As MimeMailboxListZQV = mail.Header.too", "is MimeAddressListZQV"),
    Mistake("Var p() As MimeAttachmentZQV = mail.Attachments(0)", "p is MimeAttachmentZQV()"),
    Mistake("Var all() As MimeEntityZQV = mail.Attachments", "all is MimeEntityZQV()"),
    Mistake("Var o As Object = mail.Subject", "o is Object, and mail.Subject is String"),
    Mistake("number = mail.Subject", "number is Integer, and mail.Subject is String"),
    Mistake("list = mail.Header.from", "list is MimeAddressListZQV, and mail.Header.from"),
    Mistake("mail = MimeEmailZQV", "MimeEmailZQV is a class"),
    Mistake("MimeEmailZQV.Debugging = word", "is Boolean, and word is String"),
    Mistake("Var all() As MimeAttachmentZQV\nall(0) = mail", "mail is MimeEmailZQV", 2),
    Mistake(VIEW + "word = View(mail)", "word is String, and View(...) is nothing", 3),
    Mistake("Property Last As MimeEmailZQV\nLast = mail.Subject", "Last is MimeEmailZQV", 2),
    # Types elsewhere.
    Mistake("For Each a As MimeEntityZQV In mail.Attachments\nNext", "a needs MimeEntityZQV()"),
    Mistake("For Each a As MimeAddressZQV In list\nNext", "a needs MimeAddressZQV(), and list is"),
    Mistake("For i As Integer = 0 To mail.Subject\nNext", "i is Integer"),
    Mistake("For i As Integer = mail.Subject To 1\nNext", "i is Integer"),
    Mistake("If mail.Subject Then Return", "the condition is Boolean, and mail.Subject is String"),
    Mistake("If number = 1 Then\nElseIf word Then\nEnd If", "the condition is Boolean", 2),
    Mistake("While mail.Subject\nWend", "the condition is Boolean"),
    Mistake("word = If(mail.Subject, word, word)", "the condition is Boolean"),
    Mistake("If Not mail.Subject Then Return", "Not needs Boolean"),
    Mistake("Select Case list\nEnd Select", "a case is String"),
    Mistake("If number = 1 And word Then Return", "Boolean and String makes no sense"),
    Mistake("If mail.Header.from = word Then Return", "MimeMailboxListZQV = String makes no sense"),
    Mistake("If mail.Subject Is Nil Then Return", "String is Nil makes no sense"),
    Mistake("If mail = MimeEmailZQV Then Return", "makes no sense"),
    Mistake("Print(word + mail.Header)", "String + MimeHeaderZQV makes no sense"),
    Mistake("Print(word + list.Count)", "String + Integer makes no sense"),
    Mistake("number = mail.Subject - 1", "String - Integer makes no sense"),
    Mistake("Function F(m As MimeEmailZQV) As Integer\nReturn m.Subject\nEnd Function",
            "the result is Integer, and m.Subject is String", 2),
    Mistake("Function F() As Integer\nReturn\nEnd Function", "this Return gives nothing", 2),
    Mistake("Sub F(m As MimeEmailZQV)\nReturn m.Subject\nEnd Sub", "the result is nothing", 2),
    # Statements and blocks.
    Mistake("mail.SourceWithoutAttachments", "the result of mail.SourceWithoutAttachments(...) is"),
    Mistake("mail.Subject", "mail.Subject alone is no statement"),
    Mistake("Var a As MimeEmailZQV\nVar A As String", "A is declared a second time", 2),
    Mistake("If number = 1 Then\nVar a As String\nEnd If\nPrint(a)", "nothing of the name a", 4),
    Mistake("If mail.Date Is Nil Then", "this if has no end"),
    Mistake("Function F() As String", "this function has no end"),
    Mistake("For i As Integer = 0 To 1\nWhile number = 1\nNext", "this ends no for", 3),
    Mistake("End If", "this ends no if"),
    Mistake("Else", "else stands outside of its block"),
    Mistake("Print(mail.Subject ? 1)", "not understood: expected ), found ? 1 )"),
    Mistake("Var other = mail.Subject", "not understood: expected as"),
    Mistake("Const kOne 1", "not understood: expected ="),
    Mistake("word = mail.", "not understood: expected a name, found the end of the line"),
    Mistake("Exit For mail", "not understood: expected the end of the line, found mail"),
    Mistake("Private other As String", "expected Function, Sub or Property, found other"),
    Mistake("Function (m As MimeEmailZQV) As String\nEnd Function", "expected a name"),
]

CLASS = """#tag Class
Protected Class Thing
\t#tag Method, Flags = &h0
\t\tSub Constructor(mail As MimeEmailZQV)
\t\t  mMail = mail
\t\tEnd Sub
\t#tag EndMethod

\t#tag Method, Flags = &h0
\t\tFunction Copy() As Thing
\t\t  Return New Thing(mMail)
\t\tEnd Function
\t#tag EndMethod

\t#tag Method, Flags = &h0
\t\tFunction Title() As String
\t\t  Return Copy.Copy.Title + mMail.Subject
\t\tEnd Function
\t#tag EndMethod

\t#tag Property, Flags = &h21
\t\tPrivate mMail As MimeEmailZQV
\t#tag EndProperty
End Class
#tag EndClass
"""


class UsageTest(checkers.TestCase):
    def check_code(self, code):
        """Checks code in a Markdown file, in a block after the known one."""
        blocks = f"```vb\n{KNOWN}```\n\nText.\n```vb\n{code}\n```\n"
        self.path = self.write("page.md", f"# Page\n\n{blocks}")
        return self.check_usage(self.path)

    def check_class(self, old="", new=""):
        self.assertIn(old, CLASS)
        self.path = self.write("Thing.xojo_code", CLASS.replace(old, new))
        return self.check_usage(self.path)

    def expect_fault(self, report, line, says):
        """There is this fault in this line."""
        found = [fault for fault in report.faults if fault.startswith(f"{self.path}:{line}: ")]
        self.assertTrue(any(says in fault for fault in found), report.faults)

    def test_accepts(self):
        for name, code in ACCEPTED.items():
            with self.subTest(name):
                self.assertEqual(self.check_code(code).faults, [])

    def test_sees_mistakes(self):
        for mistake in MISTAKES:
            with self.subTest(mistake.code):
                report = self.check_code(mistake.code)
                self.expect_fault(report, FIRST_LINE + mistake.line - 1, mistake.says)

    def test_one_mistake_is_one_fault(self):
        for code in ("Print(mail.Subjekt)", "If mail.Subject Then\nPrint(word)\nEnd If",
                     "Var n As Integer = word\nnumber = n"):
            self.assertEqual(len(self.check_code(code).faults), 1, code)

    def test_classes_of_projects(self):
        report = self.check_class()
        self.assertEqual((report.faults, report.uses), ([], 1))  # the use is of Subject

    def test_faults_in_classes_of_projects(self):
        for line, old, new, says in (
                (17, "mMail.Subject", "mMail.Topic", "MimeEmailZQV has no member Topic"),
                (17, "Copy.Copy.", "Copy.Last.", "Thing has no member Last"),
                (11, "New Thing(mMail)", "New Thing(1)", "mail as MimeEmailZQV, and 1 is Integer"),
                (11, "Sub Constructor", "Sub Start", "New Thing has no constructor"),
                (22, "mMail As Mime", "mMail Mime", "not understood: expected as")):
            with self.subTest(new):
                self.expect_fault(self.check_class(old, new), line, says)

    def test_block_of_code_without_its_end(self):
        path = self.write("page.md", "```vb\nVar word As String\n```\n\n```vb\nPrint(wort)\n")
        self.assertIn(f"{path}:6: there is nothing of the name wort", self.check_usage(path).faults)

    def test_other_fences_are_no_code(self):
        path = self.write("page.md", "```sh\nmail.Nonsense\n```\n\n```vb\nPrint(\"x\")\n```\n")
        self.assertEqual(self.check_usage(path).faults, [])

    def test_nothing_to_check(self):
        with self.assertRaisesRegex(ValueError, "there is no code in"):
            self.check_usage(self.write("page.md", "# Page\n\n```sh\nls\n```\n"))

    def test_list_of_classes(self):
        for text in ("class A\n  nonsense\n", "  property X as String\n"):
            with self.assertRaisesRegex(ValueError, "not understood"):
                usage.check(text, [self.write("page.md", "```vb\nPrint(\"x\")\n```\n")])

    def test_rules_come_from_the_list(self):
        """What the list does not hold is refused, whatever the library has."""
        classes = self.classes().replace("property Subject as", "property Topic as")
        path = self.write("page.md", f"```vb\n{KNOWN}Print(mail.Subject)\n```\n")
        self.assertEqual(usage.check(classes, [path]).faults,
                         [f"{path}:8: MimeEmailZQV has no member Subject"])


if __name__ == "__main__":
    checkers.main()
