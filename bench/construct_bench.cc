// What a message costs: the parse alone and the whole construction through the built library, each
// beside the MIME library's own stream constructor on the same bytes in the same run.
//
// Run it whole and compare the rows of one message: the ratio is what counts, not the time.
#include <benchmark/benchmark.h>
#include <mimetic/mimeentity.h>

#include <sstream>
#include <string>
#include <string_view>

#include "mime/parser.h"
#include "standin/application.h"
#include "standin/host.h"
#include "standin/library.h"

namespace {

using zqv::standin::Host;

constexpr std::string_view kHeader =
    "Return-Path: <list-bounces@example.org>\n"
    "Received: from mail.example.org (mail.example.org [192.0.2.7])\n"
    "\tby mx.example.net with ESMTP id 4711; Tue, 1 Jan 2019 10:00:00 +0000\n"
    "From: \"Ada Example\" <ada@example.org>\n"
    "To: Bob Sample <bob@example.net>, carol@example.net\n"
    "Subject: =?utf-8?Q?Caf=C3=A9?= at noon\n"
    "Date: Tue, 1 Jan 2019 10:00:00 +0200\n"
    "Message-ID: <4711@example.org>\n"
    "MIME-Version: 1.0\n";

std::string Repeat(std::string_view text, std::size_t bytes) {
  std::string result;
  while (result.size() < bytes) result += text;
  return result;
}

std::string PlainMessage() {
  return std::string(kHeader) + "Content-Type: text/plain; charset=utf-8\n\n" +
         Repeat("A line of plain text, as people write them to each other.\n", 2'000);
}

std::string HtmlMessage() {
  return std::string(kHeader) +
         "Content-Type: text/html; charset=utf-8\nContent-Transfer-Encoding: quoted-printable\n\n" +
         Repeat("<tr><td class=3D\"cell\">A caf=C3=A9 &amp; a table</td></tr>=\n", 50'000);
}

std::string AttachmentMessage() {
  return std::string(kHeader) +
         "Content-Type: multipart/mixed; boundary=\"frontier\"\n\n"
         "--frontier\nContent-Type: text/plain\n\nSee the file.\n"
         "--frontier\nContent-Type: application/pdf; name=\"report.pdf\"\n"
         "Content-Disposition: attachment; filename=\"report.pdf\"\n"
         "Content-Transfer-Encoding: base64\n\n" +
         Repeat("JVBERi0xLjQKJcOkw7zDtsOfCjIgMCBvYmoKPDwvTGVuZ3RoIDMgMCBSL0ZpbHRlci9GbGF0ZURl\n",
                10'000'000) +
         "--frontier--\n";
}

void Count(benchmark::State& state, const std::string& message) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(message.size()));
}

void StreamConstructor(benchmark::State& state, const std::string& message) {
  for (auto _ : state) {
    std::istringstream stream(message);
    const mimetic::MimeEntity entity(stream);
    benchmark::DoNotOptimize(&entity);
  }
  Count(state, message);
}

void ParseOnly(benchmark::State& state, const std::string& message) {
  for (auto _ : state) {
    mimetic::MimeEntity entity;
    zqv::mime::ParseMessage(message, entity);
    benchmark::DoNotOptimize(&entity);
  }
  Count(state, message);
}

void WholeConstruction(benchmark::State& state, const std::string& message) {
  const auto content = zqv::standin::MakeString(message, zqv::abi::kUnknownEncoding);
  for (auto _ : state) {
    const auto mail =
        zqv::standin::Construct("MimeEmailZQV", "Constructor(Content as string)", content);
    benchmark::DoNotOptimize(&mail);
  }
  Count(state, message);
}

void Register(const std::string& name, const std::string& message) {
  benchmark::RegisterBenchmark((name + "/stream_constructor").c_str(), StreamConstructor, message);
  benchmark::RegisterBenchmark((name + "/parse_only").c_str(), ParseOnly, message);
  benchmark::RegisterBenchmark((name + "/whole_construction").c_str(), WholeConstruction, message);
}

}  // namespace

int main(int argc, char** argv) {
  zqv::standin::Capabilities capabilities;
  capabilities.ledger = false;
  const auto host = Host::Start(capabilities);
  const zqv::standin::Library library(ZQV_LIBRARY);
  library.Enter(*host);

  Register("plain_2KB", PlainMessage());
  Register("html_50KB", HtmlMessage());
  Register("attachment_10MB", AttachmentMessage());
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
}
