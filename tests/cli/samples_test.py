"""Every sample with `show`, and some with the other verbs. The expected values were read from the
samples by hand. Sizes are those of the parts as Python's mail package decodes them."""

import email
import email.utils
import re
import unittest

import program
from program import SAMPLES, zqv


def decoded(sample, *path):
    """The decoded bytes of a part of a sample. `path` has the indexes of the parts, from 0,
    outermost first."""
    part = email.message_from_bytes((SAMPLES / sample).read_bytes())
    for index in path:
        part = part.get_payload(index)
    return part.get_payload(decode=True)


def size(sample, *path):
    return len(decoded(sample, *path))


# For each sample: the labelled lines as {label: values}, and one line of the plain text. It is the
# first line, unless the text was made from HTML. None means that there is no text.
EXPECTED = {
    "plain.eml": (
        {
            "Subject": ["Keys"],
            "Date": ["2024-01-20 18:00:00"],
            "From": ["Ada Moss <ada@example.com>"],
            "To": ["Ben Reed <ben@example.org>"],
        },
        "Your keys are under the blue flower pot.",
    ),
    "newsletter.eml": (
        {
            "Subject": ["June letter: summer hours, new books and a café evening ☕"],
            "Date": ["2024-06-03 07:15:18"],
            "Received": ["2024-06-03 07:15:20"],
            "From": ["Harbour Lane Library – Zoë Marten <letters@example.org>"],
            "To": ["Tomas Riva <tomas.riva@example.net>"],
            "Reply-To": ["Front desk <desk@example.org>"],
            "HTML": [f"{size('newsletter.eml', 1)} bytes"],
            "Parts": ["2"],
        },
        "Harbour Lane Library – June letter",
    ),
    "html-only.eml": (
        {
            "Subject": ["Your order № 10-4471"],
            "Date": ["2024-05-30 19:10:30"],
            "Received": ["2024-05-30 19:10:33"],
            "From": ["Tea & Things <shop@example.net>"],
            "To": ["rosa.lind@example.org"],
            "HTML": [f"{size('html-only.eml')} bytes"],
        },
        "It leaves our house tomorrow.",
    ),
    "attachments.eml": (
        {
            "Subject": ["Quarterly figures and the chart"],
            "Date": ["2024-04-16 14:02:05"],
            "Received": ["2024-04-16 14:02:09"],
            "From": ["Lena Brandt <lena.brandt@example.com>"],
            "To": ['"Board, The" <board@example.org>'],
            "Cc": ["Kofi Adjei <kofi@example.org>", "archive@example.org"],
            "HTML": [f"{size('attachments.eml', 0, 1)} bytes"],
            "Parts": ["5"],
            "Attachments": [
                "2",
                f"figures-q1.pdf     application/pdf  {size('attachments.eml', 1)} bytes",
                f"Übersicht Süd.png  image/png        {size('attachments.eml', 2)} bytes",
            ],
        },
        "Dear all,",
    ),
    "inline-images.eml": (
        {
            "Subject": ["Two pictures in the text"],
            "Date": ["2024-08-11 16:25:00"],
            "Received": ["2024-08-11 16:25:03"],
            "From": ["Elias Berg <elias@example.com>"],
            "To": ["family@example.net"],
            "HTML": [f"{size('inline-images.eml', 0)} bytes"],
            "Parts": ["3"],
            "Inline parts": [
                "2",
                f"bar.png       image/png  {size('inline-images.eml', 1)} bytes",
                f"dot@walk.gif  image/gif   {size('inline-images.eml', 2)} bytes",
            ],
        },
        "The path – see the bar:",
    ),
    "single-image.eml": (
        {
            "Subject": ["sunny"],
            "Date": ["2024-07-07 17:20:40"],
            "Received": ["2024-07-07 17:20:45"],
            "From": ["Amal Haddad <amal@example.net>"],
            "To": ["nina@example.com"],
            "Inline parts": ["1", f"sunny.png  image/png  {size('single-image.eml')} bytes"],
        },
        None,
    ),
    "nested.eml": (
        {
            "Subject": ["Your ticket 881 was answered"],
            "Date": ["2024-09-13 16:45:10"],
            "Received": ["2024-09-13 16:45:12"],
            "From": ["Help desk <helpdesk@example.org>"],
            "Sender": ["Olu Banjo <olu@example.org>"],
            "To": ["Petra Novak <petra@example.com>"],
            "HTML": [f"{size('nested.eml', 0, 0, 1)} bytes"],
            "Parts": ["9"],
            "Attachments": [
                "2",
                "your message.eml  message/rfc822  533 bytes",
                f"pages.csv         text/csv         {size('nested.eml', 1, 0, 1)} bytes",
            ],
            "Inline parts": ["1", f"logo.gif  image/gif  {size('nested.eml', 0, 1)} bytes"],
        },
        "Hello Petra,",
    ),
    "signed.eml": (
        {
            "Subject": ["Minutes of 4 November"],
            "Date": ["2024-11-05 07:55:16"],
            "Received": ["2024-11-05 07:55:19"],
            "From": ["Marta Quill <marta@example.org>"],
            "To": ["Secretary <secretary@example.com>"],
            "Parts": ["2"],
            "Attachments": [
                "1",
                f"smime.p7s  application/pkcs7-signature  {size('signed.eml', 1)} bytes",
            ],
        },
        "I, Marta Quill, agree to the minutes of the meeting of 4 November.",
    ),
    "calendar.eml": (
        {
            "Subject": ["Invitation: Planning round"],
            "Date": ["2024-10-02 07:30:01"],
            "Received": ["2024-10-02 07:30:04"],
            "From": ["Room bookings <rooms@example.com>"],
            "To": ["Iris Tanaka <iris@example.org>"],
            "Attachments": ["1", f"attachment  text/calendar  {size('calendar.eml')} bytes"],
        },
        "BEGIN:VCALENDAR",
    ),
    "group-addresses.eml": (
        {
            "Subject": ["Winter training"],
            "Date": ["2024-12-09 06:00:10"],
            "Received": ["2024-12-09 06:00:12"],
            "From": ['"Rowing Club (Office)" <office@example.net>', "Tarek <tarek@example.net>"],
            "Sender": ["Office <office@example.net>"],
            "To": [
                'Crew: Hanna Stein <hanna@example.com>, "Lowe, Sam" <sam@example.com>, '
                "jo@example.org;"
            ],
            "Cc": ["Old route <@relay.example.org,@hub.example.net:vera@example.com>"],
            "Bcc": ["undisclosed-recipients:;"],
            "Reply-To": ["@relay.example.org:office@example.net"],
        },
        "Training is on Thursdays at 18:30, in the small hall.",
    ),
    "german-latin1.eml": (
        {
            "Subject": ["Re: Stühle für das Café"],
            "Date": ["2001-02-21 10:47:33"],
            "Received": ["2001-02-21 10:47:50"],
            "From": ["Jörg Weißhaupt <werkstatt@example.com>"],
            "To": ["Käthe Köster <k.koester@example.org>"],
        },
        "Liebe Frau Köster,",
    ),
    "russian-koi8.eml": (
        {
            "Subject": ["Расписание поездов"],
            "Date": ["2004-05-07 15:22:41"],
            "Received": ["2004-05-07 15:22:48"],
            "From": ["Вера Лескова <vera@example.com>"],
            "To": ["Павел <pavel@example.net>"],
        },
        "Здравствуйте, Павел!",
    ),
    "japanese.eml": (
        {
            "Subject": ["来週の打ち合わせについて"],
            "Date": ["2024-01-11 01:31:02"],
            "Received": ["2024-01-11 01:31:07"],
            "From": ["小川 ゆかり <ogawa@example.net>"],
            "To": ["森田 <morita@example.com>"],
        },
        "森田様",
    ),
    "japanese-utf8.eml": (
        {
            "Subject": ["春の展示会のお知らせ(四月六日)🌸"],
            "Date": ["2024-03-17 23:04:38"],
            "Received": ["2024-03-17 23:04:41"],
            "From": ["写真部 <photo-club@example.org>"],
            "To": ["members@example.net"],
        },
        "皆さん",
    ),
    "mac-roman.eml": (
        {
            "Subject": ["la photocopie"],
            "Date": ["1996-03-12 14:39:00"],
            "Received": ["1996-03-12 14:40:02"],
            "From": ["gerard@example.org (Gerard Petit)"],
            "To": ["noelle@example.com"],
        },
        "Chère Noëlle,",
    ),
    # The broken subject, date and HTML are not checked here, see DOUBTFUL.
    "malformed.eml": (
        {
            "Received": ["2019-02-26 23:01:00"],  # 2 March, 25:61, minus 99 hours
            "From": ["Unit 7 <unit7@example.com"],
            "To": ["ops@example.net", "broken <broken@"],
            "Parts": ["3"],
            "Attachments": ["1", f"lost.bin  application/octet-stream  39 bytes"],
        },
        "Unit 7 reports: door ajar, temperature 21\\xB0, humidity 60 %.",
    ),
}

# Entries that must be present, whatever their value.
DOUBTFUL = {"malformed.eml": {"Subject", "Date", "HTML"}}


def read_entries(lines):
    """The labelled lines as {label: values}, and the column in which the values begin."""
    entries = {}
    columns = set()
    values = None
    for line in lines:
        match = re.fullmatch(r"([A-Z][A-Za-z -]*): +(\S.*)|( +)(\S.*)", line)
        if not match:
            raise AssertionError(f"no labelled line: {line!r}")
        if match[1]:
            values = entries.setdefault(match[1], [])
            columns.add(match.start(2))
        else:
            columns.add(match.start(4))
        values.append(match[2] or match[4])
    return entries, columns


class ShowTest(program.TestCase):
    def test_every_sample_is_known_here(self):
        self.assertEqual(sorted(file.name for file in SAMPLES.glob("*.eml")), sorted(EXPECTED))

    def check(self, sample):
        expected, first_line = EXPECTED[sample]
        result = self.expect(zqv("show", SAMPLES / sample))
        head, separator, text = result.out.partition("\n\n")
        entries, columns = read_entries(head.rstrip("\n").split("\n"))
        for label in DOUBTFUL.get(sample, ()):
            self.assertTrue(entries.pop(label))
        if "Date" in expected:
            written = email.message_from_bytes((SAMPLES / sample).read_bytes())["Date"]
            expected = {**expected, "Date": [
                email.utils.parsedate_to_datetime(written).isoformat(),
                expected["Date"][0] + " as the classes give it"]}
        self.assertEqual(entries, expected)
        self.assertEqual(len(columns), 1, "values are not aligned")
        if first_line is None:
            self.assertEqual((separator, text), ("", ""))
            return
        lines = text.split("\n")
        made_from_html = "text/plain" not in (SAMPLES / sample).read_text("latin-1")
        if made_from_html and first_line != "BEGIN:VCALENDAR":
            self.assertIn(first_line, lines)
        else:
            self.assertEqual(lines[0], first_line)
        self.assertEqual(lines[-1], "", "the last line has no end")

    def test_samples(self):
        for sample in EXPECTED:
            with self.subTest(sample):
                self.check(sample)

    def test_standard_input_shows_the_same(self):
        for sample in EXPECTED:
            with self.subTest(sample):
                by_name = self.expect(zqv("show", SAMPLES / sample))
                by_input = self.expect(zqv("show", "-", stdin=(SAMPLES / sample).read_bytes()))
                self.assertEqual(by_name.out, by_input.out)

    def test_whole_text(self):
        result = self.expect(zqv("show", SAMPLES / "plain.eml"))
        self.assertEqual(
            result.out,
            "Subject: Keys\n"
            "Date:    2024-01-20T18:00:00+00:00\n"
            "         2024-01-20 18:00:00 as the classes give it\n"
            "From:    Ada Moss <ada@example.com>\n"
            "To:      Ben Reed <ben@example.org>\n"
            "\n"
            "Your keys are under the blue flower pot.\n"
            "\n"
            "Ada\n")

    def test_addresses_as_they_are_written(self):
        path = self.write("odd.eml", 'Content-Type: text/plain\nFrom: "x" (<c@d.org>)\n'
                                     "Sender: @b.c\nTo: nobody\n"
                                     "Cc: , =?utf-8?q?=C3=84nn?= <ann@example.com>,\n"
                                     'Bcc: "Moss, Ada" <ada@example.com>; "Ben" <b@c>\n\nhello')
        self.expect(zqv("show", path), out=(
            'From:   "x" (<c@d.org>)\n'
            "Sender: @b.c\n"
            "To:     nobody\n"
            "Cc:     Änn <ann@example.com>\n"
            'Bcc:    "Moss, Ada" <ada@example.com>\n'
            "        Ben <b@c>\n"
            "\n"
            "hello\n"))

    def test_dates_in_their_own_zone(self):
        rows = {"Mon, 1 Jan 2024 00:30:00 -0330": "2024-01-01T00:30:00-03:30",
                "1 Jul 99 7:05 EDT": "1999-07-01T07:05:00-04:00",
                "Fri, 29 Feb 2008 23:59:60 +1400 (x)": "2008-02-29T23:59:60+14:00",
                "1 Jan 2024 10:00:00": "2024-01-01T10:00:00-00:00",
                "1 Jan 2024 10:00:00 -0000": "2024-01-01T10:00:00-00:00"}
        for value, date in rows.items():
            with self.subTest(value):
                result = self.expect(zqv("show", "-", stdin=f"Date: {value}\n\nx".encode()))
                self.assertEqual(result.out.splitlines()[0], f"Date: {date}")

    def test_absent_things_take_no_line(self):
        path = self.write("bare.eml", "Content-Type: text/plain\n\n")
        self.expect(zqv("show", path), out="")

    def test_several_files_have_headings(self):
        plain = SAMPLES / "plain.eml"
        image = SAMPLES / "single-image.eml"
        one = zqv("show", plain).out
        other = zqv("show", image).out
        self.expect(zqv("show", plain, image),
                    out=f"==> {plain} <==\n{one}\n==> {image} <==\n{other}")


class TreeTest(program.TestCase):
    def test_leaf(self):
        self.expect(zqv("tree", SAMPLES / "plain.eml"),
                    out=f"0  text/plain  {size('plain.eml')}\n")

    def test_attachments(self):
        sizes = [size("attachments.eml", *path) for path in ((0, 0), (0, 1), (1,), (2,))]
        self.assertEqual([len(str(number)) for number in sizes], [3, 3, 3, 3])
        self.expect(zqv("tree", SAMPLES / "attachments.eml"), out=(
            "0    multipart/mixed\n"
            "1      multipart/alternative\n"
            f"1.1      text/plain           {sizes[0]}\n"
            f"1.2      text/html            {sizes[1]}\n"
            f"2      application/pdf        {sizes[2]}  figures-q1.pdf\n"
            f"3      image/png              {sizes[3]}  Übersicht Süd.png\n"))

    def test_nested(self):
        result = self.expect(zqv("tree", SAMPLES / "nested.eml"))
        columns = [line.split()[:2] for line in result.out.splitlines()]
        self.assertEqual(columns, [
            ["0", "multipart/mixed"],
            ["1", "multipart/related"],
            ["1.1", "multipart/alternative"],
            ["1.1.1", "text/plain"],
            ["1.1.2", "text/html"],
            ["1.2", "image/gif"],
            ["2", "message/rfc822"],
            ["2.1", "multipart/mixed"],
            ["2.1.1", "text/plain"],
            ["2.1.2", "text/csv"],
        ])

    def test_part_without_type(self):
        path = self.write("untyped.eml", "Subject: x\n\nhello")
        self.expect(zqv("tree", path), out="0  (no type)  5\n")


class HeadersTest(program.TestCase):
    def test_all_fields_in_order(self):
        self.expect(zqv("headers", SAMPLES / "plain.eml"), out=(
            "Date: Sat, 20 Jan 2024 18:00:00 +0000\n"
            "From: Ada Moss <ada@example.com>\n"
            "To: Ben Reed <ben@example.org>\n"
            "Subject: Keys\n"
            "Message-ID: <keys.1@example.com>\n"
            "MIME-Version: 1.0\n"
            "Content-Type: text/plain; charset=us-ascii\n"
            "Content-Transfer-Encoding: 7bit\n"))

    FIELDS = (b'From: "x" (<c@d.org>)\nSubject: =?utf-8?q?caf=C3=A9?=\n =?UTF-8*fr?B?IGNyw6htZQ==?='
              b"\nx-odd:caf\xE9 \tb\n\nx")

    def test_as_they_are_written_and_decoded(self):
        path = self.write("a.eml", self.FIELDS)
        self.expect(zqv("headers", path),
                    out='From: "x" (<c@d.org>)\nSubject: café crème\nx-odd: café \tb\n')

    def test_bytes(self):
        path = self.write("a.eml", self.FIELDS)
        result = self.expect(zqv("headers", "--raw", path), out=None, err="")
        self.assertEqual(result.out_bytes, self.FIELDS[:-2])

    def test_as_the_classes_give_them(self):
        path = self.write("a.eml", self.FIELDS)
        result = self.expect(zqv("headers", "--classes", path))
        self.assertEqual(result.out.splitlines()[0], "From: @")

    def test_one_name_in_any_case_gives_all_of_it(self):
        self.expect(zqv("headers", "--name", "rEceived", SAMPLES / "attachments.eml"), out=(
            "Received: from out3.example.com (out3.example.com [198.51.100.17])"
            " by mx.example.org with ESMTPS id 9C41F0A2"
            " for <board@example.org>; Tue, 16 Apr 2024 14:02:11 +0000 (UTC)\n"
            "Received: from [192.0.2.77] (port=51022)"
            " by out3.example.com with ESMTPSA id q1Rt7x; Tue, 16 Apr 2024 16:02:09 +0200\n"))

    def test_a_name_that_is_not_there(self):
        path = SAMPLES / "plain.eml"
        self.expect(zqv("headers", "--name", "Received", path), 1, "",
                    f"zqv: {path}: there is no field Received\n")

    def test_a_part(self):
        self.expect(zqv("headers", "--part", "2.1.2", SAMPLES / "nested.eml"), out=(
            'Content-Type: text/csv; charset=us-ascii; name="pages.csv"\n'
            'Content-Disposition: attachment; filename="pages.csv"\n'))

    def test_the_message_is_part_0(self):
        path = SAMPLES / "nested.eml"
        self.expect(zqv("headers", "--part", "0", path), out=zqv("headers", path).out)
        self.expect(zqv("headers", "--part", "2.1", "--name", "Subject", path),
                    out="Subject: Printer on floor 2\n")

    def test_a_part_that_is_not_there(self):
        path = SAMPLES / "nested.eml"
        for part in ("3", "2.2", "2.1.3", "1.1.1.1", "0.1", "99999999999999999999999"):
            with self.subTest(part):
                self.expect(zqv("headers", "--part", part, path), 1, "",
                            f"zqv: {path}: there is no part {part}\n")

    def test_an_empty_value_leaves_no_trailing_blank(self):
        path = self.write("empty.eml", "Subject: x\nX-Empty:\nX-Last: y\n\nhello\n")
        self.expect(zqv("headers", path), out="Subject: x\nX-Empty:\nX-Last: y\n")


class ListTest(program.TestCase):
    def test_nothing_attached(self):
        self.expect(zqv("list", SAMPLES / "plain.eml"), out="")

    def test_rows(self):
        result = self.expect(zqv("list", SAMPLES / "nested.eml"))
        rows = [re.split("  +", line) for line in result.out.splitlines()]
        self.assertEqual(rows, [
            ["1.2", "inline", "image/gif", str(size("nested.eml", 0, 1)), "logo.gif",
             "<logo.881@desk.example.org>"],
            ["2", "attachment", "message/rfc822", "533", "your message.eml", "-"],
            ["2.1.2", "attachment", "text/csv", str(size("nested.eml", 1, 0, 1)), "pages.csv",
             "-"],
        ])

    def test_the_message_itself_is_attached(self):
        self.expect(zqv("list", SAMPLES / "single-image.eml"),
                    out=f"0  inline  image/png  {size('single-image.eml')}  sunny.png  -\n")


if __name__ == "__main__":
    unittest.main()
