// The parsers of field values compared with mimetic's: addresses, parameters, the version. The
// first byte of an input selects the parser; the rest is the value.

#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

#include "fuzz/alphabet.h"
#include "fuzz/target.h"
#include "tests/unit/mime/value_difference.h"

namespace zqv::fuzz {
namespace {

// clang-format off
constexpr std::string_view kAddressPieces[] = {
    "<", ">", "@", ":", ";", ",", "\"", "(", ")", "\\", " ", "\t", "\r", "\n", "a", "b", "\xE9",
    std::string_view("\0", 1), "  ", ", ", "a@b", "<a@b>", " <c.d@example.org>", "Name Surname",
    "\"Surname, Name\"", "(comment)", "(a (nested) one)", "<@route.example:a@b>", "Team: ", ";, ",
    "undisclosed-recipients:;", "=?utf-8?Q?x?=", "a-rather-long-local-part@host.example.org",
    "\\\"", "(\")\")", "< a @ b >", "@>", "<@", ":<", ":;", "                ",
    "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"};
constexpr std::string_view kParameterPieces[] = {
    ";", "; ", "=", "\"", "/", "*", " ", "\t", "\r", "\n", "a", "Z", "[", "{", "@", "`", "\\",
    "\x80", "\xFF", std::string_view("\0", 1), "text/plain", "multipart/mixed", "attachment",
    "charset=", "BOUNDARY=\"=_b\"", "name=x", "filename=\"a b\"", "Filename*=utf-8''x", "(c)",
    ";;", "==", "\"\"", "name*0=y"};
constexpr std::string_view kVersionPieces[] = {
    "0", "1", "2", "4", "7", "8", "9", "00", "99", "2147483647", "2147483648", "4294967296",
    "922337203685", "9223372036854775807", "9223372036854775808", ".", "-", "+", " ", "\t", "\v",
    "(x)", "a", "\x80", "\xA0", std::string_view("\0", 1)};
// clang-format on

struct Comparison {
  std::string (*difference)(const std::string& value);
  Alphabet alphabet;
};

constexpr Comparison kComparisons[] = {
    {test::AddressListDifference, Alphabet(kAddressPieces)},
    {test::MailboxListDifference, Alphabet(kAddressPieces)},
    {test::AddressDifference, Alphabet(kAddressPieces)},
    {test::GroupDifference, Alphabet(kAddressPieces)},
    {test::MailboxDifference, Alphabet(kAddressPieces)},
    {test::ContentTypeDifference, Alphabet(kParameterPieces)},
    {test::ContentDispositionDifference, Alphabet(kParameterPieces)},
    {test::MimeVersionDifference, Alphabet(kVersionPieces)},
};

const Comparison& Chosen(std::string_view input) {
  const std::size_t number = static_cast<unsigned char>(input.front());
  return kComparisons[number % std::size(kComparisons)];
}

void Start() {}

void Run(std::string_view input) {
  if (input.empty()) return;
  ExpectSame("the value is read differently",
             Chosen(input).difference(std::string(input.substr(1))), "");
}

std::string Spell(std::string_view input) {
  if (input.empty()) return {};
  return input.front() + Chosen(input).alphabet.Spell(input.substr(1), 2'000);
}

}  // namespace

const Target target = {Start, Run, Spell};

}  // namespace zqv::fuzz
