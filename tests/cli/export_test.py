"""`zqv export`: many messages written into a folder."""

import json
import os
import pty
import re
import signal
import subprocess
import sys
import time
import unittest

import program
from program import SAMPLES, TIMEOUT, ZQV, environment, zqv

SAMPLE_NAMES = sorted(path.name for path in SAMPLES.glob("*.eml"))


def from_line():
    return "From someone@example.com Sat Jan  3 01:05:34 1996\n"


class ExportCase(program.TestCase):
    def export(self, *arguments, code=0, **options):
        """Runs the program in the test's folder. Returns the summary without the time, and the
        lines before it."""
        result = self.expect(zqv("export", *arguments, "--to", "out", cwd=self.folder, **options),
                             code, "", None)
        summary = result.err.splitlines()[-1]
        match = re.fullmatch(r"zqv: (exported .*), in [0-9.:]+( s)? \([0-9,]+ a second\)", summary)
        self.assertTrue(match, result)
        return match.group(1), result.err.splitlines()[:-1]

    def files(self):
        out = self.folder / "out"
        return sorted(str(path.relative_to(out)) for path in out.rglob("*") if not path.is_dir())

    def fill(self, count, folder="mail"):
        (self.folder / folder).mkdir()
        for i in range(count):
            self.write(f"{folder}/{i:05}.eml", f"Subject: number {i}\n\nx\n")


class FormTest(ExportCase):
    def test_json_equals_the_output_of_the_verb_json(self):
        summary, _ = self.export("-r", SAMPLES)
        self.assertEqual(summary, f"exported {len(SAMPLE_NAMES)} messages")
        for name in SAMPLE_NAMES:
            self.assertEqual((self.folder / "out/samples" / f"{name}.json").read_text("utf-8"),
                             zqv("json", "--attachments", "none", SAMPLES / name).out)

    def test_json_with_files(self):
        self.export("--attachments", "base64", SAMPLES / "attachments.eml")
        self.assertEqual((self.folder / "out/attachments.eml.json").read_text("utf-8"),
                         zqv("json", "--attachments", "base64", SAMPLES / "attachments.eml").out)

    def test_raw_json(self):
        self.export("--raw", SAMPLES / "plain.eml")
        self.assertEqual((self.folder / "out/plain.eml.json").read_text("utf-8"),
                         zqv("json", "--raw", "--attachments", "none",
                             SAMPLES / "plain.eml").out)

    def test_texts_and_files(self):
        self.export("--form", "text,html", "--form", "attachments", SAMPLES / "attachments.eml")
        self.assertEqual(self.files(), [
            "attachments.eml.files/figures-q1.pdf", "attachments.eml.files/Übersicht Süd.png",
            "attachments.eml.html", "attachments.eml.txt"])
        out = self.folder / "out"
        self.assertEqual((out / "attachments.eml.txt").read_text("utf-8"),
                         zqv("text", SAMPLES / "attachments.eml").out)
        self.assertEqual((out / "attachments.eml.html").read_text("utf-8"),
                         zqv("html", SAMPLES / "attachments.eml").out)
        zqv("extract", SAMPLES / "attachments.eml", "--dir", self.folder / "one")
        for file in (self.folder / "one").iterdir():
            self.assertEqual((out / "attachments.eml.files" / file.name).read_bytes(),
                             file.read_bytes())

    def test_absent_texts_get_no_file(self):
        summary, _ = self.export("--form", "html,attachments", SAMPLES / "plain.eml")
        self.assertEqual((summary, self.files()), ("exported 1 message", []))


class PlaceTest(ExportCase):
    def test_folders_are_kept(self):
        (self.folder / "mail/sub").mkdir(parents=True)
        self.write("mail/a.eml", "Subject: a\n\nx\n")
        self.write("mail/sub/a.eml", "Subject: b\n\nx\n")
        self.export("-r", "mail")
        self.assertEqual(self.files(), ["mail/a.eml.json", "mail/sub/a.eml.json"])

    def test_messages_of_a_mailbox(self):
        self.write("a.mbox", from_line() + "Subject: a\n\nx\n\n" + from_line() + "Subject: b\n\nx\n")
        self.export("a.mbox")
        self.assertEqual(self.files(), ["a.mbox/000001.json", "a.mbox/000002.json"])
        document = json.loads((self.folder / "out/a.mbox/000002.json").read_text())
        self.assertEqual((document["file"], document["message"]["subject"]), ("a.mbox#2", "b"))

    def test_standard_input(self):
        self.export("-", stdin=b"Subject: a\n\nx\n")
        self.assertEqual(self.files(), ["stdin.json"])

    def test_inputs_of_equal_names_get_different_files(self):
        for folder in ("one", "two"):
            self.fill(1, folder)
        self.export("one/00000.eml", "two/00000.eml")
        self.assertEqual(self.files(), ["00000 (2).eml.json", "00000.eml.json"])

    def test_the_folder_itself_and_the_one_above(self):
        self.fill(1)
        self.export("-r", "mail/../mail/.")
        self.assertEqual(self.files(), ["mail/00000.eml.json"])

    def test_a_link_at_the_output_path_is_not_followed(self):
        self.fill(1)
        (self.folder / "elsewhere").mkdir()
        (self.folder / "out").mkdir()
        (self.folder / "out/mail").symlink_to(self.folder / "elsewhere")
        summary, errors = self.export("-r", "mail", code=1)
        self.assertEqual(summary, "exported 0 messages, 1 failed")
        self.assertEqual(errors, ["zqv: mail/00000.eml: out/mail: Not a directory"])
        self.assertEqual(list((self.folder / "elsewhere").iterdir()), [])


class AgainTest(ExportCase):
    def test_existing_output_is_refused(self):
        self.fill(2)
        self.export("-r", "mail")
        summary, errors = self.export("-r", "mail", code=1)
        self.assertEqual(summary, "exported 0 messages, 2 failed")
        self.assertEqual(errors[0], "zqv: mail/00000.eml: out/mail/00000.eml.json is there already; "
                                    "--skip-existing or --force")

    def test_existing_output_is_skipped_on_request(self):
        self.fill(3)
        self.export("-r", "mail")
        kept = self.folder / "out/mail/00000.eml.json"
        kept.write_text("kept")
        (self.folder / "out/mail/00001.eml.json").unlink()
        summary, _ = self.export("-r", "mail", "--skip-existing")
        self.assertEqual(summary, "exported 1 message, 2 were there already")
        self.assertEqual(kept.read_text(), "kept")

    def test_absent_texts_do_not_count_as_missing(self):
        forms = ["--form", "json,html,attachments"]
        self.export(SAMPLES / "plain.eml", *forms)
        summary, _ = self.export(SAMPLES / "plain.eml", *forms, "--skip-existing")
        self.assertEqual(summary, "exported 0 messages, 1 was there already")

    def test_a_form_that_is_missing_is_added(self):
        self.fill(1)
        self.export("-r", "mail")
        summary, _ = self.export("-r", "mail", "--skip-existing", "--form", "json,text")
        self.assertEqual(summary, "exported 1 message")
        self.assertEqual(self.files(), ["mail/00000.eml.json", "mail/00000.eml.txt"])

    def test_replaced_on_request(self):
        self.export("--form", "json,attachments", SAMPLES / "attachments.eml")
        first = self.files()
        for name in first:
            (self.folder / "out" / name).write_text("old")
        other = self.write("out/attachments.eml.files/mine.txt", "mine")
        self.export("--form", "json,attachments", "--force", SAMPLES / "attachments.eml")
        self.assertEqual(other.read_text(), "mine")
        for name in first:
            self.assertNotEqual((self.folder / "out" / name).read_bytes(), b"old", name)

    def test_an_unfinished_folder_of_a_killed_run_is_replaced(self):
        left = self.folder / "out/.attachments.eml.files.unfinished"
        left.mkdir(parents=True)
        (left / "half.pdf").write_text("half")
        self.export("--form", "attachments", SAMPLES / "attachments.eml")
        self.assertEqual(self.files(), ["attachments.eml.files/figures-q1.pdf",
                                        "attachments.eml.files/Übersicht Süd.png"])
        self.assertFalse(left.exists())


class FailureTest(ExportCase):
    def fill_with_bad_ones(self):
        self.fill(20)
        self.write("mail/00003.eml", b"\xFFjunk")
        self.write("mail/00007.eml", b"")

    def check_bad_ones(self, summary, errors):
        self.assertEqual(summary, "exported 18 messages, 2 failed")
        self.assertEqual(sorted(errors), [
            "zqv: mail/00003.eml: UnsupportedOperationException: "
            "Email must start with an header text. BOM character?",
            "zqv: mail/00007.eml: UnsupportedOperationException: Can't parse empty text."])
        self.assertEqual(len(self.files()), 18)

    def test_one_process(self):
        self.fill_with_bad_ones()
        self.check_bad_ones(*self.export("-r", "mail", code=1))

    def test_several_processes(self):
        self.fill_with_bad_ones()
        self.check_bad_ones(*self.export("-r", "mail", "--jobs", "3", code=1))

    def test_a_folder_that_cannot_be_written(self):
        self.fill(1)
        (self.folder / "out").mkdir(mode=0o500)
        result = zqv("export", "-r", "mail", "--to", "out", program=self.copy_program(),
                     cwd=self.folder, **program.as_nobody())
        self.assertEqual(result.code, 1, result)
        self.assertRegex(result.err, r"\Azqv: mail/00000\.eml: out/mail: Permission denied\n"
                                     r"zqv: exported 0 messages, 1 failed, .*\n\Z")

    def test_a_file_in_place_of_the_folder(self):
        self.write("out", "x")
        self.expect(zqv("export", SAMPLES / "plain.eml", "--to", "out", cwd=self.folder), 1, "",
                    "zqv: out: Not a directory\n")

    def wait_for_state(self, process, state):
        """Waits until a process has a state of /proc: S is waiting, Z has ended."""
        deadline = time.monotonic() + TIMEOUT
        while True:
            with open(f"/proc/{process}/stat", encoding="ascii") as file:
                if file.read().rpartition(")")[2].split()[0] == state:
                    return
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.01)

    def test_workers_that_are_killed_lose_the_message_at_hand_and_are_replaced(self):
        for name in ("first", "second"):
            os.mkfifo(self.folder / name)
        self.fill(10)
        self.fill(10, "more")
        with subprocess.Popen([ZQV, "export", "-r", "mail", "first", "second", "more", "--to",
                               "out", "--jobs", "2"], cwd=self.folder, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              env=environment()) as run:
            deadline = time.monotonic() + TIMEOUT
            while len(list((self.folder / "out").glob("mail/*.json"))) < 10:
                self.assertLess(time.monotonic(), deadline)
                time.sleep(0.01)
            with open(f"/proc/{run.pid}/task/{run.pid}/children", encoding="ascii") as file:
                workers = [int(word) for word in file.read().split()]
            self.assertEqual(len(workers), 2)
            for worker in workers:
                self.wait_for_state(worker, "S")  # it has also reported its last message
                os.kill(worker, signal.SIGSTOP)
            (self.folder / "first").write_bytes(b"Subject: x\n\ny\n")
            # Opening succeeds when the program opens the other end, after a stopped worker was
            # given the first pipe.
            with open(self.folder / "second", "wb") as pipe:
                for worker in workers:
                    os.kill(worker, signal.SIGKILL)
                    self.wait_for_state(worker, "Z")
                pipe.write(b"Subject: x\n\ny\n")
            _, err = run.communicate(timeout=TIMEOUT)
        self.assertEqual(run.returncode, 1)
        self.assertRegex(err.decode(),
                         r"\Azqv: first: the process was ended by a signal: Killed\n"
                         r"zqv: exported 21 messages, 1 failed, .*\n\Z")
        self.assertEqual(len(self.files()), 21)


class SharesTest(ExportCase):
    def test_several_processes_write_the_same(self):
        self.export("-r", SAMPLES)
        one = {name: (self.folder / "out" / name).read_bytes() for name in self.files()}
        self.export("-r", SAMPLES, "--force", "--jobs", "4")
        self.assertEqual(one, {name: (self.folder / "out" / name).read_bytes()
                               for name in self.files()})

    def test_shards_are_the_whole_without_overlap(self):
        self.fill(60)
        done = []
        for share in ("1/3", "2/3", "3/3"):
            before = set(self.files()) if done else set()
            self.export("-r", "mail", "--shard", share, "--skip-existing")
            done.append(len(set(self.files()) - before))
        self.assertEqual(sum(done), 60)
        self.assertEqual(len(self.files()), 60)
        self.assertTrue(all(5 <= count <= 35 for count in done), done)

    def test_a_shard_does_not_depend_on_where_the_folder_is(self):
        self.fill(30)
        self.export("-r", "mail", "--shard", "2/3")
        here = self.files()
        self.assertTrue(here)
        (self.folder / "elsewhere").mkdir()
        (self.folder / "mail").rename(self.folder / "elsewhere/mail")
        self.expect(zqv("export", "-r", self.folder / "elsewhere/mail", "--shard", "2/3", "--to",
                        self.folder / "other"), 0, "", None)
        self.assertEqual(here, sorted(str(path.relative_to(self.folder / "other"))
                                      for path in (self.folder / "other").rglob("*.json")))

    def test_one_message_of_many(self):
        self.fill(3)
        self.export("-r", "mail", "--message", "2")
        self.assertEqual(self.files(), ["mail/00001.eml.json"])


@unittest.skipIf("asan" in str(ZQV), "the sanitizer keeps what was freed")
class MemoryTest(ExportCase):
    def peak(self, *arguments):
        """The largest memory of a run, in kilobytes. A small process starts the run, because the
        memory of the starting process counts too."""
        run = subprocess.run([sys.executable, "-c", self.PEAK, ZQV, "export", *arguments,
                              "--to", self.folder / "out"], stdout=subprocess.PIPE,
                             stderr=subprocess.DEVNULL, env=environment(), check=True)
        return int(run.stdout)

    PEAK = ("import resource, subprocess, sys\n"
            "subprocess.run(sys.argv[1:], check=True)\n"
            "print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)\n")

    def test_does_not_grow_with_the_messages(self):
        """The stand-in host keeps freed memory up to a limit, which 1,000 messages reach."""
        peaks = []
        for count in (1000, 8000):
            name = f"of-{count}"
            self.fill(count, name)
            peaks.append(self.peak("-r", self.folder / name))
        self.assertGreater(peaks[0], 5000)
        self.assertLess(peaks[1], peaks[0] + 2048)

    def test_does_not_grow_with_a_mailbox(self):
        mailbox = self.write("many.mbox", 30_000 * (from_line() + "Subject: x\n\n" +
                                                    2000 * "y" + "\n\n"))
        size = mailbox.stat().st_size // 1024
        self.assertGreater(size, 55_000)
        self.assertLess(self.peak(mailbox, "--shard", "1/1000"), size / 2)


class ProgressTest(ExportCase):
    def on_terminal(self, *arguments):
        """The bytes that a terminal receives on standard error."""
        primary, secondary = pty.openpty()
        with subprocess.Popen([ZQV, "export", *arguments], cwd=self.folder, stderr=secondary,
                              stdin=subprocess.DEVNULL, env=environment()) as run:
            os.close(secondary)
            text = b""
            while True:
                try:
                    piece = os.read(primary, 4096)
                except OSError:  # the other end is closed
                    break
                if not piece:
                    break
                text += piece
        os.close(primary)
        self.assertEqual(run.returncode, 0)
        return text.decode()

    def test_the_line_is_erased_at_the_end(self):
        os.mkfifo(self.folder / "pipe")
        self.fill(1)
        pid = os.fork()
        if pid == 0:  # waits until there is progress to show
            time.sleep(0.5)
            (self.folder / "pipe").write_text("Subject: x\n\ny\n")
            os._exit(0)
        text = self.on_terminal("-r", "mail", "pipe", "--to", "out")
        os.waitpid(pid, 0)
        self.assertRegex(text, r"\A\r\x1B\[K2 messages, 100 %\r\x1B\[K"
                               r"zqv: exported 2 messages, in .*\r\n\Z")

    def test_no_progress_without_a_terminal(self):
        self.fill(2)
        _, lines = self.export("-r", "mail")
        self.assertEqual(lines, [])


if __name__ == "__main__":
    unittest.main()
