"""The checker of text projects accepts the examples and reports each planted mistake."""

import checkers

ID = "&h0000000010A01FFF"
NO_PARENT = "&h0000000000000000"
APP = f"Class=App;App.xojo_code;{ID};{NO_PARENT};false"


class ProjectTest(checkers.TestCase):
    def setUp(self):
        super().setUp()
        self.example = self.copy_examples() / "ShowMail"
        self.project = self.example / "ShowMail.xojo_project"
        self.app = self.example / "App.xojo_code"

    def check(self):
        return checkers.run_script("check_project.py", self.example)

    def sees(self, text, file=None, line=None):
        """Requires that the run fails with this text for this file and line."""
        code, out, err = self.check()
        self.assertEqual((code, err), (1, ""), out)
        said = [each for each in out.splitlines() if text in each]
        self.assertTrue(said, f"nothing says '{text}':\n{out}")
        if file is not None:
            place = f"{file}:" if line is None else f"{file}:{line}:"
            self.assertTrue(any(each.startswith(place) for each in said), f"{place}\n{out}")

    def line_of(self, path, text):
        lines = path.read_text("utf-8").split("\n")
        return next(number for number, line in enumerate(lines, 1) if text in line)

    def plant(self, old, new, says, path=None):
        path = path or self.project
        number = self.line_of(path, old.split("\n")[0])
        self.change(path, old, new)
        self.sees(says, path, number)

    def test_untouched_copy_is_accepted(self):
        self.assertEqual(self.check(), (0, "", ""))

    def test_usage(self):
        self.assertEqual(checkers.run_script("check_project.py")[0], 2)

    # Mistakes in the project file.

    def test_two_project_files(self):
        (self.example / "Other.xojo_project").write_bytes(self.project.read_bytes())
        self.sees("holds 2 project files", self.example)

    def test_no_project_file(self):
        self.project.unlink()
        self.sees("holds 0 project files", self.example)

    def test_unknown_kind(self):
        self.plant(APP, APP.replace("Class=", "Klass="), "items of the kind Klass are not known")

    def test_number_of_fields(self):
        self.plant(APP, APP + ";x", "has 5 fields, and this one 6")

    def test_line_without_key(self):
        self.plant("MDI=0", "MDI", "neither an item nor a setting")

    def test_malformed_identifiers(self):
        self.plant(ID, ID.lower(), "is no identifier")

    def test_identifier_that_means_no_parent(self):
        self.plant(ID, NO_PARENT, "is no identifier")

    def test_repeated_identifier(self):
        self.plant("&h0000000010A02FFF", ID, "is taken")

    def test_missing_parent(self):
        self.plant(APP, APP.replace(NO_PARENT, "&h00000000DEADBEEF"), "does not exist")

    def test_parent_that_holds_nothing(self):
        other = f"Class=AttachmentSaver;AttachmentSaver.xojo_code;&h0000000010A02FFF;{NO_PARENT}"
        self.plant(other, other.replace(NO_PARENT, ID), "its parent is a Class")

    def test_last_field(self):
        self.plant(APP, APP.replace("false", "true"), "ends in true")

    def test_missing_file(self):
        self.plant(APP, APP.replace("App.xojo_code", "Application.xojo_code"),
                   "there is no file Application.xojo_code")

    def test_missing_folder(self):
        folder = f"Folder=Old;Old;&h00000000000000AA;{NO_PARENT};false"
        self.change(self.project, APP, f"{APP}\n{folder}")
        self.sees("there is no folder Old", self.project, self.line_of(self.project, "Folder=Old"))

    def test_folder_as_parent_is_accepted(self):
        (self.example / "Parts").mkdir()
        folder = f"Folder=Parts;Parts;&h00000000000000AA;{NO_PARENT};false"
        self.change(self.project, APP, folder + "\n" + APP.replace(NO_PARENT, "&h00000000000000AA"))
        self.assertEqual(self.check(), (0, "", ""))

    def test_no_application(self):
        self.change(self.project, APP + "\n", "")
        self.sees("has no item Class=App", self.project)

    def test_no_build_steps(self):
        item = "BuildSteps=Build Automation;"
        self.change(self.project, item, "Class=Build;")
        self.sees("has no item BuildSteps=Build Automation", self.project)

    def test_missing_setting(self):
        self.change(self.project, "MacBuildArchitecture=4\n", "")
        self.sees("the setting MacBuildArchitecture is missing", self.project)

    def test_repeated_setting(self):
        self.change(self.project, "MDI=0\n", "MDI=0\nMDI=1\n")
        self.sees("MDI is set a second time", self.project, self.line_of(self.project, "MDI=1"))

    def test_order_of_the_head(self):
        self.change(self.project, "Type=Console\nRBProjectVersion=2021.03\n",
                    "RBProjectVersion=2021.03\nType=Console\n")
        self.sees("does not begin with Type", self.project)

    def test_version(self):
        for version in ("2021r3", "2021.3", "2021.00", "21.03"):
            with self.subTest(version):
                text = self.project.read_bytes()
                self.plant("RBProjectVersion=2021.03\n", f"RBProjectVersion={version}\n",
                           f"{version} is no version")
                self.project.write_bytes(text)

    # Mistakes in the files of the project.

    def test_file_that_is_not_in_the_project(self):
        path = self.write("examples/ShowMail/Notes.txt", "x\n")
        self.sees("the project does not name this file", path)

    def test_resources(self):
        path = self.example / "ShowMail.xojo_resources"
        path.write_bytes(path.read_bytes() + b"\0")
        self.sees("is not the 12 bytes", path)

    def test_missing_resources(self):
        (self.example / "ShowMail.xojo_resources").unlink()
        self.sees("there is no resources file", self.project)

    def test_byte_order_mark(self):
        self.app.write_bytes(b"\xef\xbb\xbf" + self.app.read_bytes())
        self.sees("begins with a byte-order mark", self.app, 1)

    def test_carriage_returns(self):
        for path in (self.app, self.project):
            with self.subTest(path.name):
                text = path.read_bytes()
                path.write_bytes(text.replace(b"\n", b"\r\n"))
                self.sees("has a carriage return", path, 1)
                path.write_bytes(text)

    def test_last_line_without_end(self):
        self.app.write_bytes(self.app.read_bytes().rstrip(b"\n"))
        self.sees("the last line has no line feed", self.app)

    def test_bytes_that_are_no_utf8(self):
        data = self.app.read_bytes()
        self.app.write_bytes(data.replace(b"itself", b"its\xe9lf"))
        self.sees("is no UTF-8", self.app, self.line_of_bytes(data, b"itself"))

    def line_of_bytes(self, data, text):
        return data[:data.index(text)].count(b"\n") + 1

    # Mistakes in files of code.

    def test_tag_without_end(self):
        self.change(self.app, "\t#tag EndEvent\n", "")
        self.sees("EndClass ends no Class", self.app)
        self.sees("the tag Event has no end", self.app, 4)

    def test_end_without_tag(self):
        self.change(self.app, "\t#tag EndEvent\n", "\t#tag EndEvent\n\t#tag EndEvent\n")
        number = self.line_of(self.app, "#tag EndEvent") + 1
        self.sees("EndEvent ends no Event", self.app, number)

    def test_crossed_tags(self):
        self.plant("\t#tag EndEvent\n", "\t#tag EndMethod\n", "EndMethod ends no Method", self.app)

    def test_tag_in_a_wrong_place(self):
        self.plant("\t#tag Event\n", "\t#tag Getter\n", "the tag Getter stands in Class", self.app)

    def test_unknown_tag(self):
        self.plant("\t#tag Event\n", "\t#tag Happening\n", "the tag Happening is not known",
                   self.app)

    def test_malformed_tag(self):
        self.plant("\t#tag Event\n", "\t#tag\n", "is no tag", self.app)

    def test_indentation_of_tags(self):
        self.plant("\t#tag Event\n", "  #tag Event\n", "is not indented by 1 tabs", self.app)

    def test_indentation_of_end_tags(self):
        self.plant("\t#tag EndEvent\n", "#tag EndEvent\n", "EndEvent is not indented by 1 tabs",
                   self.app)

    def test_indentation_of_declarations(self):
        self.plant("\t\tFunction Run(", "\tFunction Run(", "is no declaration at two tabs",
                   self.app)

    def test_indentation_of_code(self):
        for new in ("\t\t Try\n", "\t\t   Try\n", "\t\t\tTry\n", "\t\tTry\n", "\t  Try\n"):
            with self.subTest(new):
                text = self.app.read_bytes()
                self.plant("\t\t  Try\n", new, "code is indented by two tabs", self.app)
                self.app.write_bytes(text)

    def test_deeper_code_is_accepted(self):
        self.change(self.app, "\t\t  Return 0\n", "\t\t      Return 0\n")
        self.assertEqual(self.check(), (0, "", ""))

    def test_empty_lines_of_code(self):
        for new in ("", "\t\t", "\t\t    "):
            with self.subTest(new):
                text = self.app.read_bytes()
                number = self.line_of(self.app, "// A file that cannot be read") - 1
                self.change(self.app, "\t\t  \n\t\t  // A file that cannot be read",
                            new + "\n\t\t  // A file that cannot be read")
                self.sees("code", self.app, number)
                self.app.write_bytes(text)

    def test_blanks_at_the_end_of_code(self):
        self.plant("\t\t  Try\n", "\t\t  Try \n", "has blanks at its end", self.app)

    def test_method_without_end(self):
        self.change(self.app, "\t\t  Return 0\n\t\tEnd Function\n", "\t\t  Return 0\n")
        self.sees("the body of this Event has no End Function", self.app)

    def test_method_that_ends_otherwise(self):
        self.change(self.app, "\t\t  Return 0\n\t\tEnd Function\n", "\t\t  Return 0\n\t\tEnd Sub\n")
        self.sees("the body of this Event has no End Function", self.app)

    def test_code_after_the_end(self):
        self.change(self.app, "\t\t  Return 0\n\t\tEnd Function\n",
                    "\t\t  Return 0\n\t\tEnd Function\n\t\t  Return 1\n")
        self.sees("stands behind the end", self.app)

    def test_flags_against_the_declaration(self):
        for new in ("Sub SaveFiles(", "Protected Sub SaveFiles("):
            with self.subTest(new):
                text = self.app.read_bytes()
                self.plant("Private Sub SaveFiles(", new, "the flags &h21 say Private", self.app)
                self.app.write_bytes(text)

    def test_flags_of_properties(self):
        path = self.example / "AttachmentSaver.xojo_code"
        self.plant("Private mFolder", "mFolder", "the flags &h21 say Private", path)

    def test_unknown_flags(self):
        path = self.example / "AttachmentSaver.xojo_code"
        self.change(path, "#tag Property, Flags = &h21", "#tag Property, Flags = &h7")
        self.sees("the flags '&h7' are not known", path)

    def test_indentation_of_properties_and_notes(self):
        path = self.example / "AttachmentSaver.xojo_code"
        self.plant("\t\tPrivate mFolder", "\tPrivate mFolder", "is not indented by two tabs", path)

    def test_lines_outside_of_members(self):
        self.plant("\t#tag Event\n", "\tx = 1\n\t#tag Event\n", "stands outside of all members",
                   self.app)

    def test_lines_outside_of_the_class(self):
        self.app.write_bytes(self.app.read_bytes() + b"x\n")
        self.sees("stands outside of the class", self.app)

    def test_no_view_behaviour(self):
        self.change(self.app, "\t#tag ViewBehavior\n\t#tag EndViewBehavior\n", "")
        self.sees("has no ViewBehavior block", self.app)

    def test_end_of_the_file(self):
        self.change(self.app, "End Class\n", "")
        self.sees("does not end in EndViewBehavior", self.app)

    def test_name_of_the_class(self):
        self.plant("Protected Class App\n", "Protected Class Application\n",
                   "instead of 'Protected Class App'", self.app)

    def test_kind_of_the_file(self):
        self.change(self.project, "Module=FileNames", "Class=FileNames")
        self.sees("instead of '#tag Class'", self.example / "FileNames.xojo_code", 1)

    def test_shared_files_are_checked(self):
        path = self.example.parent / "Shared" / "SafeText.xojo_code"
        self.change(path, "\t#tag ViewBehavior\n\t#tag EndViewBehavior\n", "")
        code, out, _ = self.check()
        self.assertEqual(code, 1)
        self.assertRegex(out, r"Shared/SafeText\.xojo_code:1: has no ViewBehavior block")

    # Mistakes in build steps.

    def steps(self):
        return self.example / "Build Automation.xojo_code"

    def test_frame_of_build_steps(self):
        self.change(self.steps(), "#tag BuildAutomation\n", "#tag Automation\n")
        self.sees("is not framed by the tags", self.steps())

    def test_indentation_of_build_steps(self):
        self.plant("\t\t\tBegin BuildStepList Linux", "\t\tBegin BuildStepList Linux",
                   "is not indented by 3 tabs", self.steps())

    def test_begin_without_end(self):
        text = self.steps().read_text("utf-8")
        self.steps().write_text(text.replace("\t\t\tEnd\n#tag", "#tag"), "utf-8")
        self.sees("this Begin has no End", self.steps(), 10)

    def test_end_without_begin(self):
        text = self.steps().read_text("utf-8")
        self.steps().write_text(text.replace("#tag End", "\t\t\tEnd\n#tag End"), "utf-8")
        self.sees("this End ends nothing", self.steps(), 14)


if __name__ == "__main__":
    checkers.main()
