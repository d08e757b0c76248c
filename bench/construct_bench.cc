// The cost of a message: parsing only, and the construction through the built library. Both are
// compared with mimetic's stream constructor on the same bytes in the same run. A thousand
// recipients are constructed in a field that is parsed as addresses, in one that is not, and as a
// list of their own, compared with mimetic's list.
//
// Run the whole program and compare the rows of one message. The ratios matter, not the times.
#include <benchmark/benchmark.h>
#include <mimetic/mimeentity.h>
#include <mimetic/rfc822/addresslist.h>

#include <sstream>
#include <string>

#include "bench/session.h"
#include "mime/message.h"

namespace zqv::bench {
namespace {

std::string PlainMessage() {
  return std::string(Header()) + "Content-Type: text/plain; charset=utf-8\n\n" +
         Repeat("A line of plain text, as people write them to each other.\n", 2'000);
}

std::string HtmlMessage() {
  return std::string(Header()) +
         "Content-Type: text/html; charset=utf-8\nContent-Transfer-Encoding: quoted-printable\n\n" +
         Repeat("<tr><td class=3D\"cell\">A caf=C3=A9 &amp; a table</td></tr>=\n", 50'000);
}

std::string AttachmentMessage() {
  return std::string(Header()) +
         "Content-Type: multipart/mixed; boundary=\"frontier\"\n\n"
         "--frontier\nContent-Type: text/plain\n\nSee the file.\n"
         "--frontier\nContent-Type: application/pdf; name=\"report.pdf\"\n"
         "Content-Disposition: attachment; filename=\"report.pdf\"\n"
         "Content-Transfer-Encoding: base64\n\n" +
         Repeat("JVBERi0xLjQKJcOkw7zDtsOfCjIgMCBvYmoKPDwvTGVuZ3RoIDMgMCBSL0ZpbHRlci9GbGF0ZURl\n",
                10'000'000) +
         "--frontier--\n";
}

// A thousand addresses in the usual forms, four a line. The lines are joined by `fold`.
std::string Recipients(const std::string& fold) {
  std::string list;
  for (int line = 0; line < 250; ++line) {
    const std::string host = std::to_string(line) + ".example.org>";
    if (line > 0) list += "," + fold;
    list += "Ada Example <ada@" + host + ", \"Sample, Bob\" <bob@" + host +
            ", =?utf-8?Q?Zo=C3=AB?= <zoe@" + host + ", <carol@" + host;
  }
  return list;
}

// A message with the recipients in the field of this name.
std::string RecipientsMessage(const std::string& field) {
  return field + ": " + Recipients("\n\t") + "\n" + PlainMessage();
}

void StreamConstructor(benchmark::State& state, const std::string& message) {
  for (auto _ : state) {
    std::istringstream stream(message);
    const mimetic::MimeEntity entity(stream);
    benchmark::DoNotOptimize(&entity);
  }
  CountBytes(state, message.size());
}

void ParseOnly(benchmark::State& state, const std::string& message) {
  for (auto _ : state) {
    const mime::Message parsed(message);
    benchmark::DoNotOptimize(&parsed);
  }
  CountBytes(state, message.size());
}

void PlainAddressList(benchmark::State& state, const std::string& text) {
  for (auto _ : state) {
    const mimetic::AddressList list(text);
    benchmark::DoNotOptimize(&list);
  }
  CountBytes(state, text.size());
}

void WholeAddressList(benchmark::State& state, const std::string& text) {
  const auto content = standin::MakeString(text);
  for (auto _ : state) {
    const auto list =
        standin::Construct("MimeAddressListZQV", "Constructor(TextToParse as String)", content);
    benchmark::DoNotOptimize(&list);
  }
  CountBytes(state, text.size());
}

void RegisterMessage(const std::string& name, const std::string& message) {
  benchmark::RegisterBenchmark((name + "/stream_constructor").c_str(), StreamConstructor, message);
  benchmark::RegisterBenchmark((name + "/parse_only").c_str(), ParseOnly, message);
  benchmark::RegisterBenchmark((name + "/whole_construction").c_str(), WholeConstruction, message);
}

void RegisterAll() {
  RegisterMessage("plain_2KB", PlainMessage());
  RegisterMessage("html_50KB", HtmlMessage());
  RegisterMessage("attachment_10MB", AttachmentMessage());
  RegisterMessage("recipients_1000", RecipientsMessage("To"));
  RegisterMessage("recipients_1000_unread", RecipientsMessage("X-To"));
  const std::string list = Recipients(" ");
  benchmark::RegisterBenchmark("address_list_1000/mime_library", PlainAddressList, list);
  benchmark::RegisterBenchmark("address_list_1000/whole_construction", WholeAddressList, list);
}

}  // namespace
}  // namespace zqv::bench

int main(int argc, char** argv) { return zqv::bench::Run(argc, argv, zqv::bench::RegisterAll); }
