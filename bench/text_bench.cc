// The cost of texts, by bytes of input: HTML to plain text and encoded words through the built
// library, and decoding the transfer encodings, both alone and in a construction.
//
// The figures of the first two include the stand-in host's conversions. A text in two sizes should
// have about the same speed, because the cost must not grow faster than the text. The cost of a
// transfer encoding in a construction is the difference from the row "as_8bit", which has the same
// body.
#include <benchmark/benchmark.h>

#include <string>
#include <string_view>

#include "bench/session.h"
#include "email/transfer.h"

namespace zqv::bench {
namespace {

constexpr std::string_view kNewsletter =
    "<tr>\r\n  <td class=\"cell\" style=\"padding: 4px\"><p>A caf&eacute; &amp; a <b>table</b><br>"
    "next to the window, <a href=\"https://example.org/book?id=4711\">for&nbsp;two</a>"
    "</p><!-- end --></td>\r\n</tr>\r\n<ul><li>one<li>two</ul>\r\n";
constexpr std::string_view kProse =
    "A line of plain text, as people write them to each other, without any mark.\r\n";
constexpr std::string_view kQWord = "=?utf-8?Q?Caf=C3=A9_at_noon,_and_the_usual_table_again?= ";
constexpr std::string_view kBWord = "=?utf-8?B?Q2Fmw6kgYXQgbm9vbiwgYW5kIHRoZSB1c3VhbCB0YWJsZQ==?= ";

constexpr std::string_view kBase64Line =
    "JVBERi0xLjQKJcOkw7zDtsOfCjIgMCBvYmoKPDwvTGVuZ3RoIDMgMCBSL0ZpbHRlci9GbGF0ZURl\r\n";
constexpr std::string_view kQuotedPrintableLines =
    "A caf=C3=A9 with a soft break at the end of this line of quoted-printable =\r\n"
    "text, and a hard one here.\r\n";

void SharedMethod(benchmark::State& state, const std::string& method, const std::string& text) {
  const auto content = standin::MakeString(text);
  for (auto _ : state) {
    const auto result = standin::CallShared("MimeEmailZQV", method, content);
    benchmark::DoNotOptimize(&result);
  }
  CountBytes(state, text.size());
}

void DecodeOnly(benchmark::State& state, const std::string& mechanism, const std::string& body) {
  for (auto _ : state) {
    const email::DecodedBody decoded = email::DecodeData(mechanism, body);
    benchmark::DoNotOptimize(decoded.bytes().data());
  }
  CountBytes(state, body.size());
}

// A message whose body is one file.
std::string FileMessage(const std::string& mechanism, const std::string& body) {
  return std::string(Header()) +
         "Content-Type: application/octet-stream\nContent-Disposition: attachment\n"
         "Content-Transfer-Encoding: " +
         mechanism + "\n\n" + body;
}

void RegisterHtml(const std::string& name, const std::string& html) {
  benchmark::RegisterBenchmark(("html_to_text/" + name).c_str(), SharedMethod,
                               "HTMLToPlainText(HTMLText as String) as String", html);
}

void RegisterWords(const std::string& name, const std::string& text) {
  benchmark::RegisterBenchmark(("decode_inline/" + name).c_str(), SharedMethod,
                               "DecodeInline(Text as String) as String", text);
}

void RegisterTransfer(const std::string& mechanism, std::string_view lines) {
  const std::string body = Repeat(lines, 1'000'000);
  const std::string name = mechanism + "_1MB";
  benchmark::RegisterBenchmark((name + "/decode_only").c_str(), DecodeOnly, mechanism, body);
  benchmark::RegisterBenchmark((name + "/whole_construction").c_str(), WholeConstruction,
                               FileMessage(mechanism, body));
  benchmark::RegisterBenchmark((name + "/whole_construction_as_8bit").c_str(), WholeConstruction,
                               FileMessage("8bit", body));
}

void RegisterAll() {
  RegisterHtml("newsletter_50KB", Repeat(kNewsletter, 50'000));
  RegisterHtml("newsletter_1MB", Repeat(kNewsletter, 1'000'000));
  RegisterHtml("prose_50KB", Repeat(kProse, 50'000));
  RegisterHtml("open_brackets_50KB", Repeat("<", 50'000));
  RegisterHtml("ampersands_50KB", Repeat("&", 50'000));
  RegisterWords("subject", std::string(kQWord));
  RegisterWords("q_words_50KB", Repeat(kQWord, 50'000));
  RegisterWords("q_words_1MB", Repeat(kQWord, 1'000'000));
  RegisterWords("b_words_50KB", Repeat(kBWord, 50'000));
  RegisterWords("prose_50KB", Repeat(kProse, 50'000));
  RegisterTransfer("base64", kBase64Line);
  RegisterTransfer("quoted-printable", kQuotedPrintableLines);
}

}  // namespace
}  // namespace zqv::bench

int main(int argc, char** argv) { return zqv::bench::Run(argc, argv, zqv::bench::RegisterAll); }
