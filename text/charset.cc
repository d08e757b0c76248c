// The table of charset names and its lookup. A name is normalised before it is compared:
//
//   "iso-8859-1"; x    iso88591, equal to the row "ISO88591" when case is ignored
//   utf_8              utf8
#include "text/charset.h"

#include <algorithm>
#include <iterator>

#include "base/ascii.h"
#include "base/log.h"

namespace zqv::text {
namespace {

struct Row {
  std::string_view name;  // as NormaliseCharsetName returns it
  abi::Encoding encoding;
};

// The numbers are those of the Text Encoding Converter of macOS (abi/encodings.h).
//
// QUIRK: "ASAX341963" is no registered charset, "TIS620" has the number of ISO885911, and the names
// that say that the charset is unknown have the number of ISO 8859-1, which gives every byte a
// character. Part of the interface's contract; changing it is a major version.
// Test: Charset.KeepsTheUnusualRows.
constexpr Row kCharsets[] = {
    // clang-format off
    {"utf8",           0x08000100},
    {"usascii",        0x00000600},
    {"ascii",          0x00000600},
    {"ASAX341963",     0x00000600},
    {"ANSIX341968",    0x00000600},
    {"ISO88591",       0x00000201},
    {"ISO88592",       0x00000202},
    {"ISO88593",       0x00000203},
    {"ISO88594",       0x00000204},
    {"ISO88595",       0x00000205},
    {"ISO88596",       0x00000206},
    {"ISO88597",       0x00000207},
    {"ISO88598",       0x00000208},
    {"ISO88599",       0x00000209},
    {"ISO885910",      0x0000020A},
    {"ISO885911",      0x0000020B},
    {"TIS620",         0x0000020B},
    {"ISO885912",      0x0000020C},
    {"ISO885913",      0x0000020D},
    {"ISO885914",      0x0000020E},
    {"ISO885915",      0x0000020F},
    {"ISO885916",      0x00000210},
    {"windows1250",    0x00000501},
    {"windows1251",    0x00000502},
    {"windows1252",    0x00000500},
    {"windows1253",    0x00000503},
    {"windows1254",    0x00000504},
    {"windows1255",    0x00000505},
    {"windows1256",    0x00000506},
    {"windows1257",    0x00000507},
    {"windows1258",    0x00000508},
    {"windows1361",    0x00000510},
    {"ISO2022JP",      0x00000820},
    {"ISO2022JP2",     0x00000821},
    {"ISO2022JP1",     0x00000822},
    {"ISO2022JP3",     0x00000823},
    {"ISO2022CN",      0x00000830},
    {"ISO2022JPEXT",   0x00000831},
    {"ISO2022KR",      0x00000840},
    {"GB2312",         0x00000630},
    {"EUCJP",          0x00000920},
    {"EUCCN",          0x00000930},
    {"EUCTW",          0x00000931},
    {"EUCKR",          0x00000940},
    {"ShiftJIS",       0x00000A01},
    {"KOI8R",          0x00000A02},
    {"Big5",           0x00000A03},
    {"MacRomanLatin1", 0x00000A04},
    {"HZGB2312",       0x00000A05},
    {"Big5HKSCS1999",  0x00000A06},
    {"VISCII",         0x00000A07},
    {"KOI8U",          0x00000A08},
    {"Big5E",          0x00000A09},
    {"xmaccyrillic",   0x00000007},
    {"gbk",            0x00000631},
    {"cp437",          0x00000400},
    {"cp737",          0x00000405},
    {"cp775",          0x00000406},
    {"cp850",          0x00000410},
    {"cp851",          0x00000411},
    {"cp852",          0x00000412},
    {"cp855",          0x00000413},
    {"cp857",          0x00000414},
    {"cp860",          0x00000415},
    {"cp861",          0x00000416},
    {"cp862",          0x00000417},
    {"cp863",          0x00000418},
    {"cp864",          0x00000419},
    {"cp865",          0x0000041A},
    {"cp866",          0x0000041B},
    {"cp869",          0x0000041C},
    {"cp874",          0x0000041D},
    {"cp932",          0x00000420},
    {"cp936",          0x00000421},
    {"cp949",          0x00000422},
    {"cp950",          0x00000423},
    {"cp1250",         0x00000501},
    {"cp1251",         0x00000502},
    {"cp1252",         0x00000500},
    {"cp1253",         0x00000503},
    {"cp1254",         0x00000504},
    {"cp1255",         0x00000505},
    {"cp1256",         0x00000506},
    {"cp1257",         0x00000507},
    {"cp1258",         0x00000508},
    {"cp1361",         0x00000510},
    {"windows437",     0x00000400},
    {"windows737",     0x00000405},
    {"windows775",     0x00000406},
    {"windows850",     0x00000410},
    {"windows851",     0x00000411},
    {"windows852",     0x00000412},
    {"windows855",     0x00000413},
    {"windows857",     0x00000414},
    {"windows860",     0x00000415},
    {"windows861",     0x00000416},
    {"windows862",     0x00000417},
    {"windows863",     0x00000418},
    {"windows864",     0x00000419},
    {"windows865",     0x0000041A},
    {"windows866",     0x0000041B},
    {"windows869",     0x0000041C},
    {"windows874",     0x0000041D},
    {"windows932",     0x00000420},
    {"windows936",     0x00000421},
    {"windows949",     0x00000422},
    {"windows950",     0x00000423},
    {"binary",         0x0000FFFF},
    {"utf16",          0x00000100},
    {"macintosh",      0x00000000},
    {"MacRoman",       0x00000000},
    {"xmacroman",      0x00000000},
    {"utf7",           0x04000100},
    {"unicode11utf7",  0x04000100},
    {"xuserdefined",   0x00000201},
    {"XUNKNOWN",       0x00000201},
    {"UNKNOWN",        0x00000201},
    {"unknown8bit",    0x00000201},
    {"0",              0x00000201},
    // clang-format on
};
static_assert(std::size(kCharsets) == 119);

bool IsDropped(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < 0x20 || byte >= 0x80 || c == ' ' || c == '-' || c == '.' || c == '_';
}

}  // namespace

std::string NormaliseCharsetName(std::string_view name) {
  constexpr std::size_t kShortestBeforeQuote =
      6;  // after so many characters a quote is a closing one
  std::string normalised;
  bool in_quotes = false;
  for (const char c : name) {
    if (IsDropped(c)) continue;
    if (c != '"') {
      normalised += c;
      continue;
    }
    if (in_quotes || normalised.size() >= kShortestBeforeQuote) break;
    in_quotes = true;
  }
  return normalised;
}

std::optional<abi::Encoding> FindCharset(std::string_view name) {
  const std::string normalised = NormaliseCharsetName(name);
  const auto row = std::find_if(std::begin(kCharsets), std::end(kCharsets), [&](const Row& r) {
    return base::EqualsIgnoringCase(r.name, normalised);
  });
  if (row != std::end(kCharsets)) return row->encoding;
  ZQV_LOG("unknown charset %s", normalised.c_str());
  return std::nullopt;
}

}  // namespace zqv::text
