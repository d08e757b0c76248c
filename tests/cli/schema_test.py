"""docs/schema.json describes every JSON document that the program prints.

  schema_test.py --mail FOLDER   checks those of all messages in a folder, and counts them
"""

import copy
import json
import os
import pathlib
import re
import subprocess
import sys
import unittest

import jsonschema

import program
from program import SAMPLES, zqv

SOURCE = pathlib.Path(os.environ["ZQV_SOURCE"])
SCHEMA = json.loads((SOURCE / "docs/schema.json").read_text())
VALIDATOR = jsonschema.Draft202012Validator(SCHEMA)
ON_MESSAGES = (["json"], ["json", "--raw"], ["show", "--json"], ["headers", "--json"],
               ["tree", "--json"], ["list", "--json"], ["addresses", "--json"],
               ["check", "--json"], ["scan", "--jsonl"], ["json", "--attachments", "base64"],
               ["json", "--attachments", "none", "--lines"], ["headers", "--classes", "--json"])
OTHERS = (["decode", "--json", "a", "=?utf-8?Q?b?="], ["classes", "--json"],
          ["bench", "--json", "--rounds", "1", SAMPLES / "plain.eml"])
# Hosts without some entry points, and texts in unknown encodings.
ODD = (b"Subject: \xE9\nFrom: a: ;\nContent-Type: text/plain; charset=x-new\n\n\xE9\n",
       b"Content-Type: multipart/mixed; boundary=b\n\n--b\n\n--b--\n",
       b":\n\n", b"x", b"Date: x\nReceived: y\n\n")


def each_document(text):
    """The JSON documents in a text that has several, one after the other."""
    decoder = json.JSONDecoder()
    at = re.compile(r"\s*").match(text).end()
    while at < len(text):
        document, at = decoder.raw_decode(text, at)
        at = re.compile(r"\s*").match(text, at).end()
        yield document


def documents(text):
    return list(each_document(text))


def problem_of(document):
    """The first violation of the schema; None when there is none."""
    return jsonschema.exceptions.best_match(VALIDATOR.iter_errors(document))


def check_mail(folder):
    """Prints the violations and returns the number of documents that have one."""
    wrong = 0
    for verb in ON_MESSAGES:
        run = subprocess.run([program.ZQV, *verb, "--recursive", folder], stdout=subprocess.PIPE,
                             stderr=subprocess.DEVNULL, env=program.environment(), check=False)
        count = 0
        for document in each_document(run.stdout.decode()):
            count += 1
            if problem := problem_of(document):
                wrong += 1
                print(document.get("file"), verb, problem.json_path, problem.message[:200])
        print(" ".join(verb), count, "documents, exit code", run.returncode, flush=True)
    return wrong


class SchemaTest(program.TestCase):
    def check(self, *arguments, count):
        found = documents(zqv(*arguments).out)
        self.assertEqual(len(found), count)
        for document in found:
            problem = problem_of(document)
            self.assertIsNone(problem, problem)
        return found

    def test_the_schema_is_one(self):
        jsonschema.Draft202012Validator.check_schema(SCHEMA)

    def test_samples(self):
        samples = sorted(SAMPLES.glob("*.eml"))
        for verb in ON_MESSAGES:
            with self.subTest(verb):
                self.check(*verb, *samples, count=len(samples))

    def test_malformed_messages_and_incomplete_hosts(self):
        for i, data in enumerate(ODD):
            path = self.write(f"{i}.eml", data)
            for verb in ON_MESSAGES:
                for host in ([], ["--without", "RuntimeArrayCreateSingleDimBoundedArray"],
                             ["--without", "PluginNewInstance"]):
                    with self.subTest(verb=verb, data=data, host=host):
                        self.check(*verb, "--input", "message", path, *host, count=1)

    def test_documents_about_no_message(self):
        for verb in OTHERS:
            with self.subTest(verb):
                self.check(*verb, count=1)

    def test_the_codes_of_findings_are_those_of_program_and_document(self):
        finding = next(document for document in SCHEMA["oneOf"]
                       if document["title"] == "zqv check --json"
                       )["properties"]["findings"]["items"]
        codes = finding["properties"]["code"]["enum"]
        source = (SOURCE / "cli/findings.cc").read_text()
        in_program = re.findall(r'\{FindingKind::\w+,\s*"([a-z0-9-]+)"', source)
        self.assertEqual(codes, list(dict.fromkeys(in_program)))
        section = (SOURCE / "docs/zqv.md").read_text().split("## Check")[1].split("\n## ")[0]
        self.assertEqual(codes, re.findall(r"(?m)^\| `([a-z0-9-]+)` \|", section))

    def test_reports_what_is_wrong(self):
        good = self.check("show", "--json", SAMPLES / "attachments.eml", count=1)[0]
        for break_it in (lambda d: d.update(more=1),
                         lambda d: d.pop("file"),
                         lambda d: d.update(format_version=2),
                         lambda d: d["summary"].pop("subject"),
                         lambda d: d["summary"].update(more=1),
                         lambda d: d["summary"].update(date="yesterday"),
                         lambda d: d["summary"]["attachments"][0].update(part="2."),
                         lambda d: d["summary"]["attachments"][0].update(bytes="665")):
            bad = copy.deepcopy(good)
            break_it(bad)
            self.assertFalse(VALIDATOR.is_valid(bad), bad)


if __name__ == "__main__":
    if sys.argv[1:2] == ["--mail"]:
        sys.exit(1 if check_mail(sys.argv[2]) else 0)
    unittest.main()
