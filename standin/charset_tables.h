// The format of a file of charset tables. The file holds all the conversions of one machine's
// iconv, for systems whose C library converts differently or not at all.
// standin/make_charset_tables.cc writes it, standin/charset_tables.cc reads it.
//
// The file begins with kTableMagic. Tables follow, each as a Table and then its runs, sorted by the
// length of the key and then by the key.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zqv::standin {

inline constexpr char kTableMagic[8] = {'z', 'q', 'v', 't', 'a', 'b', '0', '1'};

enum class TableKind : std::uint32_t {
  kDecode,    // key: the bytes of a character; value: its code points
  kEncode,    // key: a code point; value: its bytes
  kFoldCase,  // key: a code point; value: its lower-case form
};

// The head of one table. A stateful charset has one kDecode table for each state; a sequence of
// bytes, such as an escape sequence, switches to a state.
struct Table {
  char charset[24];
  char state[8];  // the sequence that switches to it, NUL-padded; empty: the initial state
  TableKind kind;
  std::uint32_t runs;
};

inline constexpr std::size_t kMostPoints = 3;

// `count` consecutive keys that map to consecutive values. Keys and values that are bytes are
// stored as one number, the first byte in its highest place.
struct Run {
  std::uint32_t length;  // length of each key in bytes; 4 for a code point
  std::uint32_t key;
  std::uint32_t count;
  std::uint32_t size;                 // length of each value, in code points or bytes
  std::uint32_t values[kMostPoints];  // the value of the first key; only its last code point is
                                      // counted up for the others
};

}  // namespace zqv::standin
