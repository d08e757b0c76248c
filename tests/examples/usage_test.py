"""The checker of uses accepts what is right, sees each mistake, and counts what it skips."""

import checkers

# Stands before the code of most tests, in a block of its own.
KNOWN = """
Var mail As New MimeEmailZQV("Subject: x")
Var entity As MimeEntityZQV = mail
Var list As New MimeAddressListZQV("a@example.org")
Var word As String = "x"
Var number As Integer = 1
Var file As FolderItem
"""


class UsageCase(checkers.TestCase):
    """Runs the checker over code in a Markdown file."""

    def page(self, *blocks):
        fenced = "".join(f"\nText.\n\n```vb\n{block.strip()}\n```\n" for block in blocks)
        return self.write("page.md", "# Page\n" + fenced)

    def check(self, code, known=KNOWN):
        return self.check_usage("--verbose", self.page(known, code))

    def first_line(self, known=KNOWN):
        """The line of the page on which the code after the known begins."""
        return len(known.strip().split("\n")) + 11  # the two fences and what is around them

    def accepts(self, code, skipped=0):
        result, out, err = self.check(code)
        self.assertEqual((result, err), (0, ""), f"{code}\n{out}")
        self.assertIn(f" 0 faults, {skipped} not followed\n", out, code)

    def refuses(self, code, says, line=1):
        """There is just one fault, in this line of the code."""
        result, out, err = self.check(code)
        self.assertEqual((result, err), (1, ""), f"{code}\n{out}")
        self.assertIn(" 1 faults, ", out, code)
        place = f"page.md:{self.first_line() + line - 1}: "
        self.assertTrue(any(place in each and says in each for each in out.splitlines()),
                        f"{place}{says}\n{out}")

    def skips(self, code, says):
        """No fault, and this is told to be not followed; with --strict it is a fault."""
        self.accepts(code, 1)
        self.assertRegex(self.check(code)[1], f"not followed: {says}")
        self.assertEqual(self.check_usage("--strict", self.page(KNOWN, code))[0], 1)


class AcceptedTest(UsageCase):
    def test_members(self):
        self.accepts("Print(mail.Subject)")
        self.accepts("Print(mail.Header.from.Mailboxes(0).Email)")
        self.accepts("Print(mail.Body.Parts(0).Header.Fields(number).Value)")
        self.accepts("word = mail.BodyDecoded + mail.Header.contentId")
        self.accepts("Print(mail.SourceWithoutAttachments)\nPrint(mail.SourceWithoutAttachments())")

    def test_names_compare_without_case(self):
        self.accepts("print(MAIL.header.SUBJECTDECODED)\nvar other as new mimeemailzqv(word)")

    def test_arrays(self):
        self.accepts("Var last As Integer = mail.Attachments.LastIndex + mail.Inlines.Count")
        self.accepts("Var parts() As MimeAttachmentZQV = mail.Attachments\nparts(0) = parts(1)")
        self.accepts("Var all() As MimeEntityZQV\nall.Add(mail)\nall.Add(entity)")

    def test_loops(self):
        self.accepts("For Each part As MimeAttachmentZQV In mail.Attachments\n"
                     "Print(part.Filename)\nNext")
        self.accepts("For i As Integer = 0 To list.Count - 1\n"
                     "Print(list.Addresses(i).StringValue)\nNext i")
        self.accepts("Dim field As MimeFieldZQV\nFor Each field In mail.Header.Fields\n"
                     "Print(field.Name)\nNext")

    def test_blocks(self):
        self.accepts("If mail.Header.hasField(word) Then\nPrint(word)\nElseIf number > 1 Then\n"
                     "number = 2\nElse\nnumber = 3\nEnd If")
        self.accepts("Try\nmail = New MimeEmailZQV(file)\nCatch e As IOException\n"
                     "Print(e.Message)\nFinally\nnumber = 0\nEnd Try")
        self.accepts("Select Case mail.Attachments.Count\nCase 0, 1\nCase 2 To 4\nCase Is > 5\n"
                     "Case Else\nEnd Select")
        self.accepts("While number < list.Count\nnumber = number + 1\nWend\nDo\nnumber = 1\n"
                     "Loop Until list.Count > 1")
        self.accepts("If mail.Date Is Nil Then Return Else Print(mail.Date.SQLDateTime)")

    def test_constructors(self):
        self.accepts("Var a As New MimeEmailZQV(file)\nVar b As MemoryBlock\n"
                     "Var c As New MimeEmailZQV(b)\nVar d As MimeMailboxZQV\n"
                     "d = New MimeMailboxZQV(mail.Subject)")

    def test_super_class_and_cast(self):
        self.accepts("entity = mail\nmail = MimeEmailZQV(entity)\n"
                     "If entity IsA MimeEmailZQV Then Print(word)")

    def test_shared_members(self):
        self.accepts("MimeEmailZQV.RaiseUnknownFormatExceptions = True\n"
                     "Print(MimeEmailZQV.DecodeInline(mail.Header.subject))")

    def test_nil(self):
        self.accepts("If mail.Header.from <> Nil And list Is Nil Then\nlist = Nil\nEnd If")

    def test_variants_take_all(self):
        self.accepts("Var v As Variant = mail.AttachmentsVariant\nv = mail\nword = v")

    def test_comments_strings_and_long_lines(self):
        self.accepts("' mail.Nonsense\n// mail.Nonsense\nPrint(\"mail.Nonsense // \"\" '\") ' x\n"
                     "Rem mail.Nonsense\nPrint(mail. _\n  Subject)")

    def test_functions_of_a_page(self):
        self.accepts("Function First(mail As MimeEmailZQV) As String\nReturn mail.Subject\n"
                     "End Function\nPrint(First(mail))")

    def test_function_that_gives_an_array(self):
        known = "Function All(m As MimeEmailZQV) As MimeAttachmentZQV()\nReturn m.Inlines\n" \
                "End Function\n"
        self.accepts(known + "Print(All(mail)(0).Filename)")
        known = "Function All() As MimeAttachmentZQV()\nReturn mail.Inlines\nEnd Function\n"
        self.accepts(known + "Print(All(0).Filename)")
        self.refuses(known + "Print(All(0).Name)", "MimeAttachmentZQV has no member Name", 4)

    def test_parameters_with_defaults(self):
        self.accepts("Function Name(m As MimeEmailZQV, suffix As String = \"x\") As String\n"
                     "Return m.Subject + suffix\nEnd Function\n"
                     "Print(Name(mail))\nPrint(Name(mail, word))")

    def test_several_variables_in_one_line(self):
        self.accepts("Var a, b As MimeEmailZQV, c As String\na = mail\nb = a\nc = b.Subject")

    def test_signs_and_operators(self):
        self.accepts("number += -list.Count\nnumber = +(list.Count - 1) Mod 2\n"
                     "word = If(number > 1, mail.Subject, word)")

    def test_properties_of_a_page(self):
        known = "Public Property Found() As MimeEmailZQV\nProperty Last As MimeEmailZQV\n\n" \
                "Sub Keep(m As MimeEmailZQV)\nFound.Add(m)\nLast = Found(0)\nEnd Sub\n"
        self.accepts(known + "Print(Last.Subject)")
        self.refuses(known + "Print(Last.Topic)", "MimeEmailZQV has no member Topic", 8)
        self.refuses(known + "Last = mail.Subject", "Last is MimeEmailZQV", 8)

    def test_handlers(self):
        known = "Sub Work(t As Thread)\nPrint(mail.Subject)\nEnd Sub\nVar t As New Thread\n"
        self.accepts(known + "AddHandler t.Run, AddressOf Work\n"
                     "RemoveHandler t.Run, AddressOf Work")
        self.refuses(known + "AddHandler mail.Subject, AddressOf Work", "is no event", 5)
        self.refuses("Sub Idle\nEnd Sub\nVar t As New Thread\nAddHandler t.Run, AddressOf Idle",
                     "Idle is no method that takes", 4)
        self.skips("Var t As New Thread\nAddHandler t.Run, AddressOf Gone", "the method Gone")
        self.skips("Var t As New Thread\nAddHandler t.Run", "expected ,")

    def test_sized_integers(self):
        self.accepts("Var n As Int32 = list.Count\nPrint(n.ToString)")

    def test_any_object(self):
        self.accepts("Var o As Object = mail")
        self.refuses("Var o As Object = mail.Subject", "o is Object, and mail.Subject is String")

    def test_lines_for_the_compiler(self):
        self.accepts("#If TargetConsole Then\nPrint(mail.Subject)\n#EndIf")

    def test_own_classes(self):
        path = self.write("Thing.xojo_code", CLASS)
        result, out, _ = self.check_usage("--strict", path)
        self.assertEqual(result, 0, out)
        # mail; other, twice; part and its name; the names of First, Attachments, Subject.
        self.assertIn("8 uses of our classes", out)


CLASS = """#tag Class
Protected Class Thing
\t#tag Method, Flags = &h0
\t\tSub Constructor(mail As MimeEmailZQV)
\t\t  mMail = mail
\t\tEnd Sub
\t#tag EndMethod

\t#tag Method, Flags = &h0
\t\tFunction Copy(optional other As MimeEmailZQV) As Thing
\t\t  If other Is Nil Then
\t\t    Return New Thing(mMail)
\t\t  End If
\t\t  Return New Thing(other)
\t\tEnd Function
\t#tag EndMethod

\t#tag Method, Flags = &h0
\t\tFunction Name(part As MimeAttachmentZQV, ByRef count As Integer) As String
\t\t  count = count + kStep
\t\t  Return part.Filename + Self.Copy.First.Filename + Title
\t\tEnd Function
\t#tag EndMethod

\t#tag Method, Flags = &h0
\t\tFunction First() As MimeAttachmentZQV
\t\t  Return mMail.Attachments(0)
\t\tEnd Function
\t#tag EndMethod

\t#tag ComputedProperty, Flags = &h0
\t\t#tag Getter
\t\t\tGet
\t\t\t  Return mMail.Subject
\t\t\tEnd Get
\t\t#tag EndGetter
\t\tTitle As String
\t#tag EndComputedProperty

\t#tag Property, Flags = &h21
\t\tPrivate mMail As MimeEmailZQV
\t#tag EndProperty

\t#tag Constant, Name = kStep, Type = Double, Dynamic = False, Default = \\"2", Scope = Private
\t#tag EndConstant

\t#tag ViewBehavior
\t#tag EndViewBehavior
End Class
#tag EndClass
"""


class RefusedTest(UsageCase):
    def test_unknown_member(self):
        self.refuses("Print(mail.Subjekt)", "MimeEmailZQV has no member Subjekt")
        self.refuses("Print(mail.Header.from.Mailboxes(0).Mail)",
                     "MimeMailboxZQV has no member Mail")
        self.refuses("If number = 1 Then Print(mail.Header.to)", "has no member to")

    def test_unknown_member_of_an_array(self):
        self.refuses("Print(mail.Attachments.Length)", "MimeAttachmentZQV() has no member Length")

    def test_unknown_member_of_a_host_type(self):
        self.refuses("Print(mail.Subject.Size)", "String has no member Size")

    def test_member_of_nothing(self):
        self.refuses("Sub Look(m As MimeEmailZQV)\nEnd Sub\nPrint(Look(mail).Name)",
                     "gives nothing that could have a member Name", 3)

    def test_result_of_nothing(self):
        self.refuses("Sub Look(m As MimeEmailZQV)\nEnd Sub\nword = Look(mail)",
                     "word is String, and Look(...) is nothing", 3)

    def test_super_class_lacks_members_of_the_sub_class(self):
        self.refuses("Print(entity.Subject)", "MimeEntityZQV has no member Subject")

    def test_arguments_of_a_property(self):
        self.refuses("Print(mail.Subject(0))", "mail.Subject is String and takes not 1 argument")
        self.refuses("Print(mail.Subject())", "mail.Subject is String and takes not 0 arguments")
        self.refuses("word = list.AddressesVariant(0)", "is Variant and takes not 1 argument")

    def test_number_of_arguments(self):
        self.refuses("Print(mail.Header.FieldByName.Value)", "takes 1, and not 0 arguments")
        self.refuses("Print(mail.Attachments(0, 1).Filename)", "takes 0 or 1, and not 2 arguments")

    def test_kinds_of_arguments(self):
        self.refuses("Print(mail.Header.FieldByName(1).Value)",
                     "name is string, and 1 is Integer")
        self.refuses("Print(mail.Attachments(word).Filename)",
                     "index is Integer, and word is String")

    def test_arguments_of_constructors(self):
        self.refuses("Var a As New MimeEmailZQV(1)", "File is FolderItem, and 1 is Integer")
        self.refuses("Var a As New MimeEmailZQV", "New MimeEmailZQV takes 1, and not 0")
        self.refuses("list = New MimeAddressListZQV(word, 1)", "takes 1, and not 2 arguments")
        self.refuses("list = New MimeAddressListZQV(file)", "TextToParse is String, and file is")

    def test_private_constructor(self):
        self.refuses("Var a As New MimeAttachmentZQV",
                     "the constructor of MimeAttachmentZQV is private")

    def test_shared_method_on_an_object(self):
        self.refuses("Print(mail.DecodeInline(word))", "write MimeEmailZQV.DecodeInline")

    def test_shared_property_on_an_object(self):
        self.refuses("mail.Debugging = True", "write MimeEmailZQV.Debugging")

    def test_member_of_an_object_on_the_class(self):
        self.refuses("Print(MimeEmailZQV.Subject)",
                     "needs an object, and MimeEmailZQV is the class")

    def test_assignment_to_a_property(self):
        self.refuses("mail.Subject = word", "mail.Subject cannot be assigned: it is read-only")
        self.refuses("mail.Header.subject += word", "cannot be assigned: it is read-only")

    def test_assignment_to_a_method(self):
        self.refuses("mail.Attachments(0) = Nil", "cannot be assigned: it is a method")
        self.refuses("mail.SourceWithoutAttachments = word", "cannot be assigned: it is a method")

    def test_assignment_to_a_class(self):
        self.refuses("MimeEmailZQV = Nil", "cannot be assigned: it is a class")

    def test_types_of_declared_variables(self):
        self.refuses("Var n As Integer = mail.Subject", "n is Integer, and mail.Subject is String")
        self.refuses("Var p() As MimeAttachmentZQV = mail.Attachments(0)",
                     "p is MimeAttachmentZQV(), and mail.Attachments(...) is MimeAttachmentZQV")
        self.refuses("Var e As MimeEmailZQV = entity", "e is MimeEmailZQV, and entity is Mime")
        self.refuses("Var f As MimeMailboxListZQV = mail.Header.too", "is MimeAddressListZQV")
        self.refuses("Const kName As Integer = mail.Subject", "kName is Integer")

    def test_types_of_assignments(self):
        self.refuses("number = mail.Subject", "number is Integer, and mail.Subject is String")
        self.refuses("list = mail.Header.from", "list is MimeAddressListZQV, and mail.Header.from")
        self.refuses("MimeEmailZQV.Debugging = word", "is Boolean, and word is String")

    def test_types_of_arrays(self):
        self.refuses("Var all() As MimeAttachmentZQV\nall.Add(mail)",
                     "value is MimeAttachmentZQV", 2)
        self.refuses("Var all() As MimeAttachmentZQV\nall(0) = mail", "is MimeEmailZQV", 2)
        self.refuses("Var all(word) As MimeAttachmentZQV", "the bound is Integer")
        self.refuses("Var all() As MimeEntityZQV\nPrint(all(word).BodyDecoded)", "an index is", 2)

    def test_types_of_loops(self):
        self.refuses("For Each part As MimeEntityZQV In mail.Attachments\nNext",
                     "part is MimeEntityZQV, and an element of mail.Attachments is MimeAttachment")
        self.refuses("For Each a As MimeAddressZQV In list\nNext", "For Each needs an array")
        self.refuses("For i As Integer = 0 To mail.Subject\nNext", "i is Integer")
        self.refuses("For i As Integer = mail.Subject To 1\nNext", "i is Integer")
        self.refuses("For i As Integer = 0 To 1 Step word\nNext", "i is Integer")

    def test_types_of_conditions(self):
        for code in ("If mail.Subject Then Return", "While mail.Subject\nWend",
                     "Do Until mail.Subject\nLoop"):
            self.refuses(code, "the condition is Boolean, and mail.Subject is String")
        self.refuses("If number = 1 Then\nElseIf mail.Subject Then\nEnd If", "the condition is", 2)
        self.refuses("Do\nLoop Until mail.Subject", "the condition is", 2)
        self.refuses("word = If(mail.Subject, word, word)", "the condition is")
        self.refuses("If Not mail.Subject Then Return", "Not needs Boolean")
        self.refuses("If number = 1 And mail.Subject Then Return", "mail.Subject beside and is")

    def test_types_of_comparisons(self):
        self.refuses("If mail.Header.from = word Then Return", "compares MimeMailboxListZQV with")
        self.refuses("If mail.Subject Is Nil Then Return", "compares String with Nil")
        self.refuses("If mail = MimeEmailZQV Then Return", "compares")
        self.refuses("If entity IsA word Then Return", "word behind IsA is no class")

    def test_types_of_sums(self):
        self.refuses("Print(word + mail.Header)", "mail.Header beside + is MimeHeaderZQV")
        self.refuses("Print(word + list.Count)", "adds String and Integer")
        self.refuses("number = mail.Subject - 1", "mail.Subject beside - is String")
        self.refuses("number = mail.Attachments * 2", "mail.Attachments beside * is")

    def test_types_of_functions(self):
        self.refuses("Function F(m As MimeEmailZQV) As Integer\nReturn m.Subject\nEnd Function",
                     "the function gives Integer, and m.Subject is String", 2)
        self.refuses("Function F(m As MimeEmailZQV) As Integer\nReturn\nEnd Function",
                     "this Return gives nothing", 2)
        self.refuses("Sub F(m As MimeEmailZQV)\nReturn m.Subject\nEnd Sub",
                     "a Sub gives nothing", 2)
        self.refuses("Sub F(m As MimeEmailZQV)\nEnd Sub\nF(entity)", "m is MimeEmailZQV", 3)

    def test_casts(self):
        self.refuses("mail = MimeEmailZQV(list)", "list is MimeAddressListZQV and never")
        self.refuses("mail = MimeEmailZQV(entity, 1)", "converts one value, and not 2")

    def test_class_as_a_value(self):
        self.refuses("mail = MimeEmailZQV", "MimeEmailZQV is a class, and a value is asked for")
        self.refuses("Print(MimeEmailZQV)", "MimeEmailZQV is a class")

    def test_result_that_nobody_takes(self):
        self.refuses("mail.SourceWithoutAttachments", "the result of mail.SourceWithoutAttachments")
        self.accepts("Call mail.SourceWithoutAttachments")

    def test_property_as_a_statement(self):
        self.refuses("mail.Subject", "mail.Subject alone is no statement")
        self.refuses("MimeEmailZQV", "MimeEmailZQV alone is no statement")

    def test_unknown_class_of_ours(self):
        self.refuses("Var a As MimeMailZQV", "there is no class MimeMailZQV")
        self.refuses("Var a As New MimeMailZQV(word)", "there is no class MimeMailZQV")

    def test_what_is_not_understood(self):
        self.refuses("Print(mail.Subject ? 1)", "not understood: ")
        self.refuses("mail.Subject mail", "not understood: ")
        self.refuses("Var other = mail.Subject", "not understood: expected as")
        self.refuses("word = mail.", "not understood: ")
        self.refuses("For Each part In\nNext", "not understood: ")

    def test_words_in_wrong_places(self):
        self.refuses("Print((mail, mail))", "parentheses with several values")
        self.refuses("word = If(number = 1, mail.Subject)", "If without three values")
        self.refuses("Private mail As MimeEmailZQV", "a declaration of another kind")

    def test_function_line(self):
        result, out, _ = self.check("Function (mail As MimeEmailZQV) As String\nEnd Function")
        self.assertEqual(result, 1)
        self.assertIn(f"page.md:{self.first_line()}: not understood: expected a word", out)

    def test_rest_of_a_line(self):
        self.refuses("Return mail.Subject mail", "expected the end of the line, found mail")

    def test_operators_on_variables(self):
        self.refuses("number += mail.Subject", "adds Integer and String")
        self.refuses("mail += word", "mail beside + is MimeEmailZQV")

    def test_arrays_of_another_class(self):
        self.refuses("Var all() As MimeEntityZQV = mail.Attachments", "all is MimeEntityZQV()")

    def test_blocks(self):
        self.refuses("If mail.Date Is Nil Then", "this if has no end")
        self.refuses("End If", "this ends no if")
        self.refuses("Else", "else stands outside of its block")
        self.refuses("Catch e As IOException", "catch stands outside of its block")
        self.refuses("Next", "this ends no for")

    def test_variables_end_with_their_block(self):
        self.skips("If number = 1 Then\nVar inner As MimeEmailZQV = mail\nEnd If\n"
                   "Print(inner.Subject)", "the name inner")

    def test_names_declared_twice(self):
        self.refuses("Var a As MimeEmailZQV\nVar A As String", "A is declared a second time", 2)
        self.accepts("Var mail As New MimeEmailZQV(word)")  # of another block of the page

    def test_block_of_code_without_end(self):
        page = self.write("page.md", "```vb\nVar word As String\n```\n\n```vb\nPrint(word)\n")
        result, out, _ = self.check_usage(page)
        self.assertEqual(result, 1)
        self.assertRegex(out, r"page\.md:5: this block of code has no end")

    def test_declarations(self):
        line = CLASS.split("\n").index("\t\tPrivate mMail As MimeEmailZQV") + 1
        path = self.write("Thing.xojo_code", CLASS.replace("mMail As Mime", "mMail Mime"))
        result, out, _ = self.check_usage(path)
        self.assertEqual(result, 1)
        self.assertRegex(out, rf"Thing\.xojo_code:{line}: this declaration is not understood")

    def test_faults_in_classes_of_projects(self):
        line = CLASS.split("\n").index("\t\t\t  Return mMail.Subject") + 1
        path = self.write("Thing.xojo_code", CLASS.replace("mMail.Subject", "mMail.Topic"))
        result, out, _ = self.check_usage(path)
        self.assertEqual(result, 1)
        self.assertIn(f"Thing.xojo_code:{line}: MimeEmailZQV has no member Topic\n", out)

    def test_arguments_of_own_constructors(self):
        path = self.write("Thing.xojo_code", CLASS.replace("New Thing(other)", "New Thing(1)"))
        result, out, _ = self.check_usage(path)
        self.assertEqual(result, 1)
        self.assertIn("New Thing: mail is MimeEmailZQV, and 1 is Integer\n", out)

    def test_own_class_without_constructor(self):
        text = CLASS.replace("Sub Constructor(", "Sub Start(").replace("New Thing(other)", "Self")
        path = self.write("Thing.xojo_code", text)
        result, out, _ = self.check_usage(path)
        self.assertEqual(result, 1)
        self.assertIn("New Thing takes no arguments\n", out)

    def test_own_class_has_no_such_member(self):
        path = self.write("Thing.xojo_code", CLASS.replace("Self.Copy.First", "Self.Copy.Last"))
        result, out, _ = self.check_usage(path)
        self.assertEqual(result, 1)
        self.assertIn("Thing has no member Last\n", out)


class SkippedTest(UsageCase):
    def test_unknown_names(self):
        self.skips("Print(other.Subject)", "the name other")
        self.skips("Print(Compute(mail))", "the name Compute")

    def test_unknown_types(self):
        self.skips("Var window As SomeWindow", "the type SomeWindow")

    def test_unknown_members_of_host_types(self):
        self.skips("Print(word.Reversed)", "the member Reversed of String")

    def test_lines_without_our_classes(self):
        self.skips("word number", "number")

    def test_arguments_are_checked_all_the_same(self):
        self.assertEqual(self.check("Print(Compute(mail.Subjekt))")[0], 1)
        self.assertEqual(self.check("unknown.Add(mail.Subjekt)")[0], 1)

    def test_verbose_lists_and_silence_counts(self):
        page = self.page("Print(other.Subject)")
        self.assertRegex(self.check_usage("--verbose", page)[1], "not followed: the name other\n")
        self.assertEqual(self.check_usage(page)[1],
                         "0 uses of our classes, 0 faults, 1 not followed\n")

    def test_other_fences_are_no_code(self):
        page = self.write("page.md", "```sh\nmail.Nonsense\n```\n\n```vb\nPrint(\"x\")\n```\n")
        self.assertEqual(self.check_usage(page)[0], 0)


class InputTest(UsageCase):
    def test_nothing_to_check(self):
        for text in ("# Page\n", "```sh\nls\n```\n"):
            result, _, err = self.check_usage(self.write("page.md", text))
            self.assertEqual(result, 1)
            self.assertIn("there is no code in", err)

    def test_missing_file(self):
        result, _, err = self.check_usage(self.folder / "missing.md")
        self.assertEqual(result, 1)
        self.assertIn("missing.md", err)

    def test_list_of_classes(self):
        page = self.page("Print(\"x\")")
        for text, says in (("", "is empty"), ("class A\n  nonsense\n", "not understood"),
                           ("  property X as String\n", "not understood")):
            path = self.write("list.txt", text)
            result, _, err = checkers.run_script("check_usage.py", "--classes", path, page)
            self.assertEqual(result, 1)
            self.assertIn(says, err)

    def test_usage(self):
        self.assertEqual(checkers.run_script("check_usage.py", "x.md")[0], 2)

    def test_rules_come_from_the_list(self):
        """What the list does not hold is refused, whatever the library has."""
        text = self.classes().read_text("utf-8").replace("property Subject as", "property Topic as")
        path = self.write("other.txt", text)
        page = self.page(KNOWN, "Print(mail.Subject)")
        result, out, _ = checkers.run_script("check_usage.py", "--classes", path, page)
        self.assertEqual(result, 1)
        self.assertIn("MimeEmailZQV has no member Subject", out)


if __name__ == "__main__":
    checkers.main()
