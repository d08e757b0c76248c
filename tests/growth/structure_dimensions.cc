// The tree of a message: parts, nesting, boundaries, and lines that resemble boundaries.
#include <algorithm>

#include "tests/growth/dimensions.h"
#include "tests/growth/inputs.h"

namespace zqv::growth {
namespace {

constexpr const char* kTooMany = "C++ Exception: the message has too many parts";
constexpr const char* kTooManyFields = "C++ Exception: the message has too many fields";

// Fewer levels than the limit of parts.
constexpr std::size_t kLevels = 4000;

std::string Parts(std::size_t n) {
  return Multipart(Repeat("--b\nContent-Type: text/plain\n\nHello.\n", n));
}
std::string HtmlParts(std::size_t n) {
  return Multipart(Repeat("--b\nContent-Type: text/html\n\n<p>Hello.\n", n));
}
std::string EmptyParts(std::size_t n) { return Multipart(Repeat("--b\n", n)); }
std::string BareParts(std::size_t n) { return Multipart(Repeat("--b\n\n", n)); }
std::string Attachments(std::size_t n) {
  return Multipart(
      Repeat("--b\nContent-Type: image/png\nContent-Disposition: attachment\n\nAA\n", n));
}
std::string Inlines(std::size_t n) {
  return Multipart(Repeat("--b\nContent-Type: image/png\nContent-ID: <1@a>\n\nAA\n", n));
}
std::string AttachedMessages(std::size_t n) {
  return Multipart(Repeat("--b\nContent-Type: message/rfc822\n\nSubject: Hello\n\nHello.\n", n));
}
std::string SiblingMultiparts(std::size_t n) {
  return Multipart(
      Repeat("--b\nContent-Type: multipart/related; boundary=c\n\n--c\n\nHello.\n--c--\n", n));
}
std::string UnclosedMultiparts(std::size_t n) {
  return Multipart(
      Repeat("--b\nContent-Type: multipart/related; boundary=c\n\n--c\n\nHello.\n", n));
}

std::string Boundary(std::size_t level) { return "b" + std::to_string(level) + "x"; }

std::string OpenLevel(std::size_t level) {
  const std::string boundary = Boundary(level);
  return "Content-Type: multipart/mixed; boundary=" + boundary + "\n\n--" + boundary + "\n";
}

std::string CloseLevels(std::size_t levels) {
  std::string text;
  for (std::size_t i = levels; i-- > 0;) text += "--" + Boundary(i) + "--\n";
  return text;
}

// Nested multiparts of `n` bytes and at most `most_levels` levels, around `inside`.
std::string Nest(std::size_t n, std::size_t most_levels, const std::string& inside) {
  std::string open;
  std::size_t levels = 0;
  std::size_t closing = 0;
  while (open.size() + closing < n && levels < most_levels) {
    open += OpenLevel(levels);
    closing += 5 + Boundary(levels).size();
    ++levels;
  }
  return "MIME-Version: 1.0\n" + open + "\n" + inside + CloseLevels(levels);
}

std::string NestedMultiparts(std::size_t n) { return Nest(n, n, "Hello.\n"); }
std::string NestedSameBoundary(std::size_t n) {
  return Repeat("Content-Type: multipart/mixed; boundary=b\n\n--b\n", n) + "\nHello.\n";
}
std::string NestedUnclosed(std::size_t n) { return Count(n, OpenLevel) + "\nHello.\n"; }
std::string NestedMessages(std::size_t n) {
  return Repeat("Content-Type: message/rfc822\n\n", n) + "Subject: Hello\n\nHello.\n";
}
std::string NestedMixture(std::size_t n) {
  return Count(n,
               [](std::size_t level) {
                 return OpenLevel(level) + "Content-Type: message/rfc822\n\n";
               }) +
         "Subject: Hello\n\nHello.\n";
}
// Half of the bytes open levels. In the other half, each line is compared with the open boundaries.
std::string NestedDashLines(std::size_t n) { return Nest(n / 2, kLevels, Repeat("--x\n", n / 2)); }
std::string NestedPlainLines(std::size_t n) { return Nest(n / 2, kLevels, Repeat("x\n", n / 2)); }
std::string NestedBoundaryLines(std::size_t n) {
  return Nest(n / 2, kLevels, Repeat("--b0\n", n / 2));
}
std::string NestedParts(std::size_t n) {
  const std::size_t levels = std::min(n / 2 / 70, kLevels);
  const std::string innermost = "--" + Boundary(levels == 0 ? 0 : levels - 1) + "\n\na\n";
  return Nest(n / 2, levels, "a\n" + Repeat(innermost, n / 2));
}

std::string DashLines(std::size_t n) { return Multipart("--b\n\n" + Repeat("--x\n", n)); }
std::string LongDashLine(std::size_t n) {
  return Multipart("--b\n\nHello.\n" + Repeat("-", n) + "\n");
}
std::string BoundaryBeginnings(std::size_t n) {
  return PlainMessage("Content-Type: multipart/mixed; boundary=bbbbbbbbbbbbbbbbbbbb\n",
                      "--bbbbbbbbbbbbbbbbbbbb\n\n" + Repeat("--bbbbbbbbbbbbbbbbbbb\n", n) +
                          "--bbbbbbbbbbbbbbbbbbbb--\n");
}
std::string BoundaryLength(std::size_t n) {
  const std::string boundary = "b" + Repeat("a", n / 3);
  return PlainMessage("Content-Type: multipart/mixed; boundary=" + boundary + "\n",
                      "--" + boundary + "\n\nHello.\n--" + boundary + "--\n");
}
std::string LongBoundaryDashLines(std::size_t n) {
  const std::string boundary = "b" + Repeat("a", n / 2);
  return PlainMessage("Content-Type: multipart/mixed; boundary=" + boundary + "\n",
                      "--" + boundary + "\n\n" + Repeat("--baaaaa\n", n / 2));
}
std::string NoBoundary(std::size_t n) {
  return PlainMessage("Content-Type: multipart/mixed\n", Repeat("--x\n\n", n));
}
std::string Preamble(std::size_t n) {
  return Multipart(Repeat("Hello there.\n", n) + "--b\n\na\n");
}
std::string Epilogue(std::size_t n) {
  return Multipart("--b\n\na\n--b--\n" + Repeat("Hello.\n", n));
}
std::string PartFields(std::size_t n) { return Multipart("--b\n" + Repeat("X: a\n", n) + "\na\n"); }

}  // namespace

const std::vector<Dimension> kStructureDimensions = {
    // clang-format off
    {"structure.parts",                 "texts in one multipart",                       UseMessage, Parts,                 kTooMany,       kDearer},
    {"structure.html_parts",            "HTML texts in one multipart",                  UseMessage, HtmlParts,             kTooMany,       kDearer},
    {"structure.empty_parts",           "parts of nothing but the boundary",            UseMessage, EmptyParts,            kTooMany,       kDearest},
    {"structure.bare_parts",            "parts without header and body",                UseMessage, BareParts,             kTooMany,       kDearest},
    {"structure.attachments",           "attachments",                                  UseMessage, Attachments,           kTooMany,       kDearer},
    {"structure.inlines",               "inline parts",                                 UseMessage, Inlines,               kTooMany,       kDearer},
    {"structure.attached_messages",     "attached messages",                            UseMessage, AttachedMessages,      kTooMany,       kDearer},
    {"structure.sibling_multiparts",    "multiparts beside one another",                UseMessage, SiblingMultiparts,     kTooMany,       kDearer},
    {"structure.unclosed_multiparts",   "multiparts without an end",                    UseMessage, UnclosedMultiparts,    kTooMany},
    {"structure.nested_multiparts",     "multiparts in one another",                    UseMessage, NestedMultiparts,      kTooMany,       kDearer},
    {"structure.nested_same_boundary",  "levels with the same boundary",                UseMessage, NestedSameBoundary,    kTooMany,       kDearer},
    {"structure.nested_unclosed",       "levels without an end",                        UseMessage, NestedUnclosed,        kTooMany,       kDearer},
    {"structure.nested_messages",       "messages in one another",                      UseMessage, NestedMessages,        kTooMany,       kDearer},
    {"structure.nested_mixture",        "multiparts and messages in turn",              UseMessage, NestedMixture,         kTooMany,       kDearer},
    {"structure.nested_dash_lines",     "levels, and lines that begin with --",         UseMessage, NestedDashLines,       kTooMany,       kUsual, "construct"},
    {"structure.nested_plain_lines",    "levels, and other lines",                      UseMessage, NestedPlainLines,      kTooMany,       kUsual, "construct"},
    {"structure.nested_boundary_lines", "levels, and the outermost boundary cut short", UseMessage, NestedBoundaryLines,   kTooMany,       kUsual, "construct"},
    {"structure.nested_parts",          "levels, and parts of the innermost",           UseMessage, NestedParts,           kTooMany,       kDearer},
    {"structure.dash_lines",            "lines that begin with --",                     UseMessage, DashLines},
    {"structure.long_dash_line",        "dashes of one line",                           UseMessage, LongDashLine},
    {"structure.boundary_beginnings",   "lines that begin like the boundary",           UseMessage, BoundaryBeginnings},
    {"structure.boundary_length",       "letters of the boundary",                      UseMessage, BoundaryLength},
    {"structure.long_boundary_lines",   "boundary, and lines that begin like it",       UseMessage, LongBoundaryDashLines},
    {"structure.no_boundary",           "parts without a named boundary",               UseMessage, NoBoundary,            kTooMany,       kDearest},
    {"structure.preamble",              "lines before the parts",                       UseMessage, Preamble},
    {"structure.epilogue",              "lines behind the parts",                       UseMessage, Epilogue},
    {"structure.part_fields",           "fields of one part",                           UseMessage, PartFields,            kTooManyFields, kDearer},
    // clang-format on
};

}  // namespace zqv::growth
