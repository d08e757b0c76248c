#include "bench/session.h"

#include "standin/library.h"

namespace zqv::bench {
namespace {

standin::Capabilities WithoutLedger() {
  standin::Capabilities capabilities;
  capabilities.ledger = false;
  return capabilities;
}

}  // namespace

Session::Session() : host_(standin::Host::Start(WithoutLedger())) {
  standin::Library(ZQV_LIBRARY).Enter(*host_);
}

int Run(int argc, char** argv, void (*register_all)()) {
  const Session session;

  register_all();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}

std::string_view Header() {
  return "Return-Path: <list-bounces@example.org>\n"
         "Received: from mail.example.org (mail.example.org [192.0.2.7])\n"
         "\tby mx.example.net with ESMTP id 4711; Tue, 1 Jan 2019 10:00:00 +0000\n"
         "From: \"Ada Example\" <ada@example.org>\n"
         "To: Bob Sample <bob@example.net>, carol@example.net\n"
         "Subject: =?utf-8?Q?Caf=C3=A9?= at noon\n"
         "Date: Tue, 1 Jan 2019 10:00:00 +0200\n"
         "Message-ID: <4711@example.org>\n"
         "MIME-Version: 1.0\n";
}

void CountBytes(benchmark::State& state, std::size_t bytes) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

void WholeConstruction(benchmark::State& state, const std::string& message) {
  const auto content = standin::MakeString(message, abi::kUnknownEncoding);
  for (auto _ : state) {
    const auto mail = standin::Construct("MimeEmailZQV", "Constructor(Content as string)", content);
    benchmark::DoNotOptimize(&mail);
  }
  CountBytes(state, message.size());
}

}  // namespace zqv::bench
