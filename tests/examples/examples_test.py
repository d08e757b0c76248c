"""What is shown to users passes the checkers: the example projects and the code in the pages."""

import re

import checkers
from checkers import EXAMPLES, PROJECTS, TOP

# Pages whose code is checked.
PAGES = ["README.md", "docs/reference.md"]


def folded(text):
    return " ".join(text.split())


class ExamplesTest(checkers.TestCase):
    def test_projects(self):
        folders = [EXAMPLES / name for name in PROJECTS]
        self.assertEqual(checkers.run_script("check_project.py", *folders), (0, "", ""))

    def test_every_folder_of_examples_is_known(self):
        found = {path.parent.name for path in EXAMPLES.glob("*/*.xojo_project")}
        self.assertEqual(found, set(PROJECTS))

    def test_shared_modules_are_used(self):
        for module in (EXAMPLES / "Shared").glob("*.xojo_code"):
            for name in PROJECTS:
                project = (EXAMPLES / name / f"{name}.xojo_project").read_text("utf-8")
                self.assertIn(f";../Shared/{module.name};", project)

    def test_uses_of_the_classes(self):
        for name in PROJECTS:
            with self.subTest(name):
                self.expect_no_fault(EXAMPLES / name, EXAMPLES / "Shared")

    def test_code_in_pages(self):
        for name in PAGES:
            with self.subTest(name):
                self.expect_no_fault(TOP / name)

    def expect_no_fault(self, *paths):
        report = self.check_usage(*paths)
        self.assertEqual(report.faults, [])
        self.assertGreater(report.uses, 10)

    def test_every_misspelt_member_is_seen(self):
        """Each use of a member of our classes is really looked at."""
        examples = self.copy_examples()
        names = set(re.findall(r'(?:property |method ")(\w+)', self.classes()))
        planted = 0
        for file in sorted(examples.glob("*/*.xojo_code")):
            text = file.read_text("utf-8")
            for use in re.finditer(r"\.(\w+)", text):
                line = text[:use.end()].count("\n") + 1
                if use[1] not in names or "//" in text.split("\n")[line - 1]:
                    continue
                planted += 1
                with self.subTest(f"{file.name}:{line}: {use[1]}"):
                    file.write_text(text[:use.end()] + "Zz" + text[use.end():], "utf-8")
                    faults = "\n".join(self.check_usage(examples).faults)
                    self.assertRegex(faults, rf"{file.name}:{line}: .*\bmember {use[1]}Zz\b")
            file.write_text(text, "utf-8")
        self.assertGreater(planted, 30)

    def test_readme_of_examples_says_that_no_ide_has_opened_them(self):
        text = folded((EXAMPLES / "README.md").read_text("utf-8"))
        self.assertIn("No IDE has opened these files so far.", text)

    def test_manual_page_tells_of_every_verb_and_option(self):
        page = (TOP / "packaging" / "zqv.1").read_text("utf-8")
        for option in self.help_options():
            self.assertRegex(page, rf"Fl -?{re.escape(option[1:])}\b", option)
        for verb in self.help_verbs():
            self.assertRegex(page, rf"(?m)^\.It Cm {verb}\b", verb)

    def help_verbs(self):
        verbs = re.findall(r"(?m)^  (\w+) ", self.help().split("\nVerbs", 1)[1])
        self.assertGreater(len(verbs), 10)
        return verbs

    def help_options(self):
        texts = [self.help()] + [self.help(verb) for verb in self.help_verbs()]
        options = {option for text in texts for option in re.findall(r"--?[a-z][a-z-]*", text)
                   if re.search(rf"(?m)^  (-h,)?{option}\b", text)}
        self.assertIn("--host-version", options)
        self.assertIn("--force", options)
        return options

    def help(self, *verb):
        run = checkers.subprocess.run([self.zqv, *verb, "--help"], capture_output=True,
                                      encoding="utf-8", timeout=checkers.TIMEOUT, check=True)
        return run.stdout


if __name__ == "__main__":
    checkers.main()
